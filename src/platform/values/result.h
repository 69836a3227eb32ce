// Result<T>: what reading untrusted input gives back — a file's bytes, an
// image, a property list, an archived object, a preview's content — either a
// value or one line saying why there is none. Every reader of outside data
// answers one; the "Error: " log stays for misuse of the model.
//
//   Result<std::vector<uint8_t>> bytes = ReadFileBytes(path, limit);
//   if (!bytes) return Failure{"can't read " + bytes.reason()};
//   Use(*bytes);
//
// A function that gives nothing back on success answers a Status.
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace paintdoc {

// The failure side, converting to any Result: `return Failure{"why"};`.
struct Failure {
  std::string reason;
};

template <class T>
class Result {
 public:
  Result(T value) : value_(std::move(value)) {}
  Result(Failure failure) : reason_(std::move(failure.reason)) {}

  bool ok() const { return value_.has_value(); }
  explicit operator bool() const { return ok(); }

  // The value; only when ok().
  T& value() & { return *value_; }
  const T& value() const& { return *value_; }
  T&& value() && { return std::move(*value_); }
  T& operator*() & { return *value_; }
  const T& operator*() const& { return *value_; }
  T* operator->() { return &*value_; }
  const T* operator->() const { return &*value_; }
  T value_or(T fallback) const& { return value_ ? *value_ : std::move(fallback); }

  // Why there is no value, in one line; empty when ok().
  const std::string& reason() const { return reason_; }

 private:
  std::optional<T> value_;
  std::string reason_;
};

// The value of a Status that succeeded.
struct Done {};
using Status = Result<Done>;

}  // namespace paintdoc
