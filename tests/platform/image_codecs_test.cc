#include "platform/codecs/image_codecs.h"

#include <gif_lib.h>
#include <gtest/gtest.h>
#include <tiffio.h>
#include <webp/encode.h>

#include <cstring>
#include <functional>
#include <random>

#include "support/image_test_files.h"
#include "platform/values/file_bytes.h"
#include "support/golden_image.h"
#include "support/test_paths.h"

namespace paintdoc {
namespace {

using test::EncodeJpeg;
using test::ImagesMatch;
using test::MakeBmp;

// A 5 × 4 test card with every kind of alpha: opaque, half, faint, clear.
std::shared_ptr<Bitmap> TestCard() {
  auto bitmap = Bitmap::create(5, 4);
  for (int row = 0; row < 4; ++row) {
    for (int x = 0; x < 5; ++x) {
      uint8_t alpha = static_cast<uint8_t>(row == 0 ? 255 : row == 1 ? 128 : row == 2 ? 3 : 0);
      uint8_t straight[4] = {static_cast<uint8_t>(50 * x), static_cast<uint8_t>(255 - 40 * x),
                             static_cast<uint8_t>(17 * row), alpha};
      Rgba8 pixel{PremultiplySample(straight[0], alpha), PremultiplySample(straight[1], alpha),
                  PremultiplySample(straight[2], alpha), alpha};
      bitmap->setPixelAt(x, row, pixel);
    }
  }
  return bitmap;
}

// --- round trips through our writers

TEST(ImageCodecs, PngRoundTripKeepsPremultipliedPixelsExactly) {
  auto card = TestCard();
  auto png = WritePNG(*card);
  ASSERT_TRUE(png);
  EXPECT_EQ(DetectImageFormat(*png), ImageFormat::PNG);
  ImageResult decoded = ReadImage(*png);
  ASSERT_TRUE(decoded) << decoded.reason();
  EXPECT_EQ(decoded->format, ImageFormat::PNG);
  EXPECT_TRUE(ImagesMatch(*decoded->bitmap, *card, 0, "png_round_trip"));
  EXPECT_EQ(decoded->bitmap->size(), MakeSize(5, 4));
}

TEST(ImageCodecs, OpaquePngIsWrittenWithoutAlphaAndResolutionSurvives) {
  auto bitmap = Bitmap::create(8, 6);
  for (int row = 0; row < 6; ++row)
    for (int x = 0; x < 8; ++x) bitmap->setPixelAt(x, row, {uint8_t(x * 30), 7, uint8_t(row), 255});
  bitmap->setSizeWithDPI(144);
  PngWriteOptions options;
  options.compressionLevel = 9;
  auto png = WritePNG(*bitmap, options);
  ASSERT_TRUE(png);
  EXPECT_EQ((*png)[25], 2) << "IHDR colour type should be RGB";
  ImageResult decoded = ReadPNG(*png);
  ASSERT_TRUE(decoded) << decoded.reason();
  EXPECT_TRUE(decoded->bitmap->samePixels(*bitmap));
  EXPECT_NEAR(decoded->bitmap->size().width, 4, 0.01);
  EXPECT_NEAR(decoded->bitmap->size().height, 3, 0.01);
}

TEST(ImageCodecs, TiffIsBaselineRgbaWithAssociatedAlphaAndRoundTrips) {
  auto card = TestCard();
  card->setSize({2.5, 2});  // 144 dpi
  auto tiff = WriteTIFF(*card);
  ASSERT_TRUE(tiff);
  // Inspect the tags with libtiff directly.
  std::string path = test::OutputPath("codecs/card.tiff");
  ASSERT_TRUE(WriteFileBytes(path, *tiff));
  TIFF* file = TIFFOpen(path.c_str(), "r");
  ASSERT_TRUE(file);
  uint16_t samples = 0, bits = 0, compression = 0, extraCount = 0;
  uint16_t* extra = nullptr;
  TIFFGetField(file, TIFFTAG_SAMPLESPERPIXEL, &samples);
  TIFFGetField(file, TIFFTAG_BITSPERSAMPLE, &bits);
  TIFFGetField(file, TIFFTAG_COMPRESSION, &compression);
  TIFFGetField(file, TIFFTAG_EXTRASAMPLES, &extraCount, &extra);
  EXPECT_EQ(samples, 4);
  EXPECT_EQ(bits, 8);
  EXPECT_EQ(compression, COMPRESSION_NONE);
  ASSERT_EQ(extraCount, 1);
  EXPECT_EQ(extra[0], EXTRASAMPLE_ASSOCALPHA);
  // The stored samples are the premultiplied ones.
  std::vector<uint8_t> row(TIFFScanlineSize(file));
  ASSERT_EQ(TIFFReadScanline(file, row.data(), 1, 0), 1);
  Rgba8 stored{row[4], row[5], row[6], row[7]};
  EXPECT_EQ(stored, card->pixelAt(1, 1));
  TIFFClose(file);

  ImageResult decoded = ReadImage(*tiff);
  ASSERT_TRUE(decoded) << decoded.reason();
  EXPECT_TRUE(ImagesMatch(*decoded->bitmap, *card, 0, "tiff_round_trip"));
  EXPECT_NEAR(decoded->bitmap->size().width, 2.5, 1e-4);
}

// --- files written by the format's own library

void ExpectNear(Rgba8 actual, Rgba8 expected, int tolerance) {
  EXPECT_NEAR(actual.red, expected.red, tolerance);
  EXPECT_NEAR(actual.green, expected.green, tolerance);
  EXPECT_NEAR(actual.blue, expected.blue, tolerance);
  EXPECT_EQ(actual.alpha, expected.alpha);
}

TEST(ImageCodecs, JpegDecodesColourAndDensity) {
  std::vector<uint8_t> jpeg =
      EncodeJpeg(16, 8, [](int, int) { return Rgba8{200, 60, 20, 255}; }, 0, 144);
  ImageResult decoded = ReadImage(jpeg);
  ASSERT_TRUE(decoded) << decoded.reason();
  EXPECT_EQ(decoded->format, ImageFormat::JPEG);
  ExpectNear(decoded->bitmap->pixelAt(5, 3), {200, 60, 20, 255}, 4);
  EXPECT_EQ(decoded->bitmap->size(), MakeSize(8, 4));

  // Cut inside the header: a clear error. Cut in the scan data: a partial image.
  ImageResult headerCut = ReadImage(std::span(jpeg).first(40));
  EXPECT_FALSE(headerCut);
  EXPECT_NE(headerCut.reason().find("JPEG image: malformed data"), std::string::npos)
      << headerCut.reason();
}

TEST(ImageCodecs, JpegIsTurnedUprightByItsExifOrientation) {
  // Stored 32 × 16: left half red, right half blue.
  auto halves = [](int x, int) { return x < 16 ? Rgba8{255, 0, 0, 255} : Rgba8{0, 0, 255, 255}; };
  const Rgba8 red{255, 0, 0, 255}, blue{0, 0, 255, 255};
  struct Case {
    int orientation, width, height;
    Rgba8 topLeft, bottomRight;
  };
  for (const Case& c : {Case{1, 32, 16, red, blue}, Case{3, 32, 16, blue, red},
                        Case{6, 16, 32, red, blue}, Case{8, 16, 32, blue, red}}) {
    ImageResult decoded = ReadImage(EncodeJpeg(32, 16, halves, c.orientation));
    ASSERT_TRUE(decoded) << decoded.reason();
    EXPECT_EQ(decoded->bitmap->pixelsWide(), c.width) << c.orientation;
    EXPECT_EQ(decoded->bitmap->pixelsHigh(), c.height) << c.orientation;
    ExpectNear(decoded->bitmap->pixelAt(2, 2), c.topLeft, 8);
    ExpectNear(decoded->bitmap->pixelAt(c.width - 3, c.height - 3), c.bottomRight, 8);
  }
  ImageResult raw = ReadImage(EncodeJpeg(32, 16, halves, 6), {.applyExifOrientation = false});
  ASSERT_TRUE(raw);
  EXPECT_EQ(raw->bitmap->pixelsWide(), 32);
}

int WriteGifBytes(GifFileType* gif, const GifByteType* data, int length) {
  auto* out = static_cast<std::vector<uint8_t>*>(gif->UserData);
  out->insert(out->end(), data, data + length);
  return length;
}

// A 6 × 5 screen with one 4 × 3 frame at (1, 1); colour 2 is transparent.
std::vector<uint8_t> MakeGif(bool interlaced) {
  std::vector<uint8_t> out;
  int error = 0;
  GifFileType* gif = EGifOpen(&out, WriteGifBytes, &error);
  GifColorType colors[4] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {9, 9, 9}};
  ColorMapObject* map = GifMakeMapObject(4, colors);
  EGifSetGifVersion(gif, true);
  EGifPutScreenDesc(gif, 6, 5, 2, 0, map);
  GraphicsControlBlock control{};
  control.TransparentColor = 2;
  GifByteType extension[4];
  size_t length = EGifGCBToExtension(&control, extension);
  EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(length), extension);
  EGifPutImageDesc(gif, 1, 1, 4, 3, interlaced, nullptr);
  // Row r of the frame holds index (r + x) % 4; interlacing writes rows 0, 2, 1.
  std::vector<int> order = interlaced ? std::vector<int>{0, 2, 1} : std::vector<int>{0, 1, 2};
  for (int r : order) {
    GifPixelType line[4];
    for (int x = 0; x < 4; ++x) line[x] = static_cast<GifPixelType>((r + x) % 4);
    EGifPutLine(gif, line, 4);
  }
  EGifCloseFile(gif, &error);
  GifFreeMapObject(map);
  return out;
}

