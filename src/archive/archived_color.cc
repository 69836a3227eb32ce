// NSColor in every form the platform writes, and NSColorSpace as far as
// colours need it.
//
// The kind is "NSColorSpace": 1 calibrated RGB (also the bucket of other RGB
// spaces), 2 device RGB, 3 calibrated white, 4 device white, 5 device CMYK,
// 6 catalogue colour, 10 pattern. Components are ASCII decimal numbers in data,
// NUL-terminated in "NSRGB"/"NSWhite"/"NSCMYK"; colours of an explicit space
// add "NSComponents" (no NUL, alpha always) and "NSCustomColorSpace".
#include <charconv>
#include <vector>

#include "archive/archived_forms.h"
#include "platform/values/geometry.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

enum ArchivedColorKind : int64_t {
  kCalibratedRGB = 1,
  kDeviceRGB = 2,
  kCalibratedWhite = 3,
  kDeviceWhite = 4,
  kDeviceCMYK = 5,
  kCatalog = 6,
  kPattern = 10,
};

// Named colour spaces ("NSID" and "NSSpaceID" of NSColorSpace).
constexpr int64_t kSpaceIdSRGB = 7;
constexpr int64_t kSpaceIdGenericGrayGamma22 = 9;
constexpr int64_t kSpaceIdDisplayP3 = 12;

// The numbers of a component string, up to the first NUL; at most `limit`.
std::vector<double> ParseComponents(const SharedBytes& bytes, size_t limit) {
  std::vector<double> numbers;
  std::string_view text = bytes.asStringView();
  text = text.substr(0, text.find('\0'));
  size_t i = 0;
  while (i < text.size() && numbers.size() < limit) {
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n')) ++i;
    if (i >= text.size()) break;
    const char* begin = text.data() + i;
    if (*begin == '+') ++begin;
    double value = 0;
    const auto result = std::from_chars(begin, text.data() + text.size(), value);
    if (result.ec != std::errc()) break;  // not a number: the rest is ignored
    numbers.push_back(value);
    i = static_cast<size_t>(result.ptr - text.data());
  }
  return numbers;
}

double ComponentOr(const std::vector<double>& c, size_t i, double fallback) {
  return i < c.size() ? c[i] : fallback;
}

std::vector<double> ComponentsForKey(KeyedUnarchiver& coder, std::string_view key, size_t limit) {
  const auto bytes = coder.decodeBytesForKey(key);
  if (bytes) return ParseComponents(*bytes, limit);
  // Some writers store the components as a data object rather than inline.
  if (const auto data = coder.decodeDataForKey(key)) return ParseComponents(*data, limit);
  return {};
}

// The colour of an explicit colour space this reader understands, from
// "NSComponents" and "NSCustomColorSpace".
std::optional<Color> ColorOfExplicitSpace(KeyedUnarchiver& coder, int64_t kind) {
  if (!coder.containsValueForKey("NSComponents")) return std::nullopt;
  const ArchiveValue space = coder.decodeValueForKey("NSCustomColorSpace");
  const ArchiveValue* id = space.valueForKey("NSID");
  const ArchiveValue* spaceId = space.valueForKey("NSSpaceID");
  const std::vector<double> c = ComponentsForKey(coder, "NSComponents", 5);
  if (kind == kCalibratedRGB && c.size() >= 3) {
    if (id && id->toInt64() == kSpaceIdSRGB) {
      return Color::sRGB(c[0], c[1], c[2], ComponentOr(c, 3, 1));
    }
    if (spaceId && spaceId->toInt64() == kSpaceIdDisplayP3) {
      return Color::displayP3(c[0], c[1], c[2], ComponentOr(c, 3, 1));
    }
  }
  if (kind == kCalibratedWhite && !c.empty() && id && id->toInt64() == kSpaceIdGenericGrayGamma22) {
    // Without colour management the gamma-2.2 grey is taken as it stands.
    return Color::calibratedWhite(c[0], ComponentOr(c, 1, 1));
  }
  return std::nullopt;
}

// A number in the platform's component text: exact (shortest round trip),
// which every decimal reader parses.
void AppendNumber(std::string& text, double value) {
  if (!text.empty()) text += ' ';
  text += FormatNumber(value);
}

std::vector<uint8_t> ComponentText(const std::vector<double>& numbers, bool nulTerminated) {
  std::string text;
  for (double n : numbers) AppendNumber(text, n);
  std::vector<uint8_t> bytes(text.begin(), text.end());
  if (nulTerminated) bytes.push_back(0);
  return bytes;
}

// Components with the alpha left out when it is 1, as the platform writes them.
std::vector<double> WithOptionalAlpha(std::vector<double> components, double alpha) {
  if (alpha != 1) components.push_back(alpha);
  return components;
}

}  // namespace

