// A decoded archive value of any kind, for the places where an archive holds
// mixed content (dictionaries and arrays of strings, numbers, colours, objects).
// Platform values (colours, paths, rich text...) are held by value, archived
// objects of model classes by shared pointer.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "archive/archived_image.h"
#include "archive/shared_bytes.h"
#include "platform/values/affine_transform.h"
#include "platform/text/attributed_string.h"
#include "platform/values/bezier_path.h"
#include "platform/values/class_registry.h"
#include "platform/values/color.h"
#include "platform/text/font.h"
#include "platform/values/geometry.h"
#include "platform/values/gradient.h"
#include "platform/text/paragraph_style.h"
#include "platform/values/shadow.h"

namespace paintdoc {

class Bitmap;
class ArchiveValue;

// The platform's null object (distinct from an absent value).
struct NullObject {
  friend bool operator==(NullObject, NullObject) { return true; }
};
// A moment as seconds since 2001-01-01 00:00:00 UTC.
struct Date {
  double secondsSinceReferenceDate = 0;
  friend bool operator==(const Date&, const Date&) = default;
};
// An integer above the signed 64-bit range (16-byte integers in property lists).
struct UnsignedInteger {
  uint64_t value = 0;
  friend bool operator==(const UnsignedInteger&, const UnsignedInteger&) = default;
};
// A number stored with single precision (written back as a 4-byte real).
struct SinglePrecision {
  float value = 0;
  friend bool operator==(const SinglePrecision&, const SinglePrecision&) = default;
};
// A UTF-16 range (location, length).
struct Range {
  uint64_t location = 0;
  uint64_t length = 0;
  friend bool operator==(const Range&, const Range&) = default;
};

using ValueArray = std::vector<ArchiveValue>;
using ValueDictionary = std::vector<std::pair<ArchiveValue, ArchiveValue>>;

class ArchiveValue {
 public:
  enum class Kind {
    Absent,  // nil: no value
    Null,    // the null object
    Bool,
    Integer,
    Unsigned,
    Real,
    Float,
    String,
    Data,
    Date,
    Array,
    Dictionary,
    Set,
    Point,
    Size,
    Rect,
    Range,
    Color,
    BezierPath,
    Gradient,
    Shadow,
    AffineTransform,
    AttributedString,
    Font,
    ParagraphStyle,
    TextTab,
    Bitmap,
    Image,
    Object,
  };

  ArchiveValue() = default;
  ArchiveValue(NullObject v) : value_(v) {}
  ArchiveValue(bool v) : value_(v) {}
  ArchiveValue(int v) : value_(static_cast<int64_t>(v)) {}
  ArchiveValue(int64_t v) : value_(v) {}
  ArchiveValue(UnsignedInteger v) : value_(v) {}
  ArchiveValue(double v) : value_(v) {}
  ArchiveValue(SinglePrecision v) : value_(v) {}
  ArchiveValue(std::string v) : value_(std::move(v)) {}
  ArchiveValue(const char* v) : value_(std::string(v)) {}
  ArchiveValue(SharedBytes v) : value_(std::move(v)) {}
  ArchiveValue(Date v) : value_(v) {}
  ArchiveValue(Point v) : value_(v) {}
  ArchiveValue(Size v) : value_(v) {}
  ArchiveValue(Rect v) : value_(v) {}
  ArchiveValue(Range v) : value_(v) {}
  ArchiveValue(TextTab v) : value_(v) {}
  ArchiveValue(Color v) : value_(Box(std::move(v))) {}
  ArchiveValue(BezierPath v) : value_(Box(std::move(v))) {}
  ArchiveValue(Gradient v) : value_(Box(std::move(v))) {}
  ArchiveValue(Shadow v) : value_(Box(std::move(v))) {}
  ArchiveValue(AffineTransform v) : value_(Box(v)) {}
  ArchiveValue(AttributedString v) : value_(Box(std::move(v))) {}
  ArchiveValue(Font v) : value_(Box(std::move(v))) {}
  ArchiveValue(ParagraphStyle v) : value_(Box(std::move(v))) {}
  ArchiveValue(ArchivedImage v) : value_(Box(std::move(v))) {}
  ArchiveValue(std::shared_ptr<Bitmap> v) : value_(std::move(v)) {}
  ArchiveValue(std::shared_ptr<Object> v) : value_(std::move(v)) {}
  static ArchiveValue array(ValueArray items);
  static ArchiveValue dictionary(ValueDictionary entries);
  static ArchiveValue set(ValueArray items);

