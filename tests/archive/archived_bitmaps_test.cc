// Bitmaps as archives hold them: every representation the platform writes for
// an image layer (TIFF of every compression, depth and sample layout, PNG and
// JPEG data, the image wrappers) decodes at its size and resolution, and
// hostile image data is refused before its pixels are allocated.
#include <gtest/gtest.h>

#include <functional>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/codecs/image_codecs.h"
#include "platform/values/bitmap.h"
#include "platform/values/log.h"
#include "support/archive_fixtures.h"
#include "support/golden_image.h"
#include "support/image_test_files.h"

namespace paintdoc {
namespace {

using test::KeysAs;
using test::MakeTiff;
using test::TiffSpec;

constexpr uint32_t kWidth = 5, kHeight = 4;

// The test picture in straight colour, storage row `y` from the top: every
// channel varies, and alpha takes 0, 1, 255 and values between.
Rgba8 Straight(uint32_t x, uint32_t y) {
  static constexpr uint8_t kAlphas[] = {0, 255, 128, 1, 64, 254, 255};
  return {static_cast<uint8_t>((x * 53 + y * 17) % 256),
          static_cast<uint8_t>((x * 29 + y * 71 + 40) % 256),
          static_cast<uint8_t>((x * 11 + y * 101 + 90) % 256), kAlphas[(x * 3 + y * 5) % 7]};
}
uint8_t Grey(uint32_t x, uint32_t y) { return static_cast<uint8_t>((x * 40 + y * 23 + 7) % 256); }

Rgba8 Premultiply(Rgba8 c) {
  return {PremultiplySample(c.red, c.alpha), PremultiplySample(c.green, c.alpha),
          PremultiplySample(c.blue, c.alpha), c.alpha};
}

enum class Alpha { None, Associated, Unassociated };

struct Layout {
  const char* name;
  bool grey;
  Alpha alpha;
};

constexpr Layout kLayouts[] = {
    {"rgb", false, Alpha::None},
    {"rgba-premultiplied", false, Alpha::Associated},
    {"rgba-straight", false, Alpha::Unassociated},
    {"grey", true, Alpha::None},
    {"grey-alpha-premultiplied", true, Alpha::Associated},
    {"grey-alpha-straight", true, Alpha::Unassociated},
};

// The pixel a layout must decode to (premultiplied).
Rgba8 Expected(const Layout& layout, uint32_t x, uint32_t y) {
  Rgba8 c = Straight(x, y);
  if (layout.grey) c.red = c.green = c.blue = Grey(x, y);
  if (layout.alpha == Alpha::None) c.alpha = 255;
  return Premultiply(c);
}

// The stored samples of a layout at 8 or 16 bits, in native byte order.
std::vector<uint8_t> Samples(const Layout& layout, uint16_t bits) {
  std::vector<uint16_t> values;
  for (uint32_t y = 0; y < kHeight; ++y) {
    for (uint32_t x = 0; x < kWidth; ++x) {
      Rgba8 c = Straight(x, y);
      if (layout.grey) c.red = c.green = c.blue = Grey(x, y);
      if (layout.alpha == Alpha::Associated) c = Premultiply(c);
      if (layout.grey) {
        values.push_back(c.red);
      } else {
        values.insert(values.end(), {c.red, c.green, c.blue});
      }
      if (layout.alpha != Alpha::None) values.push_back(c.alpha);
    }
  }
  std::vector<uint8_t> bytes;
  for (uint16_t v : values) {
    if (bits == 8) {
      bytes.push_back(static_cast<uint8_t>(v));
    } else {
      const uint16_t wide = static_cast<uint16_t>(v * 257);
      const auto* p = reinterpret_cast<const uint8_t*>(&wide);
      bytes.insert(bytes.end(), p, p + 2);
    }
  }
  return bytes;
}

TiffSpec SpecFor(const Layout& layout, uint16_t bits) {
  TiffSpec spec;
  spec.width = kWidth;
  spec.height = kHeight;
  spec.photometric = layout.grey ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
  spec.bitsPerSample = bits;
  spec.samplesPerPixel = static_cast<uint16_t>((layout.grey ? 1 : 3) + (layout.alpha != Alpha::None));
  if (layout.alpha != Alpha::None) {
    spec.extraSamples = {static_cast<uint16_t>(
        layout.alpha == Alpha::Associated ? EXTRASAMPLE_ASSOCALPHA : EXTRASAMPLE_UNASSALPHA)};
  }
  spec.samples = Samples(layout, bits);
  return spec;
}

// An archive whose root is a bitmap representation holding `data` the way
// the platform writes it (data object, layout direction).
std::vector<uint8_t> BitmapRepArchive(const std::vector<uint8_t>& data) {
  return test::ArchiveRoot(KeysAs("NSBitmapImageRep", [&](KeyedArchiver& coder) {
    coder.encodeDataForKey(data, "NSTIFFRepresentation");
    coder.encodeIntForKey(0, "NSInternalLayoutDirection");
  }));
}

// An archive whose top level holds what `write` encodes.
std::vector<uint8_t> TopLevel(const std::function<void(KeyedArchiver&)>& write) {
  KeyedArchiver archiver;
  write(archiver);
  return archiver.finishEncoding();
}

std::shared_ptr<Bitmap> DecodeRoot(const std::vector<uint8_t>& archive, ArchiveLimits limits = {}) {
  KeyedUnarchiver coder(SharedBytes::copyOf(archive), limits);
  EXPECT_TRUE(coder.isValid()) << coder.error();
  return coder.decodeBitmapForKey("root");
}

std::shared_ptr<Bitmap> ExpectedBitmap(const Layout& layout) {
  auto expected = Bitmap::create(kWidth, kHeight);
  for (uint32_t y = 0; y < kHeight; ++y) {
    for (uint32_t x = 0; x < kWidth; ++x) {
      expected->setPixelAt(static_cast<int>(x), static_cast<int>(y), Expected(layout, x, y));
    }
  }
  return expected;
}

TEST(ArchivedBitmaps, EveryTiffLayoutCompressionDepthAndStripingDecodesExactly) {
  struct Compression {
    const char* name;
    uint16_t scheme, predictor;
  };
  const Compression compressions[] = {
      {"none", COMPRESSION_NONE, 0},
      {"lzw", COMPRESSION_LZW, 0},
      {"lzw-predictor", COMPRESSION_LZW, PREDICTOR_HORIZONTAL},
      {"packbits", COMPRESSION_PACKBITS, 0},
      {"deflate", COMPRESSION_ADOBE_DEFLATE, 0},
      {"deflate-predictor", COMPRESSION_ADOBE_DEFLATE, PREDICTOR_HORIZONTAL},
  };
  int index = 0;
  for (const Layout& layout : kLayouts) {
    for (uint16_t bits : {8, 16}) {
      for (const Compression& compression : compressions) {
        // One row a strip (as the platform writes), strips of 3 rows (the last
        // one shorter) and one strip; both byte orders.
        for (uint32_t rowsPerStrip : {1u, 3u, kHeight}) {
          const std::string name = std::string(layout.name) + "-" + std::to_string(bits) + "-" +
                                   compression.name + "-strips-of-" + std::to_string(rowsPerStrip);
          SCOPED_TRACE(name);
          TiffSpec spec = SpecFor(layout, bits);
          spec.compression = compression.scheme;
          spec.predictor = compression.predictor;
          spec.rowsPerStrip = rowsPerStrip;
          spec.bigEndian = index++ % 2 == 0;
          const std::vector<uint8_t> tiff = MakeTiff(spec, "archived-" + name);
          ASSERT_FALSE(tiff.empty());
          const auto bitmap = DecodeRoot(BitmapRepArchive(tiff));
          ASSERT_TRUE(bitmap);
          EXPECT_EQ(bitmap->size(), MakeSize(kWidth, kHeight));
          EXPECT_TRUE(test::ImagesMatch(*bitmap, *ExpectedBitmap(layout), 0, "tiff-" + name));
        }
      }
    }
  }
}


// --- resolution, PNG and JPEG data, the data forms

// A bitmap's point size at the given resolution, as a TIFF records it.
std::vector<uint8_t> RgbTiff(uint32_t width, uint32_t height, float dotsPerInch,
                             const std::string& name, bool bigEndian = true) {
  TiffSpec spec;
  spec.width = width;
  spec.height = height;
  spec.bigEndian = bigEndian;
  spec.dotsPerInch = dotsPerInch;
  spec.rowsPerStrip = 1;
  for (uint32_t i = 0; i < width * height; ++i) {
    spec.samples.insert(spec.samples.end(), {static_cast<uint8_t>(i * 10), 200, 30});
  }
  return MakeTiff(spec, name);
}

TEST(ArchivedBitmaps, ResolutionGivesThePointSize) {
  const struct {
    float dotsPerInch;
    Size size;
  } cases[] = {{0, {8, 4}}, {72, {8, 4}}, {144, {4, 2}}, {36, {16, 8}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.dotsPerInch);
    const auto bitmap = DecodeRoot(
        BitmapRepArchive(RgbTiff(8, 4, c.dotsPerInch, "dpi-" + std::to_string(int(c.dotsPerInch)))));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->pixelsWide(), 8);
    EXPECT_EQ(bitmap->pixelsHigh(), 4);
    EXPECT_EQ(bitmap->size(), c.size);
  }
}

TEST(ArchivedBitmaps, PngAndJpegDataDecodeUnderTheTiffKey) {
  auto picture = test::MakeImage(6, 4, [](int x, int y) {
    return x < 4 ? Rgba8{static_cast<uint8_t>(x * 40), static_cast<uint8_t>(y * 60), 128, 255}
                 : Rgba8{};
  });
  picture->setSize({3, 2});  // 144 dots an inch
  const auto png = WritePNG(*picture);
  ASSERT_TRUE(png);
  const auto fromPng = DecodeRoot(BitmapRepArchive(*png));
  ASSERT_TRUE(fromPng);
  // PNG keeps its resolution in whole pixels a metre: 144 dots an inch come
  // back within a thousandth of a point.
  EXPECT_NEAR(fromPng->size().width, 3, 1e-3);
  EXPECT_NEAR(fromPng->size().height, 2, 1e-3);
  EXPECT_TRUE(test::ImagesMatch(*fromPng, *picture, 0, "png-in-bitmap-rep"));

  // Flat colour blocks, 16 by 16, so the JPEG keeps them nearly exactly.
  auto block = [](int x, int y) {
    return x < 16 ? Rgba8{200, 40, 40, 255} : y < 16 ? Rgba8{40, 200, 40, 255}
                                                     : Rgba8{40, 40, 200, 255};
  };
  const auto jpeg = test::EncodeJpeg(32, 32, block, 0, 144);
  const auto fromJpeg = DecodeRoot(BitmapRepArchive(jpeg));
  ASSERT_TRUE(fromJpeg);
  EXPECT_EQ(fromJpeg->size(), MakeSize(16, 16));
  // Rows of the encoder count from the top; the comparison's from the bottom.
  EXPECT_TRUE(test::ImagesMatch(*fromJpeg, *test::MakeImage(32, 32, [&](int x, int y) {
    return block(x, 31 - y);
  }), 6, "jpeg-in-bitmap-rep", [](int x, int y) { return x == 15 || x == 16 || y == 15 || y == 16; }));
}

TEST(ArchivedBitmaps, ImageDataAsInlineBytesDataObjectOrMutableData) {
  const std::vector<uint8_t> tiff = RgbTiff(3, 2, 0, "data-forms");
  const std::function<void(KeyedArchiver&)> forms[] = {
      [&](KeyedArchiver& c) { c.encodeBytesForKey(tiff, "NSTIFFRepresentation"); },
      [&](KeyedArchiver& c) { c.encodeDataForKey(tiff, "NSTIFFRepresentation"); },
      [&](KeyedArchiver& c) {
        c.encodeValueForKey(ArchiveValue(SharedBytes::copyOf(tiff)).setMutable(true),
                            "NSTIFFRepresentation");
      },
  };
  for (const auto& write : forms) {
    const auto bitmap = DecodeRoot(test::ArchiveRoot(KeysAs("NSBitmapImageRep", write)));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->pixelAt(1, 0), (Rgba8{10, 200, 30, 255}));
  }
  // Image file data stored bare where a bitmap is expected decodes too.
  const auto png = WritePNG(*test::MakeImage(2, 2, [](int, int) { return Rgba8{9, 8, 7, 255}; }));
  ASSERT_TRUE(png);
  std::vector<uint8_t> cut(png->begin(), png->begin() + 40);
  const auto archive = TopLevel([&](KeyedArchiver& c) {
    c.encodeDataForKey(*png, "Image");
    c.encodeDataForKey(cut, "Broken");
  });
  KeyedUnarchiver coder(SharedBytes::copyOf(archive));
  const auto bitmap = coder.decodeBitmapForKey("Image");
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->pixelAt(1, 1), (Rgba8{9, 8, 7, 255}));
  // Damaged data reads as nil with a warning; the archive stays readable.
  LogCapture log;
  EXPECT_FALSE(coder.decodeBitmapForKey("Broken"));
  EXPECT_TRUE(coder.isValid());
  EXPECT_TRUE(log.contains("the image data of the value under \"Broken\" cannot be read (PNG image"));
}

