// Storage layouts of BMP and TIFF files, each written in the test and read
// back exactly: one table row a layout.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/image_test_files.h"
#include "platform/codecs/image_codecs.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using test::Bytes;
using test::MakeBmp;
using test::MakeTiff;
using test::TiffSpec;

constexpr Rgba8 kClear{0, 0, 0, 0}, kBlack{0, 0, 0, 255}, kWhite{255, 255, 255, 255},
    kRed{255, 0, 0, 255}, kGreen{0, 255, 0, 255}, kBlue{0, 0, 255, 255},
    kGrey{128, 128, 128, 255};

Rgba8 Grey(uint8_t level) { return {level, level, level, 255}; }

// A straight colour premultiplied, the way the decoders store it.
Rgba8 Premultiplied(Rgba8 c) {
  return {PremultiplySample(c.red, c.alpha), PremultiplySample(c.green, c.alpha),
          PremultiplySample(c.blue, c.alpha), c.alpha};
}

struct LayoutCase {
  const char* name;
  std::vector<uint8_t> file;
  int width;
  std::vector<Rgba8> expected;  // premultiplied, top row first
};

TiffSpec FloatSpec(uint16_t photometric, uint16_t samplesPerPixel, uint16_t bits,
                   std::vector<uint8_t> samples, uint32_t width, uint32_t height = 1) {
  TiffSpec spec;
  spec.width = width;
  spec.height = height;
  spec.photometric = photometric;
  spec.samplesPerPixel = samplesPerPixel;
  spec.bitsPerSample = bits;
  spec.sampleFormat = SAMPLEFORMAT_IEEEFP;
  spec.samples = std::move(samples);
  return spec;
}

TiffSpec With(TiffSpec spec, const std::function<void(TiffSpec&)>& change) {
  change(spec);
  return spec;
}

std::vector<LayoutCase> BmpCases() {
  const std::vector<uint32_t> fourColours = {0x000000, 0xff0000, 0x00ff00, 0x0000ff};
  return {
      // Rows padded from 9 to 12 bytes; the first stored row is the bottom one.
      {"bmp 24-bit bottom-up",
       MakeBmp(3, 2, 24, 0, {},
               {0, 0, 255, 0, 255, 0, 255, 0, 0, 0, 0, 0,
                255, 255, 255, 0, 0, 0, 128, 128, 128, 0, 0, 0}),
       3, {kWhite, kBlack, kGrey, kRed, kGreen, kBlue}},
      // Top-down, alpha by mask: premultiplied.
      {"bmp 32-bit with an alpha mask",
       MakeBmp(2, -1, 32, 3, {}, {50, 100, 200, 128, 0, 0, 0, 0},
               {0x00ff0000, 0x0000ff00, 0x000000ff, 0xff000000}),
       2, {{100, 50, 25, 128}, kClear}},
      // Without a mask the fourth byte is unused: opaque.
      {"bmp 32-bit without a mask", MakeBmp(1, 1, 32, 0, {}, {50, 100, 200, 0}), 1,
       {{200, 100, 50, 255}}},
      // Bits 1010000011, padded to 4 bytes.
      {"bmp 1-bit palette", MakeBmp(10, 1, 1, 0, {0x000000, 0xffffff}, {0xa0, 0xc0, 0, 0}), 10,
       {kWhite, kBlack, kWhite, kBlack, kBlack, kBlack, kBlack, kBlack, kWhite, kWhite}},
      // Indices 0 1 2 3 2 as 00 01 10 11 | 10.
      {"bmp 2-bit palette", MakeBmp(5, 1, 2, 0, fourColours, {0x1b, 0x80, 0, 0}), 5,
       {kBlack, kRed, kGreen, kBlue, kGreen}},
      // Bottom row: a run of 3 × index 2, then a literal [3 3 3] clipped at the
      // row's end; top row: a move skips 2 pixels, then a run of 2 × index 1.
      {"bmp rle8",
       MakeBmp(4, 2, 8, 1, fourColours,
               {3, 2, 0, 3, 3, 3, 3, 0,  // run, literal of 3 (padded)
                0, 0,                    // end of line
                0, 2, 2, 0,              // move (+2, +0)
                2, 1, 0, 1}),            // run, end of bitmap
       4, {kClear, kClear, kRed, kRed, kGreen, kGreen, kGreen, kBlue}},
      // OS/2 header (64 bytes). Bottom row: a literal of 3 colours (9 bytes,
      // padded); top row: a run of 2 greys, then the end: the last pixel stays clear.
      {"bmp rle24",
       MakeBmp(3, 2, 24, 4, {},
               {0, 3, 0, 0, 255, 0, 255, 0, 255, 0, 0, 0,  // literal B, G, R × 3, pad
                0, 0,                                      // end of line
                2, 128, 128, 128,                          // run
                0, 1},                                     // end of bitmap
               {}, 0, 64),
       3, {kGrey, kGrey, kClear, kRed, kGreen, kBlue}},
  };
}

