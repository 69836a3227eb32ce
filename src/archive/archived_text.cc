// Rich text: NSAttributedString, NSMutableAttributedString and NSTextStorage
// with their attribute dictionaries, NSFont, NSParagraphStyle and NSTextTab.
//
// The text is "NSString". A single attribute run over the whole text is one
// dictionary under "NSAttributes"; several runs are an array of the distinct
// dictionaries plus "NSAttributeInfo": for each run its length in UTF-16 units
// and its dictionary's index, each as an unsigned little-endian base-128
// varint.
#include <algorithm>

#include "archive/archived_forms.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

// Attribute dictionary keys.
constexpr const char* kFontKey = "NSFont";
constexpr const char* kColorKey = "NSColor";
constexpr const char* kBackgroundColorKey = "NSBackgroundColor";
constexpr const char* kParagraphStyleKey = "NSParagraphStyle";
constexpr const char* kUnderlineKey = "NSUnderline";
constexpr const char* kUnderlineColorKey = "NSUnderlineColor";
constexpr const char* kStrikethroughKey = "NSStrikethrough";
constexpr const char* kStrikethroughColorKey = "NSStrikethroughColor";
constexpr const char* kStrokeWidthKey = "NSStrokeWidth";
constexpr const char* kStrokeColorKey = "NSStrokeColor";
constexpr const char* kShadowKey = "NSShadow";
constexpr const char* kKernKey = "NSKern";
constexpr const char* kLigatureKey = "NSLigature";
constexpr const char* kBaselineOffsetKey = "NSBaselineOffset";
constexpr const char* kObliquenessKey = "NSObliqueness";
constexpr const char* kExpansionKey = "NSExpansion";
constexpr const char* kSuperscriptKey = "NSSuperScript";
constexpr const char* kLinkKey = "NSLink";

// --- attribute dictionaries

template <class T>
void Take(const ArchiveValue& value, std::optional<T>& field) {
  if (const T* typed = value.as<T>()) field = *typed;
}

void TakeNumber(const ArchiveValue& value, std::optional<double>& field) {
  if (value.isNumber()) field = value.toDouble();
}

void TakeInteger(const ArchiveValue& value, std::optional<int>& field) {
  if (value.isNumber()) field = static_cast<int>(std::clamp<int64_t>(value.toInt64(), INT32_MIN, INT32_MAX));
}

TextAttributes AttributesOfDictionary(const ArchiveValue& dictionary) {
  TextAttributes a;
  const ValueDictionary* entries = dictionary.asDictionary();
  if (!entries) return a;
  for (const auto& [keyValue, value] : *entries) {
    const std::string* key = keyValue.asString();
    if (!key) continue;
    if (*key == kFontKey) Take(value, a.font);
    else if (*key == kColorKey) Take(value, a.foregroundColor);
    else if (*key == kBackgroundColorKey) Take(value, a.backgroundColor);
    else if (*key == kParagraphStyleKey) Take(value, a.paragraphStyle);
    else if (*key == kUnderlineKey) TakeInteger(value, a.underlineStyle);
    else if (*key == kUnderlineColorKey) Take(value, a.underlineColor);
    else if (*key == kStrikethroughKey) TakeInteger(value, a.strikethroughStyle);
    else if (*key == kStrikethroughColorKey) Take(value, a.strikethroughColor);
    else if (*key == kStrokeWidthKey) TakeNumber(value, a.strokeWidth);
    else if (*key == kStrokeColorKey) Take(value, a.strokeColor);
    else if (*key == kShadowKey) Take(value, a.shadow);
    else if (*key == kKernKey) TakeNumber(value, a.kern);
    else if (*key == kLigatureKey) TakeInteger(value, a.ligature);
    else if (*key == kBaselineOffsetKey) TakeNumber(value, a.baselineOffset);
    else if (*key == kObliquenessKey) TakeNumber(value, a.obliqueness);
    else if (*key == kExpansionKey) TakeNumber(value, a.expansion);
    else if (*key == kSuperscriptKey) TakeInteger(value, a.superscript);
    else if (*key == kLinkKey && value.asString()) a.link = *value.asString();
  }
  return a;
}

