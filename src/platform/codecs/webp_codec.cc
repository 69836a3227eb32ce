// WebP reading with libwebp; an animation gives its first frame, composed on
// its canvas by the animation decoder.
#include <webp/decode.h>
#include <webp/demux.h>

#include <cstring>

#include "platform/codecs/colour_profile.h"
#include "platform/codecs/image_codecs.h"
#include "platform/codecs/image_decoding.h"

namespace paintdoc {
namespace {

using image_decoding::Refused;

std::string WebPReason(VP8StatusCode status) {
  switch (status) {
    case VP8_STATUS_OUT_OF_MEMORY: return "out of memory";
    case VP8_STATUS_UNSUPPORTED_FEATURE: return "uses an unsupported feature";
    case VP8_STATUS_NOT_ENOUGH_DATA: return "image data is truncated";
    default: return "malformed data";
  }
}

// Decodes a still image straight into the bitmap's memory, premultiplied and
// in its byte order.
ImageResult DecodeStill(std::span<const uint8_t> bytes, std::shared_ptr<Bitmap> bitmap) {
  WebPDecoderConfig config;
  if (!WebPInitDecoderConfig(&config)) return Refused(ImageFormat::WebP, "library mismatch");
  config.output.colorspace = Bitmap::kLittleEndian ? MODE_bgrA : MODE_Argb;
  config.output.is_external_memory = 1;
  config.output.u.RGBA.rgba = bitmap->data();
  config.output.u.RGBA.stride = static_cast<int>(bitmap->bytesPerRow());
  config.output.u.RGBA.size = bitmap->byteCount();
  VP8StatusCode status = WebPDecode(bytes.data(), bytes.size(), &config);
  WebPFreeDecBuffer(&config.output);
  if (status != VP8_STATUS_OK) return Refused(ImageFormat::WebP, WebPReason(status));
  return image_decoding::Decoded(ImageFormat::WebP, std::move(bitmap));
}

struct AnimDecoderDeleter {
  void operator()(WebPAnimDecoder* decoder) const { WebPAnimDecoderDelete(decoder); }
};

ImageResult DecodeFirstFrame(std::span<const uint8_t> bytes, std::shared_ptr<Bitmap> bitmap) {
  WebPAnimDecoderOptions options;
  if (!WebPAnimDecoderOptionsInit(&options)) return Refused(ImageFormat::WebP, "library mismatch");
  options.color_mode = MODE_rgbA;
  options.use_threads = 0;
  WebPData data{bytes.data(), bytes.size()};
  std::unique_ptr<WebPAnimDecoder, AnimDecoderDeleter> decoder(WebPAnimDecoderNew(&data, &options));
  if (!decoder) return Refused(ImageFormat::WebP, "malformed animation");
  WebPAnimInfo info;
  if (!WebPAnimDecoderGetInfo(decoder.get(), &info) ||
      info.canvas_width != static_cast<uint32_t>(bitmap->pixelsWide()) ||
      info.canvas_height != static_cast<uint32_t>(bitmap->pixelsHigh())) {
    return Refused(ImageFormat::WebP, "malformed animation");
  }
  uint8_t* frame = nullptr;
  int timestamp = 0;
  if (!WebPAnimDecoderGetNext(decoder.get(), &frame, &timestamp) || !frame) {
    return Refused(ImageFormat::WebP, "malformed animation frame");
  }
  for (int row = 0; row < bitmap->pixelsHigh(); ++row) {
    bitmap->writeRGBARow(row, frame + bitmap->bytesPerRow() * static_cast<size_t>(row),
                         AlphaMode::Premultiplied);
  }
  return image_decoding::Decoded(ImageFormat::WebP, std::move(bitmap));
}

struct DemuxDeleter {
  void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};

// The ICCP chunk's bytes (inside `bytes`), or none.
std::span<const uint8_t> IccProfile(std::span<const uint8_t> bytes) {
  WebPData data{bytes.data(), bytes.size()};
  std::unique_ptr<WebPDemuxer, DemuxDeleter> demuxer(WebPDemux(&data));
  if (!demuxer || !(WebPDemuxGetI(demuxer.get(), WEBP_FF_FORMAT_FLAGS) & ICCP_FLAG)) return {};
  WebPChunkIterator chunk;
  if (!WebPDemuxGetChunk(demuxer.get(), "ICCP", 1, &chunk)) return {};
  std::span<const uint8_t> profile(chunk.chunk.bytes, chunk.chunk.size);
  WebPDemuxReleaseChunkIterator(&chunk);
  return profile;
}

}  // namespace

ImageResult ReadWebP(std::span<const uint8_t> bytes, const ImageReadOptions& options) {
  WebPBitstreamFeatures features;
  VP8StatusCode status = WebPGetFeatures(bytes.data(), bytes.size(), &features);
  if (status != VP8_STATUS_OK) return Refused(ImageFormat::WebP, WebPReason(status));
  // For an animation these are the canvas's dimensions.
  std::string sizeError = image_decoding::CheckImageSize(static_cast<uint64_t>(features.width),
                                                         static_cast<uint64_t>(features.height),
                                                         options);
  if (!sizeError.empty()) return Refused(ImageFormat::WebP, sizeError);
  auto bitmap = Bitmap::create(features.width, features.height);
  if (!bitmap) return Refused(ImageFormat::WebP, "out of memory");
  ImageResult result = features.has_animation ? DecodeFirstFrame(bytes, std::move(bitmap))
                                               : DecodeStill(bytes, std::move(bitmap));
  if (result) image_decoding::ConvertToSRGB(*result->bitmap, IccProfile(bytes), ImageFormat::WebP);
  return result;
}

}  // namespace paintdoc
