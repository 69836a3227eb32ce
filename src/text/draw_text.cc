#include "text/draw_text.h"

#include <algorithm>
#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "draws/draw_attributes.h"
#include "geometry/value_comparison.h"
#include "platform/text/text_layout.h"
#include "platform/text/utf16.h"
#include "platform/values/log.h"
#include "platform/values/not_found.h"

namespace paintdoc {

namespace {

// Titles shorter than this are shown whole; longer ones are cut at the first
// non-letter from this index on.
constexpr size_t kTitleLength = 20;

bool IsWhiteSpaceOrNewline(char16_t c) {
  return c == u' ' || (c >= 0x09 && c <= 0x0D) || c == 0x85 || c == 0xA0 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F ||
         c == 0x205F || c == 0x3000 || c == 0x1680;
}

// Letters of every script count; punctuation, digits and spaces of ASCII and
// Latin-1 do not.
bool IsLetter(char16_t c) {
  if (c < 0x80) return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
  if (c < 0xC0) return c == 0xAA || c == 0xB5 || c == 0xBA;
  return c != 0xD7 && c != 0xF7 && !IsWhiteSpaceOrNewline(c) && !(c >= 0x2000 && c <= 0x206F) &&
         !(c >= 0x3000 && c <= 0x303F) && !(c >= 0xFF00 && c <= 0xFF0F);
}

std::u16string_view Trimmed(std::u16string_view line) {
  while (!line.empty() && IsWhiteSpaceOrNewline(line.front())) line.remove_prefix(1);
  while (!line.empty() && IsWhiteSpaceOrNewline(line.back())) line.remove_suffix(1);
  return line;
}

}  // namespace

void DrawText::init() {
  DrawRectangle::init();
  textStorage_ = AttributedString();
  fOpacity_ = 1.0f;
}

void DrawText::encodeWithCoder(KeyedArchiver& coder) const {
  DrawRectangle::encodeWithCoder(coder);
  coder.encodeAttributedStringForKey(textStorage_, "Text");
  coder.encodeFloatForKey(fOpacity_, "Opacity");
}

bool DrawText::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawRectangle::initWithCoder(coder)) return false;
  if (bezierPath_) bezierPath_->setLineWidth(0.0);
  if (auto text = coder.decodeAttributedStringForKey("Text")) textStorage_ = std::move(*text);
  const std::optional<double> opacity = coder.decodeNumberForKey("Opacity");
  fOpacity_ = opacity && std::isfinite(*opacity)
                  ? std::clamp(static_cast<float>(*opacity), 0.0f, 1.0f)
                  : 1.0f;
  imgRepText_.reset();
  return true;
}

std::string DrawText::layerTitle() const {
  if (strLayerTitle_) return *strLayerTitle_;
  const std::u16string_view text = textStorage_.text();
  size_t lineStart = 0;
  while (lineStart < text.size()) {
    size_t lineEnd = text.find(u'\n', lineStart);
    if (lineEnd == std::u16string_view::npos) lineEnd = text.size();
    const std::u16string_view line = Trimmed(text.substr(lineStart, lineEnd - lineStart));
    lineStart = lineEnd + 1;
    if (line.empty()) continue;
    if (line.size() <= kTitleLength) return Utf16ToUtf8(line);
    // The cut is searched in the whole text but applied to the trimmed line,
    // as the layer list has always shown it.
    const size_t searchEnd = std::min(text.size(), line.size());
    for (size_t i = kTitleLength; i < searchEnd; ++i) {
      if (!IsLetter(text[i])) return Utf16ToUtf8(line.substr(0, i));
    }
    return Utf16ToUtf8(line.substr(0, kTitleLength));
  }
  return name();
}

bool DrawText::gradientFillInUse() const { return bFillWithGdt_ && gradientFill_.has_value(); }

bool DrawText::drawFill() const { return !bFillWithGdt_ || gradientFill_.has_value(); }

float DrawText::opacity() const {
  return gradientFillInUse() ? averageOpacity(*gradientFill_) : fOpacity_;
}

