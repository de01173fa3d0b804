#include "base/numbers.h"

#include <gtest/gtest.h>

namespace vantoro {
namespace {

TEST(Numbers, WholeNumbersRoundHalfToEven) {
  EXPECT_EQ(CLng(2.5), 2);
  EXPECT_EQ(CLng(3.5), 4);
  EXPECT_EQ(CLng(-2.5), -2);
  EXPECT_EQ(CLng(12800 / 128.0 * 1.0), 100);
  EXPECT_EQ(CLng(1e12), INT32_MAX);
  EXPECT_EQ(Int(-0.5), -1);
}

TEST(Numbers, Formats) {
  EXPECT_EQ(FormatDigits(7, 3), "007");
  EXPECT_EQ(FormatDigits(270, 3), "270");
  EXPECT_EQ(FormatFixed(87.456, 2), "87.46");
  EXPECT_EQ(NumberText(12), "12");
  EXPECT_EQ(NumberText(0.5), "0.5");
  EXPECT_EQ(NumberText(-3.25), "-3.25");
}

}  // namespace
}  // namespace vantoro
