// The compiled half of the `paintdoc` Python package: a document read from a
// path or from bytes, drawn at any size into NumPy arrays or PNG bytes. The
// Python half (__init__.py) shapes the API; everything here keeps to what the
// command-line tool does, so that both give the same pixels and the same
// refusals.
//
// Reading and drawing run with the GIL released. A document draws one picture
// at a time (its canvas keeps caches that drawing fills); separate documents
// draw in parallel.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/codecs/image_codecs.h"
#include "platform/values/bitmap.h"
#include "preview/bitmap_scaling.h"
#include "preview/document_info.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"
#include "preview/preview_source.h"

namespace py = pybind11;

namespace paintdoc::python {

namespace {

// Each becomes a Python exception class; the message is the library's line.
struct RefusedFile : std::runtime_error {
  using std::runtime_error::runtime_error;
};
struct LimitRefusal : std::runtime_error {
  using std::runtime_error::runtime_error;
};
struct DrawingFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The PNG settings of `paintdoc thumbnail FILE... -o DIR`, so that a batch
// run from Python writes the same files.
constexpr PngWriteOptions kThumbnailPng{.compressionLevel = 1};

bool IsLimitRefusal(const PreviewSource& source) {
  if (source.status == PreviewStatus::SizeRefused) return true;
  // A file above the size limit is refused before it is read: "Unreadable",
  // told apart from files that cannot be read at all by its reason.
  return source.status == PreviewStatus::Unreadable &&
         source.diagnosis.find("larger than the limit") != std::string::npos;
}

[[noreturn]] void ThrowRefusal(const PreviewSource& source) {
  if (IsLimitRefusal(source)) throw LimitRefusal(source.diagnosis);
  throw RefusedFile(source.diagnosis);
}

// Hands out a context of a chosen pixel size whose point size is the content
// size asked for: the generator then stretches the whole content over it.
class SizedRequest : public PreviewRequest {
 public:
  explicit SizedRequest(PixelSize pixels) : pixels_(pixels) {}

  std::shared_ptr<Bitmap> createContext(Size size, bool) override {
    std::shared_ptr<Bitmap> bitmap = Bitmap::create(pixels_.width, pixels_.height);
    if (bitmap && !bitmap->isEmpty()) bitmap->setSize(size);
    return bitmap;
  }
  void flushContext(const std::shared_ptr<Bitmap>& context) override { flushed_ = context; }
  const std::shared_ptr<Bitmap>& flushed() const { return flushed_; }

 private:
  PixelSize pixels_;
  std::shared_ptr<Bitmap> flushed_;
};

std::string PixelSizeText(PixelSize size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels";
}

// The drawn bitmap, or the exception that says why there is none.
std::shared_ptr<Bitmap> CheckedBitmap(const PreviewOutcome& outcome,
                                      const std::shared_ptr<Bitmap>& bitmap) {
  if (!outcome.drawn) throw DrawingFailure(outcome.diagnosis);
  if (!bitmap || bitmap->isEmpty()) {
    const PixelSize size{bitmap ? bitmap->pixelsWide() : 0, bitmap ? bitmap->pixelsHigh() : 0};
    throw DrawingFailure("nothing to draw: the content is " + PixelSizeText(size));
  }
  return bitmap;
}

// Straight or premultiplied R, G, B, A rows straight from the bitmap into a
// new array: the one copy the pixels make on their way to Python.
py::array_t<uint8_t> ToArray(const Bitmap& bitmap, bool premultiplied) {
  const py::ssize_t high = bitmap.pixelsHigh();
  const py::ssize_t wide = bitmap.pixelsWide();
  py::array_t<uint8_t> pixels({high, wide, py::ssize_t{4}});
  uint8_t* out = pixels.mutable_data();
  const AlphaMode mode = premultiplied ? AlphaMode::Premultiplied : AlphaMode::Straight;
  {
    py::gil_scoped_release released;
    for (int row = 0; row < bitmap.pixelsHigh(); ++row) {
      bitmap.readRGBARow(row, out + bitmap.bytesPerRow() * static_cast<size_t>(row), mode);
    }
  }
  return pixels;
}

py::bytes EncodePng(const Bitmap& bitmap, const PngWriteOptions& options,
                    const PngMetadata& metadata) {
  Result<std::vector<uint8_t>> png = Failure{"not encoded"};
  {
    py::gil_scoped_release released;
    png = WritePNG(bitmap, options, metadata);
  }
  if (!png) throw DrawingFailure("can't encode PNG: " + png.reason());
  return py::bytes(reinterpret_cast<const char*>(png->data()), png->size());
}

class Document {
 public:
  explicit Document(PreviewSource source) : source_(std::move(source)) {}

  py::tuple size() const { return py::make_tuple(source_.contentSize.width, source_.contentSize.height); }
  py::tuple pixelSize() const {
    const PixelSize pixels = ContentPixelSize(source_.contentSize);
    return py::make_tuple(pixels.width, pixels.height);
  }
  int64_t version() const { return source_.version; }
  bool isDocument() const { return source_.status == PreviewStatus::Document; }

  std::string infoJson() const {
    std::lock_guard lock(drawing_);
    return FormatDocumentInfoJson(DescribePreviewSource(source_));
  }

  // The whole content stretched over `width` x `height` pixels.
  std::shared_ptr<Bitmap> drawAt(int width, int height) {
    CheckPixelSize(width, height);
    py::gil_scoped_release released;
    std::lock_guard lock(drawing_);
    SizedRequest request({width, height});
    const PreviewOutcome outcome = DrawPreviewSource(request, source_);
    return CheckedBitmap(outcome, request.flushed());
  }

