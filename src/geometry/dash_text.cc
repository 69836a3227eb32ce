#include "geometry/dash_text.h"

#include <cctype>
#include <charconv>
#include <limits>

namespace paintdoc {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Length of the run of digits starting at `from`.
size_t DigitRun(std::string_view text, size_t from) {
  size_t end = from;
  while (end < text.size() && IsDigit(text[end])) ++end;
  return end - from;
}

// Length of the decimal number at the start of `text` (sign, digits, fraction,
// exponent), or 0 when it does not start with one.
size_t NumberPrefixLength(std::string_view text) {
  size_t pos = 0;
  if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) ++pos;
  const size_t integerDigits = DigitRun(text, pos);
  pos += integerDigits;
  size_t fractionDigits = 0;
  if (pos < text.size() && text[pos] == '.') {
    fractionDigits = DigitRun(text, pos + 1);
    if (integerDigits + fractionDigits > 0) pos += 1 + fractionDigits;
  }
  if (integerDigits + fractionDigits == 0) return 0;
  // An exponent counts only when digits follow it ("5e" reads as 5).
  if (pos < text.size() && (text[pos] == 'e' || text[pos] == 'E')) {
    size_t exponent = pos + 1;
    if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) {
      ++exponent;
    }
    const size_t exponentDigits = DigitRun(text, exponent);
    if (exponentDigits > 0) pos = exponent + exponentDigits;
  }
  return pos;
}

}  // namespace

double LenientDoubleValue(std::string_view text) {
  size_t start = 0;
  while (start < text.size() && std::isspace(static_cast<unsigned char>(text[start]))) {
    ++start;
  }
  text.remove_prefix(start);
  const size_t length = NumberPrefixLength(text);
  if (length == 0) return 0;

  // from_chars takes no leading '+'; the sign is applied here instead.
  const bool negative = text[0] == '-';
  std::string_view digits = text.substr(0, length);
  if (text[0] == '+' || text[0] == '-') digits.remove_prefix(1);

  double value = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    // Too large overflows to infinity; too small underflows to zero. Tell them
    // apart by whether the number has a negative exponent.
    const bool tiny = digits.find("e-") != std::string_view::npos ||
                      digits.find("E-") != std::string_view::npos;
    value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
  }
  return negative ? -value : value;
}

std::string GetDashArrayFromString(std::string_view text, double* values, size_t* count) {
  if (count != nullptr) *count = 0;
  if (text.size() < 3) return "";
  if (text.back() == ':') text.remove_suffix(1);

  // Splitting never yields zero parts: even an empty remainder is one part.
  std::string joined;
  size_t partCount = 0;
  size_t partStart = 0;
  while (partCount < kMaxDashStyleParts) {
    const size_t colon = text.find(':', partStart);
    const size_t partEnd = colon == std::string_view::npos ? text.size() : colon;
    const std::string_view part = text.substr(partStart, partEnd - partStart);
    if (values != nullptr) values[partCount] = LenientDoubleValue(part);
    if (partCount > 0) joined += ':';
    joined += part;
    ++partCount;
    if (colon == std::string_view::npos) break;
    partStart = colon + 1;
  }
  if (count != nullptr) *count = partCount;
  return joined;
}

}  // namespace paintdoc
