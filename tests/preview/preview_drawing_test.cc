// Drawing a preview: the size of the picture a file gets, and what the
// process is left with afterwards.
#include <gtest/gtest.h>

#include "document/paint_manager.h"
#include "draws/draw_rectangle.h"
#include "preview/document_container.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"
#include "support/image_test_files.h"
#include "support/thread_count.h"

namespace paintdoc {
namespace {

PreviewOutcome Draw(const std::vector<uint8_t>& file, int fitInto, BitmapPreviewRequest& request) {
  return DrawPreviewSource(
      request, ReadPreviewSourceFromBytes(SharedBytes::copyOf(file), PreviewKind::Preview, {}, fitInto),
      fitInto);
}

// An image at about 72 dpi written in pixels a metre (2835 is 72.009 dpi) is
// drawn pixel for pixel: its point size rounds to its pixel size.
TEST(PreviewDrawing, ImagesAtAboutScreenResolutionKeepTheirPixelSize) {
  const struct {
    int wide, high, pixelsPerMetre;
    int contextWide, contextHigh;
  } cases[] = {{16, 16, 2835, 16, 16}, {127, 64, 2835, 127, 64}, {435, 353, 2835, 435, 353},
               {100, 60, 5669, 50, 30}};  // 144 dpi: drawn at its point size
  for (const auto& c : cases) {
    SCOPED_TRACE(c.wide);
    const std::vector<uint8_t> pixels(size_t((c.wide * 3 + 3) / 4 * 4) * size_t(c.high), 128);
    BitmapPreviewRequest request;
    ASSERT_TRUE(Draw(test::MakeBmp(c.wide, c.high, 24, 0, {}, pixels, {}, c.pixelsPerMetre), 0,
                     request).drawn);
    EXPECT_EQ(request.flushedContext()->pixelsWide(), c.contextWide);
    EXPECT_EQ(request.flushedContext()->pixelsHigh(), c.contextHigh);
  }
}

using test::ThreadCount;

// A preview runs on its caller's thread: a file manager's thumbnailer, a
// server's worker or a plug-in host is left with no thread it did not start,
// even after blurring a shadow large enough for parallel loops.
TEST(PreviewDrawing, APreviewStartsNoThread) {
  auto canvas = PaintManager::withSize({2000, 1500});
  auto box = MakeDraw<DrawRectangle>();
  box->setBezierPathWithBounds(MakeRect(100, 100, 1200, 900));
  box->setEnableFill(true);
  box->setEnableShadow(true);
  box->setShadow(Shadow(Color::blackColor(), {10, -10}, 12));
  canvas->addDraw(box);
  const std::vector<uint8_t> file = WriteDocumentContainer(*canvas);
  const int before = ThreadCount();
  for (int fitInto : {256, 0}) {
    BitmapPreviewRequest request;
    EXPECT_TRUE(Draw(file, fitInto, request).drawn) << fitInto;
  }
  EXPECT_EQ(ThreadCount(), before);
}

}  // namespace
}  // namespace paintdoc
