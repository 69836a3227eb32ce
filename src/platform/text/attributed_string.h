// Rich text as data: UTF-16 text with runs of attributes (font, colours,
// paragraph style, underline and the other character attributes documents
// carry). Indices and lengths count UTF-16 code units, as archives do.
// Layout and drawing live elsewhere; this is the value only.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/color.h"
#include "platform/text/font.h"
#include "platform/text/paragraph_style.h"
#include "platform/values/shadow.h"
#include "platform/text/utf16.h"

namespace paintdoc {

// Underline and strikethrough values: a line style ORed with a pattern and the
// by-word flag, numbered as archives store them.
namespace underline {
inline constexpr int kNone = 0;
inline constexpr int kSingle = 1;
inline constexpr int kThick = 2;
inline constexpr int kDouble = 9;
inline constexpr int kPatternDot = 0x100;
inline constexpr int kPatternDash = 0x200;
inline constexpr int kPatternDashDot = 0x300;
inline constexpr int kPatternDashDotDot = 0x400;
inline constexpr int kByWord = 0x8000;
}  // namespace underline

// The attributes of one run. An absent attribute takes the text system's default.
struct TextAttributes {
  std::optional<Font> font;
  std::optional<Color> foregroundColor;
  std::optional<Color> backgroundColor;
  std::optional<ParagraphStyle> paragraphStyle;
  std::optional<int> underlineStyle;
  std::optional<Color> underlineColor;
  std::optional<int> strikethroughStyle;
  std::optional<Color> strikethroughColor;
  std::optional<double> strokeWidth;
  std::optional<Color> strokeColor;
  std::optional<Shadow> shadow;
  std::optional<double> kern;
  std::optional<int> ligature;
  std::optional<double> baselineOffset;
  std::optional<double> obliqueness;
  std::optional<double> expansion;
  std::optional<int> superscript;
  std::optional<std::string> link;

  bool empty() const { return *this == TextAttributes{}; }
  friend bool operator==(const TextAttributes&, const TextAttributes&) = default;
};

struct AttributeRun {
  size_t length = 0;  // UTF-16 code units
  TextAttributes attributes;
  friend bool operator==(const AttributeRun&, const AttributeRun&) = default;
};

class AttributedString {
 public:
  AttributedString() = default;
  // Text with one run of attributes over all of it.
  AttributedString(std::u16string text, TextAttributes attributes);
  static AttributedString fromUTF8(std::string_view text, TextAttributes attributes = {});

  const std::u16string& text() const { return text_; }
  std::string utf8Text() const;
  size_t length() const { return text_.size(); }
  bool empty() const { return text_.empty(); }

  // Runs in text order, covering the text exactly; neighbours differ.
  const std::vector<AttributeRun>& runs() const { return runs_; }
  // The attributes at a UTF-16 index (empty attributes past the end).
  const TextAttributes& attributesAt(size_t index) const;

  // Appends text with its attributes, merging with an equal last run.
  void append(std::u16string_view text, const TextAttributes& attributes);
  void append(const AttributedString& other);
  // Replaces the attributes of [location, location + length) (clamped to the text).
  void setAttributes(const TextAttributes& attributes, size_t location, size_t length);
  // Builds from text and runs; false (and nothing changed) when the run lengths
  // do not add up to the text length.
  bool assign(std::u16string text, std::vector<AttributeRun> runs);

  friend bool operator==(const AttributedString&, const AttributedString&) = default;

 private:
  void normalizeRuns();

  std::u16string text_;
  std::vector<AttributeRun> runs_;
};

}  // namespace paintdoc
