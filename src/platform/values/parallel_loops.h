// Whether row-parallel pixel loops (blur, filters) may use more threads than
// the one calling them. Off by default: a library call — a preview, a
// server's request, the preview plug-in — then runs on its caller's thread
// alone and leaves no worker threads behind in the process. A program that
// draws one large picture at a time (the command line's render) turns it on
// to use every core; one that draws many pictures at once on its own threads
// (batch thumbnails) leaves it off, so that the cores are not shared twice.
#pragma once

namespace paintdoc {

void SetParallelPixelLoops(bool on);
bool ParallelPixelLoops();

}  // namespace paintdoc