TEST(ImageCodecs, GifFirstFrameSitsOnTheScreenWithTransparency) {
  for (bool interlaced : {false, true}) {
    std::vector<uint8_t> gif = MakeGif(interlaced);
    ImageResult decoded = ReadImage(gif);
    ASSERT_TRUE(decoded) << decoded.reason();
    const Rgba8 colors[4] = {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 0, 0}, {9, 9, 9, 255}};
    auto expected = Bitmap::create(6, 5);
    for (int r = 0; r < 3; ++r)
      for (int x = 0; x < 4; ++x) expected->setPixelAt(1 + x, 1 + r, colors[(r + x) % 4]);
    EXPECT_TRUE(ImagesMatch(*decoded->bitmap, *expected, 0,
                            interlaced ? "gif_interlaced" : "gif_progressive"));
  }
}

TEST(ImageCodecs, LosslessWebPDecodesPremultiplied) {
  const uint8_t straight[] = {200, 100, 50, 128, 0, 0, 255, 255, 9, 9, 9, 0, 255, 255, 255, 64};
  uint8_t* encoded = nullptr;
  size_t size = WebPEncodeLosslessRGBA(straight, 2, 2, 8, &encoded);
  ASSERT_GT(size, 0u);
  std::vector<uint8_t> webp(encoded, encoded + size);
  WebPFree(encoded);
  ImageResult decoded = ReadImage(webp);
  ASSERT_TRUE(decoded) << decoded.reason();
  EXPECT_EQ(decoded->bitmap->pixelAt(0, 0), (Rgba8{100, 50, 25, 128}));
  EXPECT_EQ(decoded->bitmap->pixelAt(1, 0), (Rgba8{0, 0, 255, 255}));
  EXPECT_EQ(decoded->bitmap->pixelAt(0, 1), (Rgba8{0, 0, 0, 0}));
  EXPECT_EQ(decoded->bitmap->pixelAt(1, 1), (Rgba8{64, 64, 64, 64}));
  ImageResult cut = ReadImage(std::span(webp).first(webp.size() / 2));
  EXPECT_FALSE(cut);
  EXPECT_NE(cut.reason().find("WebP image"), std::string::npos);
}