// --- the image wrappers

// An archive whose root is an image holding `reps` (bitmap representations
// written by the library) in the platform's pairs, or in the one flat array
// another implementation writes.
std::vector<uint8_t> ImageArchive(const std::vector<std::shared_ptr<Bitmap>>& reps,
                                  std::optional<Size> size, bool flat) {
  ValueArray items;
  if (flat) items.push_back(int64_t{0});
  for (const auto& rep : reps) {
    if (flat) {
      items.push_back(ArchiveValue(rep));
    } else {
      items.push_back(ArchiveValue::array({int64_t{0}, ArchiveValue(rep)}));
    }
  }
  ArchiveValue array = ArchiveValue::array(std::move(items));
  array.setMutable(true);
  return test::ArchiveRoot(KeysAs("NSImage", [=](KeyedArchiver& c) {
    c.encodeValueForKey(array, "NSReps");
    if (size) c.encodeSizeForKey(*size, "NSSize");
    c.encodeInt64ForKey(0x20C00000, "NSImageFlags");
    c.encodeIntForKey(0, "NSResizingMode");
  }));
}

TEST(ArchivedBitmaps, ImageWrappersGiveTheirFirstRepresentationAtTheImageSize) {
  auto first = test::MakeImage(4, 2, [](int, int) { return Rgba8{255, 0, 0, 255}; });
  auto second = test::MakeImage(8, 4, [](int, int) { return Rgba8{0, 0, 255, 255}; });
  for (bool flat : {false, true}) {
    SCOPED_TRACE(flat ? "one flat array" : "pairs");
    KeyedUnarchiver coder(SharedBytes::copyOf(ImageArchive({first, second}, Size{2, 1}, flat)));
    const auto image = coder.decodeImageForKey("root");
    ASSERT_TRUE(image);
    ASSERT_EQ(image->representations.size(), 2u);
    EXPECT_EQ(image->size, MakeSize(2, 1));
    const auto bitmap = coder.decodeBitmapForKey("root");
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->pixelsWide(), 4);
    EXPECT_EQ(bitmap->pixelAt(0, 0), (Rgba8{255, 0, 0, 255}));
    // The representation recorded no resolution: the image's size gives it one.
    EXPECT_EQ(bitmap->size(), MakeSize(2, 1));
  }
  // A representation with a resolution of its own keeps it; without a size
  // the image takes its first representation's.
  auto retina = test::MakeImage(4, 2, [](int, int) { return Rgba8{0, 255, 0, 255}; });
  retina->setSize({2, 1});
  KeyedUnarchiver withResolution(SharedBytes::copyOf(ImageArchive({retina}, Size{40, 20}, false)));
  EXPECT_EQ(withResolution.decodeBitmapForKey("root")->size(), MakeSize(2, 1));
  KeyedUnarchiver withoutSize(SharedBytes::copyOf(ImageArchive({retina}, std::nullopt, false)));
  EXPECT_EQ(withoutSize.decodeImageForKey("root")->size, MakeSize(2, 1));
}

