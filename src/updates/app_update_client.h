// What the update manager asks of the network. The windowed program answers over HTTPS, automation
// from what it was given, tests as they please.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>

#include "platform/held_file.h"
#include "updates/update_feed.h"

namespace ostrelon {

/// What came of a request: its value, or the exception that says why there is none.
template <class T>
class Outcome {
 public:
  Outcome(T value) : content_(std::move(value)) {}  // NOLINT(google-explicit-constructor)
  Outcome(std::exception_ptr failure)
      : content_(std::move(failure)) {}  // NOLINT(google-explicit-constructor)

  /// The value; throws the failure if there is one.
  T take() && {
    if (const auto* failure = std::get_if<std::exception_ptr>(&content_)) std::rethrow_exception(*failure);
    return std::get<T>(std::move(content_));
  }

 private:
  std::variant<T, std::exception_ptr> content_;
};

/// What `work` returns or throws.
template <class Work>
auto outcomeOf(Work&& work) -> Outcome<decltype(work())> {
  try {
    return std::forward<Work>(work)();
  } catch (...) {
    return std::current_exception();
  }
}

/// A downloaded installer: sealed, in a folder that only the user may enter, and still held open.
using DownloadedInstaller = std::shared_ptr<const HeldFile>;

class AppUpdateClient {
 public:
  using ManifestHandler = std::function<void(Outcome<AppUpdateManifest>)>;
  using InstallerHandler = std::function<void(Outcome<DownloadedInstaller>)>;
  /// Takes the part that has arrived, from 0 to 1.
  using ProgressHandler = std::function<void(double)>;

  AppUpdateClient() = default;
  AppUpdateClient(const AppUpdateClient&) = delete;
  AppUpdateClient& operator=(const AppUpdateClient&) = delete;
  virtual ~AppUpdateClient() = default;

  // Handlers run on the main thread, and never within the call that was given them. The completion
  // runs exactly once, unless the client is destroyed before. Failures are `AppUpdateError`s:
  // networkFailure, invalidManifestResponse (the server refused), invalidManifestFormat; those of a
  // download may be a `FileError` or another `UserError` too.

  virtual void fetchManifest(const std::string& url, ManifestHandler completion) = 0;
  virtual void downloadInstaller(const std::string& url, ProgressHandler progress,
                                 InstallerHandler completion) = 0;
};

}  // namespace ostrelon
