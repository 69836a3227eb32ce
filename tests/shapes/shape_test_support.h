// What the shape tests share: archiving a shape and reading it back, and
// reading points out of outlines.
#pragma once

#include <memory>

#include "archive/shared_bytes.h"
#include "document/register_all_classes.h"
#include "draws/draw_base.h"
#include "support/archive_fixtures.h"

namespace paintdoc::test {

// The object archived alone and read back as a draw of its recorded class.
template <class T>
std::shared_ptr<T> RoundTrip(const Codable& object) {
  RegisterAllClasses();
  return std::dynamic_pointer_cast<T>(
      DrawBase::objectWithEncodedData(SharedBytes(ArchiveRoot(object))));
}

// The end point of element `index` (for a close: the point it returns to).
inline Point EndOf(const BezierPath& path, size_t index) {
  return path.elementAt(index).endPoint();
}

}  // namespace paintdoc::test
