// Reads keyed archives: the platform's archive of an object graph in a property
// list ("$archiver", "$top", "$objects"). Values are read by key from the object
// being decoded (at first the top level, "$top"). Missing keys read as 0, false
// or absent; any stored number kind converts to the number asked for.
//
// Objects of model classes are created through the class registry by their
// archived class name and read by their own initWithCoder. An unknown class, a
// failed initWithCoder or a reference to an object still being decoded yields
// null (logged) so that the rest of the archive still loads. One archived
// object referenced twice decodes to one shared instance.
//
// Nothing here throws; a file that is no keyed archive leaves the unarchiver
// invalid with a clear error().
#pragma once

#include <cstdint>
#include <unordered_map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "archive/archive_limits.h"
#include "archive/archive_value.h"
#include "archive/archived_image.h"
#include "platform/values/result.h"
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
class PropertyList;

class KeyedUnarchiver {
 public:
  // Reads a binary or XML property list holding a keyed archive. The bytes are
  // shared, not copied: data values decoded later are views into them.
  explicit KeyedUnarchiver(SharedBytes bytes, ArchiveLimits limits = {});
  ~KeyedUnarchiver();
  KeyedUnarchiver(const KeyedUnarchiver&) = delete;
  KeyedUnarchiver& operator=(const KeyedUnarchiver&) = delete;

  // False when the bytes are no keyed archive; error() then says why.
  bool isValid() const { return valid_; }
  const std::string& error() const { return error_; }

  // The object under "root" of an archive made by KeyedArchiver::archivedData,
  // or why the data holds none.
  static Result<std::shared_ptr<Object>> unarchiveObjectWithData(SharedBytes bytes,
                                                                 ArchiveLimits limits = {});
  // The same for a root that must be a T.
  template <class T>
  static Result<std::shared_ptr<T>> unarchiveObjectWithData(SharedBytes bytes) {
    Result<std::shared_ptr<Object>> root = unarchiveObjectWithData(std::move(bytes));
    if (!root) return Failure{root.reason()};
    std::shared_ptr<T> typed = std::dynamic_pointer_cast<T>(*root);
    if (!typed) return Failure{"the archive's root is a " + (*root)->className()};
    return typed;
  }
  // Ends decoding; later decode calls answer as for missing keys.
  void finishDecoding();

  // --- keys of the object being decoded
  bool containsValueForKey(std::string_view key) const;
  std::vector<std::string> allKeys() const;

  // --- scalars (lenient: any stored number converts; missing reads 0 / false)
  bool decodeBoolForKey(std::string_view key) const;
  int decodeIntForKey(std::string_view key) const;
  int32_t decodeInt32ForKey(std::string_view key) const;
  int64_t decodeInt64ForKey(std::string_view key) const;
  int64_t decodeIntegerForKey(std::string_view key) const;
  float decodeFloatForKey(std::string_view key) const;
  double decodeDoubleForKey(std::string_view key) const;
  // Geometry stored as strings "{x, y}", "{w, h}", "{{x, y}, {w, h}}"; missing reads zero.
  Point decodePointForKey(std::string_view key);
  Size decodeSizeForKey(std::string_view key);
  Rect decodeRectForKey(std::string_view key);
  // Bytes stored inline; absent when the key is missing or holds no data.
  std::optional<SharedBytes> decodeBytesForKey(std::string_view key) const;

  // --- objects of model classes
  // The object under the key, or null (missing key, null reference, unknown
  // class, failed decoding, or not an Object).
  std::shared_ptr<Object> decodeObjectForKey(std::string_view key);
  // The same, null unless the object is a T (a wrong class is logged).
  template <class T>
  std::shared_ptr<T> decodeObjectForKey(std::string_view key) {
    return castObject<T>(decodeObjectForKey(key), key);
  }
  // The objects of an array under the key that are T; other elements are
  // skipped (logged). Empty when the key is missing or holds no array.
  template <class T>
  std::vector<std::shared_ptr<T>> decodeArrayOfObjectsForKey(std::string_view key) {
    std::vector<std::shared_ptr<T>> objects;
    for (auto& element : decodeObjectArrayForKey(key)) {
      if (auto typed = castObject<T>(std::move(element), key)) objects.push_back(std::move(typed));
    }
    return objects;
  }

