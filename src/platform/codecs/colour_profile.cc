#include "platform/codecs/colour_profile.h"

#include <lcms2.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/values/log.h"

namespace paintdoc::image_decoding {
namespace {

// Little CMS reports problems through a per-context handler; the first one
// becomes part of the warning.
void OnLcmsError(cmsContext context, cmsUInt32Number, const char* text) {
  auto* firstError = static_cast<std::string*>(cmsGetContextUserData(context));
  if (firstError && firstError->empty() && text) *firstError = text;
}

struct ContextDeleter {
  void operator()(cmsContext context) const { cmsDeleteContext(context); }
};
struct ProfileDeleter {
  void operator()(cmsHPROFILE profile) const { cmsCloseProfile(profile); }
};
struct TransformDeleter {
  void operator()(cmsHTRANSFORM transform) const { cmsDeleteTransform(transform); }
};
// cmsContext is a pointer to an incomplete struct; the other two are void*.
using ContextPtr = std::unique_ptr<std::remove_pointer_t<cmsContext>, ContextDeleter>;
using ProfilePtr = std::unique_ptr<void, ProfileDeleter>;
using TransformPtr = std::unique_ptr<void, TransformDeleter>;

// Decoded rows are R, G, B, A bytes. A grey profile reads the red byte (grey
// images are expanded with R = G = B) and skips the other three.
constexpr cmsUInt32Number kGreyOfRgba = COLORSPACE_SH(PT_GRAY) | EXTRA_SH(3) | CHANNELS_SH(1) |
                                        BYTES_SH(1);

void Warn(ImageFormat format, const std::string& reason) {
  Log(std::string("Warning: ") + ImageFormatName(format) + " image: colour profile ignored (" +
      reason + "); the pixels are shown as stored");
}

// The transform to sRGB for the profile, or null with `reason` set.
TransformPtr MakeTransform(cmsContext context, std::span<const uint8_t> iccProfile,
                           std::string& reason) {
  ProfilePtr source(cmsOpenProfileFromMemTHR(context, iccProfile.data(),
                                             static_cast<cmsUInt32Number>(iccProfile.size())));
  if (!source) {
    reason = "unreadable";
    return nullptr;
  }
  cmsUInt32Number inputFormat = 0;
  switch (cmsGetColorSpace(source.get())) {
    case cmsSigRgbData: inputFormat = TYPE_RGBA_8; break;
    case cmsSigGrayData: inputFormat = kGreyOfRgba; break;
    default:
      reason = "it is not for RGB or grey pixels";
      return nullptr;
  }
  ProfilePtr sRGB(cmsCreate_sRGBProfileTHR(context));
  if (!sRGB) {
    reason = "no sRGB profile";
    return nullptr;
  }
  TransformPtr transform(cmsCreateTransformTHR(context, source.get(), inputFormat, sRGB.get(),
                                               TYPE_RGB_8, INTENT_PERCEPTUAL, 0));
  if (!transform) reason = "no transform to sRGB can be built from it";
  return transform;
}

void TransformRows(cmsHTRANSFORM transform, Bitmap& bitmap) {
  const auto width = static_cast<size_t>(bitmap.pixelsWide());
  std::vector<uint8_t> rgba(bitmap.bytesPerRow());
  std::vector<uint8_t> rgb(width * 3);
  for (int row = 0; row < bitmap.pixelsHigh(); ++row) {
    bitmap.readRGBARow(row, rgba.data(), AlphaMode::Straight);
    cmsDoTransform(transform, rgba.data(), rgb.data(), static_cast<cmsUInt32Number>(width));
    for (size_t x = 0; x < width; ++x) {
      for (size_t channel = 0; channel < 3; ++channel) rgba[x * 4 + channel] = rgb[x * 3 + channel];
    }
    bitmap.writeRGBARow(row, rgba.data(), AlphaMode::Straight);
  }
}

}  // namespace

void ConvertToSRGB(Bitmap& bitmap, std::span<const uint8_t> iccProfile, ImageFormat format) {
  if (iccProfile.empty() || bitmap.isEmpty()) return;
  if (iccProfile.size() > kMaxColourProfileBytes) {
    Warn(format, "larger than " + std::to_string(kMaxColourProfileBytes) + " bytes");
    return;
  }
  std::string firstError;
  ContextPtr context(cmsCreateContext(nullptr, &firstError));
  if (!context) {
    Warn(format, "out of memory");
    return;
  }
  cmsSetLogErrorHandlerTHR(context.get(), OnLcmsError);
  std::string reason;
  TransformPtr transform = MakeTransform(context.get(), iccProfile, reason);
  if (!transform) {
    Warn(format, firstError.empty() ? reason : reason + ": " + firstError);
    return;
  }
  TransformRows(transform.get(), bitmap);
}

}  // namespace paintdoc::image_decoding
