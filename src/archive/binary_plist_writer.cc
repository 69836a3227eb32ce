// Writes binary property lists the way the platform's writer does: objects in
// the order of a depth-first walk from the top object (a dictionary's keys,
// then its values), equal scalars written once, the smallest sizes for
// integers, references and offsets, one offset table and the trailer.
#include <algorithm>
#include <bit>
#include <cstring>
#include <map>
#include <tuple>
#include <vector>

#include "archive/property_list.h"

namespace paintdoc {

namespace {

// Bytes needed for an unsigned value: 1, 2, 4 or 8.
unsigned ByteWidth(uint64_t value) {
  if (value <= 0xFF) return 1;
  if (value <= 0xFFFF) return 2;
  if (value <= 0xFFFFFFFF) return 4;
  return 8;
}

class BinaryPlistWriter {
 public:
  explicit BinaryPlistWriter(const PropertyList& plist) : plist_(plist) {}

  std::vector<uint8_t> write() {
    flatten();
    const uint64_t count = order_.size();
    refSize_ = ByteWidth(count);
    out_.assign({'b', 'p', 'l', 'i', 's', 't', '0', '0'});
    std::vector<uint64_t> offsets(count);
    for (uint64_t i = 0; i < count; ++i) {
      offsets[i] = out_.size();
      writeObject(order_[i]);
    }
    const uint64_t tableOffset = out_.size();
    const unsigned offsetSize = ByteWidth(tableOffset);
    for (uint64_t offset : offsets) appendBigEndian(offset, offsetSize);
    // Trailer: 5 unused bytes, sort version, offset size, reference size,
    // object count, top object, offset table position.
    out_.insert(out_.end(), 6, 0);
    out_.push_back(static_cast<uint8_t>(offsetSize));
    out_.push_back(static_cast<uint8_t>(refSize_));
    appendBigEndian(count, 8);
    appendBigEndian(0, 8);  // the walk starts at the top object
    appendBigEndian(tableOffset, 8);
    return std::move(out_);
  }

 private:
  // A scalar's identity for writing it once: type, flags and content.
  using ScalarKey = std::tuple<PlistType, bool, bool, uint64_t, std::string_view>;

  ScalarKey scalarKey(uint32_t index) const {
    const PlistObject& o = plist_.at(index);
    std::string_view bytes;
    uint64_t bits = 0;
    if (o.type == PlistType::String || o.type == PlistType::Data) {
      bytes = {reinterpret_cast<const char*>(o.bytes), static_cast<size_t>(o.extent)};
    } else {
      if (o.type == PlistType::Bool) {
        bits = o.boolean;
      } else if (o.type != PlistType::Null) {
        std::memcpy(&bits, &o.integer, sizeof bits);  // integer, real or UID bits
      }
    }
    return {o.type, o.isSinglePrecision, o.isUtf16, bits, bytes};
  }

  static bool IsContainer(PlistType type) {
    return type == PlistType::Array || type == PlistType::Set || type == PlistType::Dictionary;
  }

  // Assigns output numbers in depth-first pre-order from the root. Containers
  // are written once per table entry, scalars once per distinct value.
  void flatten() {
    number_.assign(plist_.size(), kUnassigned);
    std::map<ScalarKey, uint32_t> scalars;
    struct Frame {
      uint32_t node;
      uint64_t next;
    };
    std::vector<Frame> stack;
    auto visit = [&](uint32_t node) {
      if (number_[node] != kUnassigned) return;
      const PlistObject& o = plist_.at(node);
      if (!IsContainer(o.type)) {
        auto [it, inserted] = scalars.try_emplace(scalarKey(node), uint32_t(order_.size()));
        number_[node] = it->second;
        if (inserted) order_.push_back(node);
        return;
      }
      number_[node] = static_cast<uint32_t>(order_.size());
      order_.push_back(node);
      stack.push_back({node, 0});
    };
    visit(plist_.root());
    while (!stack.empty()) {
      Frame& frame = stack.back();
      const PlistObject& o = plist_.at(frame.node);
      const uint64_t refs = o.type == PlistType::Dictionary ? 2 * uint64_t{o.count} : o.count;
      if (frame.next == refs) {
        stack.pop_back();
        continue;
      }
      visit(plist_.elementAt(frame.node, static_cast<uint32_t>(frame.next++)));
    }
  }

