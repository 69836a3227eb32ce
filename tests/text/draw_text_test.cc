// Text boxes: titles, the attribute summaries, opacity and its attribute,
// font scaling, the archive, the cached bitmap, and painting (ink placement,
// opacity, gradient through the glyphs, a golden image of a short string).
#include <gtest/gtest.h>

#include "archive/keyed_archiver.h"
#include "draws/draw_attributes.h"
#include "platform/codecs/image_codecs.h"
#include "platform/graphics/bitmap_functions.h"
#include "platform/values/file_bytes.h"
#include "platform/graphics/graphics_context.h"
#include "platform/values/not_found.h"
#include "support/archive_fixtures.h"
#include "support/golden_image.h"
#include "support/test_paths.h"
#include "text/draw_text.h"

namespace paintdoc {
namespace {

using test::DataPath;
using test::OutputPath;
using test::PixelAt;

TextAttributes Style(const char* font, double size, Color color = Color::blackColor()) {
  TextAttributes attributes;
  attributes.font = Font{font, size};
  attributes.foregroundColor = color;
  return attributes;
}

std::shared_ptr<DrawText> TextBox(const Rect& box, const AttributedString& text) {
  auto draw = MakeDraw<DrawText>();
  draw->setBezierPathWithBounds(box);
  draw->setAttributedString(text);
  return draw;
}

// The cached bitmap, which only the class and its subclasses see.
struct CacheProbe : DrawText {
  static const Bitmap* CacheOf(const DrawText& text) {
    return (text.*(&CacheProbe::imgRepText_)).get();
  }
};

std::shared_ptr<Bitmap> Paint(DrawBase& draw, int width, int height) {
  auto bitmap = Bitmap::create(width, height);
  BitmapFocus focus(bitmap);
  draw.draw();
  return bitmap;
}

TEST(DrawText, LayerTitleIsTheFirstNonBlankLineCutNearTwentyCharacters) {
  struct Case {
    const char* text;
    const char* title;
  };
  for (const Case& c : {Case{"Hello", "Hello"},
                        Case{"  \n\t Hello there  \nsecond", "Hello there"},
                        // After a blank line the cut index is searched in the whole
                        // text, so it lands one past the line's space.
                        Case{"\nabcdefghijklmnopqrstuvw xyzab", "abcdefghijklmnopqrstuvw "},
                        Case{"abcdefghijklmnopqrstuvwxyzabcdef", "abcdefghijklmnopqrst"},
                        Case{"abcdefghijklmnopqrstuvw, xyz", "abcdefghijklmnopqrstuvw"},
                        Case{"   \n  \n", "Text"},
                        Case{"", "Text"}}) {
    auto draw = TextBox(MakeRect(0, 0, 100, 50), AttributedString::fromUTF8(c.text));
    EXPECT_EQ(draw->layerTitle(), c.title) << c.text;
  }
  auto titled = TextBox(MakeRect(0, 0, 100, 50), AttributedString::fromUTF8("Body"));
  titled->setLayerTitle("Mine");
  EXPECT_EQ(titled->layerTitle(), "Mine");
}

TEST(DrawText, SummariesOfUnderlineAlignmentFontsAndColours) {
  TextAttributes underlined = Style("Helvetica", 12, Color::redColor());
  underlined.underlineStyle = underline::kSingle;
  ParagraphStyle centred = ParagraphStyle::defaultStyle();
  centred.alignment = TextAlignment::Center;
  underlined.paragraphStyle = centred;
  TextAttributes plain = Style("ArialMT", 14);
  ParagraphStyle right = centred;
  right.alignment = TextAlignment::Right;

  AttributedString mixed = AttributedString::fromUTF8("one\n", underlined);
  mixed.append(Utf8ToUtf16("two"), plain);
  auto draw = TextBox(MakeRect(0, 0, 100, 50), mixed);
  EXPECT_FALSE(draw->underline());
  EXPECT_EQ(draw->textAlignment(), static_cast<int64_t>(TextAlignment::Center));
  EXPECT_EQ(draw->textFonts().size(), 2u);
  EXPECT_EQ(draw->textColors(), (std::vector<Color>{Color::redColor(), Color::blackColor()}));

  plain.paragraphStyle = right;
  mixed = AttributedString::fromUTF8("one\n", underlined);
  mixed.append(Utf8ToUtf16("two"), plain);
  draw->setAttributedString(mixed);
  EXPECT_EQ(draw->textAlignment(), kNotFound);

  draw->setAttributedString(AttributedString::fromUTF8("all", underlined));
  EXPECT_TRUE(draw->underline());
  draw->setAttributedString(AttributedString());
  EXPECT_FALSE(draw->underline());
  EXPECT_EQ(draw->textAlignment(), kNotFound);
}

TEST(DrawText, OpacityIsClampedOrCarriedByTheGradient) {
  auto draw = TextBox(MakeRect(0, 0, 100, 50), AttributedString::fromUTF8("a"));
  draw->setOpacity(1.7f);
  EXPECT_EQ(draw->opacity(), 1.0f);
  draw->setOpacity(0.25f);
  EXPECT_EQ(draw->drawAttributes().number(DAKeyOpacity)->toDouble(), 0.25);

  draw->setFillWithGradient(true);
  draw->setFillGradient(Gradient::withStartingColor(Color::calibratedRGB(1, 0, 0, 0.2),
                                                    Color::calibratedRGB(0, 0, 1, 0.6)));
  EXPECT_NEAR(draw->opacity(), 0.4, 1e-6);
  EXPECT_FALSE(draw->drawAttributes().contains(DAKeyOpacity));
  draw->setOpacity(1.0f);
  EXPECT_NEAR(draw->opacity(), 1.0, 1e-6);
  EXPECT_EQ(draw->textOpacity(), 0.25f);  // the plain opacity is kept aside
}

TEST(DrawText, HorizontalScalingScalesFontsAndDropsTheCache) {
  AttributedString text = AttributedString::fromUTF8("big ", Style("Helvetica", 10));
  text.append(Utf8ToUtf16("bigger"), Style("Helvetica-Bold", 20));
  struct Case {
    float sx, sy;
    bool resize;
    std::vector<double> sizes;
  };
  for (const Case& c : {Case{2, 1, true, {20, 40}}, Case{1, 2, true, {10, 20}},
                        Case{2, 1, false, {10, 20}}, Case{0, 2, true, {10, 20}}}) {
    auto draw = TextBox(MakeRect(0, 0, 200, 50), text);
    draw->scaleBy(c.sx, c.sy, {0, 0}, c.resize);
    std::vector<double> sizes;
    for (const Font& font : draw->textFonts()) sizes.push_back(font.pointSize);
    EXPECT_EQ(sizes, c.sizes) << c.sx << " " << c.sy;
  }
}

TEST(DrawText, CacheSurvivesAMoveAndIsRebuiltForANewSizeOrText) {
  auto draw = TextBox(MakeRect(10, 10, 200, 60), AttributedString::fromUTF8("Cached", Style("Helvetica", 20)));
  const Rect before = draw->drawRect();
  const Bitmap* cache = CacheProbe::CacheOf(*draw);
  ASSERT_NE(cache, nullptr);
  draw->moveBy(5, 7);
  EXPECT_EQ(draw->drawRect(), MakeRect(before.origin.x + 5, before.origin.y + 7,
                                       before.size.width, before.size.height));
  EXPECT_EQ(CacheProbe::CacheOf(*draw), cache);
  draw->setBezierPathWithBounds(MakeRect(15, 17, 60, 200));  // narrower: the text wraps
  EXPECT_LT(draw->drawRect().size.width, before.size.width);
  draw->setAttributedString(AttributedString::fromUTF8("Other", Style("Helvetica", 20)));
  EXPECT_EQ(CacheProbe::CacheOf(*draw), nullptr);
}

TEST(DrawText, ArchiveKeepsTextAndOpacityAndNeverStrokes) {
  auto draw = TextBox(MakeRect(3, 4, 120, 40), AttributedString::fromUTF8("Kept", Style("ArialMT", 17)));
  draw->setOpacity(0.5f);
  draw->setBezierPathLineWidth(4);
  auto decoded = std::dynamic_pointer_cast<DrawText>(
      DrawBase::objectWithEncodedData(SharedBytes(draw->encodedData())));
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->textStorage(), draw->textStorage());
  EXPECT_EQ(decoded->textOpacity(), 0.5f);
  EXPECT_EQ(decoded->bezierPath()->lineWidth(), 0.0);