std::vector<LayoutCase> TiffCases() {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const TiffSpec rgbaFloat = With(
      FloatSpec(PHOTOMETRIC_RGB, 4, 32, Bytes<float>({1, 0.5f, 0, 1, 0.2f, 0.4f, 0.6f, 0.5f}), 2),
      [](TiffSpec& s) { s.extraSamples = {EXTRASAMPLE_UNASSALPHA}; });
  TiffSpec palette;
  palette.width = 3;
  palette.photometric = PHOTOMETRIC_PALETTE;
  palette.samplesPerPixel = 1;
  palette.samples = {2, 0, 1};
  palette.colormap.assign(3 * 256, 0);
  palette.colormap[0] = palette.colormap[256 + 1] = palette.colormap[512 + 2] = 0xffff;
  TiffSpec rgb16;
  rgb16.width = 2;
  rgb16.bitsPerSample = 16;
  rgb16.samples = Bytes<uint16_t>({65535, 0, 0x8080, 0, 0xffff, 0});
  TiffSpec planar8;
  planar8.width = 2;
  planar8.planar = PLANARCONFIG_SEPARATE;
  planar8.samples = {255, 0, 0, 128, 10, 20};  // the red plane, the green, the blue
  TiffSpec associated;
  associated.width = 2;
  associated.samplesPerPixel = 4;
  associated.extraSamples = {EXTRASAMPLE_ASSOCALPHA};
  associated.samples = {100, 50, 25, 128, 0, 0, 0, 0};
  TiffSpec uint32Grey;
  uint32Grey.width = 3;
  uint32Grey.photometric = PHOTOMETRIC_MINISBLACK;
  uint32Grey.samplesPerPixel = 1;
  uint32Grey.bitsPerSample = 32;
  uint32Grey.samples = Bytes<uint32_t>({0, 0xffffffff, 0x80000000});

  return {
      // 0.5 → 127.5 rounds up; above 1 and below 0 clamp; NaN is 0.
      {"tiff float grey",
       MakeTiff(FloatSpec(PHOTOMETRIC_MINISBLACK, 1, 32,
                          Bytes<float>({0, 0.5f, 1, 2, -1, nan}), 6), "float_grey"),
       6, {kBlack, kGrey, kWhite, kWhite, kBlack, kBlack}},
      {"tiff float rgb, 2 rows, deflate with the floating-point predictor",
       MakeTiff(With(FloatSpec(PHOTOMETRIC_RGB, 3, 32,
                               Bytes<float>({1, 0, 0.25f, 0, 0.5f, 1, 0, 0, 0, 1, 1, 1}), 2, 2),
                     [](TiffSpec& s) { s.compression = COMPRESSION_ADOBE_DEFLATE; }),
                "float_rgb"),
       2, {{255, 0, 64, 255}, {0, 128, 255, 255}, kBlack, kWhite}},
      {"tiff float rgba, unassociated alpha", MakeTiff(rgbaFloat, "float_rgba"), 2,
       {{255, 128, 0, 255}, Premultiplied({51, 102, 153, 128})}},
      {"tiff float rgba, separate planes",
       MakeTiff(With(rgbaFloat,
                     [](TiffSpec& s) {
                       s.planar = PLANARCONFIG_SEPARATE;
                       s.samples = Bytes<float>({1, 0.2f, 0.5f, 0.4f, 0, 0.6f, 1, 0.5f});
                     }),
                "float_planar"),
       2, {{255, 128, 0, 255}, Premultiplied({51, 102, 153, 128})}},
      {"tiff float rgba, associated alpha",
       MakeTiff(With(rgbaFloat,
                     [](TiffSpec& s) {
                       s.extraSamples = {EXTRASAMPLE_ASSOCALPHA};
                       s.samples = Bytes<float>({0.25f, 0.125f, 0, 0.5f, 0, 0, 0, 0});
                     }),
                "float_associated"),
       2, {{64, 32, 0, 128}, kClear}},
      {"tiff double, 0 is white",
       MakeTiff(FloatSpec(PHOTOMETRIC_MINISWHITE, 1, 64, Bytes<double>({0, 1, 0.25}), 3),
                "double_white"),
       3, {kWhite, kBlack, Grey(191)}},
      // Half floats 0x3c00 = 1, 0x3800 = 0.5, 0x0000 = 0.
      {"tiff half-float rgb",
       MakeTiff(FloatSpec(PHOTOMETRIC_RGB, 3, 16, Bytes<uint16_t>({0x3c00, 0x3800, 0}), 1),
                "half_rgb"),
       1, {{255, 128, 0, 255}}},
      {"tiff 32-bit integer grey", MakeTiff(uint32Grey, "uint32_grey"), 3,
       {kBlack, kWhite, kGrey}},
      // 0x8080 is exactly 128/255 of the range.
      {"tiff 16-bit integer rgb", MakeTiff(rgb16, "rgb16"), 2, {{255, 0, 128, 255}, kGreen}},
      {"tiff 8-bit separate planes", MakeTiff(planar8, "planar8"), 2,
       {{255, 0, 10, 255}, {0, 128, 20, 255}}},
      {"tiff palette", MakeTiff(palette, "palette"), 3, {kBlue, kRed, kGreen}},
      {"tiff 8-bit associated alpha", MakeTiff(associated, "associated8"), 2,
       {{100, 50, 25, 128}, kClear}},
      {"tiff 8-bit unassociated alpha, LZW",
       MakeTiff(With(associated,
                     [](TiffSpec& s) {
                       s.extraSamples = {EXTRASAMPLE_UNASSALPHA};
                       s.compression = COMPRESSION_LZW;
                       s.samples = {200, 100, 50, 128, 255, 255, 255, 255};
                     }),
                "unassociated8"),
       2, {Premultiplied({200, 100, 50, 128}), kWhite}},
  };
}

