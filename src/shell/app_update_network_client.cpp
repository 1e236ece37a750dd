#include "shell/app_update_network_client.h"

#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "shell/qt_text.h"
#include "updates/app_update_error.h"

namespace ostrelon {
namespace {

constexpr int kMostRedirections = 10;
// Qt reads ahead no further than this, so that a fast server waits until the data are written.
constexpr qint64 kReadAhead = qint64{4} * 1024 * 1024;

class SystemProxyFactory final : public QNetworkProxyFactory {
 public:
  QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override {
    return systemProxyForQuery(query);
  }
};

std::exception_ptr networkFailure(const QString& reason) {
  const QString sentence = reason.endsWith('.') ? reason : reason + '.';
  return std::make_exception_ptr(AppUpdateError::networkFailure(plainText(sentence)));
}

/// One request under way. Hands over the body of a successful answer piece by piece, then ends once.
class Transfer final : public QObject {
 public:
  /// Takes a piece and the size that the server announced, 0 when it did not. May throw to stop.
  using PieceHandler = std::function<void(std::string_view piece, std::uint64_t expectedSize)>;
  /// Takes the failure, null for none, and the announced size.
  using EndHandler = std::function<void(std::exception_ptr failure, std::uint64_t expectedSize)>;

  Transfer(QNetworkReply* reply, QObject* parent, std::chrono::milliseconds silence,
           std::chrono::milliseconds wholeTime, PieceHandler take, EndHandler ended)
      : QObject(parent), reply_(reply), take_(std::move(take)), ended_(std::move(ended)) {
    reply->setParent(this);
    reply->setReadBufferSize(kReadAhead);
    connect(reply, &QNetworkReply::sslErrors, this, [this](const QList<QSslError>& errors) {
      if (!errors.isEmpty()) certificateProblem_ = errors.front().errorString();
    });
    connect(reply, &QNetworkReply::redirected, this, [this] { silence_.start(); });
    connect(reply, &QNetworkReply::metaDataChanged, this, [this] { silence_.start(); });
    connect(reply, &QNetworkReply::readyRead, this, [this] { readPieces(); });
    connect(reply, &QNetworkReply::finished, this, [this] { finish(); });

    silence_.setSingleShot(true);
    silence_.callOnTimeout(this, [this] { end(networkFailure("The server does not answer")); });
    silence_.start(silence);
    deadline_.setSingleShot(true);
    deadline_.callOnTimeout(this, [this] { end(networkFailure("The server answers too slowly")); });
    deadline_.start(wholeTime);
  }

 private:
  int status() const { return reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(); }
  bool isSuccessful() const { return status() >= 200 && status() <= 299; }

  std::uint64_t expectedSize() const {
    const qlonglong size = reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    return size > 0 ? static_cast<std::uint64_t>(size) : 0;
  }

  void readPieces() {
    if (hasEnded_) return;  // ending aborts the reply, which reports its end once more
    silence_.start();
    if (!isSuccessful()) return;  // the body of a refusal is of no use
    try {
      while (!hasEnded_ && reply_->bytesAvailable() > 0) {
        const QByteArray piece = reply_->readAll();
        take_({piece.constData(), static_cast<std::size_t>(piece.size())}, expectedSize());
      }
    } catch (...) {
      end(std::current_exception());
    }
  }

  void finish() {
    readPieces();
    if (hasEnded_) return;
    const QNetworkReply::NetworkError error = reply_->error();
    const bool isRedirection =
        error == QNetworkReply::InsecureRedirectError || error == QNetworkReply::TooManyRedirectsError;
    if (isRedirection || (error != QNetworkReply::NoError && (isSuccessful() || status() == 0))) {
      end(networkFailure(certificateProblem_.isEmpty() ? reply_->errorString() : certificateProblem_));
    } else if (!isSuccessful()) {
      end(std::make_exception_ptr(AppUpdateError::invalidManifestResponse()));
    } else {
      end(nullptr);  // an answer that was cut short is an error already
    }
  }

