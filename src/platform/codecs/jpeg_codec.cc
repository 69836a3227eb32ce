// JPEG reading with libjpeg(-turbo). Errors come back by longjmp, so the
// session state lives in a caller-owned struct (see png_codec.cc).
#include <algorithm>
#include <cmath>
#include <cstdio>  // jpeglib.h needs FILE and size_t declared first
#include <jpeglib.h>

#include <csetjmp>
#include <cstdlib>
#include <vector>

#include "platform/codecs/colour_profile.h"
#include "platform/codecs/image_codecs.h"
#include "platform/codecs/image_decoding.h"

namespace paintdoc {
namespace {

using image_decoding::Refused;

// A progressive file can hold thousands of tiny scans that each cost a pass
// over the whole image; real encoders use about a dozen.
constexpr int kMaxProgressiveScans = 500;

struct JpegErrorManager {
  jpeg_error_mgr base;
  std::jmp_buf jump;
};

struct JpegReadState {
  jpeg_decompress_struct cinfo{};
  JpegErrorManager errors{};
  jpeg_progress_mgr progress{};
  std::string message;
  std::string sizeError;
  const ImageReadOptions* options = nullptr;
  std::shared_ptr<Bitmap> bitmap;
  std::vector<uint8_t> scanline;
  int orientation = 1;  // Exif
  std::vector<uint8_t> iccProfile;  // from APP2 segments
};

void OnJpegError(j_common_ptr cinfo) {
  auto* state = static_cast<JpegReadState*>(cinfo->client_data);
  if (state->message.empty()) {
    char text[JMSG_LENGTH_MAX] = {};
    (*cinfo->err->format_message)(cinfo, text);
    state->message = text;
  }
  std::longjmp(reinterpret_cast<JpegErrorManager*>(cinfo->err)->jump, 1);
}

void OnJpegMessage(j_common_ptr) {}

// Ends the libjpeg session with our own reason.
[[noreturn]] void AbortJpeg(JpegReadState* state, const char* reason) {
  if (state->message.empty()) state->message = reason;
  std::longjmp(state->errors.jump, 1);
}

void OnJpegProgress(j_common_ptr cinfo) {
  auto* decompress = reinterpret_cast<j_decompress_ptr>(cinfo);
  if (decompress->input_scan_number > kMaxProgressiveScans) {
    AbortJpeg(static_cast<JpegReadState*>(cinfo->client_data), "too many progressive scans");
  }
}

// One decoded scanline into straight R, G, B, A bytes of the bitmap row.
void StoreScanline(JpegReadState* state, int row) {
  const jpeg_decompress_struct& cinfo = state->cinfo;
  const uint8_t* in = state->scanline.data();
  uint8_t* out = state->bitmap->rowAt(row);  // filled with R, G, B, A, converted later
  int width = static_cast<int>(cinfo.output_width);
  if (cinfo.out_color_space == JCS_CMYK) {
    // Adobe writes CMYK inverted (0 = full ink); others write it plain.
    bool inverted = cinfo.saw_Adobe_marker;
    for (int x = 0; x < width; ++x, in += 4, out += 4) {
      unsigned c = inverted ? in[0] : 255 - in[0], m = inverted ? in[1] : 255 - in[1];
      unsigned y = inverted ? in[2] : 255 - in[2], k = inverted ? in[3] : 255 - in[3];
      out[0] = static_cast<uint8_t>((c * k + 127) / 255);
      out[1] = static_cast<uint8_t>((m * k + 127) / 255);
      out[2] = static_cast<uint8_t>((y * k + 127) / 255);
      out[3] = 255;
    }
  } else {
    for (int x = 0; x < width; ++x, in += 3, out += 4) {
      out[0] = in[0];
      out[1] = in[1];
      out[2] = in[2];
      out[3] = 255;
    }
  }
}

// libjpeg joins the profile's APP2 pieces; a malformed sequence gives none.
void ReadIccProfile(JpegReadState* state) {
  JOCTET* profile = nullptr;
  unsigned int length = 0;
  if (!jpeg_read_icc_profile(&state->cinfo, &profile, &length) || !profile) return;
  state->iccProfile.assign(profile, profile + length);
  std::free(profile);
}

// The largest DCT scale-down (8, 4, 2 or 1) whose output still covers the
// image fitted into a square of `box` pixels on both sides.
unsigned ShrinkDenominator(unsigned width, unsigned height, int box) {
  if (box <= 0 || width == 0 || height == 0) return 1;
  const double longSide = std::max(width, height), shortSide = std::min(width, height);
  const double fittedLong = std::min(longSide, static_cast<double>(box));
  const double fittedShort = std::ceil(shortSide * fittedLong / longSide);
  for (unsigned denominator : {8u, 4u, 2u}) {
    if (std::ceil(longSide / denominator) >= fittedLong &&
        std::ceil(shortSide / denominator) >= fittedShort) {
      return denominator;
    }
  }
  return 1;
}

bool DecodeJpeg(JpegReadState* state, std::span<const uint8_t> bytes) {
  jpeg_decompress_struct* cinfo = &state->cinfo;
  if (setjmp(state->errors.jump)) return false;
  jpeg_mem_src(cinfo, bytes.data(), static_cast<unsigned long>(bytes.size()));
  jpeg_save_markers(cinfo, JPEG_APP0 + 1, 0xffff);  // Exif
  jpeg_save_markers(cinfo, JPEG_APP0 + 2, 0xffff);  // ICC profile, in pieces
  jpeg_read_header(cinfo, TRUE);
  ReadIccProfile(state);
  for (jpeg_saved_marker_ptr marker = cinfo->marker_list; marker; marker = marker->next) {
    if (marker->marker == JPEG_APP0 + 1) {
      int orientation = image_decoding::ExifOrientation({marker->data, marker->data_length});
      if (orientation != 1) state->orientation = orientation;
    }
  }
  state->sizeError = image_decoding::CheckImageSize(cinfo->image_width, cinfo->image_height,
                                                    *state->options);
  if (!state->sizeError.empty()) return false;
  bool cmyk = cinfo->jpeg_color_space == JCS_CMYK || cinfo->jpeg_color_space == JCS_YCCK;
  cinfo->out_color_space = cmyk ? JCS_CMYK : JCS_RGB;
  cinfo->scale_num = 1;
  cinfo->scale_denom =
      ShrinkDenominator(cinfo->image_width, cinfo->image_height, state->options->shrinkToFit);
  jpeg_start_decompress(cinfo);
  state->bitmap = Bitmap::create(static_cast<int>(cinfo->output_width),
                                 static_cast<int>(cinfo->output_height));
  if (!state->bitmap) AbortJpeg(state, "out of memory");
  state->scanline.resize(static_cast<size_t>(cinfo->output_width) * cinfo->output_components);
  while (cinfo->output_scanline < cinfo->output_height) {
    int row = static_cast<int>(cinfo->output_scanline);
    JSAMPROW line = state->scanline.data();
    if (jpeg_read_scanlines(cinfo, &line, 1) != 1) AbortJpeg(state, "image data is truncated");
    StoreScanline(state, row);
  }
  jpeg_finish_decompress(cinfo);
  return true;
}

double DotsPerInch(unsigned density, int unit) {
  if (unit == 1) return density;
  if (unit == 2) return density * image_decoding::kCentimetresPerInch;
  return 0;  // aspect ratio only
}

}  // namespace

ImageResult ReadJPEG(std::span<const uint8_t> bytes, const ImageReadOptions& options) {
  if (bytes.size() < 3 || bytes[0] != 0xff || bytes[1] != 0xd8) {
    return Refused(ImageFormat::JPEG, "missing JPEG signature");
  }
  JpegReadState state;
  state.options = &options;
  state.cinfo.err = jpeg_std_error(&state.errors.base);
  state.errors.base.error_exit = OnJpegError;
  state.errors.base.output_message = OnJpegMessage;
  state.cinfo.client_data = &state;
  jpeg_create_decompress(&state.cinfo);
  state.progress.progress_monitor = OnJpegProgress;
  state.cinfo.progress = &state.progress;
  bool decoded = DecodeJpeg(&state, bytes);
  // A file cut short after its first scanlines still decodes (the missing
  // rows come out grey), as viewers show it: a partial preview beats none.
  const Size fullSize{static_cast<double>(state.cinfo.image_width),
                      static_cast<double>(state.cinfo.image_height)};
  int densityUnit = state.cinfo.density_unit;
  double xDpi = DotsPerInch(state.cinfo.X_density, densityUnit);
  double yDpi = DotsPerInch(state.cinfo.Y_density, densityUnit);
  bool sawJfif = state.cinfo.saw_JFIF_marker;
  jpeg_destroy_decompress(&state.cinfo);
  if (!decoded) {
    return Refused(ImageFormat::JPEG, !state.sizeError.empty()
                                          ? state.sizeError
                                          : "malformed data (" + state.message + ")");
  }
  Bitmap& bitmap = *state.bitmap;
  for (int row = 0; row < bitmap.pixelsHigh(); ++row) {
    bitmap.writeRGBARow(row, bitmap.rowAt(row), AlphaMode::Straight);
  }
  // Decoded at a reduced scale, the bitmap still stands for the whole image.
  if (bitmap.pixelsWide() != fullSize.width) bitmap.setSize(fullSize);
  image_decoding::ConvertToSRGB(bitmap, state.iccProfile, ImageFormat::JPEG);
  if (sawJfif) image_decoding::ApplyResolution(bitmap, xDpi, yDpi);
  std::shared_ptr<Bitmap> result = std::move(state.bitmap);
  if (options.applyExifOrientation) {
    result = image_decoding::ApplyExifOrientation(std::move(result), state.orientation);
    if (!result) return Refused(ImageFormat::JPEG, "out of memory");
  }
  return image_decoding::Decoded(ImageFormat::JPEG, std::move(result));
}

}  // namespace paintdoc
