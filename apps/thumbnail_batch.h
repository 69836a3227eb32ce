// `paintdoc thumbnail FILE... -o DIR` and `paintdoc thumbnail FILE...
// --freedesktop`: many thumbnails on every core, one failing file never
// stopping the rest.
#pragma once

#include <string>
#include <vector>

namespace paintdoc::cli {

struct BatchOptions {
  // The square each thumbnail fits into; with `freedesktop`, the smallest
  // cache flavour that holds it decides the size drawn.
  int size = 256;
  // Where `-o DIR` writes <input file name>.png; empty with `freedesktop`.
  std::string outputFolder;
  bool freedesktop = false;
};

// Thumbnails every file, prints one line for each failure on stderr, a
// progress bar when stderr is a terminal and a summary line on stdout.
// Answers 0 when every thumbnail was written, 3 when any output could not be
// written, else 1 when any file was refused.
int RunThumbnailBatch(const std::vector<std::string>& files, const BatchOptions& options);

}  // namespace paintdoc::cli
