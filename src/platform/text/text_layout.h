// Text layout on Pango, in the shape of the platform's text system: one
// layout manager with one text container, a text storage attached for the
// duration of one layout. Each paragraph is one Pango layout (alignment is per
// paragraph here, per layout in Pango); paragraphs stack downwards from the
// container's top-left corner, in points, y down.
#pragma once

#include <cairo.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/text/attributed_string.h"
#include "platform/values/bitmap.h"
#include "platform/values/geometry.h"
#include "platform/values/result.h"

typedef struct _PangoContext PangoContext;

namespace paintdoc {

// The area text is laid out in. Lines wrap at width - 2 x lineFragmentPadding
// and start lineFragmentPadding in from the left.
struct TextContainer {
  static constexpr double kDefaultLineFragmentPadding = 5.0;
  Size containerSize{1e6, 1e6};
  double lineFragmentPadding = kDefaultLineFragmentPadding;
};

// The text system's default font when a run names none.
inline constexpr const char* kDefaultFontName = "Helvetica";
inline constexpr double kDefaultFontSize = 12;
// Longest text laid out, in UTF-16 units: a text box never shows more, and
// laying out more would hold a preview for seconds.
inline constexpr size_t kMaxLaidOutLength = 1u << 18;

// Point sizes outside (0, kMaxFontSize] and non-finite ones are read as the
// platform reads a font of size 0: the default size; huge ones are capped.
inline constexpr double kMaxFontSize = 2000;
double UsableFontSize(double pointSize);

// One laid-out text, ready to measure and draw.
class TextLayout {
 public:
  TextLayout(TextLayout&&) noexcept;
  TextLayout& operator=(TextLayout&&) noexcept;
  ~TextLayout();

  // The union of the lines' used rectangles, padding included, from the
  // container's top-left; a text ending in a newline has one more line.
  Size usedSize() const { return usedSize_; }
  // Paragraphs laid out (those below the height limit are left out).
  size_t paragraphCount() const { return paragraphs_.size(); }
  // Glyph backgrounds, then glyphs, with the container's top-left at the
  // context's current origin, y down.
  void draw(cairo_t* cr) const;

 private:
  friend class LayoutManager;
  struct Paragraph;
  TextLayout();
  std::vector<std::unique_ptr<Paragraph>> paragraphs_;
  double padding_ = 0;
  Size usedSize_{};
};

class LayoutManager {
 public:
  LayoutManager();
  ~LayoutManager();
  LayoutManager(const LayoutManager&) = delete;
  LayoutManager& operator=(const LayoutManager&) = delete;

  TextContainer& textContainer() { return container_; }

  // Lays the text out in the container. Paragraphs that start below
  // `heightLimit` points are not laid out (they could not be seen). Refused
  // for a text longer than kMaxLaidOutLength.
  Result<TextLayout> layout(const AttributedString& text, bool antialias = true,
                            double heightLimit = 1e9);

  // The used size of the text in the container (the zero size for no text).
  Result<Size> usedRectForText(const AttributedString& text);

 private:
  PangoContext* contextFor(bool antialias);
  TextContainer container_;
  PangoContext* smoothContext_ = nullptr;
  PangoContext* aliasedContext_ = nullptr;
};

// The shared layout manager, created on first use with a 1000000 x 1000000
// container and a line fragment padding of 1. One a thread: Pango's font maps
// are not shared between threads, and documents may render on several.
LayoutManager& SharedLayoutManager();

// The text laid out in `boxSize` points (wrapped at its width, cut at its
// height) drawn into a new transparent bitmap of boxSize x scale pixels whose
// point size is boxSize. Refused when the bitmap would pass the bitmap limits
// or the text cannot be laid out.
Result<std::shared_ptr<Bitmap>> DrawTextInBitmap(LayoutManager& manager,
                                                 const AttributedString& text, Size boxSize,
                                                 double scale, bool antialias);

}  // namespace paintdoc
