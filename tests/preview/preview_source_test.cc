// The preview path from a file's bytes to the drawn context: documents,
// plain images, and every way of drawing nothing.
#include <gtest/gtest.h>

#include "archive/keyed_archiver.h"
#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "draws/draw_group.h"
#include "draws/draw_rectangle.h"
#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "platform/codecs/image_codecs.h"
#include "preview/document_container.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"
#include "support/archive_fixtures.h"
#include "support/test_paths.h"

namespace paintdoc {
namespace {

SharedBytes Bytes(std::vector<uint8_t> bytes) { return SharedBytes(std::move(bytes)); }

// A container with chosen top-level keys around a canvas archive.
std::vector<uint8_t> Container(const std::vector<uint8_t>& paintData, std::optional<int64_t> version,
                               bool resolution = true) {
  KeyedArchiver archiver;
  archiver.encodeDataForKey(paintData, "PaintData");
  if (resolution) archiver.encodeStringForKey("{72, 72}", "Resolution");
  if (version) archiver.encodeInt64ForKey(*version, "Version");
  return archiver.finishEncoding();
}

std::vector<uint8_t> CanvasArchive(Size size) {
  RegisterAllClasses();
  auto canvas = PaintManager::withSize(size);
  canvas->allDraws().push_back(MakeDraw<DrawRectangle>());
  return KeyedArchiver::archivedDataWithRootObject(*canvas);
}

std::vector<uint8_t> TwoByTwoPng() {
  auto bitmap = Bitmap::create(2, 2);
  bitmap->setPixelAt(0, 0, Rgba8{255, 0, 0, 255});  // top left opaque red
  bitmap->setPixelAt(1, 1, Rgba8{0, 0, 64, 128});   // bottom right half blue
  return *WritePNG(*bitmap);
}

PreviewSource Read(const std::vector<uint8_t>& bytes, PreviewKind kind = PreviewKind::Preview,
                   const PreviewLimits& limits = {}) {
  return ReadPreviewSourceFromBytes(Bytes(bytes), kind, limits);
}

TEST(PreviewSource, EachKindOfContentGetsItsStatusAndDiagnosis) {
  RegisterAllClasses();
  const auto paintData = CanvasArchive({40, 30});
  const auto notCanvas = KeyedArchiver::archivedDataWithRootObject(*MakeDraw<DrawRectangle>());
  const std::string text = "just some text";
  struct Case {
    const char* what;
    std::vector<uint8_t> bytes;
    PreviewStatus status;
    std::string diagnosis;  // a part of it when `partial`
    bool partial = false;
  };
  const Case cases[] = {
      {"version 10", Container(paintData, 10), PreviewStatus::Document, ""},
      {"no version", Container(paintData, std::nullopt), PreviewStatus::Document, ""},
      {"version 11", Container(paintData, 11), PreviewStatus::NewerVersion,
       "newer document version 11 (this build reads up to 10)"},
      // Without "Resolution" the file goes to the image path, the pasteboard form too.
      {"no resolution", Container(paintData, 10, false), PreviewStatus::NotAnImage,
       "\"Resolution\"", true},
      {"pasteboard", WriteDocumentContainer(*PaintManager::withSize({5, 5}), false),
       PreviewStatus::NotAnImage, "\"Resolution\"", true},
      {"root not a canvas", Container(notCanvas, 10), PreviewStatus::NotACanvas,
       "the document's root is a DrawRectangle, not a canvas"},
      // No image fallback for a container whose data is no archive at all.
      {"data not an archive", Container({1, 2, 3}, 10), PreviewStatus::NotACanvas, "", true},
      {"empty", {}, PreviewStatus::EmptyFile, "empty file"},
      {"text", std::vector<uint8_t>(text.begin(), text.end()), PreviewStatus::NotAnImage,
       "neither a paint document nor an image"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const PreviewSource source = Read(c.bytes);
    EXPECT_EQ(source.status, c.status);
    if (c.partial) {
      EXPECT_NE(source.diagnosis.find(c.diagnosis), std::string::npos) << source.diagnosis;
    } else {
      EXPECT_EQ(source.diagnosis, c.diagnosis);
    }
    EXPECT_EQ(source.canvas != nullptr, c.status == PreviewStatus::Document);
  }
  const PreviewSource ten = Read(cases[0].bytes);
  EXPECT_EQ(ten.version, 10);
  EXPECT_EQ(ten.contentSize, (Size{40, 30}));
  EXPECT_EQ(ten.canvas->allDraws().size(), 1u);
  EXPECT_EQ(Read(cases[1].bytes).version, 0);  // a missing version reads as 0
}

TEST(PreviewSource, FilesAreRecognisedByTheirBytesNotTheirName) {
  RegisterAllClasses();
  const std::string documentNamedPng = test::OutputPath("preview/document.png");
  ASSERT_TRUE(WriteFileBytes(documentNamedPng,
                             WriteDocumentContainer(*PaintManager::withSize({7, 3}))));
  EXPECT_EQ(ReadPreviewSource(documentNamedPng, PreviewKind::Preview).status,
            PreviewStatus::Document);
  const std::string pngNamedDocument = test::OutputPath("preview/image.paintdoc");
  ASSERT_TRUE(WriteFileBytes(pngNamedDocument, TwoByTwoPng()));
  EXPECT_EQ(ReadPreviewSource(pngNamedDocument, PreviewKind::Preview).status,
            PreviewStatus::Image);
  const PreviewSource missing =
      ReadPreviewSource(test::OutputPath("preview/no-such-file"), PreviewKind::Thumbnail);
  EXPECT_EQ(missing.status, PreviewStatus::Unreadable);
  EXPECT_NE(missing.diagnosis.find("no-such-file"), std::string::npos);
}

// Each limit at one below, at and one above what the file needs: refused
// with the limit's own status below, read at and above.
TEST(PreviewLimits, EachLimitHoldsExactlyAtItsBoundary) {
  const auto document = Container(CanvasArchive({300, 200}), 10);
  const auto png = TwoByTwoPng();
  struct Case {
    const char* what;
    const std::vector<uint8_t>& bytes;
    double needed;
    void (*set)(PreviewLimits&, double);
    PreviewStatus refused, read;
  };
  const Case cases[] = {
      {"file bytes", document, double(document.size()),
       [](PreviewLimits& l, double v) { l.maxFileBytes = uint64_t(v); }, PreviewStatus::Unreadable,
       PreviewStatus::Document},
      {"canvas side", document, 300, [](PreviewLimits& l, double v) { l.maxCanvasSide = v; },
       PreviewStatus::SizeRefused, PreviewStatus::Document},
      {"canvas pixels", document, 300 * 200,
       [](PreviewLimits& l, double v) { l.maxCanvasPixels = v; }, PreviewStatus::SizeRefused,
       PreviewStatus::Document},
      {"image pixels", png, 4, [](PreviewLimits& l, double v) { l.maxImagePixels = uint64_t(v); },
       PreviewStatus::NotAnImage, PreviewStatus::Image},
  };
  for (const Case& c : cases) {
    for (double limit : {c.needed - 1, c.needed, c.needed + 1}) {
      SCOPED_TRACE(std::string(c.what) + " limit " + std::to_string(limit));
      PreviewLimits limits;
      c.set(limits, limit);
      EXPECT_EQ(Read(c.bytes, PreviewKind::Preview, limits).status,
                limit < c.needed ? c.refused : c.read);
    }
  }
  PreviewLimits side;
  side.maxCanvasSide = 250;
  EXPECT_EQ(Read(document, PreviewKind::Preview, side).diagnosis,
            "content size 300 x 200 exceeds the limit of 250 a side");
  PreviewLimits objects;
  objects.archive.maxObjects = 5;
  EXPECT_NE(Read(document, PreviewKind::Preview, objects).status, PreviewStatus::Document);
}

// The default limits: 32767 a side and 2^28 pixels in all.
TEST(PreviewLimits, DefaultsRefuseOversizedAndInvalidCanvases) {
  const std::pair<Size, PreviewStatus> cases[] = {
      {{32766, 10}, PreviewStatus::Document},       {{32767, 10}, PreviewStatus::Document},
      {{32768, 10}, PreviewStatus::SizeRefused},    {{16384, 16383}, PreviewStatus::Document},
      {{16384, 16384}, PreviewStatus::Document},    {{16384, 16385}, PreviewStatus::SizeRefused},
  };
  for (const auto& [size, status] : cases) {
    SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height));
    EXPECT_EQ(Read(Container(CanvasArchive(size), 10)).status, status);
  }
  RegisterAllClasses();
  const auto negative = test::ArchiveRoot(test::KeysAs("PaintManager", [](KeyedArchiver& c) {
    c.encodeStringForKey("{-5, 10}", "CanvasSize");
  }));
  EXPECT_EQ(Read(Container(negative, 10)).diagnosis, "content size -5 x 10 is not a valid size");
}

TEST(PreviewLimits, DeeplyNestedGroupsAreRefusedNotRecursedInto) {
  RegisterAllClasses();
  std::shared_ptr<DrawBase> inner = MakeDraw<DrawRectangle>();
  for (int depth = 0; depth < 400; ++depth) {
    auto group = MakeDraw<DrawGroup>();
    group->setDraws({inner});
    inner = group;
  }
  auto canvas = PaintManager::withSize({10, 10});
  canvas->allDraws().push_back(inner);
  const auto document = WriteDocumentContainer(*canvas);
  const PreviewSource source = Read(document);
  // Too deep for the default limits: the nested part is cut off or refused,
  // never followed to the bottom.
  if (source.status == PreviewStatus::Document) {
    int depth = 0;
    std::shared_ptr<DrawBase> draw =
        source.canvas->allDraws().empty() ? nullptr : source.canvas->allDraws()[0];
    while (auto group = std::dynamic_pointer_cast<DrawGroup>(draw)) {
      ++depth;
      draw = group->draws().empty() ? nullptr : group->draws()[0];
    }
    EXPECT_LT(depth, 400);
  }
  PreviewLimits deep;
  deep.archive.maxDepth = 2000;
  const PreviewSource allowed = Read(document, PreviewKind::Preview, deep);
  EXPECT_EQ(allowed.status, PreviewStatus::Document);
}

// --- drawing into the host's context

// A host's request that records the size asked for and whether as a bitmap;
// it can refuse the context, hand out a dirty one, or one of another size.
class HostRequest : public BitmapPreviewRequest {
 public:
  std::shared_ptr<Bitmap> createContext(Size size, bool isBitmap) override {
    asked = size;
    bitmapAsked = isBitmap;
    auto context = BitmapPreviewRequest::createContext(handOut.value_or(size), isBitmap);
    for (int y = 0; dirty && y < context->pixelsHigh(); ++y)
      for (int x = 0; x < context->pixelsWide(); ++x) context->setPixelAt(x, y, {9, 9, 9, 255});
    return refuse ? nullptr : context;
  }
  bool refuse = false, dirty = false, bitmapAsked = false;
  std::optional<Size> handOut;
  Size asked;
};

// The context has the content's point size whatever the kind (a thumbnail is
// drawn at full size too, the host scales it), is cleared first, and the
// content sits at its lower left corner (storage rows count from the top).
TEST(PreviewDrawing, ContextGetsTheContentAtItsPointSizeOnClearPixels) {
  auto green = Bitmap::create(4, 2);
  for (int y = 0; y < 2; ++y)
    for (int x = 0; x < 4; ++x) green->setPixelAt(x, y, Rgba8{0, 200, 0, 255});
  green->setSizeWithDPI(144);
  constexpr Rgba8 kRed{255, 0, 0, 255}, kClear{0, 0, 0, 0}, kHalfBlue{0, 0, 64, 128};
  constexpr Rgba8 kGreen{0, 200, 0, 255};
  struct Case {
    const char* what;
    std::vector<uint8_t> bytes;
    Size asked;
    std::vector<std::tuple<int, int, Rgba8>> pixels;
    PreviewKind kind;
    bool dirty;
    std::optional<Size> handOut;
  };
  const auto preview = PreviewKind::Preview;
  const Case cases[] = {
      {"thumbnail", Container(CanvasArchive({640, 480}), 10), {640, 480}, {}, PreviewKind::Thumbnail,
       false, {}},
      {"zero canvas", Container(CanvasArchive({0, 0}), 10), {0, 0}, {}, preview, false, {}},
      {"image", TwoByTwoPng(), {2, 2}, {{0, 0, kRed}, {1, 0, kClear}, {0, 1, kClear}, {1, 1, kHalfBlue}},
       preview, false, {}},
      {"dirty context", Container(CanvasArchive({3, 3}), 10), {3, 3}, {{1, 1, kClear}}, preview, true, {}},
      {"larger context", TwoByTwoPng(), {2, 2}, {{0, 1, kRed}, {1, 2, kHalfBlue}, {0, 0, kClear}},
       preview, false, Size{4, 3}},
      {"144 dpi image", *WriteTIFF(*green), {2, 1}, {{0, 0, kGreen}, {1, 0, kGreen}}, preview, false, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    HostRequest request;
    request.dirty = c.dirty;
    request.handOut = c.handOut;
    ASSERT_TRUE(DrawPreviewSource(request, Read(c.bytes, c.kind)).drawn);
    EXPECT_EQ(request.asked, c.asked);
    EXPECT_TRUE(request.bitmapAsked);
    EXPECT_EQ(request.flushCount(), 1);
    const Bitmap& context = *request.flushedContext();
    EXPECT_EQ(context.pixelsWide(), int(c.handOut.value_or(c.asked).width));
    EXPECT_EQ(context.pixelsHigh(), int(c.handOut.value_or(c.asked).height));
    for (const auto& [x, y, pixel] : c.pixels) EXPECT_EQ(context.pixelAt(x, y), pixel) << x << ", " << y;
  }
}

// No context from the host, or content that is refused: nothing drawn or flushed.
TEST(PreviewDrawing, NothingIsFlushedWithoutAContextOrContent) {
  for (const auto& [bytes, refuse] : {std::pair{TwoByTwoPng(), true},
                                      std::pair{Container(CanvasArchive({5, 5}), 11), false}}) {
    HostRequest request;
    request.refuse = refuse;
    EXPECT_FALSE(DrawPreviewSource(request, Read(bytes)).drawn);
    EXPECT_EQ(request.flushCount(), 0);
    EXPECT_EQ(request.requestedSizes().size(), refuse ? 1u : 0u);  // refused content asks for none
  }
}

}  // namespace
}  // namespace paintdoc