ArchiveValue ReadColorObject(KeyedUnarchiver& coder, std::string_view) {
  const int64_t kind = coder.decodeInt64ForKey("NSColorSpace");
  if (auto explicitColor = ColorOfExplicitSpace(coder, kind)) return ArchiveValue(*explicitColor);
  switch (kind) {
    case kCalibratedRGB:
    case kDeviceRGB: {
      const auto c = ComponentsForKey(coder, "NSRGB", 4);
      const double r = ComponentOr(c, 0, 0), g = ComponentOr(c, 1, 0), b = ComponentOr(c, 2, 0);
      const double a = ComponentOr(c, 3, 1);
      return ArchiveValue(kind == kCalibratedRGB ? Color::calibratedRGB(r, g, b, a)
                                                 : Color::deviceRGB(r, g, b, a));
    }
    case kCalibratedWhite:
    case kDeviceWhite: {
      const auto c = ComponentsForKey(coder, "NSWhite", 2);
      const double w = ComponentOr(c, 0, 0), a = ComponentOr(c, 1, 1);
      return ArchiveValue(kind == kCalibratedWhite ? Color::calibratedWhite(w, a)
                                                   : Color::deviceWhite(w, a));
    }
    case kDeviceCMYK: {
      // The platform spells the key "NSCMYK"; another implementation "NSCYMK".
      auto c = ComponentsForKey(coder, "NSCMYK", 5);
      if (c.empty()) c = ComponentsForKey(coder, "NSCYMK", 5);
      return ArchiveValue(Color::deviceCMYK(ComponentOr(c, 0, 0), ComponentOr(c, 1, 0),
                                            ComponentOr(c, 2, 0), ComponentOr(c, 3, 0),
                                            ComponentOr(c, 4, 1)));
    }
    case kCatalog: {
      std::string catalog = coder.decodeStringForKey("NSCatalogName").value_or("");
      std::string name = coder.decodeStringForKey("NSColorName").value_or("");
      return ArchiveValue(
          Color::catalog(std::move(catalog), std::move(name), coder.decodeColorForKey("NSColor")));
    }
    default:
      Log("Warning: KeyedUnarchiver: a colour of kind " + std::to_string(kind) +
          (kind == kPattern ? " (pattern)" : "") + " reads as black");
      return ArchiveValue(Color::calibratedRGB(0, 0, 0, 1));
  }
}

ArchiveValue ReadColorSpaceObject(KeyedUnarchiver& coder, std::string_view) {
  // Only the identifiers matter here; the ICC profile is left in the file.
  ValueDictionary identifiers;
  for (const char* key : {"NSID", "NSSpaceID", "NSModel"}) {
    if (coder.containsValueForKey(key)) identifiers.emplace_back(key, coder.decodeInt64ForKey(key));
  }
  return ArchiveValue::dictionary(std::move(identifiers));
}

namespace {

void WriteExplicitSpace(ArchiveObjectWriter& writer, const std::vector<double>& components,
                        const char* idKey, int64_t id) {
  KeyedArchiver& coder = writer.coder();
  coder.encodeBytesForKey(ComponentText(components, false), "NSComponents");
  const uint64_t space = writer.begin({"NSColorSpace", "NSObject"});
  coder.encodeInt64ForKey(id, idKey);
  writer.finish();
  writer.encodeReference(space, "NSCustomColorSpace");
}

}  // namespace

uint64_t WriteColor(ArchiveObjectWriter& writer, const Color& color) {
  const auto& c = color.components();
  // A catalogue colour's fallback is written first (it is an object of its own).
  uint64_t fallback = 0;
  if (color.colorSpace() == ColorSpaceKind::Catalog) {
    if (const Color* stored = color.catalogFallback()) {
      fallback = WriteColor(writer, *stored);
    } else if (auto known = LookupCatalogColor(color.catalogName(), color.colorName())) {
      fallback = WriteColor(writer, *known);
    }
  }
  const uint64_t uid = writer.begin({"NSColor", "NSObject"});
  KeyedArchiver& coder = writer.coder();
  auto rgb = [&](int64_t kind) {
    coder.encodeIntForKey(static_cast<int>(kind), "NSColorSpace");
    coder.encodeBytesForKey(ComponentText(WithOptionalAlpha({c[0], c[1], c[2]}, c[3]), true), "NSRGB");
  };
  auto white = [&](int64_t kind) {
    coder.encodeIntForKey(static_cast<int>(kind), "NSColorSpace");
    coder.encodeBytesForKey(ComponentText(WithOptionalAlpha({c[0]}, c[1]), true), "NSWhite");
  };
  switch (color.colorSpace()) {
    case ColorSpaceKind::CalibratedRGB:
      rgb(kCalibratedRGB);
      break;
    case ColorSpaceKind::DeviceRGB:
      rgb(kDeviceRGB);
      break;
    case ColorSpaceKind::SRGB:
      // Without colour management the calibrated values are the components.
      rgb(kCalibratedRGB);
      WriteExplicitSpace(writer, {c[0], c[1], c[2], c[3]}, "NSID", kSpaceIdSRGB);
      break;
    case ColorSpaceKind::DisplayP3:
      rgb(kCalibratedRGB);
      WriteExplicitSpace(writer, {c[0], c[1], c[2], c[3]}, "NSSpaceID", kSpaceIdDisplayP3);
      break;
    case ColorSpaceKind::CalibratedWhite:
      white(kCalibratedWhite);
      break;
    case ColorSpaceKind::DeviceWhite:
      white(kDeviceWhite);
      break;
    case ColorSpaceKind::DeviceCMYK:
      coder.encodeIntForKey(kDeviceCMYK, "NSColorSpace");
      coder.encodeBytesForKey(ComponentText(WithOptionalAlpha({c[0], c[1], c[2], c[3]}, c[4]), true),
                              "NSCMYK");
      break;
    case ColorSpaceKind::Catalog:
      coder.encodeIntForKey(kCatalog, "NSColorSpace");
      coder.encodeStringForKey(color.catalogName(), "NSCatalogName");
      coder.encodeStringForKey(color.colorName(), "NSColorName");
      if (fallback) writer.encodeReference(fallback, "NSColor");
      break;
  }
  writer.finish();
  return uid;
}

}  // namespace paintdoc
