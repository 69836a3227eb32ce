#include "platform/text/font_traits.h"

#include <fontconfig/fontconfig.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace paintdoc {

namespace {

constexpr FontTraitMask kHandledTraits = kItalicFontMask | kBoldFontMask;

// One installed face, with what the trait conversion needs of it.
struct Face {
  std::string postscriptName;
  std::string family;
  int weight = FC_WEIGHT_REGULAR;
  int slant = FC_SLANT_ROMAN;
  int width = FC_WIDTH_NORMAL;

  FontTraitMask traits() const {
    FontTraitMask traits = 0;
    if (weight >= FC_WEIGHT_DEMIBOLD) traits |= kBoldFontMask;
    if (slant != FC_SLANT_ROMAN) traits |= kItalicFontMask;
    return traits;
  }
};

std::string StringOf(FcPattern* pattern, const char* object) {
  FcChar8* value = nullptr;
  if (FcPatternGetString(pattern, object, 0, &value) != FcResultMatch || !value) return {};
  return reinterpret_cast<const char*>(value);
}

int IntegerOf(FcPattern* pattern, const char* object, int fallback) {
  int value = fallback;
  FcPatternGetInteger(pattern, object, 0, &value);
  return value;
}

// The installed faces whose `object` (PostScript name or family) is `value`.
// Fontconfig compares family names ignoring case and blanks.
std::vector<Face> InstalledFaces(const char* object, const std::string& value) {
  std::vector<Face> faces;
  if (value.empty()) return faces;
  FcPattern* pattern = FcPatternCreate();
  FcObjectSet* objects =
      FcObjectSetBuild(FC_POSTSCRIPT_NAME, FC_FAMILY, FC_WEIGHT, FC_SLANT, FC_WIDTH, nullptr);
  if (pattern && objects &&
      FcPatternAddString(pattern, object, reinterpret_cast<const FcChar8*>(value.c_str()))) {
    if (FcFontSet* set = FcFontList(nullptr, pattern, objects)) {
      for (int i = 0; i < set->nfont; ++i) {
        FcPattern* font = set->fonts[i];
        Face face{StringOf(font, FC_POSTSCRIPT_NAME), StringOf(font, FC_FAMILY),
                  IntegerOf(font, FC_WEIGHT, FC_WEIGHT_REGULAR),
                  IntegerOf(font, FC_SLANT, FC_SLANT_ROMAN),
                  IntegerOf(font, FC_WIDTH, FC_WIDTH_NORMAL)};
        if (!face.postscriptName.empty()) faces.push_back(std::move(face));
      }
      FcFontSetDestroy(set);
    }
  }
  if (objects) FcObjectSetDestroy(objects);
  if (pattern) FcPatternDestroy(pattern);
  return faces;
}

std::optional<Face> InstalledFace(const std::string& postscriptName) {
  for (Face& face : InstalledFaces(FC_POSTSCRIPT_NAME, postscriptName)) {
    if (face.postscriptName == postscriptName) return std::move(face);
  }
  return std::nullopt;
}

// A PostScript name split into family and style: "Helvetica-BoldOblique" is
// "Helvetica" and "BoldOblique"; a name without '-' is all family.
struct NameParts {
  std::string family;
  std::string style;
};

NameParts SplitName(const std::string& name) {
  const size_t dash = name.rfind('-');
  if (dash == std::string::npos || dash == 0) return {name, ""};
  return {name.substr(0, dash), name.substr(dash + 1)};
}

bool Contains(std::string_view text, std::string_view word) {
  return text.find(word) != std::string_view::npos;
}

FontTraitMask TraitsOfStyle(std::string_view style) {
  FontTraitMask traits = 0;
  if (Contains(style, "Bold") || Contains(style, "Black") || Contains(style, "Heavy")) {
    traits |= kBoldFontMask;
  }
  if (Contains(style, "Italic") || Contains(style, "Oblique")) traits |= kItalicFontMask;
  return traits;
}

// The name of a face that is not installed: the family with the style words
// of the platform's PostScript names. A family whose names slant with
// "Oblique" keeps that word.
std::string MadeUpName(const NameParts& parts, FontTraitMask traits) {
  const char* slantWord = Contains(parts.style, "Oblique") ? "Oblique" : "Italic";
  std::string style;
  if (traits & kBoldFontMask) style += "Bold";
  if (traits & kItalicFontMask) style += slantWord;
  return style.empty() ? parts.family : parts.family + "-" + style;
}

// How far a face is from the one wanted: first its width (stay narrow or
// wide as the source was), then its weight from the regular or bold weight,
// then the name, so that the choice never depends on listing order.
auto Distance(const Face& face, int wantedWidth) {
  const int wantedWeight =
      (face.traits() & kBoldFontMask) ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR;
  return std::make_tuple(std::abs(face.width - wantedWidth),
                         std::abs(face.weight - wantedWeight), face.postscriptName);
}

// The family's face with exactly `traits` that is nearest the wanted width.
const Face* FaceWithTraits(const std::vector<Face>& family, FontTraitMask traits,
                           int wantedWidth) {
  const Face* best = nullptr;
  for (const Face& face : family) {
    if (face.traits() != traits) continue;
    if (!best || Distance(face, wantedWidth) < Distance(*best, wantedWidth)) best = &face;
  }
  return best;
}

}  // namespace

FontTraitMask traitsOfFont(const Font& font) {
  if (const std::optional<Face> face = InstalledFace(font.name)) return face->traits();
  return TraitsOfStyle(SplitName(font.name).style);
}

std::optional<Font> convertFont(const std::optional<Font>& font, FontTraitMask traits) {
  if (!font) return std::nullopt;
  traits &= kHandledTraits;
  const std::optional<Face> source = InstalledFace(font->name);
  const NameParts parts = SplitName(font->name);
  const std::vector<Face> family =
      InstalledFaces(FC_FAMILY, source ? source->family : parts.family);
  Font result = *font;
  if (family.empty()) {
    // Not installed: keep the platform's naming so the document still names
    // the face it was made with. A name without family stays as it is.
    if (!parts.family.empty()) result.name = MadeUpName(parts, traits);
    return result;
  }
  const int width = source ? source->width : FC_WIDTH_NORMAL;
  // First off with the current traits, then on with the requested ones; a
  // step the family has no face for leaves the font as it was.
  if ((source ? source->traits() : TraitsOfStyle(parts.style)) != 0) {
    if (const Face* plain = FaceWithTraits(family, 0, width)) result.name = plain->postscriptName;
  }
  if (traits != 0) {
    if (const Face* wanted = FaceWithTraits(family, traits, width)) {
      result.name = wanted->postscriptName;
    }
  }
  return result;
}

}  // namespace paintdoc
