// NSAffineTransform and NSBezierPath. Both keep their numbers as big-endian
// 32-bit floats in data.
//
// A transform ("NSTransformStruct") takes the shortest of four forms: absent
// for the identity, 9 bytes for a pure translation or scale (a kind byte and
// two floats), 16 bytes for scale with translation, 24 for the whole matrix.
//
// A path ("NSSegments") is a run of 9-byte records: a type byte (0 move, 1
// line, 2 curve, 3 close) and the point as two floats. A curve takes three
// records (both control points, then the end); a close records the start of
// the subpath it closes and is followed by a move back to that start, which
// the next explicit move replaces. Stroke attributes are separate keys,
// written only when they differ from their defaults.
#include <bit>
#include <cstring>

#include "archive/archived_forms.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

constexpr size_t kRecordSize = 9;
constexpr double kDefaultFlatness = 0.6;

enum SegmentType : uint8_t { kMove = 0, kLine = 1, kCurve = 2, kClose = 3, kQuadratic = 4 };

float ReadFloat(const uint8_t* p) {
  const uint32_t bits = uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | p[3];
  return std::bit_cast<float>(bits);
}

void AppendFloat(std::vector<uint8_t>& out, double value) {
  const auto bits = std::bit_cast<uint32_t>(static_cast<float>(value));
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<uint8_t>(bits >> shift));
}

Point RecordPoint(const uint8_t* record) { return {ReadFloat(record + 1), ReadFloat(record + 5)}; }

void AppendRecord(std::vector<uint8_t>& out, uint8_t type, const Point& p) {
  out.push_back(type);
  AppendFloat(out, p.x);
  AppendFloat(out, p.y);
}

// --- transform

AffineTransform TransformFromStruct(const SharedBytes& bytes, bool& valid) {
  const uint8_t* p = bytes.data();
  auto f = [&](size_t i) { return static_cast<double>(ReadFloat(p + i)); };
  valid = true;
  switch (bytes.size()) {
    case 0:
      return {};
    case 9:
      if (p[0] == 1) return AffineTransform::translation(f(1), f(5));
      if (p[0] == 2) return AffineTransform::scaling(f(1), f(5));
      break;
    case 16:
      return {f(0), 0, 0, f(4), f(8), f(12)};
    case 24:
      return {f(0), f(4), f(8), f(12), f(16), f(20)};
    default:
      break;
  }
  valid = false;
  return {};
}

std::vector<uint8_t> StructOfTransform(const AffineTransform& t) {
  std::vector<uint8_t> out;
  const bool axisAligned = t.m12 == 0 && t.m21 == 0;
  const bool unitScale = t.m11 == 1 && t.m22 == 1;
  const bool translated = t.tX != 0 || t.tY != 0;
  if (axisAligned && unitScale) {
    if (!translated) return out;  // identity: nothing
    out.push_back(1);
    for (double v : {t.tX, t.tY}) AppendFloat(out, v);
  } else if (axisAligned && !translated) {
    out.push_back(2);
    for (double v : {t.m11, t.m22}) AppendFloat(out, v);
  } else if (axisAligned) {
    for (double v : {t.m11, t.m22, t.tX, t.tY}) AppendFloat(out, v);
  } else {
    for (double v : {t.m11, t.m12, t.m21, t.m22, t.tX, t.tY}) AppendFloat(out, v);
  }
  return out;
}

// --- path

