#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <optional>

#include "documents/app_settings.h"
#include "platform/disk_file_system.h"
#include "platform/user_defaults.h"
#include "shell/app_update_network_client.h"
#include "shell/https_server.h"
#include "updates/app_update_error.h"
#include "updates/app_update_manager.h"
#include "updates/update_test_support.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::HttpsServer;
using ::testing::Not;
using testing::Publisher;
using testing::readBytes;
using ::testing::StartsWith;
using testing::TemporaryFolder;
using testing::TestCertificate;

class NetworkClient : public ::testing::Test {
 protected:
  static const TestCertificate& identity() {
    static const TestCertificate certificate("localhost");
    return certificate;
  }
  static QSslConfiguration trusting(const TestCertificate& authority) {
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.addCaCertificate(authority.certificate);
    return tls;
  }

  void SetUp() override {
    for (const char* proxy : {"http_proxy", "https_proxy", "HTTP_PROXY", "HTTPS_PROXY"}) qunsetenv(proxy);
  }
  void makeClient(UpdateNetworkLimits limits = {}) {
    client_.emplace(folder_ / "tmp", trusting(identity()), limits);
  }

  /// The number of releases, or the failure's text.
  std::string fetch(const std::string& url) {
    std::optional<std::string> text;
    client_->fetchManifest(url, [&](Outcome<AppUpdateManifest> outcome) {
      EXPECT_FALSE(text) << "a second answer";
      try {
        text = std::to_string(std::move(outcome).take().releases.size()) + " releases";
      } catch (const AppUpdateError& error) {
        text = error.what();
      }
    });
    EXPECT_FALSE(text) << "answered within the call";
    EXPECT_TRUE(QTest::qWaitFor([&] { return text.has_value(); }, 10'000));
    return text.value_or("no answer");
  }

  /// The installer's bytes, or the failure's text.
  std::string download(const std::string& url) {
    std::optional<std::string> text;
    progress_.clear();
    client_->downloadInstaller(
        url, [&](double value) { progress_.push_back(value); },
        [&](Outcome<DownloadedInstaller> outcome) {
          EXPECT_FALSE(text) << "a second answer";
          try {
            installer_ = std::move(outcome).take();
            text = readBytes(installer_->path());
          } catch (const UserError& error) {
            text = error.what();
            EXPECT_TRUE(leftNothing());
          }
        });
    EXPECT_TRUE(QTest::qWaitFor([&] { return text.has_value(); }, 10'000));
    return text.value_or("no answer");
  }

  /// Nothing of a failed download may be left.
  bool leftNothing() const {
    return !std::filesystem::exists(folder_ / "tmp") || std::filesystem::is_empty(folder_ / "tmp");
  }

  TemporaryFolder folder_;
  HttpsServer server_{identity()};
  std::optional<AppUpdateNetworkClient> client_;
  std::vector<double> progress_;
  DownloadedInstaller installer_;
};

constexpr const char* kEmptyManifest = R"({"releases":[]})";
constexpr const char* kRefused = "Update metadata could not be read.";
constexpr const char* kUnreachable = "Could not reach the update server: ";

/// Writes on for as long as the other side reads.
void writeEndlessly(QSslSocket& connection, const char* headers) {
  connection.write("HTTP/1.1 200 OK\r\n");
  connection.write(headers);
  connection.write("\r\n");
  const auto more = [&connection] {
    if (connection.bytesToWrite() < 100'000) connection.write(QByteArray(65536, ' '));
  };
  QObject::connect(&connection, &QSslSocket::encryptedBytesWritten, &connection, more);
  more();
}

TEST_F(NetworkClient, FetchesAManifestWithAPlainRequest) {
  makeClient();
  server_.serve("/feed.json", kEmptyManifest);
  EXPECT_EQ(fetch(server_.url("/feed.json")), "0 releases");
  EXPECT_THAT(server_.lastRequest(), StartsWith("GET /feed.json HTTP/1.1\r\n"));
  EXPECT_THAT(server_.lastRequest(), HasSubstr("User-Agent: Ostrelon\r\n"));
  EXPECT_THAT(server_.lastRequest(), Not(HasSubstr("Cookie")));

  // Of unknown length, ended by the end of the connection or cut in chunks.
  server_.answer("/unknown", "200 OK", "Connection: close\r\n", kEmptyManifest);
  EXPECT_EQ(fetch(server_.url("/unknown")), "0 releases");
  server_.answer("/chunks", "200 OK", "Transfer-Encoding: chunked\r\n",
                 "5\r\n{\"rel\r\na\r\neases\":[]}\r\n0\r\n\r\n");
  EXPECT_EQ(fetch(server_.url("/chunks")), "0 releases");
}

TEST_F(NetworkClient, ARefusalIsToldAsOne) {
  makeClient();
  server_.answer("/404", "404 Not Found", "Content-Length: 70000\r\n", std::string(70'000, ' '));
  EXPECT_EQ(fetch(server_.url("/404")), kRefused);
  EXPECT_EQ(download(server_.url("/404")), kRefused);
  EXPECT_TRUE(progress_.empty());
  server_.answer("/500", "500 Oh", "Content-Length: 0\r\n", "");
  EXPECT_EQ(fetch(server_.url("/500")), kRefused);
  server_.answer("/304", "304 Not Modified", "", "");
  EXPECT_EQ(fetch(server_.url("/304")), kRefused);
  server_.answer("/401", "401 Unauthorized", "WWW-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n",
                 "");
  EXPECT_EQ(fetch(server_.url("/401")), kRefused);
}

TEST_F(NetworkClient, FollowsRedirectionsToHttpsAlone) {
  makeClient();
  server_.serve("/feed.json", kEmptyManifest);
  server_.answer("/moved", "302 Found",
                 "Location: " + server_.url("/feed.json") + "\r\nContent-Length: 4\r\n", "gone");
  EXPECT_EQ(fetch(server_.url("/moved")), "0 releases");
  server_.answer("/insecure", "301 Moved", "Location: http://localhost:1/feed.json\r\nContent-Length: 0\r\n",
                 "");
  EXPECT_THAT(fetch(server_.url("/insecure")), StartsWith(kUnreachable));
  EXPECT_THAT(download(server_.url("/insecure")), StartsWith(kUnreachable));
  server_.answer("/circle", "302 Found", "Location: /circle\r\nContent-Length: 0\r\n", "");
  EXPECT_THAT(fetch(server_.url("/circle")), StartsWith(kUnreachable));
}

TEST_F(NetworkClient, TrustsOnlyACertificateOfTheHostByAKnownAuthority) {
  server_.serve("/feed.json", kEmptyManifest);
  client_.emplace(folder_ / "tmp", QSslConfiguration::defaultConfiguration());
  EXPECT_THAT(fetch(server_.url("/feed.json")), StartsWith(kUnreachable));

  const TestCertificate other("elsewhere.example");
  HttpsServer impostor(other);
  impostor.serve("/feed.json", kEmptyManifest);
  client_.emplace(folder_ / "tmp", trusting(other));
  EXPECT_EQ(
      fetch(impostor.url("/feed.json")),
      std::string(kUnreachable) + "The host name did not match any of the valid hosts for this certificate.");
  EXPECT_TRUE(impostor.lastRequest().empty());
  EXPECT_EQ(server_.lastRequest(), "");
}

TEST_F(NetworkClient, AnUnreachableServerIsANetworkFailure) {
  makeClient();
  EXPECT_THAT(fetch("https://localhost:1/feed.json"), StartsWith(kUnreachable));
  EXPECT_THAT(fetch("https://%zz"), StartsWith(kUnreachable));
}

TEST_F(NetworkClient, ATruncatedAnswerIsANetworkFailure) {
  makeClient();
  server_.answer("/cut", "200 OK", "Content-Length: 5000\r\n", kEmptyManifest);
  EXPECT_THAT(fetch(server_.url("/cut")), StartsWith(kUnreachable));
  EXPECT_THAT(download(server_.url("/cut")), StartsWith(kUnreachable));
  server_.answer("/chunks", "200 OK", "Transfer-Encoding: chunked\r\n", "5\r\n{\"rel\r\na\r\neas");
  EXPECT_THAT(fetch(server_.url("/chunks")), StartsWith(kUnreachable));
}

TEST_F(NetworkClient, GivesUpOnASilentServerAndOnOneThatDrips) {
  UpdateNetworkLimits limits;
  limits.silence = std::chrono::milliseconds(300);
  limits.manifestTime = std::chrono::milliseconds(700);
  limits.installerTime = std::chrono::milliseconds(700);
  makeClient(limits);
  server_.on("/silent", [](QSslSocket&) {});
  EXPECT_EQ(fetch(server_.url("/silent")), std::string(kUnreachable) + "The server does not answer.");

  server_.on("/drip", [](QSslSocket& connection) {
    connection.write("HTTP/1.1 200 OK\r\n\r\n");
    auto* timer = new QTimer(&connection);
    timer->callOnTimeout(&connection, [&connection] { connection.write(" "); });
    timer->start(50);
  });
  EXPECT_EQ(fetch(server_.url("/drip")), std::string(kUnreachable) + "The server answers too slowly.");
  EXPECT_EQ(download(server_.url("/drip")), std::string(kUnreachable) + "The server answers too slowly.");
}

TEST_F(NetworkClient, StopsAnEndlessBody) {
  UpdateNetworkLimits limits;
  limits.manifestBytes = 100'000;
  limits.installerBytes = 300'000;
  makeClient(limits);
  server_.on("/endless", [](QSslSocket& connection) { writeEndlessly(connection, ""); });
  server_.on("/announced",
             [](QSslSocket& connection) { writeEndlessly(connection, "Content-Length: 300001\r\n"); });
  EXPECT_EQ(fetch(server_.url("/endless")), "Update metadata is invalid: It is larger than 4 MiB.");
  EXPECT_EQ(download(server_.url("/endless")), "The update is larger than an installer may be.");
  EXPECT_EQ(download(server_.url("/announced")), "The update is larger than an installer may be.");
}

TEST_F(NetworkClient, StreamsAnInstallerToAPrivateFile) {
  makeClient();
  const std::string bytes = std::string(150'000, 'i') + "end";
  server_.serve("/d/Ostrelon%20Setup.deb?x=1", bytes);
  EXPECT_EQ(download(server_.url("/d/Ostrelon%20Setup.deb?x=1")), bytes);
  EXPECT_THAT(progress_, ElementsAre(65536 / 150'003.0, 131072 / 150'003.0, 1.0));
  EXPECT_EQ(installer_->path().filename(), "Ostrelon Setup.deb");
  EXPECT_EQ(std::filesystem::status(installer_->path().parent_path()).permissions(),
            std::filesystem::perms::owner_all);

  server_.answer("/unknown", "200 OK", "Connection: close\r\n", bytes);
  EXPECT_EQ(download(server_.url("/unknown")), bytes);
  EXPECT_THAT(progress_, ElementsAre(1.0));

  server_.serve("/empty/", "");
  EXPECT_EQ(download(server_.url("/empty/")), "");
  EXPECT_EQ(installer_->path().filename(), "empty");
}

TEST_F(NetworkClient, NothingIsToldAfterItsEnd) {
  makeClient();
  bool isTold = false;
  client_->fetchManifest(server_.url("/silent"), [&](const auto&) { isTold = true; });
  client_->downloadInstaller(
      server_.url("/silent"), [](double) {}, [&](const auto&) { isTold = true; });
  int answered = 0;
  server_.on("/silent", [&](QSslSocket& connection) {
    connection.write("HTTP/1.1 200 OK\r\n\r\nabc");
    ++answered;
  });
  ASSERT_TRUE(QTest::qWaitFor([&] { return answered == 2; }, 10'000));
  client_.reset();
  QApplication::processEvents();
  EXPECT_FALSE(isTold);
  EXPECT_TRUE(leftNothing());
}

TEST_F(NetworkClient, CarriesAWholeUpdate) {
  makeClient();
  const std::string bytes(200'000, 'i');
  const Publisher publisher;
  AppUpdateRelease release = publisher.release("1.3.0", bytes);
  release.downloadURL = server_.url("/Ostrelon-1.3.0.deb");
  release.signature = publisher.sign(signedPayload(release));
  server_.serve("/feed.json", encodeManifest({{release}}));
  server_.serve("/Ostrelon-1.3.0.deb", bytes);

  VirtualScheduler scheduler;
  MemoryUserDefaults defaults;
  DiskFileSystem files;
  AppSettings settings(defaults, files, folder_ / "Documents");
  std::string opened;
  AppUpdateManager manager(scheduler, settings, *client_,
                           updateConfiguration("1.2.0", "", server_.url("/feed.json"), publisher.publicKey()),
                           [&](const FilePath& path) {
                             opened = readBytes(path);
                             return true;
                           });
  const auto settle = [&](AppUpdateStatus::Case wanted) {
    const bool isThere =
        QTest::qWaitFor([&] { return manager.status->value == wanted || !manager.isBusy(); }, 10'000);
    EXPECT_TRUE(isThere && manager.status->value == wanted) << manager.statusText();
  };
  manager.checkForUpdates(true);
  settle(AppUpdateStatus::Case::updateAvailable);
  manager.downloadAndInstall();
  settle(AppUpdateStatus::Case::verifying);
  scheduler.advance(Seconds(0));
  settle(AppUpdateStatus::Case::installerOpened);
  EXPECT_EQ(opened, bytes);
}

}  // namespace
}  // namespace ostrelon