  void end(const std::exception_ptr& failure) {
    if (std::exchange(hasEnded_, true)) return;
    silence_.stop();
    deadline_.stop();
    const std::uint64_t size = expectedSize();
    reply_->abort();
    deleteLater();
    std::exchange(ended_, nullptr)(failure, size);
  }

  QNetworkReply* reply_;
  PieceHandler take_;
  EndHandler ended_;
  QTimer silence_;   // since something came last
  QTimer deadline_;  // of the whole answer
  QString certificateProblem_;
  bool hasEnded_ = false;
};

/// The file that an installer goes to, made when the server has said how large it is.
struct InstallerInProgress {
  std::function<InstallerWriter(std::uint64_t expectedSize)> makeWriter;
  std::optional<InstallerWriter> writer;

  InstallerWriter& writerFor(std::uint64_t expectedSize) {
    if (!writer) writer.emplace(makeWriter(expectedSize));
    return *writer;
  }
};

}  // namespace

AppUpdateNetworkClient::AppUpdateNetworkClient(FilePath temporaryFolder, const QSslConfiguration& tls,
                                               UpdateNetworkLimits limits)
    : temporaryFolder_(std::move(temporaryFolder)), tls_(tls), limits_(limits) {
  tls_.setPeerVerifyMode(QSslSocket::VerifyPeer);
  tls_.setProtocol(QSsl::TlsV1_2OrLater);
  network_.setProxyFactory(new SystemProxyFactory);  // the manager owns it
  network_.setAutoDeleteReplies(false);
}

QNetworkReply* AppUpdateNetworkClient::get(const std::string& url) {
  QNetworkRequest request(QUrl(qtText(url), QUrl::StrictMode));
  request.setSslConfiguration(tls_);
  request.setMaximumRedirectsAllowed(kMostRedirections);
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
  request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
  request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
  // The bytes are counted and hashed as they are; nothing is unpacked on the way.
  request.setRawHeader("Accept-Encoding", "identity");
  request.setRawHeader("User-Agent", "Ostrelon");
  return network_.get(request);
}

void AppUpdateNetworkClient::fetchManifest(const std::string& url, ManifestHandler completion) {
  const auto body = std::make_shared<std::string>();
  const auto take = [body, limit = limits_.manifestBytes](std::string_view piece, std::uint64_t expected) {
    if (expected > limit || piece.size() > limit - body->size()) {
      throw AppUpdateError::invalidManifestFormat("It is larger than 4 MiB.");
    }
    body->append(piece);
  };
  const auto ended = [body, completion = std::move(completion)](const std::exception_ptr& failure,
                                                                std::uint64_t) {
    completion(outcomeOf([&] {
      if (failure) std::rethrow_exception(failure);
      return decodeManifest(*body);
    }));
  };
  new Transfer(get(url), &transfers_, limits_.silence, limits_.manifestTime, take, ended);
}

void AppUpdateNetworkClient::downloadInstaller(const std::string& url, ProgressHandler progress,
                                               InstallerHandler completion) {
  const auto installer = std::make_shared<InstallerInProgress>();
  installer->makeWriter = [url, folder = temporaryFolder_, progress = std::move(progress),
                           limit = limits_.installerBytes](std::uint64_t expectedSize) {
    return InstallerWriter(url, folder, expectedSize, progress, limit);
  };
  const auto take = [installer](std::string_view piece, std::uint64_t expectedSize) {
    installer->writerFor(expectedSize).append(piece);
  };
  const auto ended = [installer, completion = std::move(completion)](const std::exception_ptr& failure,
                                                                     std::uint64_t expectedSize) {
    auto outcome = outcomeOf([&] {
      if (failure) std::rethrow_exception(failure);
      return installer->writerFor(expectedSize).finish();
    });
    installer->writer.reset();  // what is unfinished is removed before the failure is reported
    completion(std::move(outcome));
  };
  new Transfer(get(url), &transfers_, limits_.silence, limits_.installerTime, take, ended);
}

}  // namespace ostrelon