TEST(ImageLayouts, EachLayoutDecodesExactly) {
  std::vector<LayoutCase> cases = BmpCases();
  for (LayoutCase& c : TiffCases()) cases.push_back(std::move(c));
  for (const LayoutCase& c : cases) {
    SCOPED_TRACE(c.name);
    ImageResult decoded = ReadImage(c.file);
    ASSERT_TRUE(decoded) << decoded.reason();
    const int height = static_cast<int>(c.expected.size()) / c.width;
    auto expected = Bitmap::create(c.width, height);
    for (size_t i = 0; i < c.expected.size(); ++i) {
      expected->setPixelAt(static_cast<int>(i) % c.width, static_cast<int>(i) / c.width,
                           c.expected[i]);
    }
    EXPECT_TRUE(test::ImagesMatch(*decoded->bitmap, *expected, 0, "layout"));
  }
}

TEST(ImageLayouts, UnreadableSampleLayoutsAreRefusedClearly) {
  struct Case {
    const char* name;
    std::vector<uint8_t> file;
    const char* error;
  };
  const Case cases[] = {
      {"24-bit floats",
       MakeTiff(FloatSpec(PHOTOMETRIC_MINISBLACK, 1, 24, {0, 0, 0}, 1), "float24"),
       "TIFF image: unsupported layout (24-bit floating-point samples)"},
      {"float CMYK",
       MakeTiff(FloatSpec(PHOTOMETRIC_SEPARATED, 4, 32, Bytes<float>({0, 0, 0, 0}), 1),
                "float_cmyk"),
       "TIFF image: unsupported layout (32-bit floating-point samples with photometric "
       "interpretation 5)"},
      {"RLE24 with 8 bits a pixel", MakeBmp(1, 1, 8, 4, {0}, {0, 0, 0, 0}),
       "BMP image: compression 4 is read as RLE24 only with 24 bits a pixel"},
      {"RLE24 cut inside a run", MakeBmp(2, 1, 24, 4, {}, {2, 0, 0}),
       "BMP image: pixel data is truncated"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ImageResult decoded = ReadImage(c.file);
    EXPECT_FALSE(decoded);
    EXPECT_EQ(decoded.reason().rfind(c.error, 0), 0u) << decoded.reason();
  }
}

}  // namespace
}  // namespace paintdoc
