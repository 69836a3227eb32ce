// One object archived as the root of its own archive, and back. Deep copies of
// model objects go through these.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "archive/codable.h"
#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "archive/shared_bytes.h"

namespace paintdoc {

// The object archived under "root" of a new binary keyed archive.
inline std::vector<uint8_t> EncodedData(const Codable& object) {
  return KeyedArchiver::archivedDataWithRootObject(object);
}

// The root object of such an archive, or why there is none.
inline Result<std::shared_ptr<Object>> ObjectWithEncodedData(SharedBytes data) {
  return KeyedUnarchiver::unarchiveObjectWithData(std::move(data));
}

// A deep copy through the archive; null if the class cannot be rebuilt.
template <class T>
std::shared_ptr<T> CopyByArchiving(const T& object) {
  return std::dynamic_pointer_cast<T>(
      ObjectWithEncodedData(SharedBytes(EncodedData(object))).value_or(nullptr));
}

}  // namespace paintdoc
