#include "archive/archive_value.h"

#include <cmath>
#include <limits>

namespace paintdoc {

ArchiveValue ArchiveValue::array(ValueArray items) {
  ArchiveValue v;
  v.value_ = std::make_shared<const ArrayBox>(ArrayBox{std::move(items), false});
  return v;
}

ArchiveValue ArchiveValue::set(ValueArray items) {
  ArchiveValue v;
  v.value_ = std::make_shared<const ArrayBox>(ArrayBox{std::move(items), true});
  return v;
}

ArchiveValue ArchiveValue::dictionary(ValueDictionary entries) {
  ArchiveValue v;
  v.value_ = std::make_shared<const ValueDictionary>(std::move(entries));
  return v;
}

ArchiveValue::Kind ArchiveValue::kind() const {
  // The order of the alternatives in Storage, mapped to kinds.
  static constexpr Kind kKinds[] = {
      Kind::Absent,     Kind::Null,       Kind::Bool,     Kind::Integer,   Kind::Unsigned,
      Kind::Real,       Kind::Float,      Kind::String,   Kind::Data,      Kind::Date,
      Kind::Array,      Kind::Dictionary, Kind::Point,    Kind::Size,      Kind::Rect,
      Kind::Range,      Kind::Color,      Kind::BezierPath, Kind::Gradient, Kind::Shadow,
      Kind::AffineTransform, Kind::AttributedString, Kind::Font, Kind::ParagraphStyle,
      Kind::TextTab,    Kind::Bitmap,     Kind::Image,    Kind::Object};
  static_assert(std::size(kKinds) == std::variant_size_v<Storage>);
  if (const auto* box = std::get_if<std::shared_ptr<const ArrayBox>>(&value_)) {
    return (*box)->isSet ? Kind::Set : Kind::Array;
  }
  return kKinds[value_.index()];
}

bool ArchiveValue::isNumber() const {
  switch (kind()) {
    case Kind::Bool:
    case Kind::Integer:
    case Kind::Unsigned:
    case Kind::Real:
    case Kind::Float:
      return true;
    default:
      return false;
  }
}

double ArchiveValue::toDouble() const {
  if (const auto* b = std::get_if<bool>(&value_)) return *b ? 1 : 0;
  if (const auto* i = std::get_if<int64_t>(&value_)) return static_cast<double>(*i);
  if (const auto* u = std::get_if<UnsignedInteger>(&value_)) return static_cast<double>(u->value);
  if (const auto* d = std::get_if<double>(&value_)) return *d;
  if (const auto* f = std::get_if<SinglePrecision>(&value_)) return f->value;
  return 0;
}

int64_t ArchiveValue::toInt64() const {
  if (const auto* i = std::get_if<int64_t>(&value_)) return *i;
  if (const auto* u = std::get_if<UnsignedInteger>(&value_)) {
    return u->value > uint64_t{INT64_MAX} ? INT64_MAX : static_cast<int64_t>(u->value);
  }
  const double d = toDouble();
  // Reals truncate toward zero; out-of-range values saturate, NaN reads 0.
  if (std::isnan(d)) return 0;
  if (d >= 9223372036854775807.0) return std::numeric_limits<int64_t>::max();
  if (d <= -9223372036854775808.0) return std::numeric_limits<int64_t>::min();
  return static_cast<int64_t>(d);
}

bool ArchiveValue::toBool() const {
  if (const auto* b = std::get_if<bool>(&value_)) return *b;
  if (const auto* i = std::get_if<int64_t>(&value_)) return *i != 0;
  if (std::holds_alternative<UnsignedInteger>(value_)) return true;
  return toDouble() != 0;
}

const ValueArray* ArchiveValue::asArray() const {
  const auto* box = std::get_if<std::shared_ptr<const ArrayBox>>(&value_);
  return box ? &(*box)->items : nullptr;
}

const ValueDictionary* ArchiveValue::asDictionary() const {
  const auto* d = std::get_if<std::shared_ptr<const ValueDictionary>>(&value_);
  return d ? d->get() : nullptr;
}

const ArchiveValue* ArchiveValue::valueForKey(std::string_view key) const {
  const ValueDictionary* entries = asDictionary();
  if (!entries) return nullptr;
  for (const auto& [k, v] : *entries) {
    if (const std::string* s = k.asString(); s && *s == key) return &v;
  }
  return nullptr;
}

bool operator==(const ArchiveValue& a, const ArchiveValue& b) {
  if (a.value_.index() != b.value_.index() || a.mutable_ != b.mutable_) return false;
  return std::visit(
      [&](const auto& x) -> bool {
        using T = std::decay_t<decltype(x)>;
        const T& y = std::get<T>(b.value_);
        if constexpr (std::is_same_v<T, std::shared_ptr<Bitmap>> ||
                      std::is_same_v<T, std::shared_ptr<Object>>) {
          return x == y;  // the same instance
        } else if constexpr (requires { *x == *y; }) {
          return *x == *y;  // boxed values and collections compare by content
        } else {
          return x == y;  // NaN reals compare unequal, as numbers do
        }
      },
      a.value_);
}

}  // namespace paintdoc
