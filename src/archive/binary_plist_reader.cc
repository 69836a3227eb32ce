// Reads binary property lists ("bplist00"). Layout: an 8-byte header, the
// objects, an offset table giving each object's position, and a 32-byte
// trailer with the sizes of offsets and references, the object count, the top
// object and the offset table's position. Every number taken from the file is
// checked against the buffer before use; the object table is built without
// following references, then the references reachable from the top object are
// walked once to refuse cycles and bound the nesting depth.
#include <cmath>
#include <cstring>
#include <limits>

#include "archive/property_list.h"
#include "archive/plist_graph_check.h"

namespace paintdoc {

namespace {

constexpr size_t kHeaderSize = 8;
constexpr size_t kTrailerSize = 32;

uint64_t ReadBigEndian(const uint8_t* p, size_t size) {
  uint64_t value = 0;
  for (size_t i = 0; i < size; ++i) value = (value << 8) | p[i];
  return value;
}

std::string Hex(unsigned value) {
  static const char* digits = "0123456789ABCDEF";
  return std::string("0x") + digits[(value >> 4) & 15] + digits[value & 15];
}

}  // namespace

class BinaryPlistParser {
 public:
  BinaryPlistParser(SharedBytes bytes, const ArchiveLimits& limits)
      : bytes_(std::move(bytes)), data_(bytes_.data()), size_(bytes_.size()), limits_(limits) {}

  Result<PropertyList> parse() {
    PropertyList plist;
    plist.source_ = bytes_;
    if (!readTrailer() || !readObjects(plist) ||
        !CheckPlistGraph(plist, plist.root(), limits_, &error_)) {
      return Failure{"binary property list: " + error_};
    }
    return plist;
  }

 private:
  bool fail(std::string message) {
    error_ = std::move(message);
    return false;
  }
  bool failAt(uint64_t object, std::string message) {
    return fail("object " + std::to_string(object) + " at offset " +
                std::to_string(offsets_ ? objectOffset(object) : 0) + ": " + message);
  }

  bool readTrailer() {
    if (size_ < kHeaderSize + kTrailerSize + 1) {
      return fail("file of " + std::to_string(size_) + " bytes is too short");
    }
    if (std::memcmp(data_, "bplist0", 7) != 0) return fail("missing \"bplist0\" header");
    const uint8_t* trailer = data_ + size_ - kTrailerSize;
    offsetSize_ = trailer[6];
    refSize_ = trailer[7];
    objectCount_ = ReadBigEndian(trailer + 8, 8);
    topObject_ = ReadBigEndian(trailer + 16, 8);
    const uint64_t tableOffset = ReadBigEndian(trailer + 24, 8);
    const uint64_t objectsEnd = size_ - kTrailerSize;

    if (offsetSize_ < 1 || offsetSize_ > 8) {
      return fail("offset size " + std::to_string(offsetSize_) + " is not 1 to 8");
    }
    if (refSize_ < 1 || refSize_ > 8) {
      return fail("reference size " + std::to_string(refSize_) + " is not 1 to 8");
    }
    if (objectCount_ == 0) return fail("no objects");
    if (objectCount_ > limits_.maxObjects) {
      return fail(std::to_string(objectCount_) + " objects exceed the limit of " +
                  std::to_string(limits_.maxObjects));
    }
    if (refSize_ < 8 && objectCount_ > (uint64_t{1} << (8 * refSize_))) {
      return fail("reference size " + std::to_string(refSize_) + " cannot address " +
                  std::to_string(objectCount_) + " objects");
    }
    if (topObject_ >= objectCount_) {
      return fail("top object " + std::to_string(topObject_) + " is not among the " +
                  std::to_string(objectCount_) + " objects");
    }
    // objectCount_ is at most maxObjects, so the product cannot overflow.
    const uint64_t tableSize = objectCount_ * offsetSize_;
    if (tableOffset < kHeaderSize + 1 || tableOffset > objectsEnd ||
        tableSize > objectsEnd - tableOffset) {
      return fail("offset table at " + std::to_string(tableOffset) + " (" +
                  std::to_string(tableSize) + " bytes) does not fit in the file");
    }
    offsets_ = data_ + tableOffset;
    objectsEnd_ = tableOffset;  // objects lie between the header and the offset table
    return true;
  }

