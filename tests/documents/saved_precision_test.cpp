// What is said when a drawing loses by being saved.
#include "documents/saved_precision.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/adding.h"
#include "support/temporary_folder.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using ::testing::HasSubstr;

TEST(SavedPrecision, IsSaidOnceForADocumentAndAgainForEveryEndThatFallsTogether) {
  const testing::TemporaryFolder folder;
  testing::TestWorkspace test;
  const auto saidBySave = [&] {
    const std::size_t before = test.messages.lines->size();
    test.document.save(folder / "plan.ostrel");
    std::string said;
    for (std::size_t i = before; i < test.messages.lines->size(); ++i)
      said += (*test.messages.lines)[i].text + "|";
    return said;
  };
  addLine(test.sketch, {0, 0}, {16383, 1e-6});
  EXPECT_EQ(saidBySave(), "");
  addLine(test.sketch, {16384, 0}, {0, 0});
  EXPECT_THAT(saidBySave(),
              HasSubstr("up to 16384 feet from the origin, where a saved file keeps places 0.023"));
  EXPECT_EQ(saidBySave(), "") << "once";
  addLine(test.sketch, {16384, 0}, {16384.0001, 0});
  EXPECT_EQ(saidBySave(), "The ends of 1 entity fall together in the file.|");
  addCircle(test.sketch, {0, 0}, 1e-60);
  EXPECT_EQ(saidBySave(), "The ends of 2 entities fall together in the file.|");
}

}  // namespace
}  // namespace ostrelon
