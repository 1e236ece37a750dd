// A real HTTPS server on the loopback interface, with a certificate made for the test by the `openssl`
// command. Each path has a handler that writes what it likes to the connection.
#pragma once

#include <QHostAddress>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "support/temporary_folder.h"

namespace ostrelon::testing {

/// A self-signed certificate and its key.
struct TestCertificate {
  QSslCertificate certificate;
  QSslKey key;

  explicit TestCertificate(const std::string& host) {
    const TemporaryFolder folder;
    const QString keyPath = QString::fromStdString((folder / "key.pem").string());
    const QString certificatePath = QString::fromStdString((folder / "certificate.pem").string());
    QProcess openssl;  // what it prints on the way is kept from the test's output
    openssl.start("openssl", {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                              "-nodes", "-days", "2", "-subj", "/CN=test", "-addext",
                              QString::fromStdString("subjectAltName=DNS:" + host), "-keyout", keyPath,
                              "-out", certificatePath});
    openssl.waitForFinished();
    if (openssl.exitCode() != 0) throw std::runtime_error("openssl made no certificate");
    certificate = QSslCertificate::fromPath(certificatePath).value(0);
    key = QSslKey(QByteArray::fromStdString(readBytes(folder / "key.pem")), QSsl::Ec);
  }
};

class HttpsServer {
 public:
  using Handler = std::function<void(QSslSocket& connection)>;

  explicit HttpsServer(const TestCertificate& identity) {
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificate(identity.certificate);
    tls.setPrivateKey(identity.key);
    server_.setSslConfiguration(tls);
    QObject::connect(&server_, &QTcpServer::pendingConnectionAvailable, &server_, [this] { accept(); });
    if (!server_.listen(QHostAddress::LocalHost)) throw std::runtime_error("the server cannot listen");
  }

  std::string url(const std::string& path) const {
    return "https://localhost:" + std::to_string(server_.serverPort()) + path;
  }
  void on(const std::string& path, Handler handler) { handlers_[path] = std::move(handler); }
  /// An answer with these lines after the status line, and this body.
  void answer(const std::string& path, const std::string& status, const std::string& headers,
              const std::string& body) {
    on(path, [=](QSslSocket& connection) {
      connection.write(QByteArray::fromStdString("HTTP/1.1 " + status + "\r\n" + headers + "\r\n" + body));
      connection.disconnectFromHost();
    });
  }
  /// An ordinary answer of known length.
  void serve(const std::string& path, const std::string& body) {
    answer(path, "200 OK", "Content-Length: " + std::to_string(body.size()) + "\r\n", body);
  }
  /// The head of the last request, for looking at what was sent.
  const std::string& lastRequest() const { return lastRequest_; }

 private:
  void accept() {
    auto* connection = qobject_cast<QSslSocket*>(server_.nextPendingConnection());
    QObject::connect(connection, &QSslSocket::disconnected, connection, &QObject::deleteLater);
    const auto request = std::make_shared<std::string>();
    QObject::connect(connection, &QSslSocket::readyRead, connection, [this, connection, request] {
      *request += connection->readAll().toStdString();
      if (request->find("\r\n\r\n") == std::string::npos) return;
      lastRequest_ = std::exchange(*request, {});
      const std::size_t start = lastRequest_.find(' ') + 1;
      const auto handler = handlers_.find(lastRequest_.substr(start, lastRequest_.find(' ', start) - start));
      if (handler != handlers_.end()) handler->second(*connection);
    });
  }

  QSslServer server_;
  std::map<std::string, Handler> handlers_;
  std::string lastRequest_;
};

}  // namespace ostrelon::testing
