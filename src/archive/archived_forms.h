// The archived forms of the platform's classes: readers by class name, and
// writers of each value type.
//
// A reader runs with the archived object's dictionary as the unarchiver's
// current object, reads its keys through the ordinary decode operations and
// answers the value (absent when the object is malformed).
#pragma once

#include <cstdint>
#include <string_view>

#include "archive/archive_object_writer.h"
#include "archive/archive_value.h"
#include "archive/keyed_unarchiver.h"

namespace paintdoc {

using FormReader = ArchiveValue (*)(KeyedUnarchiver& coder, std::string_view className);

// The reader of a platform class, or null for classes the platform does not define.
FormReader FindFormReader(std::string_view className);

// --- readers, by family
ArchiveValue ReadStringObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadDataObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadArrayObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadSetObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadDictionaryObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadValueObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadNullObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadDateObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadColorObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadColorSpaceObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadShadowObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadGradientObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadBezierPathObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadAffineTransformObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadFontObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadParagraphStyleObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadTextTabObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadAttributedStringObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadBitmapImageRepObject(KeyedUnarchiver& coder, std::string_view className);
ArchiveValue ReadImageObject(KeyedUnarchiver& coder, std::string_view className);

// --- writers: each archives one object and answers its UID
uint64_t WriteFoundationObject(ArchiveObjectWriter& writer, const ArchiveValue& value);
uint64_t WriteColor(ArchiveObjectWriter& writer, const Color& color);
uint64_t WriteShadow(ArchiveObjectWriter& writer, const Shadow& shadow);
uint64_t WriteGradient(ArchiveObjectWriter& writer, const Gradient& gradient);
uint64_t WriteBezierPath(ArchiveObjectWriter& writer, const BezierPath& path);
uint64_t WriteAffineTransform(ArchiveObjectWriter& writer, const AffineTransform& transform);
uint64_t WriteFont(ArchiveObjectWriter& writer, const Font& font);
uint64_t WriteParagraphStyle(ArchiveObjectWriter& writer, const ParagraphStyle& style);
uint64_t WriteTextTab(ArchiveObjectWriter& writer, const TextTab& tab);
uint64_t WriteAttributedString(ArchiveObjectWriter& writer, const AttributedString& text,
                               AttributedStringClass archivedClass);
uint64_t WriteBitmapImageRep(ArchiveObjectWriter& writer, const Bitmap& bitmap);
uint64_t WriteImage(ArchiveObjectWriter& writer, const ArchivedImage& image);

}  // namespace paintdoc