// --- hostile image data

// A grey TIFF written by hand: the directory claims `width` × `height`
// pixels in strips of `rowsPerStrip` rows holding `stripBytes` bytes each
// (one entry a strip, stored one after the other), followed by `present`
// bytes of pixel data.
std::vector<uint8_t> ClaimingTiff(uint32_t width, uint32_t height, uint32_t rowsPerStrip,
                                  const std::vector<uint32_t>& stripBytes, uint32_t present) {
  std::vector<uint8_t> out = {'I', 'I', 42, 0, 8, 0, 0, 0};
  const uint16_t kShort = 3, kLong = 4;
  const auto strips = static_cast<uint32_t>(stripBytes.size());
  const uint32_t entries = 9, arrays = 8 + 2 + entries * 12 + 4;
  const uint32_t dataOffset = arrays + (strips > 1 ? 8 * strips : 0);
  const struct { uint16_t tag, type; uint32_t count, value; } fields[] = {
      {256, kLong, 1, width},
      {257, kLong, 1, height},
      {258, kShort, 1, 8},
      {259, kShort, 1, 1},
      {262, kShort, 1, 1},
      {273, kLong, strips, strips > 1 ? arrays : dataOffset},
      {277, kShort, 1, 1},
      {278, kLong, 1, rowsPerStrip},
      {279, kLong, strips, strips > 1 ? arrays + 4 * strips : stripBytes[0]},
  };
  test::AppendU16(out, entries);
  for (const auto& f : fields) {
    test::AppendU16(out, f.tag);
    test::AppendU16(out, f.type);
    test::AppendU32(out, f.count);
    if (f.type == kShort) {
      test::AppendU16(out, f.value);
      test::AppendU16(out, 0);
    } else {
      test::AppendU32(out, f.value);
    }
  }
  test::AppendU32(out, 0);  // no next directory
  if (strips > 1) {
    uint32_t offset = dataOffset;
    for (uint32_t bytes : stripBytes) {
      test::AppendU32(out, offset);
      offset += bytes;
    }
    for (uint32_t bytes : stripBytes) test::AppendU32(out, bytes);
  }
  out.resize(out.size() + present, 0x80);
  return out;
}