// A BMP's pixels a metre become its point size: 5669 is 144 dpi; 2835 (72.009
// dpi) leaves a 16-pixel image just under 16 points, for the preview to round.
TEST(ImageCodecs, BmpResolutionSetsThePointSize) {
  struct Case {
    int32_t pixelsPerMetre;
    int pixels;
    double points;
  };
  for (const Case& c : {Case{5669, 3, 1.5}, Case{2835, 16, 15.998}, Case{0, 5, 5}}) {
    SCOPED_TRACE(c.pixelsPerMetre);
    std::vector<uint8_t> pixels(static_cast<size_t>((c.pixels * 3 + 3) / 4 * 4), 0);
    ImageResult decoded = ReadImage(MakeBmp(c.pixels, 1, 24, 0, {}, pixels, {}, c.pixelsPerMetre));
    ASSERT_TRUE(decoded) << decoded.reason();
    EXPECT_EQ(decoded->bitmap->pixelsWide(), c.pixels);
    EXPECT_NEAR(decoded->bitmap->size().width, c.points, 0.001);
  }
}

// --- bad input

// The pixel limit at one below, at and one above the image's pixels; a side
// above Bitmap::kMaxDimension is refused from the header alone. The BMPs
// claim their size in the header and carry no pixels: nothing is decoded.
TEST(ImageCodecs, PixelLimitsHoldExactlyAtTheirBoundary) {
  const auto png = *WritePNG(*TestCard());  // 20 pixels
  const auto bmp = MakeBmp(300, 200, 24, 0, {}, {0, 0, 0, 0});
  struct Case {
    const char* what;
    const std::vector<uint8_t>& bytes;
    uint64_t pixels;
  };
  for (const Case& c : {Case{"PNG", png, 20}, Case{"BMP", bmp, 300 * 200}}) {
    for (uint64_t limit : {c.pixels - 1, c.pixels, c.pixels + 1}) {
      SCOPED_TRACE(std::string(c.what) + " limit " + std::to_string(limit));
      const std::string error = ReadImage(c.bytes, {.maxPixels = limit}).reason();
      const bool refused = error.find("above the limit of " + std::to_string(limit) + " pixels") !=
                           std::string::npos;
      EXPECT_EQ(refused, limit < c.pixels) << error;
    }
  }
  EXPECT_TRUE(ReadImage(png, {.maxPixels = 20}));

  // A header claiming 30000 × 30000 pixels (900 megapixels): the default limit.
  ImageResult huge = ReadImage(MakeBmp(30000, 30000, 24, 0, {}, {0, 0, 0, 0}));
  EXPECT_NE(huge.reason().find("above the limit"), std::string::npos) << huge.reason();
  for (int32_t side : {Bitmap::kMaxDimension - 1, Bitmap::kMaxDimension, Bitmap::kMaxDimension + 1}) {
    SCOPED_TRACE(side);
    const std::string wide = ReadImage(MakeBmp(side, 1, 24, 0, {}, {0, 0, 0, 0})).reason();
    const std::string tall = ReadImage(MakeBmp(1, side, 24, 0, {}, {0, 0, 0, 0})).reason();
    EXPECT_EQ(wide.find("too large") != std::string::npos, side > Bitmap::kMaxDimension) << wide;
    EXPECT_EQ(tall.find("too large") != std::string::npos, side > Bitmap::kMaxDimension) << tall;
  }
}

