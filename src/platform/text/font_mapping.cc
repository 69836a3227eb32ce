#include "platform/text/font_mapping.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <mutex>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace paintdoc {

namespace {

// Families that fontconfig has no alias for, by the family part of their
// PostScript name: the desktop's Chinese, Japanese and emoji faces and a few
// interface faces, each with the installed face closest in look and metrics.
struct FamilyTwin {
  std::string_view postscriptFamily;
  std::string_view installedFamily;
};
constexpr std::array kFamilyTwins{
    FamilyTwin{"PingFangSC", "Noto Sans CJK SC"},
    FamilyTwin{"PingFangTC", "Noto Sans CJK TC"},
    FamilyTwin{"PingFangHK", "Noto Sans CJK HK"},
    FamilyTwin{"STHeitiSC", "Noto Sans CJK SC"},
    FamilyTwin{"STHeitiTC", "Noto Sans CJK TC"},
    FamilyTwin{"STHeiti", "Noto Sans CJK SC"},
    FamilyTwin{"HiraginoSansGB", "Noto Sans CJK SC"},
    FamilyTwin{"STSong", "Noto Serif CJK SC"},
    FamilyTwin{"STSongti", "Noto Serif CJK SC"},
    FamilyTwin{"HiraginoSans", "Noto Sans CJK JP"},
    FamilyTwin{"HiraKakuProN", "Noto Sans CJK JP"},
    FamilyTwin{"HiraKakuPro", "Noto Sans CJK JP"},
    FamilyTwin{"HiraKakuStdN", "Noto Sans CJK JP"},
    FamilyTwin{"HiraMaruProN", "Noto Sans CJK JP"},
    FamilyTwin{"HiraMinProN", "Noto Serif CJK JP"},
    FamilyTwin{"HiraMinPro", "Noto Serif CJK JP"},
    FamilyTwin{"AppleSDGothicNeo", "Noto Sans CJK KR"},
    FamilyTwin{"AppleColorEmoji", "Noto Color Emoji"},
    FamilyTwin{"HelveticaNeue", "Nimbus Sans"},
    FamilyTwin{".HelveticaNeueInterface", "Nimbus Sans"},
    FamilyTwin{".SFNSText", "Nimbus Sans"},
    FamilyTwin{".SFNSDisplay", "Nimbus Sans"},
    FamilyTwin{"LucidaGrande", "DejaVu Sans"},
    FamilyTwin{"Menlo", "DejaVu Sans Mono"},
    FamilyTwin{"Monaco", "DejaVu Sans Mono"},
};

// Generic names end the list of families a pattern asks for: a match past
// them is a fallback, not the requested face or one of its twins.
constexpr std::array<std::string_view, 10> kGenericFamilies{
    "sans-serif", "serif", "monospace", "emoji", "math", "system-ui", "cursive", "fantasy",
    "sans", "mono"};

constexpr std::string_view kFallbackFamily = "sans-serif";
constexpr size_t kMaxCachedFaces = 1024;

std::string Lowercase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

bool EndsWith(std::string_view text, std::string_view suffix) {
  return text.size() > suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

// "ArialMT", "TimesNewRomanPSMT": the foundry's suffix is no part of the family.
std::string_view WithoutFoundrySuffix(std::string_view family) {
  for (std::string_view suffix : {std::string_view("PSMT"), std::string_view("MT")}) {
    if (EndsWith(family, suffix)) return family.substr(0, family.size() - suffix.size());
  }
  return family;
}

// "TimesNewRoman" -> "Times New Roman".
std::string FamilyWords(std::string_view family) {
  std::string words;
  for (size_t i = 0; i < family.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(family[i]);
    if (i > 0 && std::isupper(c) && std::islower(static_cast<unsigned char>(family[i - 1]))) {
      words += ' ';
    }
    words += static_cast<char>(c);
  }
  return words;
}

// Weight words of style names, longest first so that "semibold" is not read as "bold".
struct WeightWord {
  std::string_view word;
  int weight;
};
constexpr std::array kWeightWords{
    WeightWord{"ultralight", 200}, WeightWord{"extralight", 200}, WeightWord{"extrabold", 800},
    WeightWord{"ultrabold", 800},  WeightWord{"semibold", 600},   WeightWord{"demibold", 600},
    WeightWord{"medium", 500},     WeightWord{"light", 300},      WeightWord{"heavy", 800},
    WeightWord{"black", 900},      WeightWord{"thin", 100},       WeightWord{"bold", 700},
};

int WeightOfStyle(const std::string& style) {
  for (const WeightWord& entry : kWeightWords) {
    if (style.find(entry.word) != std::string::npos) return entry.weight;
  }
  // Hiragino numbers its weights W0 .. W9; W3 is the text weight, W6 the bold.
  if (style.size() == 2 && style[0] == 'w' && std::isdigit(static_cast<unsigned char>(style[1]))) {
    const int number = style[1] - '0';
    if (number <= 2) return 300;
    if (number <= 4) return 400;
    if (number == 5) return 500;
    return number == 6 ? 700 : number * 100;
  }
  return 400;
}

// Family names compare as fontconfig compares them: ignoring case and blanks.
std::string FamilyKey(std::string_view family) {
  std::string key;
  for (char c : family) {
    if (c != ' ') key += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return key;
}

bool SameFamily(std::string_view a, std::string_view b) { return FamilyKey(a) == FamilyKey(b); }

std::string FamilyOf(FcPattern* pattern, int index) {
  FcChar8* value = nullptr;
  if (FcPatternGetString(pattern, FC_FAMILY, index, &value) != FcResultMatch || !value) return {};
  return reinterpret_cast<const char*>(value);
}

// The families a request resolves to: the family itself and the metric twins
// fontconfig's configuration binds to it as the same face. The generic
// fallbacks it appends are weakly bound and are left out.
std::vector<std::string> RequestedFamilies(FcPattern* substituted) {
  std::vector<std::string> families;
  FcPatternIter iterator;
  FcPatternIterStart(substituted, &iterator);
  if (!FcPatternFindIter(substituted, &iterator, FC_FAMILY)) return families;
  const int count = FcPatternIterValueCount(substituted, &iterator);
  for (int i = 0; i < count; ++i) {
    FcValue value;
    FcValueBinding binding = FcValueBindingWeak;
    if (FcPatternIterGetValue(substituted, &iterator, i, &value, &binding) != FcResultMatch) break;
    if (value.type != FcTypeString || binding == FcValueBindingWeak) continue;
    std::string family = reinterpret_cast<const char*>(value.u.s);
    const bool generic = std::any_of(kGenericFamilies.begin(), kGenericFamilies.end(),
                                     [&](std::string_view name) { return SameFamily(family, name); });
    if (!generic) families.push_back(std::move(family));
  }
  return families;
}

// The installed family fontconfig picks for `family` with the face's style,
// and whether it is that family or one of its twins.
std::pair<std::string, bool> MatchFamily(const std::string& family, const FontFace& style) {
  std::pair<std::string, bool> answer{std::string(kFallbackFamily), false};
  FcPattern* pattern = FcPatternCreate();
  if (!pattern) return answer;
  FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
  FcPatternAddInteger(pattern, FC_WEIGHT, FcWeightFromOpenType(style.weight));
  FcPatternAddInteger(pattern, FC_SLANT, style.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
  FcDefaultSubstitute(pattern);
  const std::vector<std::string> requested = RequestedFamilies(pattern);
  FcResult result = FcResultNoMatch;
  if (FcPattern* match = FcFontMatch(nullptr, pattern, &result)) {
    answer.first = FamilyOf(match, 0);
    for (const std::string& candidate : requested) {
      if (SameFamily(answer.first, candidate)) answer.second = true;
    }
    FcPatternDestroy(match);
  }
  FcPatternDestroy(pattern);
  return answer;
}

// An installed face whose PostScript name is exactly the requested one.
std::optional<FontFace> InstalledFaceNamed(const std::string& postscriptName) {
  std::optional<FontFace> face;
  FcPattern* pattern = FcPatternCreate();
  FcObjectSet* objects = FcObjectSetBuild(FC_FAMILY, FC_WEIGHT, FC_SLANT, nullptr);
  if (pattern && objects &&
      FcPatternAddString(pattern, FC_POSTSCRIPT_NAME,
                         reinterpret_cast<const FcChar8*>(postscriptName.c_str()))) {
    if (FcFontSet* set = FcFontList(nullptr, pattern, objects)) {
      if (set->nfont > 0) {
        FcPattern* font = set->fonts[0];
        int weight = FC_WEIGHT_REGULAR, slant = FC_SLANT_ROMAN;
        FcPatternGetInteger(font, FC_WEIGHT, 0, &weight);
        FcPatternGetInteger(font, FC_SLANT, 0, &slant);
        face = FontFace{FamilyOf(font, 0), FcWeightToOpenType(weight), slant != FC_SLANT_ROMAN,
                        false};
      }
      FcFontSetDestroy(set);
    }
  }
  if (objects) FcObjectSetDestroy(objects);
  if (pattern) FcPatternDestroy(pattern);
  return face;
}

FontFace ResolveFace(const std::string& postscriptName) {
  if (auto installed = InstalledFaceNamed(postscriptName)) return *installed;
  FontFace face = FaceRequestedByName(postscriptName);
  auto [family, found] = MatchFamily(face.family, face);
  if (!found) {
    family = MatchFamily(std::string(kFallbackFamily), face).first;
    face.fallback = true;
  }
  face.family = family;
  return face;
}

}  // namespace

std::string FontFace::displayName() const {
  std::string name = family;
  if (weight >= 600) name += weight >= 800 ? " Black" : " Bold";
  if (weight <= 300) name += " Light";
  if (italic) name += " Italic";
  return name;
}

FontFace FaceRequestedByName(const std::string& postscriptName) {
  const size_t dash = postscriptName.find('-');
  const std::string_view whole(postscriptName);
  const std::string_view familyPart = whole.substr(0, dash);
  const std::string style =
      dash == std::string::npos ? std::string() : Lowercase(whole.substr(dash + 1));
  FontFace face;
  face.weight = WeightOfStyle(style);
  face.italic = style.find("italic") != std::string::npos ||
                style.find("oblique") != std::string::npos;
  for (const FamilyTwin& twin : kFamilyTwins) {
    if (familyPart == twin.postscriptFamily) {
      face.family = twin.installedFamily;
      return face;
    }
  }
  face.family = FamilyWords(WithoutFoundrySuffix(familyPart));
  if (face.family.empty()) face.family = kFallbackFamily;
  return face;
}

FontFace FaceForPostScriptName(const std::string& postscriptName) {
  static std::mutex mutex;
  static std::unordered_map<std::string, FontFace> cache;
  {
    std::lock_guard lock(mutex);
    if (auto found = cache.find(postscriptName); found != cache.end()) return found->second;
  }
  FontFace face = ResolveFace(postscriptName);
  std::lock_guard lock(mutex);
  // Names come from documents: a hostile one may name thousands of fonts.
  if (cache.size() < kMaxCachedFaces) cache.emplace(postscriptName, face);
  return face;
}

}  // namespace paintdoc
