#include "platform/text/paragraph_style.h"

namespace paintdoc {

TextAlignment TextTab::effectiveAlignment() const {
  if (alignment) return *alignment;
  switch (type) {
    case TextTabType::Right:
    case TextTabType::Decimal:
      return TextAlignment::Right;
    case TextTabType::Center:
      return TextAlignment::Center;
    case TextTabType::Left:
      break;
  }
  return TextAlignment::Left;
}

ParagraphStyle ParagraphStyle::defaultStyle() {
  ParagraphStyle style;
  style.alignment = TextAlignment::Natural;
  style.allowsDefaultTighteningForTruncation = true;
  return style;
}

std::vector<TextTab> ParagraphStyle::effectiveTabStops(double upTo) const {
  if (tabStops) return *tabStops;
  std::vector<TextTab> stops;
  // A bound on the count keeps a huge width from making a huge list.
  for (double location = kDefaultTabSpacing; location <= upTo && stops.size() < 10000;
       location += kDefaultTabSpacing) {
    stops.push_back({location, TextTabType::Left, std::nullopt});
  }
  return stops;
}

}  // namespace paintdoc
