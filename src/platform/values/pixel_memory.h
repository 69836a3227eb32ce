// A record, per thread, of pixel memory that could not be had. Drawing code
// that asks for a bitmap or a surface and gets none draws less than it should
// and carries on; whoever hands the picture out (the canvas renderer, the
// preview) reads this record around its drawing, so that an incomplete
// picture is reported as a failure instead of being shown as the document.
#pragma once

#include <cstdint>
#include <string>

namespace paintdoc {

// Notes a failed allocation of pixel memory on this thread, in one line
// ("no memory for a bitmap of 16384 x 16384 pixels").
void NotePixelMemoryFailure(std::string what);

// How many failures this thread has noted so far, and the latest one's line.
// A reader compares the count before and after its drawing.
uint64_t PixelMemoryFailureCount();
const std::string& LastPixelMemoryFailure();

}  // namespace paintdoc
