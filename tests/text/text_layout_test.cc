// Text layout and drawing on Pango, checked by where the ink falls rather
// than by glyph shapes: inside the box, on the aligned side, lower for more
// lines and for an underline, in the run's colour; and bounded answers for
// hostile sizes and texts.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

#include "platform/graphics/bitmap_functions.h"
#include "platform/text/text_layout.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::PixelAt;

TextAttributes Style(double size, TextAlignment alignment = TextAlignment::Left,
                     Color color = Color::blackColor()) {
  TextAttributes attributes;
  attributes.font = Font{"Helvetica", size};
  attributes.foregroundColor = color;
  ParagraphStyle paragraph = ParagraphStyle::defaultStyle();
  paragraph.alignment = alignment;
  attributes.paragraphStyle = paragraph;
  return attributes;
}

std::shared_ptr<Bitmap> Draw(const AttributedString& text, Size box, double scale = 1) {
  Result<std::shared_ptr<Bitmap>> drawn =
      DrawTextInBitmap(SharedLayoutManager(), text, box, scale, true);
  EXPECT_TRUE(drawn) << drawn.reason();
  return drawn ? *drawn : nullptr;
}

// Lower-left coordinates, in pixels.
Rect Ink(const std::shared_ptr<Bitmap>& bitmap) { return ImageRectByTrimEmpty(bitmap); }

TEST(TextLayout, InkStaysInsideTheBoxAtEveryScale) {
  for (double scale : {1.0, 2.0}) {
    const auto bitmap = Draw(AttributedString::fromUTF8("Hello, world", Style(20)), {200, 60}, scale);
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->pixelsWide(), 200 * scale);
    EXPECT_EQ(bitmap->size(), MakeSize(200, 60));
    const Rect ink = Ink(bitmap);
    EXPECT_GT(ink.size.width, 60 * scale);
    // The first line hangs from the top: ink in the upper part only.
    EXPECT_GT(ink.origin.y, 25 * scale);
    // The line fragment padding of 1 point keeps the ink off the left edge.
    EXPECT_GE(ink.origin.x, 1 * scale);
  }
}

TEST(TextLayout, AlignmentPutsInkLeftCentreOrRight) {
  struct Case {
    TextAlignment alignment;
    double minCentre, maxCentre;  // of the ink, in fractions of the box width
  };
  for (const Case& c : {Case{TextAlignment::Left, 0, 0.25}, Case{TextAlignment::Natural, 0, 0.25},
                        Case{TextAlignment::Center, 0.45, 0.55},
                        Case{TextAlignment::Right, 0.75, 1}}) {
    const auto bitmap = Draw(AttributedString::fromUTF8("Short", Style(18, c.alignment)), {300, 40});
    const Rect ink = Ink(bitmap);
    const double centre = (ink.origin.x + ink.size.width / 2) / 300;
    EXPECT_GE(centre, c.minCentre) << static_cast<int>(c.alignment);
    EXPECT_LE(centre, c.maxCentre) << static_cast<int>(c.alignment);
  }
}

TEST(TextLayout, AlignmentIsPerParagraph) {
  AttributedString text = AttributedString::fromUTF8("Left\n", Style(18, TextAlignment::Left));
  text.append(Utf8ToUtf16("Right"), Style(18, TextAlignment::Right));
  const auto bitmap = Draw(text, {300, 60});
  // The top line's ink starts at the left, the bottom line's ends at the right.
  bool topLeft = false, bottomRight = false;
  for (int y = 0; y < 60; ++y) {
    for (int x = 0; x < 300; ++x) {
      if (PixelAt(*bitmap, x, y).alpha == 0) continue;
      if (y > 35 && x < 50) topLeft = true;
      if (y < 30 && x > 250) bottomRight = true;
    }
  }
  EXPECT_TRUE(topLeft);
  EXPECT_TRUE(bottomRight);
}

TEST(TextLayout, WrappingAddsLinesAndBreaksInsideOverlongWords) {
  struct Case {
    const char* text;
    double boxWidth;
  };
  const double oneLine = Ink(Draw(AttributedString::fromUTF8("word", Style(16)), {120, 300})).size.height;
  for (const Case& c : {Case{"several words that cannot share one line", 120},
                        Case{"Supercalifragilisticexpialidocious", 60}}) {
    const Rect ink = Ink(Draw(AttributedString::fromUTF8(c.text, Style(16)), {c.boxWidth, 300}));
    EXPECT_GT(ink.size.height, 2 * oneLine) << c.text;
    EXPECT_LE(ink.origin.x + ink.size.width, c.boxWidth) << c.text;
  }
}

