#include "archive/archived_forms.h"

#include <map>
#include <string>

namespace paintdoc {

FormReader FindFormReader(std::string_view className) {
  static const std::map<std::string, FormReader, std::less<>> readers = {
      {"NSString", ReadStringObject},
      {"NSMutableString", ReadStringObject},
      {"NSData", ReadDataObject},
      {"NSMutableData", ReadDataObject},
      {"NSArray", ReadArrayObject},
      {"NSMutableArray", ReadArrayObject},
      {"NSSet", ReadSetObject},
      {"NSMutableSet", ReadSetObject},
      {"NSOrderedSet", ReadSetObject},
      {"NSMutableOrderedSet", ReadSetObject},
      {"NSDictionary", ReadDictionaryObject},
      {"NSMutableDictionary", ReadDictionaryObject},
      {"NSValue", ReadValueObject},
      {"NSNull", ReadNullObject},
      {"NSDate", ReadDateObject},
      {"NSColor", ReadColorObject},
      {"NSColorSpace", ReadColorSpaceObject},
      {"NSShadow", ReadShadowObject},
      {"NSGradient", ReadGradientObject},
      {"NSBezierPath", ReadBezierPathObject},
      {"NSAffineTransform", ReadAffineTransformObject},
      {"NSFont", ReadFontObject},
      {"NSParagraphStyle", ReadParagraphStyleObject},
      {"NSMutableParagraphStyle", ReadParagraphStyleObject},
      {"NSTextTab", ReadTextTabObject},
      {"NSAttributedString", ReadAttributedStringObject},
      {"NSMutableAttributedString", ReadAttributedStringObject},
      {"NSTextStorage", ReadAttributedStringObject},
      {"NSBitmapImageRep", ReadBitmapImageRepObject},
      {"NSImage", ReadImageObject},
  };
  const auto it = readers.find(className);
  return it == readers.end() ? nullptr : it->second;
}

uint64_t WriteValueObject(ArchiveObjectWriter& writer, const ArchiveValue& value) {
  using Kind = ArchiveValue::Kind;
  switch (value.kind()) {
    case Kind::Color:
      return WriteColor(writer, *value.as<Color>());
    case Kind::BezierPath:
      return WriteBezierPath(writer, *value.as<BezierPath>());
    case Kind::Gradient:
      return WriteGradient(writer, *value.as<Gradient>());
    case Kind::Shadow:
      return WriteShadow(writer, *value.as<Shadow>());
    case Kind::AffineTransform:
      return WriteAffineTransform(writer, *value.as<AffineTransform>());
    case Kind::AttributedString:
      return WriteAttributedString(writer, *value.as<AttributedString>(),
                                   AttributedStringClass::AttributedString);
    case Kind::Font:
      return WriteFont(writer, *value.as<Font>());
    case Kind::ParagraphStyle:
      return WriteParagraphStyle(writer, *value.as<ParagraphStyle>());
    case Kind::TextTab:
      return WriteTextTab(writer, *value.as<TextTab>());
    case Kind::Bitmap:
      return value.asBitmap() ? WriteBitmapImageRep(writer, *value.asBitmap()) : 0;
    case Kind::Image:
      return WriteImage(writer, *value.as<ArchivedImage>());
    default:
      return WriteFoundationObject(writer, value);
  }
}

}  // namespace paintdoc