// Reads the segment records into `path`. Malformed records end the path
// where they start (logged).
void ReadSegments(const SharedBytes& bytes, BezierPath& path) {
  const size_t records = bytes.size() / kRecordSize;
  if (bytes.size() % kRecordSize != 0) {
    Log("Warning: KeyedUnarchiver: path segments of " + std::to_string(bytes.size()) +
        " bytes are not whole records; the last partial record is ignored");
  }
  const uint8_t* data = bytes.data();
  for (size_t i = 0; i < records; ++i) {
    const uint8_t* record = data + i * kRecordSize;
    const Point p = RecordPoint(record);
    switch (record[0]) {
      case kMove:
        // The move a close stores back to its subpath's start is no element of
        // its own unless the path continues from it with a line or curve.
        if (!path.isEmpty() && path.elements().back().type == PathElementType::ClosePath &&
            p == path.currentPoint() &&
            (i + 1 == records || data[(i + 1) * kRecordSize] == kMove)) {
          break;
        }
        path.moveTo(p);
        break;
      case kLine:
        path.hasCurrentPoint() ? path.lineTo(p) : path.moveTo(p);
        break;
      case kCurve: {
        if (i + 2 >= records) {
          Log("Warning: KeyedUnarchiver: a path curve lacks its points; the path ends there");
          return;
        }
        const Point control2 = RecordPoint(record + kRecordSize);
        const Point end = RecordPoint(record + 2 * kRecordSize);
        i += 2;
        path.hasCurrentPoint() ? path.curveTo(end, p, control2) : path.moveTo(end);
        break;
      }
      case kClose:
        // The record's point (the subpath's start) adds nothing.
        path.closePath();
        break;
      case kQuadratic: {
        // A control point and an end point, raised to a cubic curve.
        if (i + 1 >= records || !path.hasCurrentPoint()) {
          Log("Warning: KeyedUnarchiver: a quadratic path segment lacks its points");
          return;
        }
        const Point start = path.currentPoint();
        const Point end = RecordPoint(record + kRecordSize);
        ++i;
        const Point c1{start.x + 2.0 / 3.0 * (p.x - start.x), start.y + 2.0 / 3.0 * (p.y - start.y)};
        const Point c2{end.x + 2.0 / 3.0 * (p.x - end.x), end.y + 2.0 / 3.0 * (p.y - end.y)};
        path.curveTo(end, c1, c2);
        break;
      }
      default:
        Log("Warning: KeyedUnarchiver: a path segment of unknown type " +
            std::to_string(record[0]) + "; the path ends there");
        return;
    }
  }
}

std::vector<uint8_t> SegmentsOfPath(const BezierPath& path) {
  std::vector<uint8_t> out;
  Point subpathStart;
  const auto& elements = path.elements();
  for (size_t i = 0; i < elements.size(); ++i) {
    const PathElement& e = elements[i];
    switch (e.type) {
      case PathElementType::MoveTo:
        subpathStart = e.points[0];
        AppendRecord(out, kMove, e.points[0]);
        break;
      case PathElementType::LineTo:
        AppendRecord(out, kLine, e.points[0]);
        break;
      case PathElementType::CurveTo:
        for (const Point& p : e.points) AppendRecord(out, kCurve, p);
        break;
      case PathElementType::ClosePath:
        AppendRecord(out, kClose, subpathStart);
        // The move back to the start that the platform stores after a close,
        // unless an explicit move follows and takes its place.
        if (i + 1 == elements.size() || elements[i + 1].type != PathElementType::MoveTo) {
          AppendRecord(out, kMove, subpathStart);
        }
        break;
    }
  }
  return out;
}

template <class Enum>
Enum EnumOr(int64_t value, int64_t max, Enum fallback) {
  return value >= 0 && value <= max ? static_cast<Enum>(value) : fallback;
}

}  // namespace

ArchiveValue ReadAffineTransformObject(KeyedUnarchiver& coder, std::string_view) {
  const SharedBytes bytes = coder.decodeBytesForKey("NSTransformStruct").value_or(SharedBytes());
  bool valid = false;
  const AffineTransform transform = TransformFromStruct(bytes, valid);
  if (!valid) {
    Log("Warning: KeyedUnarchiver: a transform of " + std::to_string(bytes.size()) +
        " bytes has no known form; it reads as nil");
    return {};
  }
  return ArchiveValue(transform);
}

uint64_t WriteAffineTransform(ArchiveObjectWriter& writer, const AffineTransform& transform) {
  const uint64_t uid = writer.begin({"NSAffineTransform", "NSObject"});
  const std::vector<uint8_t> bytes = StructOfTransform(transform);
  if (!bytes.empty()) writer.coder().encodeBytesForKey(bytes, "NSTransformStruct");
  writer.finish();
  return uid;
}

