// The attribute dictionary: the editable look of a draw (stroke, fill,
// gradient, shadows, smoothing, opacity) under the "DAKey..." keys, so that an
// editor can copy one draw's look onto others or apply one look to many.
// Entries keep the order in which they were first set.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archive/archive_value.h"

namespace paintdoc {

inline constexpr std::string_view DAKeySmooth = "DAKeySmooth";              // bool
inline constexpr std::string_view DAKeyStrokeColor = "DAKeyStrokeColor";    // Color
inline constexpr std::string_view DAKeyStrokeWidth = "DAKeyStrokeWidth";    // double
inline constexpr std::string_view DAKeyStrokeDash = "DAKeyStrokeDash";      // dash text
inline constexpr std::string_view DAKeyFillGradient = "DAKeyFillGradient";  // Gradient
inline constexpr std::string_view DAKeyFillGdtCenter = "DAKeyFillGdtCenter";  // Point
inline constexpr std::string_view DAKeyFillGdtDegree = "DAKeyFillGdtDegree";  // float
inline constexpr std::string_view DAKeyFillColor = "DAKeyFillColor";        // Color
inline constexpr std::string_view DAKeyInnerShadow = "DAKeyInnerShadow";    // Shadow
inline constexpr std::string_view DAKeyShadow = "DAKeyShadow";              // Shadow
inline constexpr std::string_view DAKeyOpacity = "DAKeyOpacity";            // number

class DrawAttributes {
 public:
  using Entry = std::pair<std::string, ArchiveValue>;

  // Replaces the value of an existing key in place, else appends.
  void set(std::string_view key, ArchiveValue value);
  void remove(std::string_view key);
  // The value under `key`, or null.
  const ArchiveValue* find(std::string_view key) const;
  bool contains(std::string_view key) const { return find(key) != nullptr; }
  // The value under `key` if it is a T (Color, Gradient, Shadow, Point,
  // std::string), else null: values of the wrong kind count as missing.
  template <class T>
  const T* get(std::string_view key) const {
    const ArchiveValue* value = find(key);
    return value ? value->as<T>() : nullptr;
  }
  // The value under `key` if it is a number (or a flag), else null.
  const ArchiveValue* number(std::string_view key) const;

  const std::vector<Entry>& entries() const { return entries_; }
  bool empty() const { return entries_.empty(); }
  size_t size() const { return entries_.size(); }

  friend bool operator==(const DrawAttributes&, const DrawAttributes&) = default;

 private:
  std::vector<Entry> entries_;
};

}  // namespace paintdoc
