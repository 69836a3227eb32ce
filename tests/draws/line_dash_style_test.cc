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

TEST(LineDashStyle, EntriesAreWholeNumbersJoinedByColons) {
  EXPECT_EQ(LineWithDash({6, 3})->lineDashStyle(), "6:3");
  EXPECT_EQ(LineWithDash({5.4, 2.6})->lineDashStyle(), "5:3");
  EXPECT_EQ(LineWithDash({8, 2, 1, 2})->lineDashStyle(), "8:2:1:2");
  // Exact halves round to even, as the C library formats them.
  EXPECT_EQ(LineWithDash({2.5, 3.5})->lineDashStyle(), "2:4");
}

TEST(LineDashStyle, FewerThanTwoEntriesGiveNoText) {
  EXPECT_EQ(LineWithDash({})->lineDashStyle(), "");
  EXPECT_EQ(LineWithDash({7})->lineDashStyle(), "");
}

TEST(LineDashStyle, AtMostAHundredEntriesAreRead) {
  std::vector<double> long_dash(150, 1.0);
  const std::string text = LineWithDash(long_dash)->lineDashStyle();
  EXPECT_EQ(std::count(text.begin(), text.end(), ':'), 99);
}

TEST(LineDashStyle, SettingParsesAtMostTenEntriesWithPhaseZero) {
  auto line = MakeDraw<DrawLine>();
  line->setLineDashStyle("6:3");
  EXPECT_EQ(line->bezierPath()->lineDash(), (std::vector<double>{6, 3}));
  EXPECT_EQ(line->bezierPath()->lineDashPhase(), 0.0);
  line->setLineDashStyle("1:2:3:4:5:6:7:8:9:10:11:12");
  EXPECT_EQ(line->bezierPath()->lineDash().size(), 10u);
  EXPECT_EQ(line->lineDashStyle(), "1:2:3:4:5:6:7:8:9:10");
  line->setLineDashStyle("5.4:2.6");
  EXPECT_EQ(line->lineDashStyle(), "5:3");
}

TEST(LineDashStyle, TextWithoutEntriesClearsTheDash) {
  auto line = MakeDraw<DrawLine>();
  line->setLineDashStyle("6:3");
  line->setLineDashStyle("");
  EXPECT_TRUE(line->bezierPath()->lineDash().empty());
  EXPECT_EQ(line->lineDashStyle(), "");
}

}  // namespace
}  // namespace paintdoc