ArchiveValue DictionaryOfAttributes(const TextAttributes& a) {
  ValueDictionary entries;
  auto add = [&](const char* key, const auto& field) {
    if (field) entries.emplace_back(key, ArchiveValue(*field));
  };
  auto addReal = [&](const char* key, const std::optional<double>& field) {
    if (field) entries.emplace_back(key, ArchiveValue(*field));
  };
  auto addInteger = [&](const char* key, const std::optional<int>& field) {
    if (field) entries.emplace_back(key, ArchiveValue(int64_t{*field}));
  };
  add(kFontKey, a.font);
  add(kColorKey, a.foregroundColor);
  add(kBackgroundColorKey, a.backgroundColor);
  add(kParagraphStyleKey, a.paragraphStyle);
  addInteger(kUnderlineKey, a.underlineStyle);
  add(kUnderlineColorKey, a.underlineColor);
  addInteger(kStrikethroughKey, a.strikethroughStyle);
  add(kStrikethroughColorKey, a.strikethroughColor);
  addReal(kStrokeWidthKey, a.strokeWidth);
  add(kStrokeColorKey, a.strokeColor);
  add(kShadowKey, a.shadow);
  addReal(kKernKey, a.kern);
  addInteger(kLigatureKey, a.ligature);
  addReal(kBaselineOffsetKey, a.baselineOffset);
  addReal(kObliquenessKey, a.obliqueness);
  addReal(kExpansionKey, a.expansion);
  addInteger(kSuperscriptKey, a.superscript);
  if (a.link) entries.emplace_back(kLinkKey, ArchiveValue(*a.link));
  return ArchiveValue::dictionary(std::move(entries));
}

// --- run table

// Reads the next varint; false at the end of the data or on a value beyond 63 bits.
bool ReadVarint(std::span<const uint8_t> data, size_t& pos, uint64_t& value) {
  value = 0;
  for (int shift = 0; pos < data.size(); shift += 7) {
    const uint8_t byte = data[pos++];
    if (shift > 56 && (byte & 0x7F) >> (63 - shift) != 0) return false;
    value |= uint64_t{byte & 0x7Fu} << shift;
    if (byte < 0x80) return true;
    if (shift >= 63) return false;
  }
  return false;
}

void AppendVarint(std::vector<uint8_t>& out, uint64_t value) {
  while (value > 127) {
    out.push_back(static_cast<uint8_t>(0x80 | (value & 0x7F)));
    value >>= 7;
  }
  out.push_back(static_cast<uint8_t>(value));
}

// The runs described by the run table, or nothing when they do not cover the
// text exactly or name a dictionary that does not exist.
std::optional<std::vector<AttributeRun>> RunsOfTable(std::span<const uint8_t> table,
                                                    const std::vector<TextAttributes>& dictionaries,
                                                    size_t textLength, std::string& problem) {
  std::vector<AttributeRun> runs;
  size_t covered = 0;
  size_t pos = 0;
  while (pos < table.size()) {
    uint64_t length = 0;
    uint64_t index = 0;
    if (!ReadVarint(table, pos, length) || !ReadVarint(table, pos, index)) {
      problem = "a truncated or oversized number";
      return std::nullopt;
    }
    if (index >= dictionaries.size()) {
      problem = "a run names attribute dictionary " + std::to_string(index) + " of " +
                std::to_string(dictionaries.size());
      return std::nullopt;
    }
    if (length > textLength - covered) {
      problem = "runs longer than the text";
      return std::nullopt;
    }
    covered += length;
    runs.push_back({static_cast<size_t>(length), dictionaries[index]});
  }
  if (covered != textLength) {
    problem = "runs cover " + std::to_string(covered) + " of " + std::to_string(textLength) +
              " characters";
    return std::nullopt;
  }
  return runs;
}

}  // namespace

ArchiveValue ReadAttributedStringObject(KeyedUnarchiver& coder, std::string_view className) {
  std::u16string text = Utf8ToUtf16(coder.decodeStringForKey("NSString").value_or(""));
  AttributedString result;
  if (text.empty()) return ArchiveValue(std::move(result));

  const ArchiveValue attributes = coder.decodeValueForKey("NSAttributes");
  std::vector<TextAttributes> dictionaries;
  if (const ValueArray* array = attributes.asArray()) {
    for (const ArchiveValue& dictionary : *array) {
      dictionaries.push_back(AttributesOfDictionary(dictionary));
    }
  } else if (attributes.asDictionary()) {
    // One dictionary for the whole text.
    const size_t length = text.size();
    result.assign(std::move(text), {{length, AttributesOfDictionary(attributes)}});
    return ArchiveValue(std::move(result));
  }

  const SharedBytes table = coder.decodeDataForKey("NSAttributeInfo").value_or(SharedBytes());
  std::string problem = "no run table";
  std::optional<std::vector<AttributeRun>> runs;
  if (!dictionaries.empty() && !table.empty()) {
    runs = RunsOfTable(table.span(), dictionaries, text.size(), problem);
  }
  if (!runs) {
    if (!dictionaries.empty() || !attributes.isAbsent()) {
      Log("Warning: KeyedUnarchiver: the attribute runs of a " + std::string(className) +
          " are malformed (" + problem + "); its text keeps the first attributes only");
    }
    const TextAttributes first = dictionaries.empty() ? TextAttributes{} : dictionaries.front();
    runs = std::vector<AttributeRun>{{text.size(), first}};  // before `text` is moved
  }
  result.assign(std::move(text), std::move(*runs));
  return ArchiveValue(std::move(result));
}