// One strip holding the whole image.
std::vector<uint8_t> ClaimingTiff(uint32_t width, uint32_t height) {
  return ClaimingTiff(width, height, height, {width * height}, width * height);
}

TEST(ArchivedBitmaps, ClaimedSizesAboveTheLimitsRefuseTheArchiveBeforeDecoding) {
  const struct {
    const char* name;
    std::vector<uint8_t> tiff;
    ArchiveLimits limits;
    const char* error;
  } cases[] = {
      {"60000 a side", ClaimingTiff(60000, 60000, 60000, {16}, 16), {},
       "an image in the archive has 60000 x 60000 pixels, more than 32767 a side"},
      {"400 megapixels", ClaimingTiff(20000, 20000, 20000, {16}, 16), {},
       "an image in the archive has 20000 x 20000 pixels, above the limit of 268435456 pixels "
       "an image"},
      {"one above a lowered limit", ClaimingTiff(11, 10), {.maxImagePixels = 100},
       "an image in the archive has 11 x 10 pixels, above the limit of 100 pixels an image"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    LogCapture log;
    KeyedUnarchiver coder(SharedBytes::copyOf(BitmapRepArchive(c.tiff)), c.limits);
    EXPECT_FALSE(coder.decodeBitmapForKey("root"));
    EXPECT_FALSE(coder.isValid());
    EXPECT_EQ(coder.error(), c.error);
    EXPECT_TRUE(log.contains(c.error));
  }
  // At the limit the image decodes.
  KeyedUnarchiver atLimit(SharedBytes::copyOf(BitmapRepArchive(ClaimingTiff(10, 10))),
                          {.maxImagePixels = 100});
  const auto bitmap = atLimit.decodeBitmapForKey("root");
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->pixelAt(9, 9), (Rgba8{128, 128, 128, 255}));
  EXPECT_EQ(atLimit.imagePixelsDecoded(), 100u);
}

