// The platform's archived forms read from fixtures written by an independent
// writer (see keyed_unarchiver_test.cc): colours of every kind, shadows,
// gradients, transforms, paths, rich text and images.
#include <gtest/gtest.h>

#include "support/archive_test_support.h"
#include "archive/keyed_unarchiver.h"
#include "platform/values/bitmap.h"
#include "platform/values/log.h"

namespace paintdoc {
namespace {

using test::ArchiveFixture;

struct Fixture {
  explicit Fixture(const char* name) : coder(ArchiveFixture(name)) {
    EXPECT_TRUE(coder.isValid()) << coder.error();
  }
  KeyedUnarchiver coder;
};

TEST(ArchivedColor, EveryColorSpaceKind) {
  Fixture f("colors.plist");
  auto color = [&](const char* key) {
    auto c = f.coder.decodeColorForKey(key);
    EXPECT_TRUE(c) << key;
    return c.value_or(Color());
  };
  EXPECT_EQ(color("CalibratedRGB"), Color::calibratedRGB(1, 0, 0, 1));
  EXPECT_EQ(color("CalibratedRGBA"),
            Color::calibratedRGB(0.8492285013, 0.8409650326, 0.8022917509, 0.8));
  EXPECT_EQ(color("DeviceRGB"), Color::deviceRGB(0, 0.5, 1, 0.25));
  EXPECT_EQ(color("CalibratedWhite"), Color::calibratedWhite(0.5, 1));
  EXPECT_EQ(color("Clear"), Color::clearColor());
  EXPECT_EQ(color("WhiteNoNul"), Color::calibratedWhite(0.25, 0.5));
  EXPECT_EQ(color("DeviceWhite"), Color::deviceWhite(0.75, 1));
  EXPECT_EQ(color("CMYK"), Color::deviceCMYK(0.1, 0.2, 0.3, 0.4, 1));
  EXPECT_EQ(color("CMYKOtherSpelling"), Color::deviceCMYK(0, 0, 0, 1, 0.5));
  // Colours of an understood explicit space come from NSComponents.
  EXPECT_EQ(color("SRGB"), Color::sRGB(1, 0, 0, 1));
  EXPECT_EQ(color("DisplayP3"), Color::displayP3(0.25, 0.5, 0.75, 1));
  EXPECT_EQ(color("Gray22"), Color::calibratedWhite(0.6666666667, 1));
  // An unknown space falls back to the calibrated values.
  EXPECT_EQ(color("UnknownSpace"), Color::calibratedRGB(0.2, 0.4, 0.6, 1));
}

TEST(ArchivedColor, CatalogueColorsKeepTheirFallback) {
  Fixture f("colors.plist");
  const Color known = *f.coder.decodeColorForKey("CatalogKnown");
  EXPECT_EQ(known.colorSpace(), ColorSpaceKind::Catalog);
  EXPECT_EQ(known.catalogName(), "System");
  EXPECT_EQ(known.colorName(), "textColor");
  ASSERT_TRUE(known.catalogFallback());
  EXPECT_EQ(*known.catalogFallback(), Color::calibratedWhite(0, 1));

  const Color unknown = *f.coder.decodeColorForKey("CatalogUnknown");
  EXPECT_EQ(unknown.colorName(), "noSuchColor");
  EXPECT_EQ(unknown.toCalibratedRGB(), (RGBA{0.1, 0.2, 0.3, 1}));

  const Color nested = *f.coder.decodeColorForKey("CatalogNested");
  ASSERT_TRUE(nested.catalogFallback());
  EXPECT_EQ(nested.catalogFallback()->colorName(), "deeper");
  EXPECT_EQ(nested.toCalibratedRGB(), (RGBA{0.1, 0.2, 0.3, 1}));
}

TEST(ArchivedColor, UnreadableColorsBecomeBlackOrPartial) {
  LogCapture log;
  Fixture f("colors.plist");
  EXPECT_EQ(f.coder.decodeColorForKey("Pattern"), Color::calibratedRGB(0, 0, 0, 1));
  EXPECT_TRUE(log.contains("pattern"));
  // Numbers stop at the first thing that is not one; the rest default.
  EXPECT_EQ(f.coder.decodeColorForKey("Garbage"), Color::calibratedRGB(0.5, 0, 0, 1));
}

TEST(ArchivedShadow, OffsetsBlurAndOptionalColor) {
  Fixture f("graphics.plist");
  const Shadow shadow = *f.coder.decodeShadowForKey("Shadow");
  EXPECT_EQ(shadow.shadowOffset(), MakeSize(3, -4.5));
  EXPECT_EQ(shadow.shadowBlurRadius(), 6);
  EXPECT_EQ(shadow.explicitColor(), Color::calibratedRGB(0, 0, 1, 0.5));

  const Shadow noColor = *f.coder.decodeShadowForKey("ShadowNoColor");
  EXPECT_FALSE(noColor.explicitColor());
  EXPECT_EQ(noColor.shadowColor(), Color::calibratedWhite(0, 1.0 / 3.0));
  EXPECT_EQ(noColor.shadowBlurRadius(), 2);
  EXPECT_EQ(*f.coder.decodeShadowForKey("ShadowEmpty"), Shadow());
}

TEST(ArchivedGradient, ColorsLocationsAndSpace) {
  Fixture f("graphics.plist");
  const Gradient g = *f.coder.decodeGradientForKey("Gradient");
  ASSERT_EQ(g.numberOfColorStops(), 2u);
  EXPECT_EQ(g.stopAt(0).color, Color::calibratedRGB(1, 0, 0, 1));
  EXPECT_EQ(g.stopAt(1).color, Color::calibratedRGB(0, 0, 1, 0.5));
  EXPECT_EQ(g.stopAt(0).location, 0);
  EXPECT_EQ(g.stopAt(1).location, 0.75);
  EXPECT_EQ(g.colorSpace(), ColorSpaceKind::CalibratedRGB);

  const Gradient even = *f.coder.decodeGradientForKey("GradientNoLocations");
  ASSERT_EQ(even.numberOfColorStops(), 3u);
  EXPECT_EQ(even.stopAt(1).location, 0.5);
  EXPECT_EQ(even.stopAt(2).location, 1);
}

TEST(ArchivedTransform, EveryLengthForm) {
  Fixture f("graphics.plist");
  EXPECT_EQ(f.coder.decodeAffineTransformForKey("Identity"), AffineTransform());
  EXPECT_EQ(f.coder.decodeAffineTransformForKey("Translation"),
            AffineTransform(1, 0, 0, 1, 10, -20));
  EXPECT_EQ(f.coder.decodeAffineTransformForKey("Scale"), AffineTransform(2, 0, 0, 0.5, 0, 0));
  EXPECT_EQ(f.coder.decodeAffineTransformForKey("ScaleTranslate"), AffineTransform(2, 0, 0, 3, 4, 5));
  EXPECT_EQ(f.coder.decodeAffineTransformForKey("Matrix"), AffineTransform(0, 1, -1, 0, 7, 8));
  LogCapture log;
  EXPECT_FALSE(f.coder.decodeAffineTransformForKey("BadTransform"));
  EXPECT_TRUE(log.contains("12 bytes"));
}

std::vector<PathElementType> Types(const BezierPath& path) {
  std::vector<PathElementType> types;
  for (const auto& e : path.elements()) types.push_back(e.type);
  return types;
}

using T = PathElementType;

TEST(ArchivedBezierPath, SegmentsAndStrokeAttributes) {
  Fixture f("graphics.plist");
  const BezierPath path = *f.coder.decodeBezierPathForKey("ApplePath");
  // The move stored after the close is no element of its own.
  ASSERT_EQ(Types(path), (std::vector<T>{T::MoveTo, T::LineTo, T::CurveTo, T::ClosePath}));
  EXPECT_EQ(path.elementAt(0).points[0], MakePoint(1, 2));
  EXPECT_EQ(path.elementAt(1).points[0], MakePoint(10, 2));
  EXPECT_EQ(path.elementAt(2).points, (std::array<Point, 3>{{{12, 5}, {12, 15}, {10, 20}}}));
  EXPECT_EQ(path.windingRule(), WindingRule::EvenOdd);
  EXPECT_EQ(path.lineCapStyle(), LineCapStyle::Round);  // stored as a real
  EXPECT_EQ(path.lineJoinStyle(), LineJoinStyle::Bevel);
  EXPECT_EQ(path.lineWidth(), 2.5);
  EXPECT_EQ(path.miterLimit(), 4);
  EXPECT_EQ(path.flatness(), 0.2);
  EXPECT_EQ(path.lineDash(), (std::vector<double>{6, 3}));
  EXPECT_EQ(path.lineDashPhase(), 1.5);
}

TEST(ArchivedBezierPath, ClosesMovesAndTheOtherSpelling) {
  Fixture f("graphics.plist");
  const BezierPath two = *f.coder.decodeBezierPathForKey("TwoSubpaths");
  EXPECT_EQ(Types(two), (std::vector<T>{T::MoveTo, T::LineTo, T::ClosePath, T::MoveTo, T::LineTo,
                                         T::ClosePath}));
  EXPECT_EQ(two.elementAt(3).points[0], MakePoint(20, 20));

  // Two close records in a row close once; cap and join under the other keys.
  const BezierPath gnustep = *f.coder.decodeBezierPathForKey("GNUstepPath");
  EXPECT_EQ(Types(gnustep), (std::vector<T>{T::MoveTo, T::LineTo, T::LineTo, T::ClosePath}));
  EXPECT_EQ(gnustep.lineCapStyle(), LineCapStyle::Square);
  EXPECT_EQ(gnustep.lineJoinStyle(), LineJoinStyle::Round);

  // A line after a close keeps the move that starts it.
  const BezierPath continued = *f.coder.decodeBezierPathForKey("ContinuedPath");
  EXPECT_EQ(Types(continued),
            (std::vector<T>{T::MoveTo, T::LineTo, T::ClosePath, T::MoveTo, T::LineTo}));

  const BezierPath empty = *f.coder.decodeBezierPathForKey("EmptyPath");
  EXPECT_TRUE(empty.isEmpty());
  EXPECT_EQ(empty.lineWidth(), 1.0);
  EXPECT_EQ(empty.miterLimit(), 10.0);
  EXPECT_EQ(empty.flatness(), 0.6);
  EXPECT_EQ(empty.lineCapStyle(), LineCapStyle::Butt);

  LogCapture log;
  const BezierPath bad = *f.coder.decodeBezierPathForKey("BadPath");
  EXPECT_EQ(Types(bad), (std::vector<T>{T::MoveTo, T::LineTo}));
  EXPECT_TRUE(log.contains("unknown type 9"));
}

TEST(ArchivedText, TextStorageWithRunTable) {
  Fixture f("text.plist");
  const auto text = f.coder.decodeAttributedStringForKey("Storage");
  ASSERT_TRUE(text);
  EXPECT_EQ(text->utf8Text(), "Hello bold world");
  ASSERT_EQ(text->runs().size(), 3u);
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(text->runs()[i].length, i == 1 ? 4u : 6u) << "run " << i;
  EXPECT_EQ(text->runs()[0].attributes, text->runs()[2].attributes);

  const TextAttributes& plain = text->runs()[0].attributes;
  ASSERT_TRUE(plain.font);
  EXPECT_EQ(plain.font->name, "Avenir-Book");
  EXPECT_EQ(plain.font->pointSize, 14);
  EXPECT_EQ(plain.font->flags, 16);
  ASSERT_TRUE(plain.paragraphStyle);
  EXPECT_EQ(*plain.paragraphStyle, ParagraphStyle::defaultStyle());
  EXPECT_FALSE(plain.foregroundColor);

  const TextAttributes& strong = text->runs()[1].attributes;
  EXPECT_EQ(strong.font->name, "Avenir-Heavy");
  EXPECT_EQ(strong.foregroundColor, Color::sRGB(1, 0, 0, 1));
  EXPECT_EQ(strong.underlineStyle, underline::kSingle | underline::kPatternDash);
  EXPECT_EQ(strong.kern, 1.5);
  const ParagraphStyle& style = *strong.paragraphStyle;
  EXPECT_EQ(style.alignment, TextAlignment::Center);
  EXPECT_EQ(style.lineSpacing, 3);
  EXPECT_EQ(style.paragraphSpacingBefore, 4);
  EXPECT_EQ(style.headIndent, 5);
  EXPECT_EQ(style.baseWritingDirection, WritingDirection::RightToLeft);
  EXPECT_EQ(style.lineBreakMode, LineBreakMode::TruncateTail);
  EXPECT_EQ(style.tighteningFactorForTruncation, 0.1);
  ASSERT_TRUE(style.tabStops);
  ASSERT_EQ(style.tabStops->size(), 3u);
  EXPECT_EQ((*style.tabStops)[0], (TextTab{28, TextTabType::Left, std::nullopt}));
  EXPECT_EQ((*style.tabStops)[1], (TextTab{100, TextTabType::Center, std::nullopt}));
  EXPECT_EQ((*style.tabStops)[1].effectiveAlignment(), TextAlignment::Center);
  EXPECT_EQ((*style.tabStops)[2], (TextTab{150, TextTabType::Decimal, TextAlignment::Natural}));
}

TEST(ArchivedText, OtherFormsOfRunsAndStrings) {
  LogCapture log;
  Fixture f("text.plist");
  // One dictionary for the whole text; lengths count UTF-16 units.
  const auto single = f.coder.decodeAttributedStringForKey("Single");
  ASSERT_TRUE(single);
  EXPECT_EQ(single->length(), 7u);  // "café " and one surrogate pair
  ASSERT_EQ(single->runs().size(), 1u);
  EXPECT_EQ(single->runs()[0].attributes.font->name, "Avenir-Book");

  // A 300-unit run is the varint AC 02; the run table is bare data here.
  const auto longRuns = f.coder.decodeAttributedStringForKey("LongRuns");
  ASSERT_TRUE(longRuns);
  ASSERT_EQ(longRuns->runs().size(), 2u);
  EXPECT_EQ(longRuns->runs()[0].length, 300u);
  EXPECT_EQ(longRuns->runs()[1].length, 2u);
  EXPECT_EQ(longRuns->runs()[0].attributes.font->name, "Avenir-Heavy");
  EXPECT_EQ(longRuns->runs()[1].attributes.font->name, "Avenir-Book");

  // A run naming a dictionary that does not exist: the text survives.
  const auto broken = f.coder.decodeAttributedStringForKey("Broken");
  ASSERT_TRUE(broken);
  EXPECT_EQ(broken->utf8Text(), "abcdef");
  ASSERT_EQ(broken->runs().size(), 1u);
  EXPECT_EQ(broken->runs()[0].attributes.font->name, "Avenir-Heavy");
  EXPECT_TRUE(log.contains("attribute dictionary 5 of 2"));

  const auto empty = f.coder.decodeAttributedStringForKey("Empty");
  ASSERT_TRUE(empty);
  EXPECT_TRUE(empty->empty());
  EXPECT_TRUE(empty->runs().empty());
}

TEST(ArchivedImage, BitmapKeepsItsResolutionAndIdentity) {
  Fixture f("image.plist");
  const auto image = f.coder.decodeImageForKey("Image");
  ASSERT_TRUE(image);
  EXPECT_EQ(image->size, MakeSize(1, 1));
  EXPECT_EQ(image->imageFlags, 0x20C00000);
  ASSERT_EQ(image->representations.size(), 1u);
  const auto bitmap = image->firstBitmap();
  ASSERT_TRUE(bitmap);
  ASSERT_EQ(bitmap->pixelsWide(), 2);
  ASSERT_EQ(bitmap->pixelsHigh(), 2);
  // 144 dots an inch: 2 pixels are 1 point.
  EXPECT_EQ(bitmap->size(), MakeSize(1, 1));
  const Rgba8 pixels[] = {{255, 0, 0, 255}, {0, 128, 0, 128}, {0, 0, 255, 255}, {255, 255, 255, 255}};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(bitmap->pixelAt(i % 2, i / 2), pixels[i]) << "pixel " << i;
  // One representation referenced three times is one bitmap.
  for (const char* key : {"Rep", "SameRep", "Image"}) EXPECT_EQ(f.coder.decodeBitmapForKey(key), bitmap);

  LogCapture log;
  EXPECT_FALSE(f.coder.decodeBitmapForKey("BadRep"));
  EXPECT_TRUE(log.contains("cannot be read"));
}

}  // namespace
}  // namespace paintdoc
