// Writes keyed archives in the platform's layout as binary property lists.
// Values are written under keys into the object being encoded (at first the
// top level, "$top"). One model object encoded twice is written once and shared.
//
//   KeyedArchiver archiver;
//   archiver.encodeObjectForKey(canvas, "root");
//   std::vector<uint8_t> bytes = archiver.finishEncoding();
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "archive/archive_value.h"
#include "archive/archived_image.h"
#include "archive/codable.h"
#include "archive/shared_bytes.h"
#include "platform/values/affine_transform.h"
#include "platform/text/attributed_string.h"
#include "platform/values/bezier_path.h"
#include "platform/values/color.h"
#include "platform/values/geometry.h"
#include "platform/values/gradient.h"
#include "platform/values/shadow.h"

namespace paintdoc {

class Bitmap;

// The archived classes of rich text.
enum class AttributedStringClass { AttributedString, MutableAttributedString, TextStorage };

class KeyedArchiver {
 public:
  KeyedArchiver();
  ~KeyedArchiver();
  KeyedArchiver(const KeyedArchiver&) = delete;
  KeyedArchiver& operator=(const KeyedArchiver&) = delete;

  // The object archived alone as "root" of a new archive, and back: a deep copy.
  static std::vector<uint8_t> archivedDataWithRootObject(const Codable& object);

  // Ends encoding and answers the binary property list. Encoding afterwards is
  // refused (logged).
  std::vector<uint8_t> finishEncoding();

  // --- scalars
  void encodeBoolForKey(bool value, std::string_view key);
  void encodeIntForKey(int value, std::string_view key);
  void encodeInt32ForKey(int32_t value, std::string_view key);
  void encodeInt64ForKey(int64_t value, std::string_view key);
  void encodeIntegerForKey(int64_t value, std::string_view key);
  void encodeFloatForKey(float value, std::string_view key);    // 4-byte real
  void encodeDoubleForKey(double value, std::string_view key);  // 8-byte real
  // Geometry as string objects "{x, y}", "{w, h}", "{{x, y}, {w, h}}".
  void encodePointForKey(const Point& value, std::string_view key);
  void encodeSizeForKey(const Size& value, std::string_view key);
  void encodeRectForKey(const Rect& value, std::string_view key);
  // Bytes stored inline.
  void encodeBytesForKey(std::span<const uint8_t> bytes, std::string_view key);

  // --- objects of model classes; null writes the null reference
  void encodeObjectForKey(const Codable* object, std::string_view key);
  void encodeObjectForKey(const std::shared_ptr<const Codable>& object, std::string_view key) {
    encodeObjectForKey(object.get(), key);
  }
  template <class T>
  void encodeArrayOfObjectsForKey(const std::vector<std::shared_ptr<T>>& objects,
                                  std::string_view key, bool mutableArray = true) {
    std::vector<const Codable*> pointers;
    pointers.reserve(objects.size());
    for (const auto& object : objects) pointers.push_back(object.get());
    encodeObjectArrayForKey(pointers, key, mutableArray);
  }
  void encodeObjectArrayForKey(const std::vector<const Codable*>& objects, std::string_view key,
                               bool mutableArray = true);

  // --- platform values, in the forms the original platform reads
  void encodeStringForKey(std::string_view value, std::string_view key);
  void encodeDataForKey(std::span<const uint8_t> value, std::string_view key);
  void encodeColorForKey(const Color& value, std::string_view key);
  void encodeBezierPathForKey(const BezierPath& value, std::string_view key);
  void encodeGradientForKey(const Gradient& value, std::string_view key);
  void encodeShadowForKey(const Shadow& value, std::string_view key);
  void encodeAffineTransformForKey(const AffineTransform& value, std::string_view key);
  void encodePointValueForKey(const Point& value, std::string_view key);
  void encodeSizeValueForKey(const Size& value, std::string_view key);
  void encodeRectValueForKey(const Rect& value, std::string_view key);
  void encodeAttributedStringForKey(
      const AttributedString& value, std::string_view key,
      AttributedStringClass archivedClass = AttributedStringClass::TextStorage);
  void encodeBitmapForKey(const Bitmap& value, std::string_view key);
  // The same; one bitmap instance encoded twice is written once and shared.
  void encodeBitmapForKey(const std::shared_ptr<Bitmap>& value, std::string_view key);
  void encodeImageForKey(const ArchivedImage& value, std::string_view key);
  // Any value (absent writes the null reference).
  void encodeValueForKey(const ArchiveValue& value, std::string_view key);

 private:
  friend class ArchiveObjectWriter;
  struct State;

  // Adds a value under a key of the object being encoded (replacing an earlier one).
  void put(std::string_view key, uint32_t node);
  bool checkOpen() const;
  uint64_t archiveCodable(const Codable& object);
  uint64_t classDescription(std::span<const std::string> classChain);
  uint64_t beginObject(std::span<const std::string> classChain);
  void endObject();

  std::unique_ptr<State> state_;
  bool finished_ = false;
};

}  // namespace paintdoc
