#include "preview/document_info.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "document/paint_manager.h"
#include "draws/draw_group.h"
#include "raster/draw_filter.h"
#include "raster/draw_image.h"
#include "platform/text/font_mapping.h"
#include "text/draw_text.h"
#include "platform/values/bitmap.h"
#include "preview/preview_source.h"

namespace paintdoc {

namespace {

TextInfo DescribeText(const DrawText& text) {
  TextInfo info;
  info.plainText = text.textStorage().utf8Text();
  for (const Font& font : text.textFonts()) {
    const bool known = std::any_of(info.fonts.begin(), info.fonts.end(), [&](const TextFontInfo& seen) {
      return seen.name == font.name && seen.pointSize == font.pointSize;
    });
    if (known) continue;
    const FontFace face = FaceForPostScriptName(font.name);
    info.fonts.push_back({font.name, font.pointSize, face.displayName(), face.fallback});
  }
  for (const Color& color : text.textColors()) {
    if (std::find(info.colors.begin(), info.colors.end(), color) == info.colors.end()) {
      info.colors.push_back(color);
    }
  }
  return info;
}

// `depth` counts the groups around the draw: members of groups nested deeper
// than groups may be are left out.
LayerInfo DescribeDraw(const DrawBase& draw, int depth = 0) {
  LayerInfo layer;
  layer.className = draw.className();
  layer.title = draw.layerTitle();
  layer.visible = draw.visible();
  layer.locked = draw.locked();
  layer.rotation = draw.rotateDegree();
  layer.bounds = draw.pathBounds();
  layer.attributes = draw.drawAttributes();
  layer.opacity = draw.opacity();
  if (const auto* image = dynamic_cast<const DrawImage*>(&draw)) {
    const Bitmap* pixels = image->image().get();
    layer.imagePixels = pixels ? PixelSize{pixels->pixelsWide(), pixels->pixelsHigh()} : PixelSize{};
  }
  if (const auto* filter = dynamic_cast<const DrawFilter*>(&draw)) {
    layer.filterName = std::string(filter->filterName());
    if (filter->filterSettings()) {
      layer.filterSettings.assign(filter->filterSettings()->begin(), filter->filterSettings()->end());
    }
  }
  if (const auto* text = dynamic_cast<const DrawText*>(&draw)) layer.text = DescribeText(*text);
  if (const auto* group = dynamic_cast<const DrawGroup*>(&draw)) {
    layer.isGroup = true;
    if (depth < DrawGroup::kMaxNesting) {
      for (const auto& member : group->draws()) {
        layer.members.push_back(DescribeDraw(*member, depth + 1));
      }
    }
  }
  return layer;
}

// JSON has no NaN or infinity; such values print as null.
std::string JsonNumber(double value) {
  return std::isfinite(value) ? FormatNumber(value) : "null";
}


const char* JsonBool(bool value) { return value ? "true" : "false"; }

// Single-precision values (angles, opacity) in their own shortest form:
// 0.3 rather than the 0.30000001192092896 of their double.
std::string JsonFloat(float value) {
  if (!std::isfinite(value)) return "null";
  if (value == 0) return "0";
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

struct ColorSpaceName {
  ColorSpaceKind kind;
  const char* name;
};

constexpr ColorSpaceName kColorSpaceNames[] = {
    {ColorSpaceKind::CalibratedRGB, "calibrated RGB"},
    {ColorSpaceKind::DeviceRGB, "device RGB"},
    {ColorSpaceKind::SRGB, "sRGB"},
    {ColorSpaceKind::DisplayP3, "Display P3"},
    {ColorSpaceKind::CalibratedWhite, "calibrated white"},
    {ColorSpaceKind::DeviceWhite, "device white"},
    {ColorSpaceKind::DeviceCMYK, "device CMYK"},
    {ColorSpaceKind::Catalog, "catalog"},
};

std::string JsonColorSpace(ColorSpaceKind kind) {
  for (const ColorSpaceName& entry : kColorSpaceNames) {
    if (entry.kind == kind) return JsonString(entry.name);
  }
  return "null";
}

// A component in [0, 1] as two hex digits.
std::string HexByte(double component) {
  const double clamped = std::isnan(component) ? 0 : std::clamp(component, 0.0, 1.0);
  char hex[3];
  std::snprintf(hex, sizeof hex, "%02x", static_cast<unsigned>(std::lround(clamped * 255)));
  return hex;
}

// The colour as it shows, in calibrated RGB, with the space it was made in.
std::string JsonColor(const Color& color) {
  const RGBA rgba = color.toCalibratedRGB();
  return "{\"rgba\":\"#" + HexByte(rgba.red) + HexByte(rgba.green) + HexByte(rgba.blue) +
         HexByte(rgba.alpha) + "\",\"colorSpace\":" + JsonColorSpace(color.colorSpace()) + "}";
}

std::string JsonGradient(const Gradient& gradient) {
  std::string out = "{\"colorSpace\":" + JsonColorSpace(gradient.colorSpace()) + ",\"stops\":[";
  for (size_t i = 0; i < gradient.numberOfColorStops(); ++i) {
    const GradientStop& stop = gradient.stopAt(i);
    if (i > 0) out += ",";
    out += "{\"location\":" + JsonNumber(stop.location) + ",\"color\":" + JsonColor(stop.color) + "}";
  }
  return out + "]}";
}

std::string JsonShadow(const Shadow& shadow) {
  const Size offset = shadow.shadowOffset();
  return "{\"offset\":[" + JsonNumber(offset.width) + "," + JsonNumber(offset.height) +
         "],\"blur\":" + JsonNumber(shadow.shadowBlurRadius()) +
         ",\"color\":" + JsonColor(shadow.shadowColor()) + "}";
}

// An attribute value by its kind; kinds an attribute never holds are null.
std::string JsonAttributeValue(const ArchiveValue& value) {
  if (const auto* flag = value.as<bool>()) return JsonBool(*flag);
  if (const auto* single = value.as<SinglePrecision>()) return JsonFloat(single->value);
  if (value.isNumber()) return JsonNumber(value.toDouble());
  if (const std::string* text = value.asString()) return JsonString(*text);
  if (const auto* point = value.as<Point>()) {
    return "[" + JsonNumber(point->x) + "," + JsonNumber(point->y) + "]";
  }
  if (const auto* color = value.as<Color>()) return JsonColor(*color);
  if (const auto* gradient = value.as<Gradient>()) return JsonGradient(*gradient);
  if (const auto* shadow = value.as<Shadow>()) return JsonShadow(*shadow);
  return "null";
}

std::string JsonAttributes(const DrawAttributes& attributes) {
  std::string out = "{";
  for (const auto& [key, value] : attributes.entries()) {
    if (out.size() > 1) out += ",";
    out += JsonString(key) + ":" + JsonAttributeValue(value);
  }
  return out + "}";
}

void AppendTextJson(std::string& out, const TextInfo& text) {
  out += ",\"text\":{\"string\":" + JsonString(text.plainText) + ",\"fonts\":[";
  for (size_t i = 0; i < text.fonts.size(); ++i) {
    const TextFontInfo& font = text.fonts[i];
    if (i > 0) out += ",";
    out += "{\"name\":" + JsonString(font.name) + ",\"size\":" + JsonNumber(font.pointSize) +
           ",\"shownAs\":" + JsonString(font.shownAs) +
           ",\"fallback\":" + JsonBool(font.fallback) + "}";
  }
  out += "],\"colors\":[";
  for (size_t i = 0; i < text.colors.size(); ++i) {
    if (i > 0) out += ",";
    out += JsonColor(text.colors[i]);
  }
  out += "]}";
}

void AppendLayersJson(std::string& out, const std::vector<LayerInfo>& layers) {
  out += "[";
  for (size_t i = 0; i < layers.size(); ++i) {
    const LayerInfo& layer = layers[i];
    if (i > 0) out += ",";
    out += "{\"class\":" + JsonString(layer.className);
    out += ",\"title\":" + JsonString(layer.title);
    out += ",\"visible\":" + std::string(JsonBool(layer.visible));
    out += ",\"locked\":" + std::string(JsonBool(layer.locked));
    out += ",\"rotation\":" + JsonNumber(layer.rotation);
    out += ",\"bounds\":[" + JsonNumber(layer.bounds.origin.x) + "," +
           JsonNumber(layer.bounds.origin.y) + "," + JsonNumber(layer.bounds.size.width) + "," +
           JsonNumber(layer.bounds.size.height) + "]";
    out += ",\"attributes\":" + JsonAttributes(layer.attributes);
    out += ",\"opacity\":" + JsonFloat(layer.opacity);
    if (layer.imagePixels) {
      out += ",\"image\":{\"pixelsWide\":" + std::to_string(layer.imagePixels->width) +
             ",\"pixelsHigh\":" + std::to_string(layer.imagePixels->height) + "}";
    }
    if (layer.filterName) {
      out += ",\"filter\":{\"name\":" + JsonString(*layer.filterName) + ",\"settings\":{";
      for (size_t k = 0; k < layer.filterSettings.size(); ++k) {
        if (k > 0) out += ",";
        out += JsonString(layer.filterSettings[k].first) + ":" + JsonNumber(layer.filterSettings[k].second);
      }
      out += "}}";
    }
    if (layer.text) AppendTextJson(out, *layer.text);
    if (layer.isGroup) {
      out += ",\"layers\":";
      AppendLayersJson(out, layer.members);
    }
    out += "}";
  }
  out += "]";
}

// Text output rounds to six significant digits: archived outlines carry
// single-precision points, and 239.99999618530273 reads worse than 240.
std::string TextNumber(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

std::string TextRect(const Rect& r) {
  return "{{" + TextNumber(r.origin.x) + ", " + TextNumber(r.origin.y) + "}, {" +
         TextNumber(r.size.width) + ", " + TextNumber(r.size.height) + "}}";
}

void AppendLayersText(std::string& out, const std::vector<LayerInfo>& layers, int depth) {
  for (const LayerInfo& layer : layers) {
    out += std::string(2 * (depth + 1), ' ') + layer.className + " \"" + layer.title + "\"";
    out += layer.visible ? " visible" : " hidden";
    if (layer.locked) out += " locked";
    out += " rotation " + TextNumber(layer.rotation);
    out += " bounds " + TextRect(layer.bounds);
    if (layer.isGroup) out += " (" + std::to_string(layer.members.size()) + " members)";
    if (layer.imagePixels) {
      out += layer.imagePixels->width == 0 ? std::string(" image none")
                                           : " image " + std::to_string(layer.imagePixels->width) +
                                                 " x " + std::to_string(layer.imagePixels->height) +
                                                 " pixels opacity " + TextNumber(layer.opacity);
    }
    if (layer.filterName) {
      out += " filter \"" + *layer.filterName + "\"";
      for (const auto& [key, value] : layer.filterSettings) out += " " + key + " " + TextNumber(value);
    }
    out += "\n";
    if (layer.text) {
      for (const TextFontInfo& font : layer.text->fonts) {
        if (!font.fallback) continue;
        out += std::string(2 * (depth + 2), ' ') + "font " + font.name + " shown as " +
               font.shownAs + "\n";
      }
    }
    AppendLayersText(out, layer.members, depth + 1);
  }
}

}  // namespace

std::string JsonString(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned char>(c));
          out += escaped;
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

DocumentInfo DescribePreviewSource(const PreviewSource& source) {
  DocumentInfo info;
  info.size = source.contentSize;
  if (source.image) {
    info.pixelSize = Size{static_cast<double>(source.image->pixelsWide()),
                          static_cast<double>(source.image->pixelsHigh())};
  }
  if (!source.canvas) return info;
  const PaintManager& canvas = *source.canvas;
  info.isDocument = true;
  info.version = source.version;
  info.hasBackground = canvas.backgroundDraw() != nullptr;
  info.maskWithBackground = canvas.maskBackground();
  for (const auto& draw : canvas.allDraws()) info.layers.push_back(DescribeDraw(*draw));
  return info;
}

std::string FormatDocumentInfoText(const DocumentInfo& info) {
  const std::string size = FormatNumber(info.size.width) + " x " + FormatNumber(info.size.height);
  if (!info.isDocument) {
    return "image " + FormatNumber(info.pixelSize.width) + " x " +
           FormatNumber(info.pixelSize.height) + " pixels, " + TextNumber(info.size.width) +
           " x " + TextNumber(info.size.height) + " points\n";
  }
  std::string out = "document version " + std::to_string(info.version) + ", canvas " + size +
                    "\nbackground: " + (info.hasBackground ? "yes" : "no") +
                    ", mask with background: " + (info.maskWithBackground ? "yes" : "no") + "\n" +
                    std::to_string(info.layers.size()) +
                    (info.layers.size() == 1 ? " layer" : " layers") + ", bottom first:\n";
  AppendLayersText(out, info.layers, 0);
  return out;
}

std::string FormatDocumentInfoJson(const DocumentInfo& info) {
  const std::string width = JsonNumber(info.size.width);
  const std::string height = JsonNumber(info.size.height);
  if (!info.isDocument) {
    return "{\"kind\":\"image\",\"width\":" + width + ",\"height\":" + height +
           ",\"pixelsWide\":" + JsonNumber(info.pixelSize.width) +
           ",\"pixelsHigh\":" + JsonNumber(info.pixelSize.height) + "}\n";
  }
  std::string out = "{\"kind\":\"document\",\"version\":" + std::to_string(info.version) +
                    ",\"width\":" + width + ",\"height\":" + height +
                    ",\"hasBackground\":" + JsonBool(info.hasBackground) +
                    ",\"maskWithBackground\":" + JsonBool(info.maskWithBackground) + ",\"layers\":";
  AppendLayersJson(out, info.layers);
  return out + "}\n";
}

}  // namespace paintdoc