TEST(ArchivedBitmaps, AllTheImagesOfAnArchiveShareOnePixelBudget) {
  const auto a = test::MakeImage(10, 10, [](int, int) { return Rgba8{1, 2, 3, 255}; });
  const auto b = test::MakeImage(10, 6, [](int, int) { return Rgba8{4, 5, 6, 255}; });
  // One bitmap referenced twice decodes once and counts once.
  const auto archive = TopLevel([&](KeyedArchiver& c) {
    c.encodeBitmapForKey(a, "First");
    c.encodeBitmapForKey(a, "Again");
    c.encodeBitmapForKey(b, "Other");
  });
  for (uint64_t total : {160, 159}) {
    SCOPED_TRACE(total);
    LogCapture log;
    KeyedUnarchiver coder(SharedBytes::copyOf(archive), {.maxTotalImagePixels = total});
    const auto first = coder.decodeBitmapForKey("First");
    EXPECT_TRUE(first);
    EXPECT_EQ(coder.decodeBitmapForKey("Again"), first);
    EXPECT_EQ(coder.imagePixelsDecoded(), 100u);
    const auto other = coder.decodeBitmapForKey("Other");
    EXPECT_EQ(other != nullptr, total == 160);
    EXPECT_EQ(coder.isValid(), total == 160);
    if (total == 159) {
      EXPECT_EQ(coder.error(),
                "the images in the archive have more than 159 pixels together, the limit for "
                "one archive");
    }
  }
}

