// Embedded colour profiles: images are converted to sRGB on load, bad
// profiles are ignored with a warning. The profiles are made by Little CMS
// here, and so is the expected sRGB value of each stored pixel.
#include <gtest/gtest.h>
#include <lcms2.h>
#include <png.h>
#include <webp/encode.h>

#include <algorithm>
#include <memory>

#include "support/image_test_files.h"
#include "platform/codecs/image_codecs.h"
#include "platform/values/log.h"

namespace paintdoc {
namespace {

using Profile = std::vector<uint8_t>;

Profile SaveProfile(cmsHPROFILE profile) {
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile, nullptr, &size);
  Profile bytes(size);
  cmsSaveProfileToMem(profile, bytes.data(), &size);
  cmsCloseProfile(profile);
  return bytes;
}

// Wide-gamut primaries (those of a common print-oriented RGB space), gamma 2.2.
Profile WideGamutProfile() {
  cmsCIExyY white;
  cmsWhitePointFromTemp(&white, 6504);
  const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
  cmsToneCurve* gamma = cmsBuildGamma(nullptr, 2.2);
  cmsToneCurve* curves[3] = {gamma, gamma, gamma};
  Profile bytes = SaveProfile(cmsCreateRGBProfile(&white, &primaries, curves));
  cmsFreeToneCurve(gamma);
  return bytes;
}

// Grey stored linearly (gamma 1): mid-greys come out lighter in sRGB.
Profile LinearGreyProfile() {
  cmsToneCurve* linear = cmsBuildGamma(nullptr, 1.0);
  Profile bytes = SaveProfile(cmsCreateGrayProfile(cmsD50_xyY(), linear));
  cmsFreeToneCurve(linear);
  return bytes;
}

// What Little CMS makes of one stored colour (grey: its red sample) in sRGB.
Rgba8 ExpectedSRGB(const Profile& profile, Rgba8 stored, bool grey) {
  cmsHPROFILE source =
      cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size()));
  cmsHPROFILE sRGB = cmsCreate_sRGBProfile();
  cmsHTRANSFORM transform = cmsCreateTransform(source, grey ? TYPE_GRAY_8 : TYPE_RGB_8, sRGB,
                                               TYPE_RGB_8, INTENT_PERCEPTUAL, 0);
  uint8_t in[3] = {stored.red, stored.green, stored.blue}, out[3] = {};
  cmsDoTransform(transform, in, out, 1);
  cmsDeleteTransform(transform);
  cmsCloseProfile(sRGB);
  cmsCloseProfile(source);
  return {out[0], out[1], out[2], 255};
}

// --- one file a format, with and without a profile

// Two mid-tones that both gamuts hold: no channel clips in either space.
const std::vector<uint8_t> kStoredRgb = {150, 100, 60, 90, 140, 170};
const std::vector<uint8_t> kStoredGrey = {64, 160};

std::vector<uint8_t> MakePng(const std::vector<uint8_t>& samples, bool grey,
                             const Profile& profile) {
  std::vector<uint8_t> out;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(
      png, &out,
      [](png_structp p, png_bytep data, size_t length) {
        auto* bytes = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(p));
        bytes->insert(bytes->end(), data, data + length);
      },
      [](png_structp) {});
  png_set_IHDR(png, info, 2, 1, 8, grey ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (!profile.empty()) {
    png_set_iCCP(png, info, "embedded", 0, profile.data(),
                 static_cast<png_uint_32>(profile.size()));
  }
  png_write_info(png, info);
  std::vector<uint8_t> row = samples;
  png_write_row(png, row.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return out;
}

std::vector<uint8_t> MakeJpeg(const Profile& profile) {
  return test::EncodeJpeg(16, 8, [](int x, int) {
    const uint8_t* rgb = &kStoredRgb[x < 8 ? 0 : 3];
    return Rgba8{rgb[0], rgb[1], rgb[2], 255};
  }, 0, 0, profile);
}

std::vector<uint8_t> MakeTiffWithProfile(const Profile& profile) {
  test::TiffSpec spec;
  spec.width = 2;
  spec.samples = kStoredRgb;
  spec.iccProfile = profile;
  return test::MakeTiff(spec, profile.empty() ? "plain" : "profiled");
}

// A lossless WebP, in the extended container with an ICCP chunk when profiled.
std::vector<uint8_t> MakeWebP(const Profile& profile) {
  uint8_t* encoded = nullptr;
  size_t size = WebPEncodeLosslessRGB(kStoredRgb.data(), 2, 1, 6, &encoded);
  std::vector<uint8_t> simple(encoded, encoded + size);
  WebPFree(encoded);
  if (profile.empty()) return simple;
  std::vector<uint8_t> out = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'E', 'B', 'P',
                              'V', 'P', '8', 'X', 10, 0, 0, 0,
                              0x20, 0, 0, 0,  // flags: ICC profile
                              1, 0, 0, 0, 0, 0,  // canvas width - 1, height - 1 (24 bits each)
                              'I', 'C', 'C', 'P'};
  test::AppendU32(out, static_cast<uint32_t>(profile.size()));
  out.insert(out.end(), profile.begin(), profile.end());
  if (profile.size() % 2) out.push_back(0);
  out.insert(out.end(), simple.begin() + 12, simple.end());  // the VP8L chunk
  const auto riffSize = static_cast<uint32_t>(out.size() - 8);
  for (int i = 0; i < 4; ++i) out[4 + i] = static_cast<uint8_t>(riffSize >> (8 * i));
  return out;
}

