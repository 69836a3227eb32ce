#include "platform/text/text_layout.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/text/font_mapping.h"
#include "platform/text/utf16.h"

namespace paintdoc {

namespace {

constexpr double kSharedContainerExtent = 1000000;
constexpr double kSharedLineFragmentPadding = 1.0;
// Pango units are ints: widths and offsets beyond this are clamped.
constexpr double kMaxPangoPoints = std::numeric_limits<int>::max() / PANGO_SCALE / 2.0;

int PangoUnits(double points) {
  if (!std::isfinite(points)) return 0;
  return static_cast<int>(std::lround(std::clamp(points, -kMaxPangoPoints, kMaxPangoPoints) *
                                      PANGO_SCALE));
}

guint16 Channel16(double value) {
  return static_cast<guint16>(std::lround(std::clamp(value, 0.0, 1.0) * 65535));
}

bool IsParagraphSeparator(char16_t c) { return c == u'\n' || c == u'\r' || c == 0x2029; }

// One paragraph's text in UTF-8 with, for each UTF-16 index of it (and its
// end), the byte offset Pango addresses it by. Lone surrogates become U+FFFD.
struct Utf8Paragraph {
  std::string text;
  std::vector<guint> byteOffsets;
};

Utf8Paragraph ToUtf8(std::u16string_view text) {
  Utf8Paragraph out;
  out.byteOffsets.reserve(text.size() + 1);
  for (size_t i = 0; i < text.size(); ++i) {
    out.byteOffsets.push_back(static_cast<guint>(out.text.size()));
    char32_t codePoint = text[i];
    const bool high = codePoint >= 0xD800 && codePoint <= 0xDBFF;
    const bool low = codePoint >= 0xDC00 && codePoint <= 0xDFFF;
    if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
      codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      out.byteOffsets.push_back(static_cast<guint>(out.text.size()));
      ++i;
    } else if (high || low || codePoint == 0) {
      codePoint = 0xFFFD;  // Pango refuses ill-formed UTF-8 and NUL ends its strings
    }
    AppendUtf8(out.text, codePoint);
  }
  out.byteOffsets.push_back(static_cast<guint>(out.text.size()));
  return out;
}

PangoFontDescription* FontDescription(const std::optional<Font>& font) {
  const std::string name = font ? font->name : kDefaultFontName;
  const FontFace face = FaceForPostScriptName(name.empty() ? kDefaultFontName : name);
  PangoFontDescription* description = pango_font_description_new();
  pango_font_description_set_family(description, face.family.c_str());
  pango_font_description_set_weight(description, static_cast<PangoWeight>(face.weight));
  pango_font_description_set_style(description,
                                   face.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
  pango_font_description_set_absolute_size(
      description, UsableFontSize(font ? font->pointSize : kDefaultFontSize) * PANGO_SCALE);
  return description;
}

void Insert(PangoAttrList* list, PangoAttribute* attribute, guint start, guint end) {
  attribute->start_index = start;
  attribute->end_index = end;
  pango_attr_list_insert(list, attribute);
}

void InsertColor(PangoAttrList* list, const Color& color, guint start, guint end,
                 PangoAttribute* (*colorAttribute)(guint16, guint16, guint16),
                 PangoAttribute* (*alphaAttribute)(guint16)) {
  const RGBA rgba = color.toCalibratedRGB();
  Insert(list, colorAttribute(Channel16(rgba.red), Channel16(rgba.green), Channel16(rgba.blue)),
         start, end);
  if (alphaAttribute) Insert(list, alphaAttribute(std::max<guint16>(1, Channel16(rgba.alpha))),
                             start, end);
}

PangoUnderline UnderlineOf(int style) {
  switch (style & 0xff) {
    case underline::kNone: return PANGO_UNDERLINE_NONE;
    case underline::kDouble: return PANGO_UNDERLINE_DOUBLE;
    default: return PANGO_UNDERLINE_SINGLE;  // single and thick (Pango has no thick line)
  }
}

// The Pango attributes of one run over [start, end) bytes of its paragraph.
void InsertRunAttributes(PangoAttrList* list, const TextAttributes& attributes, guint start,
                         guint end) {
  PangoFontDescription* font = FontDescription(attributes.font);
  Insert(list, pango_attr_font_desc_new(font), start, end);
  pango_font_description_free(font);
  // The foreground alpha attribute is in 1/65535 with 0 meaning "unset", so a
  // fully transparent run is dropped instead of being drawn opaque.
  const Color foreground = attributes.foregroundColor.value_or(Color::blackColor());
  if (foreground.toCalibratedRGB().alpha <= 0) {
    Insert(list, pango_attr_foreground_alpha_new(1), start, end);
    Insert(list, pango_attr_foreground_new(0, 0, 0), start, end);
  } else {
    InsertColor(list, foreground, start, end, pango_attr_foreground_new,
                pango_attr_foreground_alpha_new);
  }
  if (attributes.backgroundColor && attributes.backgroundColor->toCalibratedRGB().alpha > 0) {
    InsertColor(list, *attributes.backgroundColor, start, end, pango_attr_background_new,
                pango_attr_background_alpha_new);
  }
  if (attributes.underlineStyle && *attributes.underlineStyle != underline::kNone) {
    Insert(list, pango_attr_underline_new(UnderlineOf(*attributes.underlineStyle)), start, end);
    if (attributes.underlineColor) {
      InsertColor(list, *attributes.underlineColor, start, end, pango_attr_underline_color_new,
                  nullptr);
    }
  }
  if (attributes.strikethroughStyle && *attributes.strikethroughStyle != underline::kNone) {
    Insert(list, pango_attr_strikethrough_new(TRUE), start, end);
    if (attributes.strikethroughColor) {
      InsertColor(list, *attributes.strikethroughColor, start, end,
                  pango_attr_strikethrough_color_new, nullptr);
    }
  }
  if (attributes.kern && *attributes.kern != 0) {
    Insert(list, pango_attr_letter_spacing_new(PangoUnits(*attributes.kern)), start, end);
  }
  if (attributes.baselineOffset && *attributes.baselineOffset != 0) {
    Insert(list, pango_attr_rise_new(PangoUnits(*attributes.baselineOffset)), start, end);
  }
}

PangoAlignment AlignmentOf(TextAlignment alignment) {
  switch (alignment) {
    case TextAlignment::Right: return PANGO_ALIGN_RIGHT;
    case TextAlignment::Center: return PANGO_ALIGN_CENTER;
    default: return PANGO_ALIGN_LEFT;
  }
}

}  // namespace

double UsableFontSize(double pointSize) {
  if (!std::isfinite(pointSize) || pointSize <= 0) return kDefaultFontSize;
  return std::min(pointSize, kMaxFontSize);
}

struct TextLayout::Paragraph {
  PangoLayout* layout = nullptr;
  double top = 0;
  ~Paragraph() {
    if (layout) g_object_unref(layout);
  }
};

TextLayout::TextLayout() = default;
TextLayout::TextLayout(TextLayout&&) noexcept = default;
TextLayout& TextLayout::operator=(TextLayout&&) noexcept = default;
TextLayout::~TextLayout() = default;

void TextLayout::draw(cairo_t* cr) const {
  for (const auto& paragraph : paragraphs_) {
    cairo_move_to(cr, padding_, paragraph->top);
    pango_cairo_show_layout(cr, paragraph->layout);
  }
}

LayoutManager::LayoutManager() = default;

LayoutManager::~LayoutManager() {
  if (smoothContext_) g_object_unref(smoothContext_);
  if (aliasedContext_) g_object_unref(aliasedContext_);
}

// Hinting off in both contexts, so that advances stay those of the design and
// come close to the platform's unhinted metrics.
PangoContext* LayoutManager::contextFor(bool antialias) {
  PangoContext*& context = antialias ? smoothContext_ : aliasedContext_;
  if (context) return context;
  PangoFontMap* fontMap = pango_cairo_font_map_get_default();
  context = pango_font_map_create_context(fontMap);
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_antialias(options,
                                   antialias ? CAIRO_ANTIALIAS_GRAY : CAIRO_ANTIALIAS_NONE);
  pango_cairo_context_set_font_options(context, options);
  cairo_font_options_destroy(options);
  pango_context_set_round_glyph_positions(context, FALSE);
  return context;
}

Result<TextLayout> LayoutManager::layout(const AttributedString& text, bool antialias,
                                         double heightLimit) {
  if (text.length() > kMaxLaidOutLength) {
    return Failure{"the text has " + std::to_string(text.length()) +
                   " characters, more than the " + std::to_string(kMaxLaidOutLength) +
                   " a text box lays out"};
  }
  TextLayout laidOut;
  const double padding = std::clamp(container_.lineFragmentPadding, 0.0, kMaxPangoPoints);
  laidOut.padding_ = padding;
  const double wrapWidth = std::max(0.0, container_.containerSize.width - 2 * padding);
  PangoContext* context = contextFor(antialias);
  const std::u16string& characters = text.text();
  double top = 0, widest = 0;
  size_t paragraphStart = 0;
  while (paragraphStart <= characters.size() && top <= heightLimit) {
    size_t end = paragraphStart;
    while (end < characters.size() && !IsParagraphSeparator(characters[end])) ++end;
    const Utf8Paragraph paragraph =
        ToUtf8(std::u16string_view(characters).substr(paragraphStart, end - paragraphStart));
    auto entry = std::make_unique<TextLayout::Paragraph>();
    entry->layout = pango_layout_new(context);
    entry->top = top;
    PangoLayout* layout = entry->layout;
    pango_layout_set_text(layout, paragraph.text.data(), static_cast<int>(paragraph.text.size()));
    pango_layout_set_width(layout, PangoUnits(wrapWidth));
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    // The paragraph's first character decides its style, and an empty
    // paragraph takes its line height from the font at its position.
    const TextAttributes& first = text.attributesAt(paragraphStart);
    const ParagraphStyle style = first.paragraphStyle.value_or(ParagraphStyle::defaultStyle());
    pango_layout_set_alignment(layout, AlignmentOf(style.alignment));
    pango_layout_set_justify(layout, style.alignment == TextAlignment::Justified);
    pango_layout_set_auto_dir(layout, style.alignment == TextAlignment::Natural);
    PangoFontDescription* font = FontDescription(first.font);
    pango_layout_set_font_description(layout, font);
    pango_font_description_free(font);
    PangoAttrList* attributes = pango_attr_list_new();
    size_t runStart = 0;
    for (const AttributeRun& run : text.runs()) {
      const size_t from = std::max(runStart, paragraphStart);
      const size_t to = std::min(runStart + run.length, end);
      if (from < to) {
        InsertRunAttributes(attributes, run.attributes,
                            paragraph.byteOffsets[from - paragraphStart],
                            paragraph.byteOffsets[to - paragraphStart]);
      }
      runStart += run.length;
      if (runStart >= end) break;
    }
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    widest = std::max(widest, pango_units_to_double(logical.width));
    top += pango_units_to_double(logical.height);
    laidOut.paragraphs_.push_back(std::move(entry));
    // "\r\n" ends one paragraph.
    if (end + 1 < characters.size() && characters[end] == u'\r' && characters[end + 1] == u'\n') {
      ++end;
    }
    paragraphStart = end + 1;
  }
  laidOut.usedSize_ = MakeSize(text.empty() ? 0 : widest + 2 * padding, text.empty() ? 0 : top);
  return laidOut;
}

Result<Size> LayoutManager::usedRectForText(const AttributedString& text) {
  if (text.empty()) return MakeSize(0, 0);
  Result<TextLayout> laidOut = layout(text);
  if (!laidOut) return Failure{laidOut.reason()};
  return laidOut->usedSize();
}

LayoutManager& SharedLayoutManager() {
  // One a thread, released with its thread (Pango's contexts with it).
  thread_local LayoutManager manager;
  thread_local bool configured = false;
  if (!configured) {
    manager.textContainer().containerSize = MakeSize(kSharedContainerExtent, kSharedContainerExtent);
    manager.textContainer().lineFragmentPadding = kSharedLineFragmentPadding;
    configured = true;
  }
  return manager;
}

Result<std::shared_ptr<Bitmap>> DrawTextInBitmap(LayoutManager& manager,
                                                 const AttributedString& text, Size boxSize,
                                                 double scale, bool antialias) {
  const double pixelsWide = std::ceil(boxSize.width * scale);
  const double pixelsHigh = std::ceil(boxSize.height * scale);
  if (!(pixelsWide >= 1 && pixelsHigh >= 1)) return Failure{"the text box is empty"};
  if (pixelsWide > Bitmap::kMaxDimension || pixelsHigh > Bitmap::kMaxDimension) {
    return Failure{"the text box of " + std::to_string(std::lround(boxSize.width)) + " x " +
                   std::to_string(std::lround(boxSize.height)) +
                   " points is larger than a bitmap may be"};
  }
  std::shared_ptr<Bitmap> bitmap =
      Bitmap::create(static_cast<int>(pixelsWide), static_cast<int>(pixelsHigh));
  if (!bitmap) return Failure{"no memory for the text bitmap"};
  bitmap->setSize(boxSize);
  manager.textContainer().containerSize = MakeSize(boxSize.width, kSharedContainerExtent);
  Result<TextLayout> laidOut = manager.layout(text, antialias, boxSize.height);
  if (!laidOut) return Failure{laidOut.reason()};
  cairo_surface_t* surface = cairo_image_surface_create_for_data(
      bitmap->data(), CAIRO_FORMAT_ARGB32, bitmap->pixelsWide(), bitmap->pixelsHigh(),
      static_cast<int>(bitmap->bytesPerRow()));
  cairo_t* cr = cairo_create(surface);
  cairo_scale(cr, scale, scale);
  cairo_set_antialias(cr, antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
  laidOut->draw(cr);
  cairo_destroy(cr);
  cairo_surface_flush(surface);
  cairo_surface_destroy(surface);
  return bitmap;
}

}  // namespace paintdoc