  uint64_t objectOffset(uint64_t index) const {
    return ReadBigEndian(offsets_ + index * offsetSize_, offsetSize_);
  }

  bool readObjects(PropertyList& plist) {
    plist.objects_.resize(objectCount_);
    for (uint64_t i = 0; i < objectCount_; ++i) {
      if (!readObject(i, plist)) return false;
    }
    plist.root_ = static_cast<uint32_t>(topObject_);
    return true;
  }

  // Bytes available from `offset` to the end of the object area.
  uint64_t available(uint64_t offset) const { return objectsEnd_ - offset; }

  // The element count of a data, string or container object: the marker's low
  // nibble, or an integer object after the marker when the nibble is 15.
  bool readCount(uint64_t index, uint64_t& pos, unsigned nibble, uint64_t& count) {
    if (nibble != 15) {
      count = nibble;
      return true;
    }
    if (available(pos) < 1) return failAt(index, "count runs past the end of the objects");
    const uint8_t marker = data_[pos++];
    if ((marker & 0xF0) != 0x10 || (marker & 0x0F) > 3) {
      return failAt(index, "count is not an integer (marker " + Hex(marker) + ")");
    }
    const size_t size = size_t{1} << (marker & 0x0F);
    if (available(pos) < size) return failAt(index, "count runs past the end of the objects");
    count = ReadBigEndian(data_ + pos, size);
    pos += size;
    if (size == 8 && count > static_cast<uint64_t>(INT64_MAX)) {
      return failAt(index, "negative count");
    }
    return true;
  }

  bool readObject(uint64_t index, PropertyList& plist) {
    const uint64_t offset = objectOffset(index);
    if (offset < kHeaderSize || offset >= objectsEnd_) {
      return failAt(index, "offset lies outside the object area");
    }
    PlistObject& o = plist.objects_[index];
    uint64_t pos = offset + 1;
    const uint8_t marker = data_[offset];
    const unsigned nibble = marker & 0x0F;
    switch (marker >> 4) {
      case 0x0:
        if (marker == 0x00) {
          o.type = PlistType::Null;
        } else if (marker == 0x08 || marker == 0x09) {
          o.type = PlistType::Bool;
          o.boolean = marker == 0x09;
        } else {
          return failAt(index, "unknown marker " + Hex(marker));
        }
        return true;
      case 0x1:
        return readInteger(index, pos, nibble, o);
      case 0x2: {
        if (nibble != 2 && nibble != 3) return failAt(index, "real of unsupported size");
        const size_t size = size_t{1} << nibble;
        if (available(pos) < size) return failAt(index, "real runs past the end of the objects");
        o.type = PlistType::Real;
        o.isSinglePrecision = nibble == 2;
        o.real = nibble == 2 ? ReadFloat(data_ + pos) : ReadDouble(data_ + pos);
        return true;
      }
      case 0x3:
        if (marker != 0x33) return failAt(index, "unknown marker " + Hex(marker));
        if (available(pos) < 8) return failAt(index, "date runs past the end of the objects");
        o.type = PlistType::Date;
        o.real = ReadDouble(data_ + pos);
        return true;
      case 0x4:
      case 0x5:
      case 0x6:
        return readBytes(index, pos, marker, o);
      case 0x8: {
        const size_t size = nibble + 1;
        if (size > 8) return failAt(index, "UID of " + std::to_string(size) + " bytes");
        if (available(pos) < size) return failAt(index, "UID runs past the end of the objects");
        o.type = PlistType::Uid;
        o.uid = ReadBigEndian(data_ + pos, size);
        return true;
      }
      case 0xA:
      case 0xC:
      case 0xD:
        return readContainer(index, pos, marker, o, plist);
      default:
        return failAt(index, "unknown marker " + Hex(marker));
    }
  }

  static double ReadDouble(const uint8_t* p) {
    const uint64_t bits = ReadBigEndian(p, 8);
    double value;
    std::memcpy(&value, &bits, 8);
    return value;
  }
  static float ReadFloat(const uint8_t* p) {
    const auto bits = static_cast<uint32_t>(ReadBigEndian(p, 4));
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
  }

