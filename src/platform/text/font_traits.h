// The bold and italic traits of a font and the conversion between its faces,
// as the platform's font manager does it: a font keeps its family and size
// and changes face. Faces are looked up among the installed fonts through
// fontconfig by PostScript name and family.
#pragma once

#include <optional>

#include "platform/text/font.h"

namespace paintdoc {

// The platform's trait mask bits; conversion handles italic and bold and
// ignores the other bits.
using FontTraitMask = unsigned;
inline constexpr FontTraitMask kItalicFontMask = 0x00000001;
inline constexpr FontTraitMask kBoldFontMask = 0x00000002;

// The traits of the font's face: read from the installed face of that
// PostScript name, else from the style words of the name ("-BoldOblique").
FontTraitMask traitsOfFont(const Font& font);

// The face of the font's family with exactly `traits` (bold, italic, both or
// neither), same size and flags. The font's own traits are removed first,
// then the requested ones added, as far as the installed family has such
// faces. For a family that is not installed the name is made from the family
// and the style ("Helvetica" + bold italic -> "Helvetica-BoldItalic"). None
// stays none.
std::optional<Font> convertFont(const std::optional<Font>& font, FontTraitMask traits);

}  // namespace paintdoc
