// Reads XML property lists: <plist> holding one value of <dict>, <array>,
// <string>, <integer>, <real>, <true/>, <false/>, <data> (base64) and <date>.
// A dictionary whose only key is "CF$UID" with an integer value is a UID, as
// XML keyed archives write references. Recursive descent, bounded by the
// nesting limit; every object counts against the object limit.
#include <charconv>
#include <cmath>
#include <cstring>
#include <vector>

#include "archive/property_list.h"
#include "platform/text/utf16.h"

namespace paintdoc {

namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

int Base64Value(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  if (c == '/') return 63;
  return -1;
}

bool IsLeapYear(int64_t y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

// Days from 2001-01-01 to the first day of `year`.
int64_t DaysBeforeYear(int64_t year) {
  int64_t days = 0;
  if (year >= 2001) {
    for (int64_t y = 2001; y < year; ++y) days += IsLeapYear(y) ? 366 : 365;
  } else {
    for (int64_t y = year; y < 2001; ++y) days -= IsLeapYear(y) ? 366 : 365;
  }
  return days;
}

}  // namespace

class XmlPlistParser {
 public:
  XmlPlistParser(SharedBytes bytes, const ArchiveLimits& limits)
      : bytes_(std::move(bytes)), text_(bytes_.asStringView()), limits_(limits) {}

  Result<PropertyList> parse() {
    if (!parseDocument()) {
      return Failure{"XML property list: " + error_ + " (at byte " + std::to_string(pos_) + ")"};
    }
    return std::move(plist_);
  }

 private:
  struct Tag {
    std::string_view name;
    bool closing = false;
    bool empty = false;  // <name/>
  };

  bool fail(std::string message) {
    if (error_.empty()) error_ = std::move(message);
    return false;
  }

  bool parseDocument() {
    Tag tag;
    if (!nextTag(tag)) return false;
    if (tag.name != "plist" || tag.closing) return fail("the root element is not <plist>");
    if (tag.empty) return fail("empty <plist>");
    uint32_t root = 0;
    if (!parseValue(0, root)) return false;
    if (!nextTag(tag)) return false;
    if (tag.name != "plist" || !tag.closing) return fail("<plist> holds more than one value");
    plist_.setRoot(root);
    return true;
  }

  // Skips the prolog, comments, processing instructions and the doctype, then
  // reads the next element tag. Text between tags must be whitespace.
  bool nextTag(Tag& tag) {
    for (;;) {
      while (pos_ < text_.size() && IsSpace(text_[pos_])) ++pos_;
      if (pos_ >= text_.size()) return fail("unexpected end of the document");
      if (text_[pos_] != '<') return fail("text outside an element");
      if (skipMarkup()) continue;
      if (!error_.empty()) return false;
      return readTag(tag);
    }
  }

  // Skips <?...?>, <!--...--> and <!DOCTYPE ...>; false when at an element.
  bool skipMarkup() {
    const std::string_view rest = text_.substr(pos_);
    std::string_view terminator;
    if (rest.starts_with("<?")) {
      terminator = "?>";
    } else if (rest.starts_with("<!--")) {
      terminator = "-->";
    } else if (rest.starts_with("<!")) {
      terminator = ">";
    } else {
      return false;
    }
    const size_t end = text_.find(terminator, pos_ + 2);
    if (end == std::string_view::npos) return fail("unterminated markup"), false;
    pos_ = end + terminator.size();
    return true;
  }

  bool readTag(Tag& tag) {
    const size_t end = text_.find('>', pos_);
    if (end == std::string_view::npos) return fail("unterminated tag");
    std::string_view inside = text_.substr(pos_ + 1, end - pos_ - 1);
    pos_ = end + 1;
    tag = Tag{};
    if (inside.starts_with("/")) {
      tag.closing = true;
      inside.remove_prefix(1);
    }
    if (inside.ends_with("/")) {
      tag.empty = true;
      inside.remove_suffix(1);
    }
    size_t nameEnd = 0;
    while (nameEnd < inside.size() && !IsSpace(inside[nameEnd])) ++nameEnd;
    tag.name = inside.substr(0, nameEnd);
    if (tag.name.empty()) return fail("tag without a name");
    return true;
  }

  // The raw character data up to the closing tag of `name`.
  bool readText(std::string_view name, std::string_view& content) {
    const size_t end = text_.find('<', pos_);
    if (end == std::string_view::npos) return fail("unterminated <" + std::string(name) + ">");
    content = text_.substr(pos_, end - pos_);
    pos_ = end;
    Tag closing;
    if (!readTag(closing)) return false;
    if (!closing.closing || closing.name != name) {
      return fail("<" + std::string(name) + "> is not closed by its own tag");
    }
    return true;
  }

