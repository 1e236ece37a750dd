#include "platform/held_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

using testing::TemporaryFolder;
using testing::writeBytes;

TEST(HeldFile, KeepsItsFileAndFolderPrivate) {
  const TemporaryFolder folder;
  HeldFile file = HeldFile::createPrivate(folder / "tmp", "a.deb");
  file.append("content");
  struct stat status {};
  ASSERT_EQ(::stat(file.path().parent_path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0700U);
  ASSERT_EQ(::stat(file.path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600U);
  file.seal();
  ASSERT_EQ(::stat(file.path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0400U);
}

TEST(HeldFile, RemovesWhatWasNeverSealedAndWhatNobodyHoldsAnyMore) {
  const TemporaryFolder folder;
  FilePath unsealed;
  FilePath left;
  {
    const HeldFile file = HeldFile::createPrivate(folder.path(), "a");
    unsealed = file.path();
    HeldFile sealed = HeldFile::createPrivate(folder.path(), "b");
    EXPECT_TRUE(std::filesystem::exists(unsealed));  // a living one is left alone
    sealed.seal();
    left = sealed.path();
  }
  EXPECT_FALSE(std::filesystem::exists(unsealed.parent_path()));
  EXPECT_TRUE(std::filesystem::exists(left));
  const HeldFile next = HeldFile::createPrivate(folder.path(), "b");
  EXPECT_FALSE(std::filesystem::exists(left.parent_path()));
}

TEST(HeldFile, NoticesThatAnotherFileTookItsPlace) {
  const TemporaryFolder folder;
  HeldFile file = HeldFile::createPrivate(folder.path(), "a");
  file.append("mine");
  file.seal();
  EXPECT_TRUE(file.isAtPath());
  writeBytes(folder / "other", "evil");
  std::filesystem::rename(folder / "other", file.path());
  EXPECT_FALSE(file.isAtPath());
  std::string content;
  file.read([&](std::string_view piece) { content += piece; });
  EXPECT_EQ(content, "mine");
}

}  // namespace
}  // namespace ostrelon
