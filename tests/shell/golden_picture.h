// Comparing pictures with those that are kept in tests/shell/golden.
#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <string>

namespace ostrelon::testing {

/// Passes when the picture looks like `golden/NAME.png`: of the same size, and all but a few pixels
/// within a small distance, since font and line rendering differ from one machine to the next. On a
/// failure what was got, what was wanted and their difference lie in the build folder, under
/// `golden/NAME.got.png`, `.wanted.png` and `.difference.png`. With OSTRELON_UPDATE_GOLDEN set in the
/// environment the kept picture is replaced instead.
::testing::AssertionResult looksLikeGolden(const QImage& got, const std::string& name);

/// The same for two pictures at hand.
::testing::AssertionResult looksAlike(const QImage& got, const QImage& wanted, const std::string& name);

}  // namespace ostrelon::testing