TEST(ArchivedBitmaps, TruncatedStripsAreRefusedBeforeThePixelsAreAllocated) {
  const struct {
    const char* name;
    std::vector<uint8_t> tiff;
    std::string reason;
  } cases[] = {
      // 16000 × 16000 is within every limit, but its one strip runs a
      // gigabyte past the end of the data. (libtiff reads a large single
      // strip as many smaller ones; the first of them already runs past.)
      {"one strip past the end", ClaimingTiff(16000, 16000, 16000, {256000000}, 64),
       "TIFF image: malformed data (strip 1 of "},
      // Strips of 10 rows: the fourth holds 600 bytes of its 1000 and the
      // data ends in the seventh.
      {"short strip", ClaimingTiff(100, 100, 10, {1000, 1000, 1000, 600, 1000, 1000, 1000, 1000,
                                                  1000, 1000}, 4200),
       "TIFF image: malformed data (strip 4 of 10 is truncated: 600 bytes of 1000)"},
      {"data ends early", ClaimingTiff(100, 100, 10, std::vector<uint32_t>(10, 1000), 6500),
       "TIFF image: malformed data (strip 7 of 10 ends past the end of the data: 1000 bytes at "
       "offset 6202 in 6702)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const ImageResult plain = ReadTIFF(c.tiff);
    EXPECT_FALSE(plain);
    EXPECT_EQ(plain.reason().rfind(c.reason, 0), 0u) << plain.reason();
    // In an archive the bitmap reads as nil and the rest of the archive loads.
    LogCapture log;
    KeyedUnarchiver coder(SharedBytes::copyOf(BitmapRepArchive(c.tiff)));
    EXPECT_FALSE(coder.decodeBitmapForKey("root"));
    EXPECT_TRUE(coder.isValid()) << coder.error();
    EXPECT_TRUE(log.contains(c.reason));
    EXPECT_EQ(coder.imagePixelsDecoded(), 0u);
  }
  // The first case's strip is found to run past the end, whatever libtiff
  // made of it.
  EXPECT_NE(ReadTIFF(cases[0].tiff).reason().find("ends past the end of the data"),
            std::string::npos);
}

}  // namespace
}  // namespace paintdoc