std::vector<uint8_t> MakeBmpWithProfile(const Profile& profile) {
  const std::vector<uint8_t> bgr = {60, 100, 150, 170, 140, 90, 0, 0};
  return test::MakeBmp(2, 1, 24, 0, {}, bgr, {}, 0, 0, profile);
}

struct FormatCase {
  const char* name;
  std::function<std::vector<uint8_t>(const Profile&)> make;
  bool grey = false;
};

const FormatCase kFormats[] = {
    {"png", [](const Profile& p) { return MakePng(kStoredRgb, false, p); }},
    {"png grey", [](const Profile& p) { return MakePng(kStoredGrey, true, p); }, true},
    {"jpeg", MakeJpeg},
    {"tiff", MakeTiffWithProfile},
    {"webp", MakeWebP},
    {"bmp v5", MakeBmpWithProfile},
};

// Each pixel of the profiled file is the sRGB value of the same pixel stored
// without a profile, and differs from it (the profile is not ignored).
TEST(ColourProfiles, EmbeddedProfilesAreConvertedToSRGB) {
  const Profile wide = WideGamutProfile(), grey = LinearGreyProfile();
  for (const FormatCase& format : kFormats) {
    SCOPED_TRACE(format.name);
    const Profile& profile = format.grey ? grey : wide;
    LogCapture log;
    ImageResult plain = ReadImage(format.make({}));
    ImageResult converted = ReadImage(format.make(profile));
    ASSERT_TRUE(plain) << plain.reason();
    ASSERT_TRUE(converted) << converted.reason();
    EXPECT_TRUE(log.messages().empty()) << log.messages().front();
    for (int x : {0, plain->bitmap->pixelsWide() - 1}) {
      const Rgba8 stored = plain->bitmap->pixelAt(x, 0);
      const Rgba8 expected = ExpectedSRGB(profile, stored, format.grey);
      EXPECT_EQ(converted->bitmap->pixelAt(x, 0), expected) << "pixel " << x;
      EXPECT_NE(expected, stored);
      for (uint8_t channel : {expected.red, expected.green, expected.blue}) {
        EXPECT_TRUE(channel > 0 && channel < 255) << "clipped: the colour proves nothing";
      }
    }
  }
}

TEST(ColourProfiles, BadProfilesAreIgnoredWithAWarning) {
  const Profile wide = WideGamutProfile();
  cmsHPROFILE lab = cmsCreateLab4Profile(nullptr);
  const struct {
    const char* name;
    Profile profile;
  } cases[] = {
      {"not a profile", Profile(200, 0x5a)},
      {"cut short", Profile(wide.begin(), wide.begin() + static_cast<long>(wide.size() / 2))},
      {"claims 4 billion tags",
       [&] {
         Profile p = wide;
         std::fill(p.begin() + 128, p.begin() + 132, 0xff);  // the tag count, after the header
         return p;
       }()},
      {"for Lab data", SaveProfile(lab)},
  };
  const ImageResult plain = ReadImage(MakeTiffWithProfile({}));
  ASSERT_TRUE(plain);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    LogCapture log;
    ImageResult decoded = ReadImage(MakeTiffWithProfile(c.profile));
    ASSERT_TRUE(decoded) << decoded.reason();
    EXPECT_TRUE(decoded->bitmap->samePixels(*plain->bitmap));
    EXPECT_TRUE(log.contains("Warning: TIFF image: colour profile ignored ("))
        << (log.messages().empty() ? "no warning" : log.messages().front());
  }
}

}  // namespace
}  // namespace paintdoc
