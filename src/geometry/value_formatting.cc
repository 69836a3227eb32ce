#include "geometry/value_formatting.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>
#include <vector>

#include "platform/values/log.h"

namespace paintdoc {

namespace {

// Centimetres a printed inch spans in the measures the user sees. Not 2.54:
// the interface has always shown this factor and its values must not move.
constexpr double kCentimetersPerInch = 2.53968;

// How a unit code prints. Pixels print as they are; the other units convert
// through inches: value = pixels / resolution * perInch * scale.
struct UnitFormat {
  unsigned code;
  bool pixels;
  double perInch;
  double scale;
  const char* word;
};

constexpr UnitFormat kUnitFormats[] = {
    {0, true, 0, 0, "pixels"},
    {1, false, 1, 1, "inchs"},  // the interface spells it so
    {2, false, kCentimetersPerInch, 1, "cm"},
    {3, false, kCentimetersPerInch, 10, "mm"},
    {4, true, 0, 0, "pixels"},
};

const UnitFormat* FindUnit(unsigned code) {
  for (const UnitFormat& unit : kUnitFormats) {
    if (unit.code == code) return &unit;
  }
  return nullptr;
}

// printf into a string of whatever length the value needs.
template <class... Args>
std::string Printf(const char* format, Args... args) {
  const int length = std::snprintf(nullptr, 0, format, args...);
  if (length <= 0) return {};
  std::vector<char> buffer(static_cast<size_t>(length) + 1);
  std::snprintf(buffer.data(), buffer.size(), format, args...);
  return std::string(buffer.data(), static_cast<size_t>(length));
}

std::string Fixed(double value, int decimals) { return Printf("%0.*f", decimals, value); }

// Truncates toward zero into int, saturating instead of overflowing; NaN is 0.
int TruncatedInt(double value) {
  if (std::isnan(value)) return 0;
  if (value >= static_cast<double>(std::numeric_limits<int>::max())) {
    return std::numeric_limits<int>::max();
  }
  if (value <= static_cast<double>(std::numeric_limits<int>::min())) {
    return std::numeric_limits<int>::min();
  }
  return static_cast<int>(value);
}

bool ResolutionConverts(float resolution, const char* function) {
  if (std::isfinite(resolution) && resolution > 0) return true;
  Log(std::string("Error: ") + function + ": resolution " + Printf("%g", resolution) +
      " cannot convert pixels into inches");
  return false;
}

double FromInches(const UnitFormat& unit, double inches) {
  return inches * unit.perInch * unit.scale;
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string TimeText(double seconds, const char* format) {
  // Truncated to whole seconds; saturates rather than overflowing.
  long long t = 0;
  if (std::isfinite(seconds)) {
    const double limit = static_cast<double>(std::numeric_limits<long long>::max() / 2);
    t = static_cast<long long>(std::fmax(-limit, std::fmin(limit, seconds)));
  }
  return Printf(format, t / 3600, (t % 3600) / 60, t % 60);
}

}  // namespace

std::optional<std::string> LengthToString(unsigned unit, float length, float resolution) {
  const UnitFormat* format = FindUnit(unit);
  if (!format) return std::nullopt;
  if (format->pixels) return "Length:" + Fixed(length, 1) + " pixels";
  if (!ResolutionConverts(resolution, "LengthToString")) return std::nullopt;
  const float inches = length / resolution;
  return "Length:" + Fixed(FromInches(*format, inches), 2) + " " + format->word;
}

std::optional<std::string> SizeToString(unsigned unit, double width, double height,
                                        float resolution) {
  const UnitFormat* format = FindUnit(unit);
  if (!format) return std::nullopt;
  if (format->pixels) {
    return Printf("w:%d h:%d (pixels)", TruncatedInt(width), TruncatedInt(height));
  }
  if (!ResolutionConverts(resolution, "SizeToString")) return std::nullopt;
  return "w:" + Fixed(FromInches(*format, width / resolution), 2) +
         " h:" + Fixed(FromInches(*format, height / resolution), 2) + " (" + format->word + ")";
}

std::string DoubleToString(double value, int decimals) {
  if (decimals < 0) {
    Log("Error: DoubleToString: " + std::to_string(decimals) + " decimals; printing none");
    decimals = 0;
  }
  // The scale is single precision; values print rounded half up, which
  // truncation toward zero makes "toward zero after adding 0.5" below 0.
  const float scale = std::pow(10.0f, static_cast<float>(decimals));
  const double rounded = std::trunc(value * scale + 0.5) / scale;
  std::string text = Fixed(rounded, decimals);
  if (text.find('.') == std::string::npos) return text;
  for (const std::string_view end : {".00", ".0", "0"}) {
    if (EndsWith(text, end)) {
      text.resize(text.size() - end.size());
      break;
    }
  }
  return text;
}

std::string StringFromTime(double seconds) { return TimeText(seconds, "%02lld:%02lld:%02lld"); }

std::string StringFromTime2(double seconds) { return TimeText(seconds, "%02lldh%02lldm%02llds"); }

std::string StringFromFileSize(uint64_t bytes) {
  struct Step {
    uint64_t below;
    double divisor;
    const char* unit;
  };
  static constexpr Step kSteps[] = {
      {1048576ull, 1024.0, "KB"},
      {1073741824ull, 1048576.0, "MB"},
  };
  if (bytes < 1024) return Printf("%d B", static_cast<int>(bytes));
  for (const Step& step : kSteps) {
    if (bytes < step.below) return Fixed(static_cast<double>(bytes) / step.divisor, 1) + " " + step.unit;
  }
  return Fixed(static_cast<double>(bytes) / 1073741824.0, 1) + " GB";
}

}  // namespace paintdoc