  void appendBigEndian(uint64_t value, unsigned size) {
    for (unsigned i = size; i-- > 0;) out_.push_back(static_cast<uint8_t>(value >> (8 * i)));
  }

  // A marker with a count in its low nibble, or 15 and an integer object.
  void appendMarker(uint8_t type, uint64_t count) {
    if (count < 15) {
      out_.push_back(static_cast<uint8_t>(type << 4 | count));
      return;
    }
    out_.push_back(static_cast<uint8_t>(type << 4 | 0x0F));
    appendInteger(count);
  }

  void appendInteger(uint64_t value) {
    const unsigned width = ByteWidth(value);
    out_.push_back(static_cast<uint8_t>(0x10 | std::countr_zero(width)));
    appendBigEndian(value, width);
  }

  void writeObject(uint32_t index) {
    const PlistObject& o = plist_.at(index);
    switch (o.type) {
      case PlistType::Null:
        out_.push_back(0x00);
        break;
      case PlistType::Bool:
        out_.push_back(o.boolean ? 0x09 : 0x08);
        break;
      case PlistType::Integer:
        if (o.isUnsigned) {
          out_.push_back(0x14);  // beyond the signed range: 16 bytes
          appendBigEndian(0, 8);
          appendBigEndian(o.unsignedInteger, 8);
        } else if (o.integer < 0) {
          out_.push_back(0x13);  // negative numbers are always 8 bytes
          appendBigEndian(static_cast<uint64_t>(o.integer), 8);
        } else {
          appendInteger(static_cast<uint64_t>(o.integer));
        }
        break;
      case PlistType::Real:
        if (o.isSinglePrecision) {
          const auto value = static_cast<float>(o.real);
          uint32_t bits;
          std::memcpy(&bits, &value, 4);
          out_.push_back(0x22);
          appendBigEndian(bits, 4);
        } else {
          writeDouble(0x23, o.real);
        }
        break;
      case PlistType::Date:
        writeDouble(0x33, o.real);
        break;
      case PlistType::Data:
        appendMarker(0x4, o.extent);
        out_.insert(out_.end(), o.bytes, o.bytes + o.extent);
        break;
      case PlistType::String:
        appendMarker(o.isUtf16 ? 0x6 : 0x5, o.isUtf16 ? o.extent / 2 : o.extent);
        out_.insert(out_.end(), o.bytes, o.bytes + o.extent);
        break;
      case PlistType::Uid: {
        // 1, 2, 4 or 8 bytes, as the platform writes them.
        const unsigned width = ByteWidth(o.uid);
        out_.push_back(static_cast<uint8_t>(0x80 | (width - 1)));
        appendBigEndian(o.uid, width);
        break;
      }
      case PlistType::Array:
      case PlistType::Set:
      case PlistType::Dictionary: {
        const uint8_t type = o.type == PlistType::Array ? 0xA : (o.type == PlistType::Set ? 0xC : 0xD);
        appendMarker(type, o.count);
        const uint64_t refs = o.type == PlistType::Dictionary ? 2 * uint64_t{o.count} : o.count;
        for (uint64_t i = 0; i < refs; ++i) {
          appendBigEndian(number_[plist_.elementAt(index, static_cast<uint32_t>(i))], refSize_);
        }
        break;
      }
    }
  }

  void writeDouble(uint8_t marker, double value) {
    uint64_t bits;
    std::memcpy(&bits, &value, 8);
    out_.push_back(marker);
    appendBigEndian(bits, 8);
  }

  static constexpr uint32_t kUnassigned = UINT32_MAX;
  const PropertyList& plist_;
  std::vector<uint32_t> order_;   // table indices in output order
  std::vector<uint32_t> number_;  // table index → output number
  std::vector<uint8_t> out_;
  unsigned refSize_ = 1;
};

}  // namespace

std::vector<uint8_t> WriteBinaryPlist(const PropertyList& plist) {
  if (plist.size() == 0) return {};
  return BinaryPlistWriter(plist).write();
}

}  // namespace paintdoc
