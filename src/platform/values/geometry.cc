#include "platform/values/geometry.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace paintdoc {

bool RectIsEmpty(const Rect& r) {
  return !(r.size.width > 0) || !(r.size.height > 0);
}

Rect RectUnion(const Rect& a, const Rect& b) {
  if (RectIsEmpty(a)) return b;
  if (RectIsEmpty(b)) return a;
  const double x0 = std::min(a.minX(), b.minX());
  const double y0 = std::min(a.minY(), b.minY());
  const double x1 = std::max(a.maxX(), b.maxX());
  const double y1 = std::max(a.maxY(), b.maxY());
  return MakeRect(x0, y0, x1 - x0, y1 - y0);
}

Rect RectIntersection(const Rect& a, const Rect& b) {
  const double x0 = std::max(a.minX(), b.minX());
  const double y0 = std::max(a.minY(), b.minY());
  const double x1 = std::min(a.maxX(), b.maxX());
  const double y1 = std::min(a.maxY(), b.maxY());
  if (x1 <= x0 || y1 <= y0) return ZeroRect();
  return MakeRect(x0, y0, x1 - x0, y1 - y0);
}

bool RectIntersectsRect(const Rect& a, const Rect& b) {
  return !RectIsEmpty(RectIntersection(a, b));
}

Rect RectIntegral(const Rect& r) {
  if (RectIsEmpty(r)) return ZeroRect();
  const double x0 = std::floor(r.minX());
  const double y0 = std::floor(r.minY());
  const double x1 = std::ceil(r.maxX());
  const double y1 = std::ceil(r.maxY());
  return MakeRect(x0, y0, x1 - x0, y1 - y0);
}

Rect RectInset(const Rect& r, double dx, double dy) {
  return MakeRect(r.origin.x + dx, r.origin.y + dy, r.size.width - 2 * dx,
                  r.size.height - 2 * dy);
}

Rect RectOffset(const Rect& r, double dx, double dy) {
  return MakeRect(r.origin.x + dx, r.origin.y + dy, r.size.width, r.size.height);
}

bool PointInRect(const Point& p, const Rect& r) {
  if (RectIsEmpty(r)) return false;
  return p.x >= r.minX() && p.x < r.maxX() && p.y >= r.minY() && p.y < r.maxY();
}

bool RectContainsRect(const Rect& outer, const Rect& inner) {
  if (RectIsEmpty(inner)) return false;
  return inner.minX() >= outer.minX() && inner.minY() >= outer.minY() &&
         inner.maxX() <= outer.maxX() && inner.maxY() <= outer.maxY();
}

std::string FormatNumber(double value) {
  if (value == 0) return "0";  // also folds -0
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

std::string StringFromPoint(const Point& p) {
  return "{" + FormatNumber(p.x) + ", " + FormatNumber(p.y) + "}";
}

std::string StringFromSize(const Size& s) {
  return "{" + FormatNumber(s.width) + ", " + FormatNumber(s.height) + "}";
}

std::string StringFromRect(const Rect& r) {
  return "{" + StringFromPoint(r.origin) + ", " + StringFromSize(r.size) + "}";
}

namespace {

// Reads up to `wanted` numbers from text the way the platform's scanner does:
// anything that is not part of a number separates numbers, and numbers that are
// not there read as 0.
std::vector<double> ScanNumbers(std::string_view text, size_t wanted) {
  std::vector<double> numbers(wanted, 0.0);
  size_t found = 0;
  size_t i = 0;
  while (i < text.size() && found < wanted) {
    const char c = text[i];
    const bool starts_number = (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.';
    if (!starts_number) {
      ++i;
      continue;
    }
    const char* begin = text.data() + i;
    const char* end = text.data() + text.size();
    if (c == '+') ++begin;
    double value = 0;
    const auto result = std::from_chars(begin, end, value);
    if (result.ec == std::errc() || result.ec == std::errc::result_out_of_range) {
      if (result.ec == std::errc::result_out_of_range) value = 0;
      numbers[found++] = std::isfinite(value) ? value : 0;
      i = static_cast<size_t>(result.ptr - text.data());
    } else {
      ++i;
    }
  }
  return numbers;
}

}  // namespace

Point PointFromString(std::string_view text) {
  const auto n = ScanNumbers(text, 2);
  return {n[0], n[1]};
}

Size SizeFromString(std::string_view text) {
  const auto n = ScanNumbers(text, 2);
  return {n[0], n[1]};
}

Rect RectFromString(std::string_view text) {
  const auto n = ScanNumbers(text, 4);
  return MakeRect(n[0], n[1], n[2], n[3]);
}

}  // namespace paintdoc
