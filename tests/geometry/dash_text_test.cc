#include "geometry/dash_text.h"

#include <gtest/gtest.h>

#include <cmath>

namespace paintdoc {
namespace {

TEST(GetDashArrayFromString, ShortOrEmptyTextIsSolidLine) {
  size_t count = 99;
  EXPECT_EQ(GetDashArrayFromString("", nullptr, &count), "");
  EXPECT_EQ(count, 0u);
  count = 99;
  EXPECT_EQ(GetDashArrayFromString("5:", nullptr, &count), "");
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(GetDashArrayFromString("ab"), "");
}

TEST(GetDashArrayFromString, DropsOneTrailingColon) {
  double values[kMaxDashStyleParts] = {};
  size_t count = 0;
  EXPECT_EQ(GetDashArrayFromString("5:3:", values, &count), "5:3");
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(values[0], 5.0);
  EXPECT_EQ(values[1], 3.0);
  // Only one colon goes; the empty part before it stays and reads as 0.
  EXPECT_EQ(GetDashArrayFromString("5:3::", values, &count), "5:3:");
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(values[2], 0.0);
}

TEST(GetDashArrayFromString, KeepsFirstTenParts) {
  double values[kMaxDashStyleParts] = {};
  size_t count = 0;
  EXPECT_EQ(GetDashArrayFromString("1:2:3:4:5:6:7:8:9:10:11:12", values, &count),
            "1:2:3:4:5:6:7:8:9:10");
  EXPECT_EQ(count, 10u);
  for (size_t i = 0; i < 10; ++i) EXPECT_EQ(values[i], double(i + 1)) << i;
}

TEST(GetDashArrayFromString, PartsKeptAsWrittenAndReadLeniently) {
  double values[kMaxDashStyleParts] = {};
  size_t count = 0;
  EXPECT_EQ(GetDashArrayFromString(" 6 :x:2.5e1abc", values, &count), " 6 :x:2.5e1abc");
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(values[0], 6.0);
  EXPECT_EQ(values[1], 0.0);
  EXPECT_EQ(values[2], 25.0);
  // A text of three characters or more that holds no number is still kept.
  EXPECT_EQ(GetDashArrayFromString("abc", values, &count), "abc");
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(values[0], 0.0);
}

TEST(LenientDoubleValue, ReadsTheNumberAtTheStart) {
  EXPECT_EQ(LenientDoubleValue(""), 0.0);
  EXPECT_EQ(LenientDoubleValue("  -1.5xyz"), -1.5);
  EXPECT_EQ(LenientDoubleValue("+.5"), 0.5);
  EXPECT_EQ(LenientDoubleValue("7."), 7.0);
  EXPECT_EQ(LenientDoubleValue("5e"), 5.0);
  EXPECT_EQ(LenientDoubleValue("5e+2"), 500.0);
  EXPECT_EQ(LenientDoubleValue("."), 0.0);
  EXPECT_EQ(LenientDoubleValue("-"), 0.0);
  EXPECT_EQ(LenientDoubleValue("0x10"), 0.0);
  EXPECT_TRUE(std::isinf(LenientDoubleValue("1e999")));
  EXPECT_EQ(LenientDoubleValue("1e-999"), 0.0);
}

}  // namespace
}  // namespace paintdoc
