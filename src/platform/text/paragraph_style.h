// Paragraph layout settings of rich text: alignment, spacing, indents, line
// breaking and tab stops, with the platform's defaults.
#pragma once

#include <optional>
#include <vector>

namespace paintdoc {

// Numbered as archives store them (the same numbers on every platform).
enum class TextAlignment { Left = 0, Right = 1, Center = 2, Justified = 3, Natural = 4 };

enum class LineBreakMode {
  WordWrap = 0,
  CharWrap = 1,
  Clip = 2,
  TruncateHead = 3,
  TruncateTail = 4,
  TruncateMiddle = 5,
};

enum class WritingDirection { Natural = -1, LeftToRight = 0, RightToLeft = 1 };

enum class TextTabType { Left = 0, Right = 1, Center = 2, Decimal = 3 };

struct TextTab {
  double location = 0;
  TextTabType type = TextTabType::Left;
  // The alignment of text at the stop when it was given explicitly; otherwise
  // the type decides.
  std::optional<TextAlignment> alignment;

  TextAlignment effectiveAlignment() const;
  friend bool operator==(const TextTab&, const TextTab&) = default;
};

struct ParagraphStyle {
  // Distance of the default tab stops.
  static constexpr double kDefaultTabSpacing = 28;
  static constexpr double kDefaultTighteningFactor = 0.05;

  TextAlignment alignment = TextAlignment::Natural;
  LineBreakMode lineBreakMode = LineBreakMode::WordWrap;
  WritingDirection baseWritingDirection = WritingDirection::Natural;
  double lineSpacing = 0;
  double paragraphSpacing = 0;
  double paragraphSpacingBefore = 0;
  double headIndent = 0;
  double firstLineHeadIndent = 0;
  double tailIndent = 0;
  double minimumLineHeight = 0;
  double maximumLineHeight = 0;
  double lineHeightMultiple = 0;
  double defaultTabInterval = 0;
  double hyphenationFactor = 0;
  double tighteningFactorForTruncation = kDefaultTighteningFactor;
  bool allowsDefaultTighteningForTruncation = false;
  // Explicit tab stops; none means the default stops every kDefaultTabSpacing points.
  std::optional<std::vector<TextTab>> tabStops;

  // The platform's default paragraph style.
  static ParagraphStyle defaultStyle();
  // The explicit stops, or the default ones up to `upTo` points.
  std::vector<TextTab> effectiveTabStops(double upTo) const;

  friend bool operator==(const ParagraphStyle&, const ParagraphStyle&) = default;
};

}  // namespace paintdoc
