// The attribute dictionary of a draw, its opacity control and the capability
// predicates, per class and for hidden, locked and grouped draws.
#include "draws/draw_attributes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "document/register_all_classes.h"
#include "draws/draw_base.h"
#include "draws/draw_group.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/values/class_registry.h"
#include "platform/values/log.h"

namespace paintdoc {
namespace {

std::shared_ptr<DrawBase> Create(const std::string& name) {
  auto draw = std::dynamic_pointer_cast<DrawBase>(ClassRegistry::shared().create(name));
  if (draw) draw->init();
  return draw;
}

std::vector<std::string> Keys(const DrawAttributes& attributes) {
  std::vector<std::string> keys;
  for (const auto& entry : attributes.entries()) keys.push_back(entry.first);
  return keys;
}

const Color kRed = Color::calibratedRGB(1, 0, 0);
const Color kBlue = Color::calibratedRGB(0, 0, 1, 0.5);
const Gradient kGradient = Gradient::withStartingColor(kRed, kBlue);
const Shadow kShadow(Color::calibratedWhite(0, 0.5), Size{3, -3}, 4);

void GradientFill(DrawBase& d) {
  d.setEnableFill(true);
  d.setFillWithGradient(true);
  d.setFillGradient(kGradient);
}

// ---- drawAttributes

TEST(DrawAttributes, EachKeyOnlyUnderItsCondition) {
  RegisterAllClasses();
  struct Case {
    const char* what;
    const char* className;
    std::function<void(DrawBase&)> setUp;
    std::vector<std::string> keys;
  };
  const std::string s(DAKeySmooth), sc(DAKeyStrokeColor), sw(DAKeyStrokeWidth),
      sd(DAKeyStrokeDash), fg(DAKeyFillGradient), fc(DAKeyFillGdtCenter), fd(DAKeyFillGdtDegree),
      fcol(DAKeyFillColor), in(DAKeyInnerShadow), sh(DAKeyShadow);
  const Case cases[] = {
      {"fresh rectangle", "DrawRectangle", [](DrawBase&) {}, {s, sc, sw}},
      {"dash of one entry", "DrawRectangle", [](DrawBase& d) { d.setLineDashStyle("6"); }, {s, sc, sw}},
      {"dash", "DrawRectangle", [](DrawBase& d) { d.setLineDashStyle("6:3"); }, {s, sc, sw, sd}},
      {"stroke without colour", "DrawRectangle", [](DrawBase& d) { d.setStrokeColor(std::nullopt); },
       {s}},
      {"linear gradient", "DrawRectangle", GradientFill, {s, sc, sw, fg, fd}},
      {"radial gradient, shadows", "DrawRectangle",
       [](DrawBase& d) {
         GradientFill(d);
         d.setFillRadialGradient(true);
         d.setEnableInnerShadow(true);
         d.setInnerShadow(kShadow);
         d.setEnableShadow(true);
         d.setShadow(kShadow);
       },
       {s, sc, sw, fg, fc, in, sh}},
      {"gradient fill without gradient", "DrawRectangle",
       [](DrawBase& d) {
         GradientFill(d);
         d.setFillGradient(std::nullopt);
       },
       {s, sc, sw}},
      {"shadow flag without shadow", "DrawRectangle", [](DrawBase& d) { d.setEnableShadow(true); },
       {s, sc, sw}},
      {"a line never fills", "DrawLine",
       [](DrawBase& d) {
         d.setEnableFill(true);
         d.setEnableInnerShadow(true);
         d.setInnerShadow(kShadow);
         d.setEnableShadow(true);
         d.setShadow(kShadow);
       },
       {s, sc, sw, sh}},
      {"gradient box: fill only", "DrawGradient", [](DrawBase&) {}, {s, fg, fd}},
      {"colour fill", "DrawRectangle", [](DrawBase& d) { d.setEnableFill(true); }, {s, sc, sw, fcol}},
      {"inner shadow without fill", "DrawRectangle",
       [](DrawBase& d) {
         d.setEnableInnerShadow(true);
         d.setInnerShadow(kShadow);
       },
       {s, sc, sw}},
      {"group", "DrawGroup", [](DrawBase& d) { d.setSmooth(false); }, {s}},
  };
  for (const Case& c : cases) {
    auto draw = Create(c.className);
    ASSERT_NE(draw, nullptr) << c.className;
    c.setUp(*draw);
    const DrawAttributes attributes = draw->drawAttributes();
    EXPECT_EQ(Keys(attributes), c.keys) << c.what;
    EXPECT_EQ(attributes.find(DAKeySmooth)->toBool(), draw->smooth()) << c.what;
  }
}

// ---- setDrawAttributes

struct ApplyCase {
  const char* what;
  std::function<void(DrawBase&)> setUp;  // on a fresh rectangle: red stroke of width 2
  std::vector<std::pair<std::string_view, ArchiveValue>> attributes;
  bool changed;
  std::function<void(const DrawBase&)> check;
};

TEST(SetDrawAttributes, AppliesOnlyWhatChangedAndSwitchesMissingFeaturesOff) {
  auto noSetUp = [](DrawBase&) {};
  auto noCheck = [](const DrawBase&) {};
  const ApplyCase cases[] = {
      {"nothing but smoothing", noSetUp, {{DAKeySmooth, false}}, false,
       [](const DrawBase& d) { EXPECT_TRUE(d.smooth()); }},
      {"a colour of the wrong kind", noSetUp, {{DAKeyStrokeColor, "red"}, {DAKeySmooth, false}}, false,
       noCheck},
      {"same stroke, width 0.05 off", noSetUp, {{DAKeyStrokeColor, kRed}, {DAKeyStrokeWidth, 2.05}},
       false, [](const DrawBase& d) { EXPECT_EQ(d.bezierPath()->lineWidth(), 2.0); }},
      {"same stroke, width 0.05 off, dash dropped",
       [](DrawBase& d) { d.setLineDashStyle("6:3"); },
       {{DAKeyStrokeColor, kRed}, {DAKeyStrokeWidth, 2.05}}, true,
       [](const DrawBase& d) {
         EXPECT_EQ(d.lineDashStyle(), "");
         EXPECT_EQ(d.bezierPath()->lineWidth(), 2.0);
       }},
      {"same dash", [](DrawBase& d) { d.setLineDashStyle("6:3"); },
       {{DAKeyStrokeColor, kRed}, {DAKeyStrokeDash, "6:3"}}, false, noCheck},
      {"width 0.1 off", noSetUp, {{DAKeyStrokeColor, Color::calibratedRGB(0.999, 0, 0)}, {DAKeyStrokeWidth, 2.1}},
       true, [](const DrawBase& d) {
         EXPECT_FLOAT_EQ(d.bezierPath()->lineWidth(), 2.1f);
         EXPECT_EQ(d.strokeColor(), kRed);  // tolerantly equal: kept
       }},
      {"the gradient wins over the fill colour", noSetUp,
       {{DAKeyFillColor, kBlue}, {DAKeyFillGradient, kGradient}, {DAKeyFillGdtDegree, 45.0}}, true,
       [](const DrawBase& d) {
         EXPECT_FALSE(d.enableStroke());
         EXPECT_TRUE(d.enableFill() && d.fillWithGradient() && !d.fillRadialGradient());
         EXPECT_EQ(d.fillGradient(), kGradient);
         EXPECT_EQ(d.fillGradientDegree(), 45.0f);
       }},
      {"a centre makes the gradient radial", GradientFill,
       {{DAKeyFillGradient, kGradient}, {DAKeyFillGdtCenter, Point{0.5, -1}}}, true,
       [](const DrawBase& d) {
         EXPECT_TRUE(d.fillRadialGradient());
         EXPECT_EQ(d.fillGradientCenter(), (Point{0.5, -1}));
       }},
      {"same gradient, angle within 0.01", [](DrawBase& d) {
         GradientFill(d);
         d.setEnableStroke(false);
       },
       {{DAKeyFillGradient, Gradient::withColors({kRed, kBlue}, {0.0005, 1})},
        {DAKeyFillGdtDegree, 90.009}},
       false, [](const DrawBase& d) { EXPECT_EQ(d.fillGradientDegree(), 90.0f); }},
      {"without a centre a radial gradient turns linear", [](DrawBase& d) {
         GradientFill(d);
         d.setFillRadialGradient(true);
         d.setEnableStroke(false);
       },
       {{DAKeyFillGradient, kGradient}}, true,
       [](const DrawBase& d) { EXPECT_FALSE(d.fillRadialGradient()); }},
      {"a fill colour replaces the gradient fill", GradientFill,
       {{DAKeyStrokeColor, kRed}, {DAKeyFillColor, kBlue}}, true,
       [](const DrawBase& d) {
         EXPECT_TRUE(d.enableFill() && !d.fillWithGradient());
         EXPECT_EQ(d.fillColor(), kBlue);
       }},
      {"a stroked line's look on a filled, shadowed, dashed shape",
       [](DrawBase& d) {
         d.setLineDashStyle("4:2");
         GradientFill(d);
         d.setEnableShadow(true);
         d.setShadow(kShadow);
         d.setEnableInnerShadow(true);
         d.setInnerShadow(kShadow);
       },
       {{DAKeySmooth, true}, {DAKeyStrokeColor, kRed}, {DAKeyStrokeWidth, 2.0}}, true,
       [](const DrawBase& d) {
         EXPECT_TRUE(d.enableStroke());
         EXPECT_FALSE(d.enableFill() || d.enableShadow() || d.enableInnerShadow());
         EXPECT_EQ(d.lineDashStyle(), "");
       }},
      {"shadows within tolerance", [](DrawBase& d) {
         d.setEnableShadow(true);
         d.setShadow(kShadow);
       },
       {{DAKeyStrokeColor, kRed},
        {DAKeyShadow, Shadow(Color::calibratedWhite(0.001, 0.505), Size{3, -3}, 4.1)}},
       false, noCheck},
      {"a hidden draw takes no shadows", [](DrawBase& d) { d.setVisible(false); },
       {{DAKeyStrokeColor, kRed}, {DAKeyShadow, kShadow}, {DAKeyInnerShadow, kShadow}}, false,
       [](const DrawBase& d) { EXPECT_FALSE(d.enableShadow() || d.enableInnerShadow()); }},
  };
  for (const ApplyCase& c : cases) {
    auto draw = MakeDraw<DrawRectangle>();
    draw->setStrokeColor(kRed);
    c.setUp(*draw);
    DrawAttributes attributes;
    for (const auto& [key, value] : c.attributes) attributes.set(key, value);
    EXPECT_EQ(draw->setDrawAttributes(attributes), c.changed) << c.what;
    c.check(*draw);
    EXPECT_FALSE(draw->setDrawAttributes(attributes)) << c.what << ": applied twice";
  }
}

TEST(SetDrawAttributes, CopiesOneDrawsLookOntoAnother) {
  auto source = MakeDraw<DrawFreePolygon>();
  source->setStrokeColor(kBlue);
  source->setBezierPathLineWidth(5);
  source->setLineDashStyle("6:3");
  GradientFill(*source);
  source->setFillRadialGradient(true);
  source->setFillGradientCenter({0.25, 0.75});
  source->setEnableInnerShadow(true);
  source->setInnerShadow(kShadow);
  source->setEnableShadow(true);
  source->setShadow(kShadow);
  source->setSmooth(false);
  auto target = MakeDraw<DrawFreePolygon>();
  EXPECT_TRUE(target->setDrawAttributes(source->drawAttributes()));
  EXPECT_EQ(target->drawAttributes(), source->drawAttributes());
  // A line takes the stroke and the drop shadow only.
  auto line = MakeDraw<DrawLine>();
  EXPECT_TRUE(line->setDrawAttributes(source->drawAttributes()));
  EXPECT_EQ(Keys(line->drawAttributes()),
            (std::vector<std::string>{std::string(DAKeySmooth), std::string(DAKeyStrokeColor),
                                      std::string(DAKeyStrokeWidth), std::string(DAKeyStrokeDash),
                                      std::string(DAKeyShadow)}));
}

// ---- opacity

TEST(DrawOpacity, ReadsAndClampsFillThenStroke) {
  struct Case {
    const char* what;
    std::function<void(DrawBase&)> setUp;  // on a rectangle with a stroke of alpha 0.8
    float opacity;
    float set;
    float fillAlpha, strokeAlpha;  // after setOpacity(set); -1: not looked at
  };
  const Case cases[] = {
      {"fill and stroke off", [](DrawBase& d) { d.setEnableStroke(false); }, 0, 0.5f, 1, 0.8f},
      {"stroke only", [](DrawBase&) {}, 0.8f, 1.5f, 1, 1.0f},
      {"stroke only, below 0", [](DrawBase&) {}, 0.8f, -1, 1, 0},
      {"fill colour first",
       [](DrawBase& d) {
         d.setEnableFill(true);
         d.setFillColor(kBlue);
       },
       0.5f, 0.25f, 0.25f, 0.25f},
      {"gradient: its mean alpha", GradientFill, 0.75f, 0.3f, 0.3f, 0.3f},
  };
  for (const Case& c : cases) {
    auto draw = MakeDraw<DrawRectangle>();
    draw->setStrokeColor(Color::calibratedRGB(0, 1, 0, 0.8));
    c.setUp(*draw);
    EXPECT_FLOAT_EQ(draw->opacity(), c.opacity) << c.what;
    draw->setOpacity(c.set);
    EXPECT_FLOAT_EQ(draw->strokeColor()->alphaComponent(), c.strokeAlpha) << c.what;
    if (draw->fillWithGradient()) {
      for (const GradientStop& stop : draw->fillGradient()->stops()) {
        EXPECT_FLOAT_EQ(stop.color.alphaComponent(), c.fillAlpha) << c.what;
      }
    } else {
      EXPECT_FLOAT_EQ(draw->fillColor()->alphaComponent(), c.fillAlpha) << c.what;
    }
  }
  auto draw = MakeDraw<DrawLine>();
  LogCapture log;
  draw->setOpacity(std::nanf(""));
  EXPECT_EQ(draw->strokeColor(), Color::blackColor());
  EXPECT_TRUE(log.contains("Error: "));
}

// ---- capabilities

// Answers of a visible, unlocked, ungrouped, freshly made draw, in the order
// of kPredicates: y yes, n no, - not asked here.
struct ClassAnswers {
  const char* className;
  const char* answers;
};

using Predicate = bool (*)(const DrawBase&);
const Predicate kPredicates[] = {
    [](const DrawBase& d) { return d.canSetStrokeColor(); },
    [](const DrawBase& d) { return d.canSetFillColor(); },
    [](const DrawBase& d) { return d.canSetFillGradient(); },
    [](const DrawBase& d) { return d.canSetLineWidth(); },
    [](const DrawBase& d) { return d.canSetDashStyle(); },
    [](const DrawBase& d) { return d.canSetShadow(); },
    [](const DrawBase& d) { return d.canSetInnerShadow(); },
    [](const DrawBase& d) { return d.canToggleSmooth(); },
    [](const DrawBase& d) { return d.canBeRotated(); },
    [](const DrawBase& d) { return d.canBeRotatedFreely(); },
    [](const DrawBase& d) { return d.canBeResized(); },
    [](const DrawBase& d) { return d.canBeResizedFreely(); },
    [](const DrawBase& d) { return d.canCreateBezierText(); },
    // then the creation and selection questions and the opacity control
    [](const DrawBase& d) { return d.shouldDrawBorderWhenCreating(); },
    [](const DrawBase& d) { return d.shouldDrawKnobWhenCreating(); },
    [](const DrawBase& d) { return d.shouldFocusedWhenAdded(); },
    [](const DrawBase& d) { return d.canBeSelectedByClick(); },
    [](const DrawBase& d) { return d.canAdjustOpacity(); },
    [](const DrawBase& d) { return d.canSetReflection() == d.canSetShadow(); },
    [](const DrawBase& d) { return d.canBeFliped(true); },
};

std::string Answers(const DrawBase& draw, const char* expected) {
  std::string answers;
  for (size_t i = 0; i < std::size(kPredicates); ++i) {
    answers += expected[i] == '-' ? '-' : (kPredicates[i](draw) ? 'y' : 'n');
  }
  return answers;
}

TEST(DrawCapabilities, PerClass) {
  RegisterAllClasses();
  //  StrokeColor FillColor FillGradient LineWidth DashStyle Shadow InnerShadow
  //  ToggleSmooth Rotated RotatedFreely Resized ResizedFreely BezierText |
  //  BorderWhenCreating KnobWhenCreating FocusedWhenAdded SelectedByClick
  //  AdjustOpacity Reflection=Shadow Fliped
  const ClassAnswers cases[] = {
      {"DrawRectangle", "yyyyyyyyyyyyn" "nnyyyyy"},
      {"DrawEllipse", "yyyyyyyyyyyyy" "nnyyyyy"},
      {"DrawRoundRectangle", "yyyyyyyyyyyyy" "nnyyyyy"},
      {"DrawGradient", "nnynnyynyyyyn" "nnyyyyy"},
      {"DrawLine", "ynnyyynyyyyyn" "nnyyyyy"},
      {"DrawCurve", "ynnyyynyyyyyy" "nnyyyyy"},
      {"DrawBrokenLine", "ynnyyynyyyyyy" "nyyyyyy"},
      {"DrawFreePolygon", "yyyyyyyyyyyyy" "yyyyyyy"},
      {"DrawRectHeart", "yyyyyyyyyyyyy" "nnyyyyy"},
      {"DrawRectStar", "yyyyyyyyyyyyn" "nnyyyyy"},
      {"DrawText", "nyynnyyyyyyyn" "ynyyyyy"},
      {"DrawImage", "nnnnnyynyyyyn" "ynyyyyy"},
      {"DrawPen", "ynnyyynyyyyyn" "nnnyyyy"},
      {"DrawEraser", "nnnynnnnyyyyn" "nnnnnyy"},
      {"DrawAirbrush", "ynnyny" "nyyyyyn" "nnnyyyy"},
      {"DrawClear", "nnnnnnnnyyyyn" "ynnnnyy"},
      {"DrawFill", "nynnnnnnynyyn" "ynnyyyy"},  // a mask fill turns by quarter turns only
      {"DrawMagicSelection", "nnnnnnnnyynnn" "ynyynyy"},
      {"DrawSelection", "nnnnnnnnyyyyn" "ynyyyyy"},
      {"DrawCrop", "nnnnnnnnyyyyn" "ynyynyy"},
      {"DrawPolygonSelection", "nnnnnnnnyyyyy" "yyyyyyy"},
  };
  for (const ClassAnswers& c : cases) {
    auto draw = Create(c.className);
    ASSERT_NE(draw, nullptr) << c.className;
    EXPECT_EQ(Answers(*draw, c.answers), c.answers) << c.className;
  }
}

TEST(DrawCapabilities, HiddenLockedAndGroupedDraws) {
  RegisterAllClasses();
  struct Case {
    const char* what;
    std::function<std::shared_ptr<DrawBase>()> make;
    const char* answers;
  };
  auto rectangle = [] { return MakeDraw<DrawRectangle>(); };
  // A group of visible rectangles turned by these angles, plus a hidden one
  // turned by 45 degrees, which does not count.
  auto groupTurnedBy = [](std::vector<float> degrees) {
    return [degrees] {
      DrawList members;
      for (float d : degrees) {
        members.push_back(MakeDraw<DrawRectangle>());
        members.back()->setRotateDegree(d);
      }
      members.push_back(MakeDraw<DrawRectangle>());
      members.back()->setRotateDegree(45);
      members.back()->setVisible(false);
      auto group = MakeDraw<DrawGroup>();
      group->setDraws(members);
      return std::shared_ptr<DrawBase>(group);
    };
  };
  const Case cases[] = {
      {"hidden", [&] { auto d = rectangle(); d->setVisible(false); return d; },
       "nnnnnnnnnnnnn" "nnyynyn"},
      {"locked", [&] { auto d = rectangle(); d->setLocked(true); return d; },
       "yyyyyyyyyyyyn" "nnynyyy"},
      {"in a hidden group",
       [&] {
         auto d = rectangle();
         static auto hiddenGroup = MakeDraw<DrawGroup>();
         hiddenGroup->setVisible(false);
         d->setGroup(hiddenGroup.get());
         return d;
       },
       "nnnnnnnnnnnnn" "nnyynyn"},
      {"group turned 90.005 and -90", groupTurnedBy({90.005f, -90}), "nnnnnnnnynyyn" "ynynnyy"},
      {"group turned 90.02", groupTurnedBy({0, 90.02f}), "nnnnnnnnynynn" "ynynnyy"},
      // A single visible member without a border gives the group none.
      {"group turned 45", groupTurnedBy({45}), "nnnnnnnnynynn" "nnynnyy"},
      {"group turned -90.005", groupTurnedBy({-90.005f}), "nnnnnnnnynynn" "nnynnyy"},
      {"group of hidden members only", groupTurnedBy({}), "nnnnnnnnnnnnn" "nnynnyn"},
      {"group holding a magic selection",
       [] {
         auto group = MakeDraw<DrawGroup>();
         group->setDraws({MakeDraw<DrawRectangle>(), Create("DrawMagicSelection")});
         return std::shared_ptr<DrawBase>(group);
       },
       "nnnnnnnnynnnn" "ynynnyy"},
  };
  for (const Case& c : cases) {
    auto draw = c.make();
    EXPECT_EQ(Answers(*draw, c.answers), c.answers) << c.what;
  }
}

}  // namespace
}  // namespace paintdoc
