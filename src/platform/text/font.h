// A font as documents name it: the PostScript name and the point size. The
// mapping to an installed family belongs to text layout, not to this value.
#pragma once

#include <optional>
#include <string>

namespace paintdoc {

struct Font {
  // Flags the platform stores with an ordinary named font.
  static constexpr int kOrdinaryFontFlags = 16;

  std::string name;  // PostScript name, "Helvetica-Bold"
  double pointSize = 12;
  int flags = kOrdinaryFontFlags;  // kept as read so that it is written back unchanged

  friend bool operator==(const Font&, const Font&) = default;
};

// Tolerant equality, so that setting a font that differs only by rounding of
// its size is no edit: the same name and point sizes less than 0.1 apart.
// False against no font.
bool wt_isEqualWithFont(const Font& font, const std::optional<Font>& other);

}  // namespace paintdoc