TEST(ImageCodecs, MalformedInputGivesAClearError) {
  EXPECT_EQ(ReadImage(std::vector<uint8_t>{}).reason(), "image data is empty");
  std::vector<uint8_t> text = {'h', 'e', 'l', 'l', 'o'};
  EXPECT_NE(ReadImage(text).reason().find("not an image in a supported format"), std::string::npos);

  auto png = *WritePNG(*TestCard());
  ImageResult cut = ReadImage(std::span(png).first(png.size() - 20));
  EXPECT_FALSE(cut);
  EXPECT_EQ(cut.reason().rfind("PNG image: ", 0), 0u) << cut.reason();

  auto tiff = *WriteTIFF(*TestCard());
  ImageResult tiffCut = ReadImage(std::span(tiff).first(60));
  EXPECT_FALSE(tiffCut);
  EXPECT_EQ(tiffCut.reason().rfind("TIFF image: ", 0), 0u) << tiffCut.reason();

  std::vector<uint8_t> gif = MakeGif(false);
  ImageResult gifCut = ReadImage(std::span(gif).first(30));
  EXPECT_FALSE(gifCut);
  EXPECT_EQ(gifCut.reason().rfind("GIF image: ", 0), 0u) << gifCut.reason();

  ImageResult bmpCut = ReadImage(MakeBmp(4, 4, 24, 0, {}, std::vector<uint8_t>(20)));
  EXPECT_EQ(bmpCut.reason(), "BMP image: pixel data is truncated");

  ImageResult missing = ReadImageFile("/nonexistent/picture.png");
  EXPECT_FALSE(missing);
  EXPECT_NE(missing.reason().find("/nonexistent/picture.png"), std::string::npos);
}

