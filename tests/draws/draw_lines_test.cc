// Lines, curves, broken lines and free polygons: the points kept from the
// outline, the arrowheads' directions, archives, the closed polygon made
// from a broken line, and painted pixels against images built from the
// drawing rules.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "draws/draw_lines.h"
#include "platform/graphics/graphics_context.h"
#include "support/drawing_test_support.h"

namespace paintdoc {
namespace {

using test::Draw;
using test::ImagesMatch;
using test::MakeImage;
using test::Premultiplied;

constexpr Rgba8 kTransparent{0, 0, 0, 0};

bool SamePoint(const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; }

std::shared_ptr<DrawLine> Line(Point start, Point end, int64_t arrowStyle, double width,
                               const Color& color) {
  auto line = MakeDraw<DrawLine>();
  line->setStartPoint(start, end);
  line->setArrowStyle(arrowStyle);
  line->setBezierPathLineWidth(static_cast<float>(width));
  line->setStrokeColor(color);
  return line;
}

TEST(DrawLines, ArrowheadsPointAlongTheOutline) {
  auto curve = MakeDraw<DrawCurve>();
  curve->setStartPoint({0, 0}, {10, 20}, {30, 20}, {40, 0});
  curve->setArrowStyle(2);
  auto broken = MakeDraw<DrawBrokenLine>();
  BezierPath chain;
  chain.moveTo({0, 0});
  chain.curveTo({50, 0}, {5, 30}, {45, 30});
  chain.lineTo({90, 10});
  broken->setBezierPathWithData(ArchiveValue(chain));
  broken->setArrowStyle(2);
  auto brokenEndingInCurve = MakeDraw<DrawBrokenLine>();
  BezierPath curved;
  curved.moveTo({0, 0});
  curved.lineTo({20, 0});
  curved.curveTo({60, 0}, {30, 20}, {50, 20});
  brokenEndingInCurve->setBezierPathWithData(ArchiveValue(curved));
  brokenEndingInCurve->setArrowStyle(1);

  struct Case {
    const char* name;
    std::shared_ptr<DrawArrowedOutline> draw;
    std::vector<ArrowDirection> expected;
  };
  const Case cases[] = {
      {"line, both ends", Line({0, 0}, {100, 0}, 2, 2, Color::blackColor()),
       {{{0, 0}, {100, 0}}, {{100, 0}, {0, 0}}}},
      {"line, end only", Line({0, 0}, {100, 0}, 1, 2, Color::blackColor()), {{{0, 0}, {100, 0}}}},
      {"line, unknown style counts as end", Line({0, 0}, {100, 0}, 7, 2, Color::blackColor()),
       {{{0, 0}, {100, 0}}}},
      {"line, none", Line({0, 0}, {100, 0}, 0, 2, Color::blackColor()), {}},
      {"curve follows its control points", curve, {{{30, 20}, {40, 0}}, {{10, 20}, {0, 0}}}},
      {"broken line after a curve", broken, {{{45, 30}, {90, 10}}, {{5, 30}, {0, 0}}}},
      {"broken line ending in a curve", brokenEndingInCurve, {{{50, 20}, {60, 0}}}},
  };
  for (const Case& c : cases) {
    const std::vector<ArrowDirection> actual = c.draw->arrowDirections();
    ASSERT_EQ(actual.size(), c.expected.size()) << c.name;
    for (size_t i = 0; i < actual.size(); ++i) {
      EXPECT_TRUE(SamePoint(actual[i].from, c.expected[i].from) &&
                  SamePoint(actual[i].to, c.expected[i].to))
          << c.name << " arrow " << i;
    }
  }
}

TEST(DrawLines, PointsFollowTheOutline) {
  auto line = MakeDraw<DrawLine>();
  BezierPath three;
  three.moveTo({1, 2});
  three.lineTo({3, 4});
  three.lineTo({5, 6});
  line->setBezierPathWithData(ArchiveValue(three));
  EXPECT_TRUE(SamePoint(line->startPoint(), {}) && SamePoint(line->endPoint(), {}));
  EXPECT_EQ(line->bezierPath()->elementCount(), 3u);  // drawn as it is

  line->setStartPoint({10, 10}, {30, 10});
  line->scaleBy(2, 2, {}, false);
  EXPECT_TRUE(SamePoint(line->endPoint(), {60, 20}));
  line->flip(true);
  EXPECT_TRUE(SamePoint(line->startPoint(), {60, 20}) && SamePoint(line->endPoint(), {20, 20}));

  auto curve = MakeDraw<DrawCurve>();
  curve->setStartPoint({0, 0}, {10, 20}, {30, 20}, {40, 0});
  curve->moveBy(3, 4);
  EXPECT_TRUE(SamePoint(curve->startPoint(), {3, 4}) && SamePoint(curve->ctlPoint1(), {13, 24}) &&
              SamePoint(curve->ctlPoint2(), {33, 24}) && SamePoint(curve->endPoint(), {43, 4}));
  const PathElement& moved = curve->bezierPath()->elementAt(1);
  EXPECT_TRUE(SamePoint(moved.points[0], {13, 24}) && SamePoint(moved.points[2], {43, 4}));
  EXPECT_EQ(curve->bezierPath()->lineCapStyle(), LineCapStyle::Butt);
}

TEST(DrawLines, ArchivesKeepTheArrowStyleAndRebuildThePoints) {
  auto line = Line({5, 6}, {50, 60}, 2, 3, Color::blackColor());
  auto read = std::dynamic_pointer_cast<DrawLine>(
      DrawBase::objectWithEncodedData(SharedBytes(line->encodedData())));
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->arrowStyle(), 2);
  EXPECT_TRUE(SamePoint(read->startPoint(), {5, 6}) && SamePoint(read->endPoint(), {50, 60}));
  EXPECT_EQ(read->bezierPath()->lineCapStyle(), LineCapStyle::Butt);