uint64_t WriteAttributedString(ArchiveObjectWriter& writer, const AttributedString& text,
                               AttributedStringClass archivedClass) {
  // The distinct dictionaries, in order of first use, and each run's index.
  std::vector<const TextAttributes*> distinct;
  std::vector<uint8_t> table;
  for (const AttributeRun& run : text.runs()) {
    auto it = std::find_if(distinct.begin(), distinct.end(),
                           [&](const TextAttributes* a) { return *a == run.attributes; });
    if (it == distinct.end()) it = distinct.insert(distinct.end(), &run.attributes);
    AppendVarint(table, run.length);
    AppendVarint(table, static_cast<uint64_t>(it - distinct.begin()));
  }
  const bool isPlain = archivedClass == AttributedStringClass::AttributedString;
  ArchiveValue string(text.utf8Text());
  string.setMutable(!isPlain);

  uint64_t attributes = 0;
  uint64_t runTable = 0;
  if (distinct.size() == 1 && text.runs().size() == 1) {
    attributes = writer.archive(DictionaryOfAttributes(*distinct.front()));
  } else if (!distinct.empty()) {
    ValueArray dictionaries;
    for (const TextAttributes* a : distinct) dictionaries.push_back(DictionaryOfAttributes(*a));
    attributes = writer.archive(ArchiveValue::array(std::move(dictionaries)));
    runTable = writer.archive(ArchiveValue(SharedBytes(std::move(table))).setMutable(true));
  }
  const uint64_t stringUid = writer.archive(string);

  std::vector<std::string> chain;
  switch (archivedClass) {
    case AttributedStringClass::AttributedString:
      chain = {"NSAttributedString", "NSObject"};
      break;
    case AttributedStringClass::MutableAttributedString:
      chain = {"NSMutableAttributedString", "NSAttributedString", "NSObject"};
      break;
    case AttributedStringClass::TextStorage:
      chain = {"NSTextStorage", "NSMutableAttributedString", "NSAttributedString", "NSObject"};
      break;
  }
  const uint64_t uid = writer.begin(std::move(chain));
  writer.encodeReference(stringUid, "NSString");
  if (attributes) writer.encodeReference(attributes, "NSAttributes");
  if (runTable) writer.encodeReference(runTable, "NSAttributeInfo");
  if (archivedClass == AttributedStringClass::TextStorage) writer.encodeReference(0, "NSDelegate");
  writer.finish();
  return uid;
}

// --- fonts

ArchiveValue ReadFontObject(KeyedUnarchiver& coder, std::string_view) {
  Font font;
  font.name = coder.decodeStringForKey("NSName").value_or("");
  font.pointSize = coder.decodeDoubleForKey("NSSize");
  if (coder.containsValueForKey("NSfFlags")) font.flags = coder.decodeIntForKey("NSfFlags");
  return ArchiveValue(std::move(font));
}

uint64_t WriteFont(ArchiveObjectWriter& writer, const Font& font) {
  const uint64_t uid = writer.begin({"NSFont", "NSObject"});
  KeyedArchiver& coder = writer.coder();
  coder.encodeStringForKey(font.name, "NSName");
  coder.encodeDoubleForKey(font.pointSize, "NSSize");
  coder.encodeIntForKey(font.flags, "NSfFlags");
  writer.finish();
  return uid;
}

// --- paragraph styles and tabs

namespace {

template <class Enum>
Enum EnumOr(int64_t value, int64_t max, Enum fallback) {
  return value >= 0 && value <= max ? static_cast<Enum>(value) : fallback;
}

// The spacing and indent keys, all doubles written when not zero.
struct RealField {
  const char* key;
  double ParagraphStyle::*field;
};
constexpr RealField kRealFields[] = {
    {"NSLineSpacing", &ParagraphStyle::lineSpacing},
    {"NSParagraphSpacing", &ParagraphStyle::paragraphSpacing},
    {"NSParagraphSpacingBefore", &ParagraphStyle::paragraphSpacingBefore},
    {"NSHeadIndent", &ParagraphStyle::headIndent},
    {"NSFirstLineHeadIndent", &ParagraphStyle::firstLineHeadIndent},
    {"NSTailIndent", &ParagraphStyle::tailIndent},
    {"NSMinLineHeight", &ParagraphStyle::minimumLineHeight},
    {"NSMaxLineHeight", &ParagraphStyle::maximumLineHeight},
    {"NSLineHeightMultiple", &ParagraphStyle::lineHeightMultiple},
    {"NSDefaultTabInterval", &ParagraphStyle::defaultTabInterval},
    {"NSHyphenationFactor", &ParagraphStyle::hyphenationFactor},
};

}  // namespace

