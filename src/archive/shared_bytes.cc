#include "archive/shared_bytes.h"

#include <algorithm>
#include <cstring>

namespace paintdoc {

SharedBytes::SharedBytes(std::vector<uint8_t> bytes) {
  auto storage = std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
  view_ = std::span<const uint8_t>(storage->data(), storage->size());
  owner_ = std::move(storage);
}

SharedBytes SharedBytes::copyOf(std::span<const uint8_t> bytes) {
  return SharedBytes(std::vector<uint8_t>(bytes.begin(), bytes.end()));
}

SharedBytes SharedBytes::subrange(size_t offset, size_t length) const {
  offset = std::min(offset, view_.size());
  length = std::min(length, view_.size() - offset);
  return SharedBytes(owner_, view_.subspan(offset, length));
}

bool operator==(const SharedBytes& a, const SharedBytes& b) {
  return a.size() == b.size() && (a.size() == 0 || std::memcmp(a.data(), b.data(), a.size()) == 0);
}

}  // namespace paintdoc