  auto withoutOpacity = std::dynamic_pointer_cast<DrawText>(DrawBase::objectWithEncodedData(
      SharedBytes(test::ArchiveRoot(test::KeysAs("DrawText", [](KeyedArchiver& coder) {
        coder.encodeBezierPathForKey(BezierPath::withRect(MakeRect(0, 0, 10, 10)), "BezierPath");
      })))));
  ASSERT_TRUE(withoutOpacity);
  EXPECT_EQ(withoutOpacity->textOpacity(), 1.0f);
  EXPECT_TRUE(withoutOpacity->textStorage().empty());
}

TEST(DrawText, EmptyTextDrawsNothingAndHasNoDrawRect) {
  auto draw = TextBox(MakeRect(0, 0, 100, 50), AttributedString());
  EXPECT_EQ(draw->drawRect(), ZeroRect());
  const auto bitmap = Paint(*draw, 100, 50);
  EXPECT_EQ(ImageRectByTrimEmpty(bitmap), ZeroRect());
}

// The ink of a painted box lies in its drawRect, at the box's opacity, and a
// gradient fill colours it from one end to the other.
TEST(DrawText, PaintingPlacesInkWithOpacityAndGradient) {
  auto draw = TextBox(MakeRect(20, 10, 160, 60),
                      AttributedString::fromUTF8("MMMM", Style("Helvetica-Bold", 40)));
  const Rect inkRect = draw->drawRect();
  ASSERT_GT(inkRect.size.width, 50);
  auto painted = Paint(*draw, 200, 80);
  uint8_t densest = 0;
  for (int y = 0; y < 80; ++y) {
    for (int x = 0; x < 200; ++x) {
      const Rgba8 pixel = PixelAt(*painted, x, y);
      if (pixel.alpha == 0) continue;
      densest = std::max(densest, pixel.alpha);
      EXPECT_TRUE(x >= inkRect.origin.x - 1 && x < inkRect.origin.x + inkRect.size.width + 1 &&
                  y >= inkRect.origin.y - 1 && y < inkRect.origin.y + inkRect.size.height + 1)
          << x << "," << y;
    }
  }
  EXPECT_EQ(densest, 255);

  draw->setOpacity(0.5f);
  painted = Paint(*draw, 200, 80);
  densest = 0;
  for (int y = 0; y < 80; ++y) {
    for (int x = 0; x < 200; ++x) densest = std::max(densest, PixelAt(*painted, x, y).alpha);
  }
  EXPECT_NEAR(densest, 128, 2);

  draw->setOpacity(1.0f);
  draw->setFillWithGradient(true);
  draw->setFillGradientDegree(0);
  draw->setFillGradient(Gradient::withStartingColor(Color::calibratedRGB(1, 0, 0),
                                                    Color::calibratedRGB(0, 0, 1)));
  painted = Paint(*draw, 200, 80);
  // The first solid pixel scanning from the left is red, from the right blue.
  auto firstSolid = [&](int from, int step) {
    for (int x = from; x >= 0 && x < 200; x += step) {
      for (int y = 0; y < 80; ++y) {
        if (PixelAt(*painted, x, y).alpha == 255) return PixelAt(*painted, x, y);
      }
    }
    return Rgba8{};
  };
  const Rgba8 left = firstSolid(0, 1), right = firstSolid(199, -1);
  EXPECT_GT(left.red, left.blue);
  EXPECT_GT(right.blue, right.red);
}

// An inner shadow darkens the glyphs from their edges inwards and adds no
// ink outside them.
TEST(DrawText, InnerShadowStaysInsideTheGlyphs) {
  auto draw = TextBox(MakeRect(0, 0, 200, 80),
                      AttributedString::fromUTF8("MW", Style("Helvetica-Bold", 60, Color::whiteColor())));
  const auto plain = Paint(*draw, 200, 80);
  draw->setEnableInnerShadow(true);
  draw->setInnerShadow(Shadow(Color::blackColor(), {0, -4}, 2));
  const auto shaded = Paint(*draw, 200, 80);
  int darkened = 0;
  for (int y = 0; y < 80; ++y) {
    for (int x = 0; x < 200; ++x) {
      const Rgba8 before = PixelAt(*plain, x, y), after = PixelAt(*shaded, x, y);
      EXPECT_EQ(after.alpha == 0, before.alpha == 0) << x << "," << y;
      if (before.alpha == 255 && after.red + 40 < before.red) ++darkened;
    }
  }
  EXPECT_GT(darkened, 50);
}

// A short string in DejaVu Sans (installed with the build tools), compared
// with a reviewed rendering; the tolerance absorbs rasteriser differences.
TEST(DrawText, ShortStringMatchesItsGoldenImage) {
  auto draw = TextBox(MakeRect(0, 0, 80, 32),
                      AttributedString::fromUTF8("Tx 42", Style("DejaVuSans", 20, Color::calibratedRGB(0.1, 0.2, 0.6))));
  const auto painted = Paint(*draw, 80, 32);
  ImageResult golden = ReadImageFile(DataPath("text/short-string.png"));
  if (!golden) {
    // A new golden image is written beside the test output for review.
    if (auto png = WritePNG(*painted)) WriteFileBytes(OutputPath("text/short-string.png"), *png);
    FAIL() << golden.reason();
  }
  EXPECT_TRUE(test::ImagesMatch(*painted, *golden->bitmap, 40, "text-short-string"));
}

}  // namespace
}  // namespace paintdoc