  bool countObject() {
    if (plist_.size() >= limits_.maxObjects) {
      return fail("more than " + std::to_string(limits_.maxObjects) + " objects");
    }
    return true;
  }

  bool parseValue(size_t depth, uint32_t& index) {
    Tag tag;
    if (!nextTag(tag)) return false;
    if (tag.closing) return fail("unexpected </" + std::string(tag.name) + ">");
    return parseElement(tag, depth, index);
  }

  bool parseElement(const Tag& tag, size_t depth, uint32_t& index) {
    if (!countObject()) return false;
    const std::string_view name = tag.name;
    if (name == "dict" || name == "array") {
      if (depth >= limits_.maxDepth) {
        return fail("containers nest deeper than " + std::to_string(limits_.maxDepth));
      }
      return name == "dict" ? parseDictionary(tag, depth, index) : parseArray(tag, depth, index);
    }
    if (name == "true" || name == "false") {
      if (!tag.empty) {
        std::string_view ignored;
        if (!readText(name, ignored)) return false;
      }
      index = plist_.addBool(name == "true");
      return true;
    }
    std::string_view content;
    if (!tag.empty && !readText(name, content)) return false;
    if (name == "string" || name == "key") {
      std::string decoded;
      if (!decodeEntities(content, decoded)) return false;
      index = plist_.addString(decoded);
      return true;
    }
    if (name == "integer") return parseInteger(content, index);
    if (name == "real") return parseReal(content, index);
    if (name == "data") return parseData(content, index);
    if (name == "date") return parseDate(content, index);
    return fail("unknown element <" + std::string(name) + ">");
  }

  bool parseArray(const Tag& tag, size_t depth, uint32_t& index) {
    std::vector<uint32_t> elements;
    if (!tag.empty) {
      for (;;) {
        Tag child;
        if (!nextTag(child)) return false;
        if (child.closing) {
          if (child.name != "array") return fail("<array> closed by </" + std::string(child.name) + ">");
          break;
        }
        uint32_t element = 0;
        if (!parseElement(child, depth + 1, element)) return false;
        elements.push_back(element);
      }
    }
    index = plist_.addArray(elements);
    return true;
  }

  bool parseDictionary(const Tag& tag, size_t depth, uint32_t& index) {
    std::vector<uint32_t> keys;
    std::vector<uint32_t> values;
    if (!tag.empty) {
      for (;;) {
        Tag keyTag;
        if (!nextTag(keyTag)) return false;
        if (keyTag.closing) {
          if (keyTag.name != "dict") return fail("<dict> closed by </" + std::string(keyTag.name) + ">");
          break;
        }
        if (keyTag.name != "key") return fail("<dict> entry without a <key>");
        uint32_t key = 0;
        uint32_t value = 0;
        if (!parseElement(keyTag, depth + 1, key) || !parseValue(depth + 1, value)) return false;
        keys.push_back(key);
        values.push_back(value);
      }
    }
    // {"CF$UID": n} is how XML archives write a reference.
    if (keys.size() == 1 && plist_.stringEquals(keys[0], "CF$UID") &&
        plist_.typeAt(values[0]) == PlistType::Integer) {
      const PlistObject& n = plist_.at(values[0]);
      if (!n.isUnsigned && n.integer < 0) return fail("negative CF$UID");
      index = plist_.addUid(n.unsignedInteger);
      return true;
    }
    index = plist_.addDictionary(keys, values);
    return true;
  }

  bool decodeEntities(std::string_view in, std::string& out) {
    out.reserve(in.size());
    for (size_t i = 0; i < in.size(); ++i) {
      if (in[i] != '&') {
        out += in[i];
        continue;
      }
      const size_t end = in.find(';', i);
      if (end == std::string_view::npos) return fail("unterminated entity");
      const std::string_view entity = in.substr(i + 1, end - i - 1);
      i = end;
      if (entity == "lt") out += '<';
      else if (entity == "gt") out += '>';
      else if (entity == "amp") out += '&';
      else if (entity == "quot") out += '"';
      else if (entity == "apos") out += '\'';
      else if (entity.starts_with("#")) {
        const bool hex = entity.starts_with("#x");
        const std::string_view digits = entity.substr(hex ? 2 : 1);
        uint32_t code = 0;
        const auto result =
            std::from_chars(digits.data(), digits.data() + digits.size(), code, hex ? 16 : 10);
        if (result.ec != std::errc() || result.ptr != digits.data() + digits.size() ||
            code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
          return fail("bad character reference &" + std::string(entity) + ";");
        }
        AppendUtf8(out, code);
      } else {
        return fail("unknown entity &" + std::string(entity) + ";");
      }
    }
    return true;
  }