  // --- platform values (absent when missing, null or of another kind)
  std::optional<std::string> decodeStringForKey(std::string_view key);
  std::optional<SharedBytes> decodeDataForKey(std::string_view key);
  // A number object (bool, integer or real) as a double.
  std::optional<double> decodeNumberForKey(std::string_view key);
  std::optional<Color> decodeColorForKey(std::string_view key);
  std::optional<BezierPath> decodeBezierPathForKey(std::string_view key);
  std::optional<Gradient> decodeGradientForKey(std::string_view key);
  std::optional<Shadow> decodeShadowForKey(std::string_view key);
  std::optional<AffineTransform> decodeAffineTransformForKey(std::string_view key);
  // Boxed geometry (NSValue) objects.
  std::optional<Point> decodePointValueForKey(std::string_view key);
  std::optional<Size> decodeSizeValueForKey(std::string_view key);
  std::optional<Rect> decodeRectValueForKey(std::string_view key);
  // Attributed strings, mutable attributed strings and text storages.
  std::optional<AttributedString> decodeAttributedStringForKey(std::string_view key);
  // A bitmap representation, the first bitmap of an image, or image file
  // data (bare or as a data object) decoded with decodeImageData.
  std::shared_ptr<Bitmap> decodeBitmapForKey(std::string_view key);
  std::optional<ArchivedImage> decodeImageForKey(std::string_view key);
  // Any value: numbers, strings, data, collections (elements decoded
  // recursively), platform values and model objects. Absent when missing.
  ArchiveValue decodeValueForKey(std::string_view key);

  // The property list the archive was read from (for diagnostics and tools).
  const PropertyList* propertyList() const { return plist_.get(); }
  const ArchiveLimits& limits() const { return limits_; }

  // --- image data (for the readers of archived images)
  // Image file bytes held by the archive (TIFF, PNG, JPEG, ...) decoded into
  // a bitmap. An image above the archive's pixel limits, alone or together
  // with the images decoded before it, refuses the whole archive before its
  // pixels are allocated (the archive becomes invalid and error() says which
  // limit). Data that cannot be read is logged as a warning naming `what`
  // and gives null; the rest of the archive still loads.
  std::shared_ptr<Bitmap> decodeImageData(std::span<const uint8_t> bytes, std::string_view what);
  // Pixels of the images decoded so far.
  uint64_t imagePixelsDecoded() const { return imagePixelsDecoded_; }

 private:
  friend class ArchiveObjectReader;

  template <class T>
  std::shared_ptr<T> castObject(std::shared_ptr<Object> object, std::string_view key) {
    if (!object) return nullptr;
    auto typed = std::dynamic_pointer_cast<T>(object);
    if (!typed) reportWrongClass(key, object->className());
    return typed;
  }
  std::vector<std::shared_ptr<Object>> decodeObjectArrayForKey(std::string_view key);
  void reportWrongClass(std::string_view key, const std::string& className) const;

  bool open(SharedBytes bytes);
  void fail(std::string message);

  // The property-list node stored under the key in the current object.
  std::optional<uint32_t> lookUp(std::string_view key) const;
  // The node itself, or for a reference the archived object it names; nothing
  // for the null reference or a reference past the objects.
  std::optional<uint32_t> resolve(uint32_t node) const;
  // Decodes any node: scalars, inline containers, references to archived objects.
  ArchiveValue decodeNode(uint32_t node);
  ArchiveValue decodeReference(uint64_t uid);
  // An archived object's dictionary, through its class's form or initWithCoder.
  ArchiveValue decodeArchivedObject(uint32_t dictionary);
  std::string classNameOf(uint32_t dictionary) const;
  // Counts decoding work; false once the budget is spent (the archive then fails).
  bool charge(uint64_t units);

  ArchiveLimits limits_;
  std::unique_ptr<PropertyList> plist_;
  bool valid_ = false;
  bool finished_ = false;
  std::string error_;

  uint32_t objects_ = 0;                 // the "$objects" array
  std::vector<uint32_t> currentObject_;  // dictionaries being decoded, innermost last
  size_t depth_ = 0;                     // nesting of decodeNode
  uint64_t workBudget_ = 0;
  uint64_t imagePixelsDecoded_ = 0;
  // Archived model objects and bitmaps by UID: one instance however often referenced.
  std::unordered_map<uint64_t, ArchiveValue> sharedObjects_;
  std::vector<uint64_t> underConstruction_;
};

}  // namespace paintdoc
