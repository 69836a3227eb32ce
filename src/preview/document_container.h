// The document container: the outer keyed archive of a document file. Its
// top level holds "PaintData" (the inner keyed archive, whose root is the
// canvas), "Resolution" (must be present for the file to count as a paint
// document) and "Version" (the canvas class version of the writer; missing
// reads as 0, above 10 is refused).
#pragma once

#include <cstdint>
#include <vector>

namespace paintdoc {

class PaintManager;

// The resolution written into documents: points per inch of the canvas.
inline constexpr double kDocumentResolution = 72.0;

// The bytes of a document file holding the canvas, as a binary keyed archive.
// The pasteboard form of copied draws leaves out "Resolution"
// (`withResolution` false), so that it is not previewed as a document.
std::vector<uint8_t> WriteDocumentContainer(const PaintManager& canvas,
                                            bool withResolution = true);

}  // namespace paintdoc
