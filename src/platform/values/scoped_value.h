// Sets a variable for the life of a scope and puts its former value back on
// every way out: the temporary switches of drawing code (a shadow turned off
// while a reflection paints) cannot leak.
//
//   ScopedValue noShadow(bEnableShadow_, false);
#pragma once

#include <utility>

namespace paintdoc {

template <class T>
class ScopedValue {
 public:
  ScopedValue(T& variable, T value) : variable_(variable), saved_(std::move(variable)) {
    variable_ = std::move(value);
  }
  ~ScopedValue() { variable_ = std::move(saved_); }
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;

 private:
  T& variable_;
  T saved_;
};

}  // namespace paintdoc