ArchiveValue ReadBezierPathObject(KeyedUnarchiver& coder, std::string_view) {
  BezierPath path;
  if (const auto segments = coder.decodeBytesForKey("NSSegments")) ReadSegments(*segments, path);
  path.setWindingRule(
      EnumOr(coder.decodeInt64ForKey("NSWindingRule"), 1, WindingRule::NonZero));
  // The platform's spelling first, then the other implementation's.
  const char* capKey = coder.containsValueForKey("NSCapStyle") ? "NSCapStyle" : "NSLineCapStyle";
  const char* joinKey = coder.containsValueForKey("NSJoinStyle") ? "NSJoinStyle" : "NSLineJoinStyle";
  path.setLineCapStyle(EnumOr(coder.decodeInt64ForKey(capKey), 2, LineCapStyle::Butt));
  path.setLineJoinStyle(EnumOr(coder.decodeInt64ForKey(joinKey), 2, LineJoinStyle::Miter));
  if (coder.containsValueForKey("NSLineWidth")) {
    path.setLineWidth(coder.decodeDoubleForKey("NSLineWidth"));
  }
  if (coder.containsValueForKey("NSMiterLimit")) {
    path.setMiterLimit(coder.decodeDoubleForKey("NSMiterLimit"));
  }
  if (coder.containsValueForKey("NSFlatness")) {
    path.setFlatness(coder.decodeDoubleForKey("NSFlatness"));
  }
  if (const auto dashes = coder.decodeBytesForKey("NSDashPatterns"); dashes && dashes->size() >= 4) {
    std::vector<double> pattern;
    for (size_t i = 0; i + 4 <= dashes->size(); i += 4) pattern.push_back(ReadFloat(dashes->data() + i));
    path.setLineDash(std::move(pattern), coder.decodeDoubleForKey("NSDashPhase"));
  }
  return ArchiveValue(std::move(path));
}

uint64_t WriteBezierPath(ArchiveObjectWriter& writer, const BezierPath& path) {
  const uint64_t uid = writer.begin({"NSBezierPath", "NSObject"});
  KeyedArchiver& coder = writer.coder();
  if (!path.isEmpty()) coder.encodeBytesForKey(SegmentsOfPath(path), "NSSegments");
  if (path.windingRule() != WindingRule::NonZero) {
    coder.encodeIntForKey(static_cast<int>(path.windingRule()), "NSWindingRule");
  }
  // Cap and join under both spellings in use: the platform's and the other one.
  if (path.lineCapStyle() != LineCapStyle::Butt) {
    coder.encodeIntForKey(static_cast<int>(path.lineCapStyle()), "NSCapStyle");
    coder.encodeIntForKey(static_cast<int>(path.lineCapStyle()), "NSLineCapStyle");
  }
  if (path.lineJoinStyle() != LineJoinStyle::Miter) {
    coder.encodeIntForKey(static_cast<int>(path.lineJoinStyle()), "NSJoinStyle");
    coder.encodeIntForKey(static_cast<int>(path.lineJoinStyle()), "NSLineJoinStyle");
  }
  if (path.lineWidth() != BezierPath::kDefaultLineWidth) {
    coder.encodeDoubleForKey(path.lineWidth(), "NSLineWidth");
  }
  if (path.miterLimit() != BezierPath::kDefaultMiterLimit) {
    coder.encodeDoubleForKey(path.miterLimit(), "NSMiterLimit");
  }
  if (path.flatness() != kDefaultFlatness) coder.encodeDoubleForKey(path.flatness(), "NSFlatness");
  if (!path.lineDash().empty()) {
    std::vector<uint8_t> dashes;
    for (double d : path.lineDash()) AppendFloat(dashes, d);
    coder.encodeDoubleForKey(path.lineDashPhase(), "NSDashPhase");
    coder.encodeBytesForKey(dashes, "NSDashPatterns");
  }
  writer.finish();
  return uid;
}

}  // namespace paintdoc