ArchiveValue ReadParagraphStyleObject(KeyedUnarchiver& coder, std::string_view) {
  ParagraphStyle style;
  // A missing alignment is 0: left, in the archive's numbering.
  style.alignment = EnumOr(coder.decodeInt64ForKey("NSAlignment"), 4, TextAlignment::Left);
  style.lineBreakMode =
      EnumOr(coder.decodeInt64ForKey("NSLineBreakMode"), 5, LineBreakMode::WordWrap);
  // Stored as the direction plus one; absent is natural.
  switch (coder.decodeInt64ForKey("NSWritingDirection")) {
    case 1: style.baseWritingDirection = WritingDirection::LeftToRight; break;
    case 2: style.baseWritingDirection = WritingDirection::RightToLeft; break;
    default: style.baseWritingDirection = WritingDirection::Natural; break;
  }
  for (const RealField& f : kRealFields) style.*f.field = coder.decodeDoubleForKey(f.key);
  if (coder.containsValueForKey("NSTighteningFactorForTruncation")) {
    style.tighteningFactorForTruncation = coder.decodeDoubleForKey("NSTighteningFactorForTruncation");
  }
  style.allowsDefaultTighteningForTruncation =
      coder.decodeBoolForKey("NSAllowsTighteningForTruncation");
  const ArchiveValue tabs = coder.decodeValueForKey("NSTabStops");
  if (const ValueArray* elements = tabs.asArray()) {
    std::vector<TextTab> stops;
    for (const ArchiveValue& element : *elements) {
      if (const TextTab* tab = element.as<TextTab>()) stops.push_back(*tab);
    }
    style.tabStops = std::move(stops);
  }
  return ArchiveValue(std::move(style));
}

uint64_t WriteParagraphStyle(ArchiveObjectWriter& writer, const ParagraphStyle& style) {
  uint64_t tabs = 0;  // the null reference: the default stops
  if (style.tabStops) {
    ValueArray stops;
    for (const TextTab& tab : *style.tabStops) stops.emplace_back(tab);
    tabs = writer.archive(ArchiveValue::array(std::move(stops)));
  }
  const uint64_t uid = writer.begin({"NSParagraphStyle", "NSObject"});
  KeyedArchiver& coder = writer.coder();
  if (style.alignment != TextAlignment::Left) {
    coder.encodeIntForKey(static_cast<int>(style.alignment), "NSAlignment");
  }
  if (style.lineBreakMode != LineBreakMode::WordWrap) {
    coder.encodeIntForKey(static_cast<int>(style.lineBreakMode), "NSLineBreakMode");
  }
  if (style.baseWritingDirection != WritingDirection::Natural) {
    coder.encodeIntForKey(static_cast<int>(style.baseWritingDirection) + 1, "NSWritingDirection");
  }
  for (const RealField& f : kRealFields) {
    if (style.*f.field != 0) coder.encodeDoubleForKey(style.*f.field, f.key);
  }
  if (style.tighteningFactorForTruncation != ParagraphStyle::kDefaultTighteningFactor) {
    coder.encodeDoubleForKey(style.tighteningFactorForTruncation, "NSTighteningFactorForTruncation");
  }
  if (style.allowsDefaultTighteningForTruncation) {
    coder.encodeIntForKey(1, "NSAllowsTighteningForTruncation");
  }
  writer.encodeReference(tabs, "NSTabStops");
  writer.finish();
  return uid;
}

ArchiveValue ReadTextTabObject(KeyedUnarchiver& coder, std::string_view) {
  TextTab tab;
  tab.location = coder.decodeDoubleForKey("NSLocation");
  tab.type = EnumOr(coder.decodeInt64ForKey("NSType"), 3, TextTabType::Left);
  if (coder.containsValueForKey("NSTextAlignment")) {
    tab.alignment = EnumOr(coder.decodeInt64ForKey("NSTextAlignment"), 4, TextAlignment::Left);
  }
  return ArchiveValue(tab);
}

uint64_t WriteTextTab(ArchiveObjectWriter& writer, const TextTab& tab) {
  const uint64_t uid = writer.begin({"NSTextTab", "NSObject"});
  KeyedArchiver& coder = writer.coder();
  coder.encodeDoubleForKey(tab.location, "NSLocation");
  if (tab.type != TextTabType::Left) coder.encodeIntForKey(static_cast<int>(tab.type), "NSType");
  if (tab.alignment) coder.encodeIntForKey(static_cast<int>(*tab.alignment), "NSTextAlignment");
  writer.finish();
  return uid;
}

}  // namespace paintdoc
