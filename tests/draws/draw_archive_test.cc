// The keyed archive of DrawBase: which keys are written under which
// conditions, the fallbacks and repairs on reading, and encodedData.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "archive/keyed_archiver.h"
#include "document/register_all_classes.h"
#include "draws/draw_base.h"
#include "draws/draw_group.h"
#include "draws/draw_lines.h"
#include "raster/draw_airbrush.h"
#include "raster/draw_clear.h"
#include "raster/draw_eraser.h"
#include "raster/draw_fill.h"
#include "raster/draw_magic_selection.h"
#include "raster/draw_pen.h"
#include "draws/draw_rectangle.h"
#include "platform/values/log.h"
#include "support/archive_fixtures.h"

namespace paintdoc {
namespace {

using test::ArchivedKeysOfRoot;
using test::KeysAs;

class DrawArchive : public ::testing::Test {
 protected:
  void SetUp() override { RegisterAllClasses(); }

  // A draw of `className` decoded from exactly the keys `write` encodes.
  static std::shared_ptr<DrawBase> Decode(const std::string& className,
                                          std::function<void(KeyedArchiver&)> write) {
    return DrawBase::objectWithEncodedData(
        SharedBytes(test::ArchiveRoot(KeysAs(className, std::move(write)))));
  }
  static std::shared_ptr<DrawBase> RoundTrip(const DrawBase& draw) {
    return DrawBase::objectWithEncodedData(SharedBytes(draw.encodedData()));
  }
  static std::set<std::string> Keys(const DrawBase& draw) {
    return ArchivedKeysOfRoot(draw.encodedData());
  }
  static BezierPath Square() { return BezierPath::withRect(MakeRect(1, 2, 30, 40)); }
};

// A rotation that only a subclass can read: the accessor is not this
// module's to give.
class RotationProbe : public DrawRectangle {
 public:
  std::string className() const override { return "DrawRectangle"; }
  void setRotation(float degrees) { fRotateDegree_ = degrees; }
  // The member pointer names the field through this class but applies to any draw.
  static float RotationOf(const DrawBase& draw) { return draw.*(&RotationProbe::fRotateDegree_); }
};

// A default rectangle strokes with its colour and has fill off, so none of the
// fill keys; a fill writes the keys of its kind.
TEST_F(DrawArchive, DefaultDrawWritesItsPathAndEnableFlagsAndFillKeysFollowTheFillKind) {
  EXPECT_EQ(Keys(*MakeDraw<DrawRectangle>()),
            (std::set<std::string>{"BezierPath", "EnableStroke", "ForeColor", "EnableFill"}));
  auto draw = MakeDraw<DrawClear>();  // stroke off, fill on
  EXPECT_EQ(Keys(*draw), (std::set<std::string>{"BezierPath", "EnableStroke", "EnableFill",
                                                "IsFillWithGdt", "BackColor"}));
  draw->setFillWithGradient(true);
  draw->setFillGradient(Gradient::withStartingColor(Color::whiteColor(), Color::blackColor()));
  EXPECT_EQ(Keys(*draw),
            (std::set<std::string>{"BezierPath", "EnableStroke", "EnableFill", "IsFillWithGdt",
                                   "IsFillRadialGdt", "FillGdtDegree", "FillGdtCenter",
                                   "FillGradient"}));
  draw->setFillGradient(std::nullopt);
  EXPECT_EQ(Keys(*draw).count("FillGradient"), 0u);
  EXPECT_EQ(Keys(*draw).count("FillGdtDegree"), 1u);
}

TEST_F(DrawArchive, OptionalStateIsWrittenOnlyWhenItDiffersFromItsDefault) {
  auto draw = MakeDraw<DrawLine>();
  draw->setEnableShadow(true);
  draw->setShadow(DrawBase::defaultShadow());
  draw->setEnableInnerShadow(true);  // on, but no inner shadow object
  draw->setEnableReflection(true);
  draw->setVisible(false);
  draw->setSmooth(false);
  draw->setLocked(true);
  draw->setLayerTitle("Title");
  const std::set<std::string> keys = Keys(*draw);
  for (const char* key : {"EnableShadow", "Shadow", "EnableInnerShadow", "EnableReflection",
                          "Reflection", "ReflectionDis", "Visible", "SmoothLine", "LayerTitle",
                          "Locked"}) {
    EXPECT_EQ(keys.count(key), 1u) << key;
  }
  EXPECT_EQ(keys.count("InnerShadow"), 0u);
  EXPECT_EQ(keys.count("RotateDegree"), 0u);
  // A shadow switched off is lost on saving.
  draw->setEnableShadow(false);
  EXPECT_EQ(Keys(*draw).count("Shadow"), 0u);
  EXPECT_FALSE(RoundTrip(*draw)->shadow().has_value());
}

TEST_F(DrawArchive, ZeroRotationIsNotWrittenButNaNIs) {
  RotationProbe probe;
  probe.init();
  probe.setRotation(-0.0f);
  EXPECT_EQ(ArchivedKeysOfRoot(probe.encodedData()).count("RotateDegree"), 0u);
  probe.setRotation(std::numeric_limits<float>::quiet_NaN());
  EXPECT_EQ(ArchivedKeysOfRoot(probe.encodedData()).count("RotateDegree"), 1u);
  probe.setRotation(270.0f);  // kept as written, not normalised
  EXPECT_EQ(RotationProbe::RotationOf(*RoundTrip(probe)), 270.0f);
}

TEST_F(DrawArchive, RoundTripKeepsEveryArchivedField) {
  auto draw = MakeDraw<DrawRectangle>();
  BezierPath outline = Square();
  draw->setBezierPathWithData(ArchiveValue(outline));
  draw->setLineDashStyle("6:3");
  draw->setStrokeColor(Color::calibratedRGB(0.25, 0.5, 0.75, 0.5));
  draw->setEnableFill(true);
  draw->setFillWithGradient(true);
  draw->setFillRadialGradient(true);
  draw->setFillGradient(Gradient::withStartingColor(Color::redColor(), Color::blueColor()));
  draw->setFillGradientDegree(33.5f);
  draw->setFillGradientCenter({0.5, -0.25});
  draw->setEnableShadow(true);
  draw->setShadow(Shadow(Color::calibratedWhite(0.2, 0.6), {3, -4}, 5));
  draw->setEnableInnerShadow(true);
  draw->setInnerShadow(DrawBase::defaultInnerShadow());
  draw->setEnableReflection(true);
  draw->setReflection(1.5f);
  draw->setReflectionDis(-30.0f);
  draw->setVisible(false);
  draw->setSmooth(false);
  draw->setLocked(true);
  draw->setLayerTitle("Ünïcode title");

  auto copy = RoundTrip(*draw);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->className(), "DrawRectangle");
  EXPECT_EQ(copy->bezierPath(), draw->bezierPath());
  EXPECT_EQ(copy->lineDashStyle(), "6:3");
  EXPECT_EQ(copy->strokeColor(), draw->strokeColor());
  EXPECT_TRUE(copy->enableFill());
  EXPECT_TRUE(copy->fillWithGradient());
  EXPECT_TRUE(copy->fillRadialGradient());
  EXPECT_EQ(copy->fillGradient(), draw->fillGradient());
  EXPECT_EQ(copy->fillGradientDegree(), 33.5f);
  EXPECT_EQ(copy->fillGradientCenter(), (Point{0.5, -0.25}));
  EXPECT_EQ(copy->shadow(), draw->shadow());
  EXPECT_EQ(copy->innerShadow(), draw->innerShadow());
  EXPECT_TRUE(copy->enableReflection());
  EXPECT_EQ(copy->reflection(), 1.5f);
  EXPECT_EQ(copy->reflectionDis(), -30.0f);
  EXPECT_FALSE(copy->visible());
  EXPECT_FALSE(copy->smooth());
  EXPECT_TRUE(copy->locked());
  EXPECT_EQ(copy->layerTitle(), "Ünïcode title");
}

TEST_F(DrawArchive, ArchiveWithOnlyAPathTakesEveryFallback) {
  auto draw = Decode("DrawLine", [](KeyedArchiver& c) {
    c.encodeBezierPathForKey(BezierPath::withRect(MakeRect(0, 0, 5, 5)), "BezierPath");
  });
  ASSERT_NE(draw, nullptr);
  EXPECT_TRUE(draw->visible());
  EXPECT_TRUE(draw->smooth());
  EXPECT_FALSE(draw->locked());
  EXPECT_TRUE(draw->enableStroke());  // classDrawStroke
  EXPECT_EQ(draw->strokeColor(), Color::blackColor());
  EXPECT_FALSE(draw->enableFill());  // classDrawFill of a line
  EXPECT_FALSE(draw->fillColor().has_value());
  EXPECT_EQ(draw->fillGradientDegree(), 90.0f);
  EXPECT_FALSE(draw->shadow().has_value());
  EXPECT_FALSE(draw->innerShadow().has_value());
  EXPECT_EQ(draw->reflectionDis(), -10060.0f);
  EXPECT_EQ(draw->layerTitle(), "Line");
  EXPECT_EQ(RotationProbe::RotationOf(*draw), 0.0f);
}

// Decoding takes classDrawFill where init takes the opposite of
// classDrawStroke; a missing path is an empty one with the platform defaults.
TEST_F(DrawArchive, MissingKeysTakeTheFillTraitBlackFillAndAnEmptyPlatformPath) {
  auto rectangle = Decode("DrawRectangle", [](KeyedArchiver&) {});
  EXPECT_TRUE(rectangle->enableStroke());
  EXPECT_TRUE(rectangle->enableFill());
  EXPECT_EQ(rectangle->fillColor(), Color::blackColor());
  ASSERT_TRUE(rectangle->bezierPath().has_value());
  EXPECT_TRUE(rectangle->bezierPath()->isEmpty());
  EXPECT_EQ(rectangle->bezierPath()->lineWidth(), BezierPath::kDefaultLineWidth);
  EXPECT_EQ(rectangle->bezierPath()->lineJoinStyle(), LineJoinStyle::Miter);
  auto group = Decode("DrawGroup", [](KeyedArchiver&) {});
  EXPECT_FALSE(group->enableStroke());
  EXPECT_FALSE(group->enableFill());
  EXPECT_FALSE(group->strokeColor().has_value());
}

TEST_F(DrawArchive, GradientFillWithoutGradientBecomesBlackColourFill) {
  auto draw = Decode("DrawRectangle", [](KeyedArchiver& c) {
    c.encodeBoolForKey(true, "EnableFill");
    c.encodeBoolForKey(true, "IsFillWithGdt");
  });
  EXPECT_FALSE(draw->fillWithGradient());
  EXPECT_EQ(draw->fillColor(), Color::blackColor());
  // With fill off the flag is left as it was read and no colour is made.
  auto unfilled = Decode("DrawRectangle", [](KeyedArchiver& c) {
    c.encodeBoolForKey(false, "EnableFill");
    c.encodeBoolForKey(true, "IsFillWithGdt");
  });
  EXPECT_TRUE(unfilled->fillWithGradient());
  EXPECT_FALSE(unfilled->fillColor().has_value());
}

TEST_F(DrawArchive, ShadowFlagsWithoutShadowsGetTheDefaultShadows) {
  auto draw = Decode("DrawRectangle", [](KeyedArchiver& c) {
    c.encodeBoolForKey(true, "EnableShadow");
    c.encodeBoolForKey(true, "EnableInnerShadow");
  });
  ASSERT_TRUE(draw->shadow().has_value());
  EXPECT_EQ(draw->shadow()->shadowColor(), Color::calibratedWhite(0.0, 0.85));
  EXPECT_EQ(draw->shadow()->shadowBlurRadius(), 8.0);
  EXPECT_EQ(draw->shadow()->shadowOffset(), (Size{8.0, -8.0}));
  ASSERT_TRUE(draw->innerShadow().has_value());
  EXPECT_EQ(draw->innerShadow()->shadowColor(), Color::calibratedWhite(0.3, 1.0));
  EXPECT_EQ(draw->innerShadow()->shadowBlurRadius(), 6.0);
  EXPECT_EQ(draw->innerShadow()->shadowOffset(), (Size{6.0, -6.0}));
  // A stored shadow is kept even while its flag is off.
  auto stored = Decode("DrawRectangle", [](KeyedArchiver& c) {
    c.encodeShadowForKey(Shadow(Color::redColor(), {1, 1}, 2), "Shadow");
  });
  EXPECT_FALSE(stored->enableShadow());
  EXPECT_EQ(stored->shadow()->shadowBlurRadius(), 2.0);
}

// A distance below -60 (a missing one reads as -10060) is repaired to 0, only
// while reflection is on.
TEST_F(DrawArchive, UnsetReflectionDistanceBecomesZeroOnlyWhileReflectionIsOn) {
  const struct {
    bool enable;
    std::optional<float> stored;
    float decoded;
  } cases[] = {{true, -100, 0}, {true, -60, -60}, {false, -100, -100}, {true, std::nullopt, 0}};
  for (const auto& c : cases) {
    auto draw = Decode("DrawRectangle", [&](KeyedArchiver& coder) {
      if (c.enable) coder.encodeBoolForKey(true, "EnableReflection");
      if (c.stored) coder.encodeFloatForKey(*c.stored, "ReflectionDis");
    });
    EXPECT_EQ(draw->reflectionDis(), c.decoded) << c.enable << " " << c.stored.value_or(-1);
  }
}

TEST_F(DrawArchive, KeysOfAnotherKindAreTakenAsTheReaderYieldsThem) {
  auto draw = Decode("DrawRectangle", [](KeyedArchiver& c) {
    c.encodeStringForKey("not a path", "BezierPath");
    c.encodeIntegerForKey(1, "Visible");      // an integer read as a flag
    c.encodeDoubleForKey(12.5, "RotateDegree");  // a double read as a float
    c.encodeIntegerForKey(7, "LayerTitle");   // no string: no title
  });
  ASSERT_NE(draw, nullptr);
  EXPECT_FALSE(draw->bezierPath().has_value());
  EXPECT_EQ(draw->lineDashStyle(), "");
  draw->setLineDashStyle("4:4");  // does nothing without a path
  EXPECT_TRUE(draw->visible());
  EXPECT_EQ(RotationProbe::RotationOf(*draw), 12.5f);
  EXPECT_EQ(draw->layerTitle(), "Rectangle");
}

TEST_F(DrawArchive, PenAntialiasingFollowsTheDecodedLineWidth) {
  auto penOfWidth = [](double width) {
    return Decode("DrawPen", [width](KeyedArchiver& c) {
      BezierPath path;
      path.setLineWidth(width);
      c.encodeBezierPathForKey(path, "BezierPath");
    });
  };
  for (auto [width, antialias] : {std::pair{1.0, false}, {1.1, true}, {4.0, true}}) {
    EXPECT_EQ(penOfWidth(width)->shouldAntialias(), antialias) << width;
  }
}

TEST_F(DrawArchive, ObjectWithEncodedDataRefusesWhatIsNoDrawArchive) {
  LogCapture log;
  EXPECT_EQ(DrawBase::objectWithEncodedData(SharedBytes()), nullptr);
  const std::string text = "plainly not an archive";
  EXPECT_EQ(DrawBase::objectWithEncodedData(SharedBytes(std::vector<uint8_t>(text.begin(), text.end()))),
            nullptr);
  EXPECT_EQ(Decode("DrawFromTheFuture", [](KeyedArchiver&) {}), nullptr);
}

TEST_F(DrawArchive, PathSnapshotReplacesElementsButKeepsOwnStrokeAttributes) {
  auto draw = MakeDraw<DrawRectangle>();
  BezierPath other = BezierPath::withOvalInRect(MakeRect(0, 0, 10, 10));
  other.setLineWidth(9);
  other.setLineCapStyle(LineCapStyle::Round);
  draw->setBezierPathWithData(ArchiveValue(other));
  EXPECT_EQ(draw->bezierPath()->elements(), other.elements());
  EXPECT_EQ(draw->bezierPath()->lineWidth(), 2.0);
  EXPECT_EQ(draw->bezierPath()->lineCapStyle(), LineCapStyle::Square);
  const ArchiveValue snapshot = draw->bezierPathData();
  ASSERT_NE(snapshot.as<BezierPath>(), nullptr);
  EXPECT_EQ(*snapshot.as<BezierPath>(), *draw->bezierPath());
  draw->setBezierPathWithData(ArchiveValue(std::string("no path")));
  EXPECT_EQ(draw->bezierPath()->elements(), other.elements());
}

TEST_F(DrawArchive, GroupMembersRoundTripWithTheirGroupLinks) {
  auto group = MakeDraw<DrawGroup>();
  group->setDraws({MakeDraw<DrawLine>(), MakeDraw<DrawEllipse>()});
  auto copy = std::dynamic_pointer_cast<DrawGroup>(RoundTrip(*group));
  ASSERT_NE(copy, nullptr);
  ASSERT_EQ(copy->draws().size(), 2u);
  EXPECT_EQ(copy->draws()[0]->className(), "DrawLine");
  EXPECT_EQ(copy->draws()[1]->className(), "DrawEllipse");
  for (const auto& member : copy->draws()) EXPECT_EQ(member->group(), copy.get());
  EXPECT_EQ(Keys(*MakeDraw<DrawGroup>()).count("Draws"), 0u);  // no members, no key
}

TEST_F(DrawArchive, MemberOfUnknownClassIsLeftOutOfItsGroup) {
  LogCapture log;
  auto group = std::dynamic_pointer_cast<DrawGroup>(Decode("DrawGroup", [](KeyedArchiver& c) {
    const KeysAs known("DrawLine", [](KeyedArchiver&) {});
    const KeysAs unknown("DrawFromTheFuture", [](KeyedArchiver&) {});
    c.encodeObjectArrayForKey({&known, &unknown, &known}, "Draws");
  }));
  ASSERT_NE(group, nullptr);
  // The unknown member is absent; the line, placed twice, is kept once.
  ASSERT_EQ(group->draws().size(), 1u);
  EXPECT_EQ(group->draws()[0]->className(), "DrawLine");
  EXPECT_FALSE(log.messages().empty());
}

}  // namespace
}  // namespace paintdoc