void DrawText::setOpacity(float opacity) {
  if (std::isnan(opacity)) {
    Log("Error: setOpacity: the opacity is not a number; the text is unchanged");
    return;
  }
  opacity = std::clamp(opacity, 0.0f, 1.0f);
  if (gradientFillInUse()) {
    if (auto faded = gradientWithOpacity(*gradientFill_, opacity)) setFillGradient(faded);
    return;
  }
  fOpacity_ = opacity;
}

DrawAttributes DrawText::drawAttributes() const {
  DrawAttributes attributes = DrawRectangle::drawAttributes();
  if (!gradientFillInUse()) attributes.set(DAKeyOpacity, static_cast<double>(fOpacity_));
  return attributes;
}

bool DrawText::setDrawAttributes(const DrawAttributes& attributes) {
  const bool changed = DrawRectangle::setDrawAttributes(attributes);
  if (gradientFillInUse()) return changed;
  const ArchiveValue* value = attributes.number(DAKeyOpacity);
  if (!value) return changed;
  const double number = value->toDouble();
  if (!std::isfinite(number)) return changed;
  const float opacity = std::clamp(static_cast<float>(number), 0.0f, 1.0f);
  if (std::fabs(opacity - fOpacity_) <= 0.001f) return changed;
  fOpacity_ = opacity;
  return true;
}

void DrawText::setAttributedString(const AttributedString& text) {
  if (&text == &textStorage_ || text == textStorage_) return;
  textStorage_ = text;
  imgRepText_.reset();
}

void DrawText::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  if (sx == 0 || sy == 0) return;
  DrawRectangle::scaleBy(sx, sy, center, resizeLineWidth);
  imgRepText_.reset();
  if (!resizeLineWidth || textStorage_.empty()) return;
  // Only the horizontal factor scales the fonts; the vertical one reshapes the box.
  std::vector<AttributeRun> runs = textStorage_.runs();
  for (AttributeRun& run : runs) {
    if (run.attributes.font) run.attributes.font->pointSize *= sx;
  }
  textStorage_.assign(textStorage_.text(), std::move(runs));
}

std::vector<Color> DrawText::textColors() const {
  std::vector<Color> colors;
  for (const AttributeRun& run : textStorage_.runs()) {
    if (run.attributes.foregroundColor) colors.push_back(*run.attributes.foregroundColor);
  }
  return colors;
}

std::vector<Font> DrawText::textFonts() const {
  std::vector<Font> fonts;
  for (const AttributeRun& run : textStorage_.runs()) {
    if (run.attributes.font) fonts.push_back(*run.attributes.font);
  }
  return fonts;
}

bool DrawText::underline() const {
  const std::vector<AttributeRun>& runs = textStorage_.runs();
  if (textStorage_.empty() || runs.empty()) return false;
  auto isUnderlined = [](const AttributeRun& run) {
    return run.attributes.underlineStyle.value_or(0) != 0;
  };
  const bool first = isUnderlined(runs.front());
  for (const AttributeRun& run : runs) {
    if (isUnderlined(run) != first) return false;
  }
  return first;
}

int64_t DrawText::textAlignment() const {
  if (textStorage_.empty()) return kNotFound;
  std::optional<TextAlignment> alignment;
  for (const AttributeRun& run : textStorage_.runs()) {
    if (!run.attributes.paragraphStyle) continue;
    const TextAlignment runAlignment = run.attributes.paragraphStyle->alignment;
    if (alignment && *alignment != runAlignment) return kNotFound;
    alignment = runAlignment;
  }
  return static_cast<int64_t>(alignment.value_or(TextAlignment::Left));
}

Size DrawText::drawSizeForAttributedString(const AttributedString& text, float width) {
  if (text.empty()) return MakeSize(0, 0);
  LayoutManager& manager = SharedLayoutManager();
  manager.textContainer().containerSize = MakeSize(width, 1000000);
  Result<Size> size = manager.usedRectForText(text);
  if (!size) {
    Log("Error: measuring text: " + size.reason());
    return MakeSize(0, 0);
  }
  return *size;
}

}  // namespace paintdoc
