// Points, sizes and rectangles in canvas units (double precision, origin at the
// lower left), with the rectangle arithmetic and text forms the model relies on.
#pragma once

#include <string>
#include <string_view>

namespace paintdoc {

struct Point {
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0;
  double height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  Point origin;
  Size size;

  double minX() const { return size.width < 0 ? origin.x + size.width : origin.x; }
  double maxX() const { return size.width < 0 ? origin.x : origin.x + size.width; }
  double minY() const { return size.height < 0 ? origin.y + size.height : origin.y; }
  double maxY() const { return size.height < 0 ? origin.y : origin.y + size.height; }
  double midX() const { return origin.x + size.width * 0.5; }
  double midY() const { return origin.y + size.height * 0.5; }
  double width() const { return size.width; }
  double height() const { return size.height; }
  Point center() const { return {midX(), midY()}; }

  friend bool operator==(const Rect&, const Rect&) = default;
};

constexpr Point MakePoint(double x, double y) { return {x, y}; }
constexpr Size MakeSize(double w, double h) { return {w, h}; }
constexpr Rect MakeRect(double x, double y, double w, double h) { return {{x, y}, {w, h}}; }
constexpr Rect ZeroRect() { return {}; }

// A rectangle is empty when it has no area: a width or height of zero or less.
bool RectIsEmpty(const Rect& r);
// The smallest rectangle holding both; an empty operand is ignored.
Rect RectUnion(const Rect& a, const Rect& b);
// The overlap of both; the zero rectangle when they do not overlap.
Rect RectIntersection(const Rect& a, const Rect& b);
bool RectIntersectsRect(const Rect& a, const Rect& b);
// The smallest rectangle with integer edges that holds r; empty stays zero.
Rect RectIntegral(const Rect& r);
// Moves every edge inward by dx and dy (outward for negative values).
Rect RectInset(const Rect& r, double dx, double dy);
Rect RectOffset(const Rect& r, double dx, double dy);
// Half-open containment: the lower and left edges belong to the rectangle.
bool PointInRect(const Point& p, const Rect& r);
bool RectContainsRect(const Rect& outer, const Rect& inner);

// Text forms: "{x, y}", "{w, h}", "{{x, y}, {w, h}}". Numbers are written in
// their shortest round-trip form; parsing is lenient and missing numbers read as 0.
std::string StringFromPoint(const Point& p);
std::string StringFromSize(const Size& s);
std::string StringFromRect(const Rect& r);
Point PointFromString(std::string_view text);
Size SizeFromString(std::string_view text);
Rect RectFromString(std::string_view text);

// The shortest decimal text that reads back as the same double ("62", "-168.5").
std::string FormatNumber(double value);

}  // namespace paintdoc
