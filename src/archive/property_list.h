// A property list held as a table of objects, the way the binary format stores
// it: containers refer to their elements by index, so an object shared by
// several containers is held once. Strings and data read from a file are views
// into the file's bytes.
//
// Readers check everything against the buffer and the limits and refuse
// reference cycles; a PropertyList that reading produced is therefore a DAG
// whose every reference is a valid index.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "archive/archive_limits.h"
#include "archive/shared_bytes.h"
#include "platform/values/result.h"

namespace paintdoc {

enum class PlistType : uint8_t {
  Null,
  Bool,
  Integer,     // signed 64-bit, or unsigned 64-bit when `isUnsigned`
  Real,        // double; `isSinglePrecision` when stored in 4 bytes
  Date,        // seconds since 2001-01-01 UTC
  Data,
  String,
  Uid,
  Array,
  Set,
  Dictionary,  // `count` pairs: keys first, then values
};

// One object of the table (24 bytes: a file may hold millions).
struct PlistObject {
  PlistType type = PlistType::Null;
  bool isUnsigned = false;         // Integer above INT64_MAX
  bool isSinglePrecision = false;  // Real stored as float32
  bool isUtf16 = false;            // String bytes are UTF-16 big-endian
  uint32_t count = 0;              // Array, Set: elements; Dictionary: pairs
  union {
    int64_t integer;
    uint64_t unsignedInteger;
    double real;  // Real and Date
    bool boolean;
    uint64_t uid;
    const uint8_t* bytes;  // Data and String
  };
  // Data and String: the byte length. Array, Set, Dictionary: the index into
  // the reference table where the elements (keys, then values) start.
  uint64_t extent = 0;

  PlistObject() : integer(0) {}
};

class PropertyList {
 public:
  PropertyList() = default;
  PropertyList(PropertyList&&) = default;
  PropertyList& operator=(PropertyList&&) = default;

  // Reads a binary ("bplist00") or XML property list, or says in one line
  // why the bytes are malformed or exceed the limits.
  static Result<PropertyList> read(SharedBytes bytes, const ArchiveLimits& limits);
  static Result<PropertyList> readBinary(SharedBytes bytes, const ArchiveLimits& limits);
  static Result<PropertyList> readXml(SharedBytes bytes, const ArchiveLimits& limits);
  static bool looksBinary(std::span<const uint8_t> bytes);

  uint32_t root() const { return root_; }
  size_t size() const { return objects_.size(); }
  const PlistObject& at(uint32_t index) const { return objects_[index]; }
  PlistType typeAt(uint32_t index) const { return objects_[index].type; }

  // --- element access (the index must be of the right type)
  // Element i of an array or set.
  uint32_t elementAt(uint32_t container, uint32_t i) const {
    return refs_[objects_[container].extent + i];
  }
  std::span<const uint32_t> elements(uint32_t container) const;
  uint32_t keyAt(uint32_t dictionary, uint32_t i) const {
    return refs_[objects_[dictionary].extent + i];
  }
  uint32_t valueAt(uint32_t dictionary, uint32_t i) const {
    const PlistObject& d = objects_[dictionary];
    return refs_[d.extent + d.count + i];
  }
  // The value under a string key, or nothing.
  std::optional<uint32_t> lookUp(uint32_t dictionary, std::string_view key) const;

  // --- strings
  // The text as UTF-8 (UTF-16 strings are converted).
  std::string stringAt(uint32_t index) const;
  // Compares without converting or allocating when the string is ASCII.
  bool stringEquals(uint32_t index, std::string_view text) const;
  bool isString(uint32_t index) const { return objects_[index].type == PlistType::String; }
  // Data bytes as a view sharing the source buffer.
  SharedBytes dataAt(uint32_t index) const;

  // --- building (writers and the XML reader)
  uint32_t addNull();
  uint32_t addBool(bool value);
  uint32_t addInteger(int64_t value);
  uint32_t addUnsigned(uint64_t value);
  uint32_t addReal(double value);
  uint32_t addFloat(float value);
  uint32_t addDate(double secondsSinceReferenceDate);
  uint32_t addUid(uint64_t value);
  // Strings and data are copied into storage the list owns.
  uint32_t addString(std::string_view utf8);
  uint32_t addData(std::span<const uint8_t> bytes);
  // Data that stays a view of shared bytes (kept alive by the list).
  uint32_t addDataView(const SharedBytes& bytes);
  uint32_t addArray(std::span<const uint32_t> elements);
  uint32_t addSet(std::span<const uint32_t> elements);
  // Pairs keys[i] → values[i]; extra keys or values are left out.
  uint32_t addDictionary(std::span<const uint32_t> keys, std::span<const uint32_t> values);
  void setRoot(uint32_t index) { root_ = index; }

 private:
  friend class BinaryPlistParser;

  uint32_t add(const PlistObject& object);
  uint32_t addContainer(PlistType type, std::span<const uint32_t> first,
                        std::span<const uint32_t> second);
  const uint8_t* own(std::span<const uint8_t> bytes);

  std::vector<PlistObject> objects_;
  std::vector<uint32_t> refs_;
  uint32_t root_ = 0;
  SharedBytes source_;                // keeps a read file's bytes alive
  std::deque<std::string> owned_;     // bytes of added strings and data (stable addresses)
  std::vector<SharedBytes> keptViews_;
};

// Serialises in the binary format the platform writes: one offset table,
// smallest integer and reference sizes, ASCII or UTF-16 strings.
std::vector<uint8_t> WriteBinaryPlist(const PropertyList& plist);

}  // namespace paintdoc