  // A polygon has no arrow key: read as a broken line it has no arrowheads.
  auto polygon = MakeDraw<DrawFreePolygon>();
  EXPECT_EQ(polygon->enableFill(), false);
  EXPECT_TRUE(polygon->classDrawFill());
}

TEST(DrawLines, ClosedPolygonFromABrokenLine) {
  auto broken = MakeDraw<DrawBrokenLine>();
  BezierPath chain;
  chain.moveTo({0, 0});
  chain.lineTo({40, 0});
  chain.lineTo({40, 30});
  broken->setBezierPathWithData(ArchiveValue(chain));
  broken->setBezierPathLineWidth(5);
  const double dash[] = {6, 3};
  broken->setBezierPathLineDash(dash);
  broken->setStrokeColor(Color::calibratedRGB(0, 0, 1, 1));
  broken->setRotateDegree(30);

  auto polygon = broken->polygonForClosedPath();
  EXPECT_EQ(polygon->layerTitle(), "Free Polygon");
  EXPECT_FALSE(polygon->enableFill());
  EXPECT_EQ(polygon->bezierPath()->elementCount(), 4u);
  EXPECT_EQ(polygon->bezierPath()->elementAt(3).type, PathElementType::ClosePath);
  EXPECT_EQ(polygon->bezierPath()->lineWidth(), 5);
  EXPECT_EQ(polygon->bezierPath()->lineDash(), (std::vector<double>{6, 3}));
  EXPECT_EQ(polygon->rotateDegree(), 30);
  EXPECT_EQ(polygon->strokeColor(), broken->strokeColor());
  broken->setLayerTitle("Route");
  EXPECT_EQ(broken->polygonForClosedPath()->layerTitle(), "Route");
}

// --- Painted pixels

using Shape = std::vector<std::function<bool(Point)>>;

// Pixel (x, y) covered wholly, not at all, or partly by a shape made of
// pieces given as point tests. A pixel crossed by the edge of any piece is an
// edge, left out of the comparison: antialiasing leaves seams there.
enum class Cover { Inside, Outside, Edge };
Cover Coverage(const Shape& pieces, int x, int y) {
  bool anyInside = false;
  for (const auto& piece : pieces) {
    int hits = 0;
    for (double dx : {0.02, 0.5, 0.98}) {
      for (double dy : {0.02, 0.5, 0.98}) hits += piece({x + dx, y + dy}) ? 1 : 0;
    }
    if (hits != 0 && hits != 9) return Cover::Edge;
    anyInside = anyInside || hits == 9;
  }
  return anyInside ? Cover::Inside : Cover::Outside;
}

::testing::AssertionResult PaintsShape(const std::shared_ptr<DrawBase>& draw, int width,
                                       int height, const Shape& inside, Rgba8 color,
                                       const std::string& name) {
  auto painted = Draw(width, height, [&](GraphicsContext&) { draw->draw(); });
  auto expected = MakeImage(width, height, [&](int x, int y) {
    return Coverage(inside, x, y) == Cover::Inside ? color : kTransparent;
  });
  return ImagesMatch(*painted, *expected, 2, name,
                     [&](int x, int y) { return Coverage(inside, x, y) == Cover::Edge; });
}

// The horizontal band of a line from (x0, y) to (x1, y) with butt caps and
// its arrowheads, all moved by (0.5, 0.5) for an odd width.
Shape ArrowedBand(const DrawArrowedOutline& line, double x0, double x1, double y, double width,
                  double shift) {
  Shape pieces{[=](Point p) {
    return p.x - shift >= x0 && p.x - shift <= x1 && std::fabs(p.y - shift - y) <= width / 2;
  }};
  for (const BezierPath& head : line.arrowPaths()) {
    pieces.push_back([=](Point p) { return head.containsPoint({p.x - shift, p.y - shift}); });
  }
  return pieces;
}

TEST(DrawLinesPainting, LinesWithArrowheadsAndAFilledPolygon) {
  auto opaque = Line({10, 20}, {70, 20}, 2, 3, Color::blackColor());
  ASSERT_EQ(opaque->arrowPaths().size(), 2u);
  EXPECT_TRUE(PaintsShape(opaque, 80, 40, ArrowedBand(*opaque, 10, 70, 20, 3, 0.5),
                          Premultiplied(0, 0, 0, 1), "line_both_arrowheads_odd_width"));

  // Under translucent arrowheads the line is not painted a second time.
  auto translucent = Line({10, 20}, {70, 20}, 2, 4, Color::calibratedRGB(1, 0, 0, 0.5));
  EXPECT_TRUE(PaintsShape(translucent, 80, 40, ArrowedBand(*translucent, 10, 70, 20, 4, 0),
                          Premultiplied(1, 0, 0, 0.5), "translucent_line_arrowheads"));

  auto polygon = MakeDraw<DrawFreePolygon>();
  BezierPath notched;
  notched.moveTo({10, 10});
  notched.lineTo({60, 10});
  notched.lineTo({60, 30});
  notched.lineTo({35, 20});
  notched.lineTo({10, 30});
  notched.closePath();
  polygon->setBezierPathWithData(ArchiveValue(notched));
  polygon->setEnableStroke(false);
  polygon->setEnableFill(true);
  polygon->setFillColor(Color::calibratedRGB(0, 0, 1, 1));
  EXPECT_TRUE(PaintsShape(polygon, 70, 40, {[&](Point p) { return notched.containsPoint(p); }},
                          Premultiplied(0, 0, 1, 1), "filled_free_polygon"));
}

TEST(DrawLinesPainting, HostileNumbersDrawNothingAndNeverCrash) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  auto notANumber = Line({nan, 0}, {10, nan}, 2, 3, Color::blackColor());
  EXPECT_TRUE(notANumber->arrowPaths().empty());
  auto hugeArrow = Line({10, 10}, {60, 10}, 2, 1e30, Color::blackColor());
  auto infiniteWidth = Line({10, 10}, {60, 10}, 2, std::numeric_limits<double>::infinity(),
                            Color::blackColor());
  for (const auto& line : {notANumber, hugeArrow, infiniteWidth}) {
    auto painted = Draw(20, 20, [&](GraphicsContext&) { line->draw(); });
    (void)line->drawRect();
    EXPECT_EQ(line->renderedImage(), nullptr);
  }
}

}  // namespace
}  // namespace paintdoc