// Random corruption of valid files of every format must give a bitmap or an
// error, never a crash, a hang or a sanitizer report.
TEST(ImageCodecs, CorruptedFilesNeverCrash) {
  std::vector<std::vector<uint8_t>> seeds = {
      *WritePNG(*TestCard()), *WriteTIFF(*TestCard()), MakeGif(true),
      MakeBmp(3, 2, 24, 0, {}, std::vector<uint8_t>(24, 7)),
      MakeBmp(4, 2, 8, 1, {0xff, 0xff00}, {3, 1, 0, 3, 1, 0, 1, 0, 0, 1}),
      MakeBmp(3, 2, 24, 4, {}, {0, 3, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0, 2, 9, 9, 9, 0, 1}),
      MakeBmp(5, 2, 2, 0, {0, 0xff, 0xff00, 0xff0000}, {0x1b, 0x80, 0, 0, 0xe4, 0, 0, 0}),
      test::MakeTiff([] {
        test::TiffSpec spec;
        spec.width = spec.height = 4;
        spec.sampleFormat = SAMPLEFORMAT_IEEEFP;
        spec.bitsPerSample = 32;
        spec.samplesPerPixel = 4;
        spec.extraSamples = {EXTRASAMPLE_UNASSALPHA};
        spec.compression = COMPRESSION_LZW;
        spec.samples = std::vector<uint8_t>(4 * 4 * 16, 0x3e);
        return spec;
      }(), "corruption_seed"),
      EncodeJpeg(8, 8, [](int x, int y) { return Rgba8{uint8_t(x * 30), uint8_t(y * 30), 0, 255}; }, 6)};
  std::mt19937 random(1234);
  for (const auto& seed : seeds) {
    for (int round = 0; round < 300; ++round) {
      std::vector<uint8_t> bytes = seed;
      int flips = 1 + static_cast<int>(random() % 4);
      for (int i = 0; i < flips; ++i) bytes[random() % bytes.size()] = static_cast<uint8_t>(random());
      if (random() % 3 == 0) bytes.resize(random() % bytes.size());
      ImageResult result = ReadImage(bytes, {.maxPixels = 1 << 20});
      EXPECT_TRUE(result->bitmap || !result.reason().empty());
    }
  }
}

}  // namespace
}  // namespace paintdoc