  static std::string_view Trim(std::string_view s) {
    while (!s.empty() && IsSpace(s.front())) s.remove_prefix(1);
    while (!s.empty() && IsSpace(s.back())) s.remove_suffix(1);
    return s;
  }

  bool parseInteger(std::string_view content, uint32_t& index) {
    std::string_view digits = Trim(content);
    const bool negative = digits.starts_with("-");
    if (negative || digits.starts_with("+")) digits.remove_prefix(1);
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
      base = 16;
      digits.remove_prefix(2);
    }
    uint64_t magnitude = 0;
    const auto result =
        std::from_chars(digits.data(), digits.data() + digits.size(), magnitude, base);
    if (digits.empty() || result.ec != std::errc() || result.ptr != digits.data() + digits.size()) {
      return fail("bad integer \"" + std::string(Trim(content)) + "\"");
    }
    if (negative) {
      if (magnitude > uint64_t{1} << 63) return fail("integer below the 64-bit range");
      index = plist_.addInteger(static_cast<int64_t>(0 - magnitude));
    } else {
      index = plist_.addUnsigned(magnitude);
    }
    return true;
  }

  bool parseReal(std::string_view content, uint32_t& index) {
    const std::string text(Trim(content));
    double value = 0;
    if (text == "nan" || text == "NaN") {
      value = std::nan("");
    } else if (text == "inf" || text == "+inf" || text == "infinity") {
      value = INFINITY;
    } else if (text == "-inf" || text == "-infinity") {
      value = -INFINITY;
    } else {
      const char* begin = text.data();
      if (*begin == '+') ++begin;
      const auto result = std::from_chars(begin, text.data() + text.size(), value);
      if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        return fail("bad real \"" + text + "\"");
      }
    }
    index = plist_.addReal(value);
    return true;
  }

  bool parseData(std::string_view content, uint32_t& index) {
    std::vector<uint8_t> bytes;
    bytes.reserve(content.size() / 4 * 3);
    uint32_t accumulator = 0;
    int bits = 0;
    for (char c : content) {
      if (IsSpace(c) || c == '=') continue;
      const int value = Base64Value(c);
      if (value < 0) return fail("bad base64 character in <data>");
      accumulator = (accumulator << 6) | static_cast<uint32_t>(value);
      bits += 6;
      if (bits >= 8) {
        bits -= 8;
        bytes.push_back(static_cast<uint8_t>(accumulator >> bits));
        accumulator &= (1u << bits) - 1;
      }
    }
    index = plist_.addData(bytes);
    return true;
  }

  // ISO 8601 in UTC: "2001-01-01T00:00:00Z".
  bool parseDate(std::string_view content, uint32_t& index) {
    const std::string_view text = Trim(content);
    int values[6] = {};
    const char separators[] = {'-', '-', 'T', ':', ':', 'Z'};
    size_t at = 0;
    for (int field = 0; field < 6; ++field) {
      const size_t start = at;
      if (field == 0 && at < text.size() && text[at] == '-') ++at;
      while (at < text.size() && text[at] >= '0' && text[at] <= '9') ++at;
      if (std::from_chars(text.data() + start, text.data() + at, values[field]).ec != std::errc() ||
          at >= text.size() || text[at] != separators[field]) {
        return fail("bad date \"" + std::string(text) + "\"");
      }
      ++at;
    }
    static const int kDaysBeforeMonth[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    const int month = values[1];
    if (month < 1 || month > 12 || values[2] < 1 || values[2] > 31 || values[3] > 23 ||
        values[4] > 59 || values[5] > 60 || values[0] < -9999 || values[0] > 9999) {
      return fail("bad date \"" + std::string(text) + "\"");
    }
    int64_t days = DaysBeforeYear(values[0]) + kDaysBeforeMonth[month - 1] + values[2] - 1;
    if (month > 2 && IsLeapYear(values[0])) ++days;
    const double seconds =
        static_cast<double>(days) * 86400.0 + values[3] * 3600.0 + values[4] * 60.0 + values[5];
    index = plist_.addDate(seconds);
    return true;
  }

  SharedBytes bytes_;
  std::string_view text_;
  ArchiveLimits limits_;
  size_t pos_ = 0;
  std::string error_;
  PropertyList plist_;
};

Result<PropertyList> PropertyList::readXml(SharedBytes bytes, const ArchiveLimits& limits) {
  return XmlPlistParser(std::move(bytes), limits).parse();
}

}  // namespace paintdoc
