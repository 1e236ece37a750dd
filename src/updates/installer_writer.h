// Takes an installer's bytes as they arrive and puts them into a private file, for every client alike.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "updates/app_update_client.h"

namespace ostrelon {

/// The largest installer that is taken, in bytes.
inline constexpr std::uint64_t kLargestInstaller = std::uint64_t{2} * 1024 * 1024 * 1024;
/// Progress is reported each time another so many bytes have arrived.
inline constexpr std::uint64_t kProgressStep = 65536;

class InstallerWriter {
 public:
  /// The file is made at once, below `temporaryFolder` and with the name that the address ends in.
  /// `expectedSize` of 0 means that it is not known; there is no progress on the way then. Throws
  /// `FileError`, and `UserError` when the expected size is above `largestSize`.
  InstallerWriter(const std::string& url, const std::filesystem::path& temporaryFolder,
                  std::uint64_t expectedSize, AppUpdateClient::ProgressHandler progress,
                  std::uint64_t largestSize = kLargestInstaller);

  /// Throws `FileError`, and `UserError` when there is more than the largest size.
  void append(std::string_view bytes);
  /// All has arrived: reports a progress of 1 and gives the finished file. Without this call the file is
  /// removed.
  DownloadedInstaller finish();

 private:
  void checkSize(std::uint64_t size) const;

  std::uint64_t expectedSize_;
  std::uint64_t largestSize_;
  AppUpdateClient::ProgressHandler progress_;
  HeldFile file_;
};

}  // namespace ostrelon