  Kind kind() const;
  bool isAbsent() const { return kind() == Kind::Absent; }
  bool isNumber() const;  // Bool, Integer, Unsigned, Real or Float

  // Mutable strings, data and collections are archived under their mutable
  // class names; reading keeps the distinction so that rewriting keeps it.
  bool isMutable() const { return mutable_; }
  ArchiveValue& setMutable(bool isMutable) {
    mutable_ = isMutable;
    return *this;
  }

  // --- lenient number reading: any number kind converts, anything else is 0
  double toDouble() const;
  int64_t toInt64() const;
  bool toBool() const;

  // --- typed access: null when the value is of another kind
  const std::string* asString() const { return std::get_if<std::string>(&value_); }
  const SharedBytes* asData() const { return std::get_if<SharedBytes>(&value_); }
  const ValueArray* asArray() const;       // arrays and sets
  const ValueDictionary* asDictionary() const;
  // The value if it is a T (Color, BezierPath, Point, Date...), else null.
  template <class T>
  const T* as() const {
    if constexpr (kBoxed<T>) {
      const auto* box = std::get_if<std::shared_ptr<const T>>(&value_);
      return box ? box->get() : nullptr;
    } else {
      return std::get_if<T>(&value_);
    }
  }
  // The bitmap if the value is one, else null.
  std::shared_ptr<Bitmap> asBitmap() const {
    const auto* bitmap = std::get_if<std::shared_ptr<Bitmap>>(&value_);
    return bitmap ? *bitmap : nullptr;
  }
  // A model object of class T (or a subclass), or null.
  template <class T>
  std::shared_ptr<T> asObject() const {
    const auto* object = std::get_if<std::shared_ptr<Object>>(&value_);
    return object ? std::dynamic_pointer_cast<T>(*object) : nullptr;
  }
  // The value stored under a string key of a dictionary (null when absent).
  const ArchiveValue* valueForKey(std::string_view key) const;

  friend bool operator==(const ArchiveValue& a, const ArchiveValue& b);

 private:
  struct ArrayBox {
    ValueArray items;
    bool isSet = false;
    friend bool operator==(const ArrayBox&, const ArrayBox&) = default;
  };
  // Larger platform values are held behind a shared pointer so that values
  // copy cheaply (they are immutable once made).
  template <class T>
  static constexpr bool kBoxed =
      std::is_same_v<T, Color> || std::is_same_v<T, BezierPath> || std::is_same_v<T, Gradient> ||
      std::is_same_v<T, Shadow> || std::is_same_v<T, AffineTransform> ||
      std::is_same_v<T, AttributedString> || std::is_same_v<T, Font> ||
      std::is_same_v<T, ParagraphStyle> || std::is_same_v<T, ArchivedImage>;
  template <class T>
  static std::shared_ptr<const T> Box(T value) {
    return std::make_shared<const T>(std::move(value));
  }

  using Storage =
      std::variant<std::monostate, NullObject, bool, int64_t, UnsignedInteger, double,
                   SinglePrecision, std::string, SharedBytes, Date,
                   std::shared_ptr<const ArrayBox>, std::shared_ptr<const ValueDictionary>,
                   Point, Size, Rect, Range, std::shared_ptr<const Color>,
                   std::shared_ptr<const BezierPath>, std::shared_ptr<const Gradient>,
                   std::shared_ptr<const Shadow>, std::shared_ptr<const AffineTransform>,
                   std::shared_ptr<const AttributedString>, std::shared_ptr<const Font>,
                   std::shared_ptr<const ParagraphStyle>, TextTab, std::shared_ptr<Bitmap>,
                   std::shared_ptr<const ArchivedImage>, std::shared_ptr<Object>>;

  Storage value_;
  bool mutable_ = false;
};

}  // namespace paintdoc
