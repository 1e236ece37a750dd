#include "updates/installer_writer.h"

#include <algorithm>
#include <utility>

#include "updates/web_address.h"

namespace ostrelon {

InstallerWriter::InstallerWriter(const std::string& url, const std::filesystem::path& temporaryFolder,
                                 std::uint64_t expectedSize, AppUpdateClient::ProgressHandler progress,
                                 std::uint64_t largestSize)
    : expectedSize_(expectedSize),
      largestSize_(largestSize),
      progress_(std::move(progress)),
      file_(HeldFile::createPrivate(temporaryFolder, installerFileName(url))) {
  checkSize(expectedSize);
}

void InstallerWriter::append(std::string_view bytes) {
  checkSize(file_.size() + bytes.size());
  std::uint64_t nextReport = (file_.size() / kProgressStep + 1) * kProgressStep;
  file_.append(bytes);
  if (expectedSize_ == 0) return;
  for (; nextReport <= file_.size(); nextReport += kProgressStep) {
    progress_(std::min(1.0, static_cast<double>(nextReport) / static_cast<double>(expectedSize_)));
  }
}

DownloadedInstaller InstallerWriter::finish() {
  file_.seal();
  progress_(1.0);
  return std::make_shared<const HeldFile>(std::move(file_));
}

void InstallerWriter::checkSize(std::uint64_t size) const {
  if (size > largestSize_) throw UserError("The update is larger than an installer may be.");
}

}  // namespace ostrelon
