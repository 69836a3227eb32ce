#include "geometry/dash_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

namespace paintdoc {
namespace {

TEST(GetDashArrayFromString, KeptTextAndPartsReadLeniently) {
  struct Case {
    const char* text;
    const char* kept;
    std::vector<double> parts;
  };
  const Case cases[] = {
      {"", "", {}},  // under three characters: a solid line
      {"5:", "", {}},
      {"ab", "", {}},
      {"5:3:", "5:3", {5, 3}},  // one trailing colon goes ...
      {"5:3::", "5:3:", {5, 3, 0}},  // ... only one; the empty part reads as 0
      {"1:2:3:4:5:6:7:8:9:10:11:12", "1:2:3:4:5:6:7:8:9:10", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},
      {" 6 :x:2.5e1abc", " 6 :x:2.5e1abc", {6, 0, 25}},
      {"abc", "abc", {0}},  // no number, still kept
  };
  for (const Case& c : cases) {
    double values[kMaxDashStyleParts] = {};
    size_t count = 99;
    EXPECT_EQ(GetDashArrayFromString(c.text, values, &count), c.kept) << c.text;
    ASSERT_LE(count, kMaxDashStyleParts) << c.text;
    EXPECT_EQ(std::vector<double>(values, values + count), c.parts) << c.text;
  }
  EXPECT_EQ(GetDashArrayFromString("5:3"), "5:3");  // without outputs
}

TEST(LenientDoubleValue, ReadsTheNumberAtTheStart) {
  const std::pair<const char*, double> cases[] = {
      {"", 0},      {"  -1.5xyz", -1.5}, {"+.5", 0.5}, {"7.", 7},       {"5e", 5},
      {"5e+2", 500}, {".", 0},           {"-", 0},     {"0x10", 0},     {"1e-999", 0}};
  for (const auto& [text, value] : cases) EXPECT_EQ(LenientDoubleValue(text), value) << text;
  EXPECT_TRUE(std::isinf(LenientDoubleValue("1e999")));
}

}  // namespace
}  // namespace paintdoc