  // What `paintdoc thumbnail` draws: the content fitted into a square of
  // `maxSide` pixels, never enlarged.
  std::shared_ptr<Bitmap> drawThumbnail(int maxSide) {
    if (maxSide < 1 || maxSide > Bitmap::kMaxDimension) {
      throw py::value_error("max_side must be from 1 to " + std::to_string(Bitmap::kMaxDimension));
    }
    py::gil_scoped_release released;
    std::lock_guard lock(drawing_);
    BitmapPreviewRequest request;
    const PreviewOutcome outcome = DrawPreviewSource(request, source_, maxSide);
    return CheckedBitmap(outcome, request.flushedContext());
  }

  py::array_t<uint8_t> render(int width, int height, bool premultiplied) {
    return ToArray(*drawAt(width, height), premultiplied);
  }
  py::array_t<uint8_t> thumbnail(int maxSide, bool premultiplied) {
    return ToArray(*drawThumbnail(maxSide), premultiplied);
  }

  // The PNG of `paintdoc render`.
  py::bytes renderPng() {
    const PixelSize full = ContentPixelSize(source_.contentSize);
    PngMetadata metadata;
    metadata.keepAlphaChannel = true;
    return EncodePng(*drawAt(full.width, full.height), {}, metadata);
  }

  // The PNG of `paintdoc thumbnail`, with the full size in its text entries.
  py::bytes thumbnailPng(int maxSide) {
    const PixelSize full = ContentPixelSize(source_.contentSize);
    PngMetadata metadata;
    metadata.keepAlphaChannel = true;
    metadata.textEntries = {{"Thumb::Image::Width", std::to_string(full.width)},
                            {"Thumb::Image::Height", std::to_string(full.height)}};
    return EncodePng(*drawThumbnail(maxSide), kThumbnailPng, metadata);
  }

 private:
  void CheckPixelSize(int width, int height) const {
    if (width < 1 || height < 1 || width > Bitmap::kMaxDimension ||
        height > Bitmap::kMaxDimension) {
      throw py::value_error("size " + PixelSizeText({width, height}) + " is outside 1 to " +
                            std::to_string(Bitmap::kMaxDimension) + " a side");
    }
    const PreviewLimits limits;
    if (double(width) * double(height) > limits.maxCanvasPixels) {
      throw LimitRefusal("size " + PixelSizeText({width, height}) + " exceeds the limit of " +
                         std::to_string(uint64_t(limits.maxCanvasPixels)) + " pixels");
    }
  }

  PreviewSource source_;
  mutable std::mutex drawing_;
};

// `thumbnailSide` above 0 reads the way `paintdoc thumbnail` does: a plain
// image may be decoded at a reduced scale that still covers that square.
PreviewKind KindFor(int thumbnailSide) {
  return thumbnailSide > 0 ? PreviewKind::Thumbnail : PreviewKind::Preview;
}

std::unique_ptr<Document> Checked(PreviewSource source) {
  if (!source.drawable()) ThrowRefusal(source);
  return std::make_unique<Document>(std::move(source));
}

std::unique_ptr<Document> OpenPath(const std::string& path, int thumbnailSide) {
  PreviewSource source;
  {
    py::gil_scoped_release released;
    source = ReadPreviewSource(path, KindFor(thumbnailSide), {}, thumbnailSide);
  }
  return Checked(std::move(source));
}

std::unique_ptr<Document> OpenBytes(const py::buffer& data, int thumbnailSide) {
  // One copy into memory the document may keep (images and embedded data
  // share it), taken while the buffer is held.
  const py::buffer_info view = data.request();
  if (!PyBuffer_IsContiguous(view.view(), 'C')) {
    throw py::value_error("the bytes must be contiguous");
  }
  const auto* first = static_cast<const uint8_t*>(view.ptr);
  std::vector<uint8_t> bytes(first, first + view.size * view.itemsize);
  PreviewSource source;
  {
    py::gil_scoped_release released;
    source = ReadPreviewSourceFromBytes(SharedBytes(std::move(bytes)), KindFor(thumbnailSide), {},
                                        thumbnailSide);
  }
  return Checked(std::move(source));
}

}  // namespace

PYBIND11_MODULE(_paintdoc, module) {
  module.doc() = "Layered paint documents: read, describe and draw (compiled part).";

  static py::exception<DrawingFailure> error(module, "Error", PyExc_Exception);
  static py::exception<RefusedFile> refused(module, "RefusedError", error.ptr());
  static py::exception<LimitRefusal> limit(module, "LimitError", refused.ptr());
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (const LimitRefusal& e) {
      limit(e.what());
    } catch (const RefusedFile& e) {
      refused(e.what());
    } catch (const DrawingFailure& e) {
      error(e.what());
    }
  });

  py::class_<Document>(module, "Document")
      .def_property_readonly("size", &Document::size)
      .def_property_readonly("pixel_size", &Document::pixelSize)
      .def_property_readonly("version", &Document::version)
      .def_property_readonly("is_document", &Document::isDocument)
      .def("info_json", &Document::infoJson)
      .def("render", &Document::render, py::arg("width"), py::arg("height"),
           py::arg("premultiplied") = false)
      .def("thumbnail", &Document::thumbnail, py::arg("max_side"),
           py::arg("premultiplied") = false)
      .def("render_png", &Document::renderPng)
      .def("thumbnail_png", &Document::thumbnailPng, py::arg("max_side"));

  module.def("open_path", &OpenPath, py::arg("path"), py::arg("thumbnail_side") = 0);
  module.def("open_bytes", &OpenBytes, py::arg("data"), py::arg("thumbnail_side") = 0);
  module.attr("max_side") = Bitmap::kMaxDimension;
}

}  // namespace paintdoc::python
