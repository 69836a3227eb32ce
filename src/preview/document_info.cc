#include "preview/document_info.h"

#include <cmath>
#include <cstdio>

#include "document/paint_manager.h"
#include "draws/draw_group.h"
#include "raster/draw_image.h"
#include "platform/values/bitmap.h"
#include "preview/preview_source.h"

namespace paintdoc {

namespace {

LayerInfo DescribeDraw(const DrawBase& draw) {
  LayerInfo layer;
  layer.className = draw.className();
  layer.title = draw.layerTitle();
  layer.visible = draw.visible();
  layer.locked = draw.locked();
  layer.rotation = draw.rotateDegree();
  layer.bounds = draw.pathBounds();
  if (const auto* group = dynamic_cast<const DrawGroup*>(&draw)) {
    layer.isGroup = true;
    for (const auto& member : group->draws()) layer.members.push_back(DescribeDraw(*member));
  }
  return layer;
}

// JSON has no NaN or infinity; such values print as null.
std::string JsonNumber(double value) {
  return std::isfinite(value) ? FormatNumber(value) : "null";
}

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

const char* JsonBool(bool value) { return value ? "true" : "false"; }

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
    out += "\n";
    AppendLayersText(out, layer.members, depth + 1);
  }
}

}  // namespace

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
