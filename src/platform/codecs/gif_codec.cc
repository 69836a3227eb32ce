// GIF reading with giflib: the first frame, placed on the logical screen.
// Records are walked one by one so that an animation's later frames are
// never decoded or held in memory.
#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/codecs/image_codecs.h"
#include "platform/codecs/image_decoding.h"

namespace paintdoc {
namespace {

using image_decoding::Refused;

struct GifInput {
  std::span<const uint8_t> bytes;
  size_t offset = 0;
};

int ReadGifBytes(GifFileType* gif, GifByteType* out, int length) {
  auto* input = static_cast<GifInput*>(gif->UserData);
  size_t available = input->bytes.size() - input->offset;
  size_t count = length < 0 ? 0 : std::min(available, static_cast<size_t>(length));
  std::memcpy(out, input->bytes.data() + input->offset, count);
  input->offset += count;
  return static_cast<int>(count);
}

struct GifCloser {
  void operator()(GifFileType* gif) const {
    int error = 0;
    DGifCloseFile(gif, &error);
  }
};
using GifPtr = std::unique_ptr<GifFileType, GifCloser>;

std::string GifReason(int errorCode) {
  const char* text = GifErrorString(errorCode);
  return std::string("malformed data (") + (text ? text : "unknown error") + ")";
}

// The transparent colour index of a graphic control extension, or -1.
int TransparentIndex(const GifByteType* extension) {
  GraphicsControlBlock control{};
  if (extension && DGifExtensionToGCB(extension[0], extension + 1, &control) == GIF_OK) {
    return control.TransparentColor;
  }
  return NO_TRANSPARENT_COLOR;
}

// The file order of an interlaced frame's rows: every 8th from 0, every 8th
// from 4, every 4th from 2, every 2nd from 1.
std::vector<int> RowOrder(int height, bool interlaced) {
  std::vector<int> order;
  order.reserve(static_cast<size_t>(height));
  if (!interlaced) {
    for (int row = 0; row < height; ++row) order.push_back(row);
    return order;
  }
  const int starts[] = {0, 4, 2, 1}, steps[] = {8, 8, 4, 2};
  for (int pass = 0; pass < 4; ++pass) {
    for (int row = starts[pass]; row < height; row += steps[pass]) order.push_back(row);
  }
  return order;
}

// Decodes the current frame (after DGifGetImageDesc) onto the bitmap.
bool DecodeFrame(GifFileType* gif, int transparentIndex, Bitmap& bitmap) {
  const GifImageDesc& frame = gif->Image;
  const ColorMapObject* colors = frame.ColorMap ? frame.ColorMap : gif->SColorMap;
  int colorCount = colors ? colors->ColorCount : 0;
  std::vector<GifPixelType> line(static_cast<size_t>(frame.Width));
  for (int row : RowOrder(frame.Height, frame.Interlace)) {
    if (DGifGetLine(gif, line.data(), frame.Width) != GIF_OK) return false;
    int y = frame.Top + row;
    if (y >= bitmap.pixelsHigh()) continue;  // frames may overhang the screen
    for (int x = 0; x < frame.Width && frame.Left + x < bitmap.pixelsWide(); ++x) {
      int index = line[static_cast<size_t>(x)];
      // Indices beyond the colour table have no colour; leave them transparent.
      if (index == transparentIndex || index >= colorCount) continue;
      const GifColorType& color = colors->Colors[index];
      bitmap.setPixelAt(frame.Left + x, y, {color.Red, color.Green, color.Blue, 255});
    }
  }
  return true;
}

}  // namespace

ImageResult ReadGIF(std::span<const uint8_t> bytes, const ImageReadOptions& options) {
  GifInput input{bytes};
  int errorCode = 0;
  GifPtr gif(DGifOpen(&input, ReadGifBytes, &errorCode));
  if (!gif) return Refused(ImageFormat::GIF, GifReason(errorCode));

  const GifByteType* controlExtension = nullptr;
  std::vector<GifByteType> savedControl;
  while (true) {
    GifRecordType record = UNDEFINED_RECORD_TYPE;
    if (DGifGetRecordType(gif.get(), &record) != GIF_OK) {
      return Refused(ImageFormat::GIF, GifReason(gif->Error));
    }
    if (record == TERMINATE_RECORD_TYPE) return Refused(ImageFormat::GIF, "holds no image");
    if (record == EXTENSION_RECORD_TYPE) {
      int code = 0;
      GifByteType* block = nullptr;
      if (DGifGetExtension(gif.get(), &code, &block) != GIF_OK) {
        return Refused(ImageFormat::GIF, GifReason(gif->Error));
      }
      if (code == GRAPHICS_EXT_FUNC_CODE && block && block[0] >= 4) {
        savedControl.assign(block, block + 1 + block[0]);
        controlExtension = savedControl.data();
      }
      while (block) {
        if (DGifGetExtensionNext(gif.get(), &block) != GIF_OK) {
          return Refused(ImageFormat::GIF, GifReason(gif->Error));
        }
      }
      continue;
    }
    if (record != IMAGE_DESC_RECORD_TYPE) continue;

    if (DGifGetImageDesc(gif.get()) != GIF_OK) {
      return Refused(ImageFormat::GIF, GifReason(gif->Error));
    }
    const GifImageDesc& frame = gif->Image;
    // A zero logical screen is common in broken writers; fall back to the frame.
    int width = gif->SWidth > 0 ? gif->SWidth : frame.Left + frame.Width;
    int height = gif->SHeight > 0 ? gif->SHeight : frame.Top + frame.Height;
    std::string sizeError = image_decoding::CheckImageSize(static_cast<uint64_t>(width),
                                                           static_cast<uint64_t>(height), options);
    // The frame is decoded whole even where it overhangs the screen, so it
    // is bounded too.
    if (sizeError.empty()) {
      sizeError = image_decoding::CheckImageSize(static_cast<uint64_t>(std::max(frame.Width, 0)),
                                                 static_cast<uint64_t>(std::max(frame.Height, 0)),
                                                 options);
    }
    if (!sizeError.empty()) return Refused(ImageFormat::GIF, sizeError);
    if (!frame.ColorMap && !gif->SColorMap) return Refused(ImageFormat::GIF, "has no colour table");
    auto bitmap = Bitmap::create(width, height);
    if (!bitmap) return Refused(ImageFormat::GIF, "out of memory");
    if (!DecodeFrame(gif.get(), TransparentIndex(controlExtension), *bitmap)) {
      return Refused(ImageFormat::GIF, GifReason(gif->Error));
    }
    return image_decoding::Decoded(ImageFormat::GIF, std::move(bitmap));
  }
}

}  // namespace paintdoc
