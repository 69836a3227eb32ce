// An immutable range of bytes that keeps its storage alive. Readers hand out
// views into the buffer a file was read into instead of copying; a consumer that
// keeps the bytes either keeps the SharedBytes (and with it the whole buffer) or
// takes a copy.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace paintdoc {

class SharedBytes {
 public:
  SharedBytes() = default;
  // Takes the bytes over.
  explicit SharedBytes(std::vector<uint8_t> bytes);
  // A copy of the bytes.
  static SharedBytes copyOf(std::span<const uint8_t> bytes);
  // A view of bytes owned by `owner` (which must keep them unchanged while alive).
  SharedBytes(std::shared_ptr<const void> owner, std::span<const uint8_t> view)
      : owner_(std::move(owner)), view_(view) {}

  const uint8_t* data() const { return view_.data(); }
  size_t size() const { return view_.size(); }
  bool empty() const { return view_.empty(); }
  std::span<const uint8_t> span() const { return view_; }
  std::string_view asStringView() const {
    return {reinterpret_cast<const char*>(view_.data()), view_.size()};
  }
  // A view of part of these bytes sharing the same storage; clamped to the range.
  SharedBytes subrange(size_t offset, size_t length) const;
  std::vector<uint8_t> copy() const { return {view_.begin(), view_.end()}; }

  friend bool operator==(const SharedBytes& a, const SharedBytes& b);

 private:
  std::shared_ptr<const void> owner_;
  std::span<const uint8_t> view_;
};

}  // namespace paintdoc