  bool readInteger(uint64_t index, uint64_t pos, unsigned nibble, PlistObject& o) {
    if (nibble > 4) return failAt(index, "integer of unsupported size");
    const size_t size = size_t{1} << nibble;
    if (available(pos) < size) return failAt(index, "integer runs past the end of the objects");
    o.type = PlistType::Integer;
    if (size < 8) {
      o.integer = static_cast<int64_t>(ReadBigEndian(data_ + pos, size));  // unsigned
    } else if (size == 8) {
      o.integer = static_cast<int64_t>(ReadBigEndian(data_ + pos, 8));  // two's complement
    } else {
      // 16 bytes: a value beyond the signed range, or a sign-extended one.
      const uint64_t high = ReadBigEndian(data_ + pos, 8);
      const uint64_t low = ReadBigEndian(data_ + pos + 8, 8);
      if (high == 0) {
        o.isUnsigned = low > static_cast<uint64_t>(INT64_MAX);
        o.unsignedInteger = low;
      } else if (high == ~uint64_t{0} && low > static_cast<uint64_t>(INT64_MAX)) {
        o.integer = static_cast<int64_t>(low);
      } else {
        return failAt(index, "16-byte integer beyond 64 bits");
      }
    }
    return true;
  }

  bool readBytes(uint64_t index, uint64_t pos, uint8_t marker, PlistObject& o) {
    uint64_t count = 0;
    if (!readCount(index, pos, marker & 0x0F, count)) return false;
    const bool utf16 = (marker >> 4) == 0x6;
    if (utf16 && count > available(pos) / 2) {
      return failAt(index, "string of " + std::to_string(count) +
                               " UTF-16 units runs past the end of the objects");
    }
    const uint64_t byteCount = utf16 ? count * 2 : count;
    if (byteCount > available(pos)) {
      return failAt(index, std::string((marker >> 4) == 0x4 ? "data" : "string") + " of " +
                               std::to_string(byteCount) +
                               " bytes runs past the end of the objects");
    }
    o.type = (marker >> 4) == 0x4 ? PlistType::Data : PlistType::String;
    o.isUtf16 = utf16;
    o.bytes = data_ + pos;
    o.extent = byteCount;
    return true;
  }

  bool readContainer(uint64_t index, uint64_t pos, uint8_t marker, PlistObject& o,
                     PropertyList& plist) {
    uint64_t count = 0;
    if (!readCount(index, pos, marker & 0x0F, count)) return false;
    const bool dictionary = (marker >> 4) == 0xD;
    const uint64_t perEntry = dictionary ? 2 * refSize_ : refSize_;
    // Checked before anything is allocated: a huge count in a small file fails here.
    if (count > available(pos) / perEntry) {
      return failAt(index, (dictionary ? "dictionary of " : "array of ") +
                               std::to_string(count) + " entries runs past the end of the objects");
    }
    if (count > std::numeric_limits<uint32_t>::max()) return failAt(index, "too many entries");
    const uint64_t refCount = dictionary ? 2 * count : count;
    // Objects of a well-formed file do not overlap, so all references together
    // fit in the object area; offsets that point several entries at one large
    // container would otherwise multiply the table.
    totalRefBytes_ += refCount * refSize_;
    if (totalRefBytes_ > objectsEnd_) return failAt(index, "objects overlap");
    o.type = dictionary ? PlistType::Dictionary
                        : ((marker >> 4) == 0xC ? PlistType::Set : PlistType::Array);
    o.count = static_cast<uint32_t>(count);
    o.extent = plist.refs_.size();
    for (uint64_t i = 0; i < refCount; ++i) {
      const uint64_t ref = ReadBigEndian(data_ + pos + i * refSize_, refSize_);
      if (ref >= objectCount_) {
        return failAt(index, "reference " + std::to_string(ref) + " is not among the " +
                                 std::to_string(objectCount_) + " objects");
      }
      plist.refs_.push_back(static_cast<uint32_t>(ref));
    }
    return true;
  }

  SharedBytes bytes_;
  const uint8_t* data_;
  size_t size_;
  ArchiveLimits limits_;
  std::string error_;

  unsigned offsetSize_ = 0;
  unsigned refSize_ = 0;
  uint64_t objectCount_ = 0;
  uint64_t topObject_ = 0;
  const uint8_t* offsets_ = nullptr;
  uint64_t objectsEnd_ = 0;
  uint64_t totalRefBytes_ = 0;
};

Result<PropertyList> PropertyList::readBinary(SharedBytes bytes, const ArchiveLimits& limits) {
  return BinaryPlistParser(std::move(bytes), limits).parse();
}

}  // namespace paintdoc
