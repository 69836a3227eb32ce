// The dash pattern of a draw as text, both ways.
#include <gtest/gtest.h>

#include <algorithm>

#include "archive/keyed_archiver.h"
#include "document/register_all_classes.h"
#include "draws/draw_lines.h"
#include "support/archive_fixtures.h"

namespace paintdoc {
namespace {

std::shared_ptr<DrawBase> LineWithDash(std::vector<double> dash) {
  RegisterAllClasses();
  return DrawBase::objectWithEncodedData(SharedBytes(test::ArchiveRoot(test::KeysAs(
      "DrawLine", [dash](KeyedArchiver& c) {
        BezierPath path;
        path.setLineDash(dash, 0);
        c.encodeBezierPathForKey(path, "BezierPath");
      }))));
}

// Whole numbers joined by colons; exact halves round to even, as the C library
// formats them; fewer than two entries give no text; at most 100 are read.
TEST(LineDashStyle, EntriesAreWholeNumbersJoinedByColons) {
  const std::pair<std::vector<double>, std::string> cases[] = {
      {{6, 3}, "6:3"}, {{5.4, 2.6}, "5:3"}, {{8, 2, 1, 2}, "8:2:1:2"},
      {{2.5, 3.5}, "2:4"}, {{}, ""}, {{7}, ""},
  };
  for (const auto& [dash, text] : cases) EXPECT_EQ(LineWithDash(dash)->lineDashStyle(), text);
  for (size_t entries : {99, 100, 101}) {
    const std::string text = LineWithDash(std::vector<double>(entries, 1.0))->lineDashStyle();
    EXPECT_EQ(size_t(std::count(text.begin(), text.end(), ':')), std::min<size_t>(entries, 100) - 1)
        << entries;
  }
}

TEST(LineDashStyle, SettingParsesAtMostTenEntriesWithPhaseZero) {
  auto line = MakeDraw<DrawLine>();
  line->setLineDashStyle("6:3");
  EXPECT_EQ(line->bezierPath()->lineDash(), (std::vector<double>{6, 3}));
  EXPECT_EQ(line->bezierPath()->lineDashPhase(), 0.0);
  for (size_t entries : {9, 10, 11}) {
    std::string text = "1";
    for (size_t i = 2; i <= entries; ++i) text += ":" + std::to_string(i);
    line->setLineDashStyle(text);
    EXPECT_EQ(line->bezierPath()->lineDash().size(), std::min<size_t>(entries, 10)) << text;
  }
  EXPECT_EQ(line->lineDashStyle(), "1:2:3:4:5:6:7:8:9:10");
  line->setLineDashStyle("5.4:2.6");
  EXPECT_EQ(line->lineDashStyle(), "5:3");
  line->setLineDashStyle("");  // no entries: no dash
  EXPECT_TRUE(line->bezierPath()->lineDash().empty());
  EXPECT_EQ(line->lineDashStyle(), "");
}

}  // namespace
}  // namespace paintdoc