TEST(TextLayout, UnderlineAddsInkBelowTheBaseline) {
  TextAttributes plain = Style(20);
  TextAttributes underlined = plain;
  underlined.underlineStyle = underline::kSingle;
  const Rect without = Ink(Draw(AttributedString::fromUTF8("mama", plain), {200, 50}));
  const Rect with = Ink(Draw(AttributedString::fromUTF8("mama", underlined), {200, 50}));
  EXPECT_LT(with.origin.y, without.origin.y);
}

TEST(TextLayout, InkHasTheRunsColourAndAlpha) {
  struct Case {
    Color color;
    Rgba8 expected;  // straight colour of the most covered pixel
  };
  for (const Case& c : {Case{Color::calibratedRGB(1, 0, 0), {255, 0, 0, 255}},
                        Case{Color::calibratedRGB(0, 0, 1), {0, 0, 255, 255}},
                        Case{Color::calibratedRGB(0, 0.5, 0, 0.5), {0, 128, 0, 128}}}) {
    const auto bitmap = Draw(AttributedString::fromUTF8("HHH", Style(40, TextAlignment::Left, c.color)),
                             {150, 60});
    Rgba8 densest{};
    for (int y = 0; y < 60; ++y) {
      for (int x = 0; x < 150; ++x) {
        const Rgba8 pixel = PixelAt(*bitmap, x, y);
        if (pixel.alpha > densest.alpha) densest = pixel;
      }
    }
    EXPECT_NEAR(densest.alpha, c.expected.alpha, 2);
    // Premultiplied: scale the channels back by the alpha.
    auto straight = [&](uint8_t channel) { return densest.alpha ? channel * 255.0 / densest.alpha : 0.0; };
    EXPECT_NEAR(straight(densest.red), c.expected.red, 3);
    EXPECT_NEAR(straight(densest.green), c.expected.green, 3);
    EXPECT_NEAR(straight(densest.blue), c.expected.blue, 3);
  }
}

TEST(TextLayout, UsedSizeCountsPaddingLinesAndATrailingNewline) {
  LayoutManager& manager = SharedLayoutManager();
  manager.textContainer().containerSize = MakeSize(1000, 1000000);
  const Size one = *manager.usedRectForText(AttributedString::fromUTF8("Line", Style(12)));
  const Size two = *manager.usedRectForText(AttributedString::fromUTF8("Line\n", Style(12)));
  const Size wide = *manager.usedRectForText(AttributedString::fromUTF8("Line Line", Style(12)));
  EXPECT_GT(one.width, 2);
  EXPECT_NEAR(two.height, 2 * one.height, 0.5);
  EXPECT_GT(wide.width, one.width);
  EXPECT_EQ(*manager.usedRectForText(AttributedString()), MakeSize(0, 0));
}

// Hostile texts and sizes: drawn or refused, quickly, never a crash.
TEST(TextLayout, BadInputIsDrawnOrRefusedInBoundedTime) {
  struct Case {
    const char* what;
    AttributedString text;
    Size box;
    bool drawn;
  };
  AttributedString loneSurrogates(std::u16string{u'A', char16_t(0xD800), u'B', char16_t(0xDC00)},
                                  Style(20));
  const std::vector<Case> cases{
      {"size 0", AttributedString::fromUTF8("zero", Style(0)), {100, 40}, true},
      {"negative size", AttributedString::fromUTF8("negative", Style(-12)), {100, 40}, true},
      {"size 1e9", AttributedString::fromUTF8("huge", Style(1e9)), {300, 300}, true},
      {"size NaN", AttributedString::fromUTF8("nan", Style(std::nan(""))), {100, 40}, true},
      {"lone surrogates", loneSurrogates, {100, 40}, true},
      {"NUL inside", AttributedString(std::u16string{u'a', 0, u'b'}, Style(20)), {100, 40}, true},
      {"million characters", AttributedString(std::u16string(1000000, u'x'), Style(12)), {500, 500},
       false},
      {"box 1e9 x 1e9", AttributedString::fromUTF8("big", Style(12)), {1e9, 1e9}, false},
      {"box NaN", AttributedString::fromUTF8("nan", Style(12)), {std::nan(""), 10}, false},
  };
  for (const Case& c : cases) {
    const auto start = std::chrono::steady_clock::now();
    Result<std::shared_ptr<Bitmap>> drawn =
        DrawTextInBitmap(SharedLayoutManager(), c.text, c.box, 1, true);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(static_cast<bool>(drawn), c.drawn) << c.what << ": " << drawn.reason();
    if (drawn) {
      EXPECT_GT(Ink(*drawn).size.width, 0) << c.what;
    } else {
      EXPECT_FALSE(drawn.reason().empty()) << c.what;
    }
    EXPECT_LT(seconds, 2.0) << c.what;
  }
}

}  // namespace
}  // namespace paintdoc
