// thumbnail-fidelity [-s SIZE] [-o DIR] FILE...
//
// Holds each file's thumbnail, drawn at its own size, against its full-size
// preview resampled by area to the same size, and prints the mean and the
// largest difference per channel (levels of 255) for each file and over all.
// With -o, writes NAME.direct.png and NAME.resampled.png for a look.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/codecs/image_codecs.h"
#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "preview/bitmap_scaling.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"

namespace paintdoc {
namespace {

std::shared_ptr<Bitmap> Draw(const PreviewSource& source, int fitInto, std::string* failure) {
  BitmapPreviewRequest request;
  const PreviewOutcome outcome = DrawPreviewSource(request, source, fitInto);
  if (!outcome.drawn) *failure = outcome.diagnosis;
  return outcome.drawn ? request.flushedContext() : nullptr;
}

void WriteLook(const std::string& directory, const std::string& name, const Bitmap& bitmap) {
  if (directory.empty()) return;
  if (auto png = WritePNG(bitmap)) {
    if (!WriteFileBytes(directory + "/" + name + ".png", *png)) {
      std::fprintf(stderr, "thumbnail-fidelity: can't write into %s\n", directory.c_str());
    }
  }
}

int Run(int argc, char** argv) {
  int size = 256;
  std::string lookDirectory;
  std::vector<std::string> files;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "-s" && i + 1 < argc) {
      size = std::atoi(argv[++i]);
    } else if (argument == "-o" && i + 1 < argc) {
      lookDirectory = argv[++i];
    } else {
      files.push_back(argument);
    }
  }
  if (files.empty() || size < 1) {
    std::fprintf(stderr, "usage: thumbnail-fidelity [-s SIZE] [-o DIR] FILE...\n");
    return 2;
  }
  double meanSum = 0;
  int worst = 0, compared = 0;
  for (const std::string& file : files) {
    // The thumbnail reads the file as a thumbnail does (a large image may
    // shrink while it decodes); the full picture reads it whole.
    const PreviewSource source = ReadPreviewSource(file, PreviewKind::Thumbnail);
    const PreviewSource thumbnailSource = ReadPreviewSource(file, PreviewKind::Thumbnail, {}, size);
    std::string failure;
    const auto full = Draw(source, 0, &failure);
    const auto direct = full ? Draw(thumbnailSource, size, &failure) : nullptr;
    if (!direct) {
      std::printf("%-40s not drawn: %s\n", file.c_str(), failure.c_str());
      continue;
    }
    const auto resampled = ScaleBitmapByArea(*full, direct->pixelsWide(), direct->pixelsHigh());
    const auto difference = resampled ? CompareBitmaps(*direct, *resampled) : std::nullopt;
    if (!difference) continue;
    const std::string name = std::filesystem::path(file).stem().string();
    WriteLook(lookDirectory, name + ".direct", *direct);
    WriteLook(lookDirectory, name + ".resampled", *resampled);
    std::printf("%-40s %4d x %-4d mean %.3f  max %3d\n", file.c_str(), direct->pixelsWide(),
                direct->pixelsHigh(), difference->mean, difference->max);
    meanSum += difference->mean;
    worst = std::max(worst, difference->max);
    ++compared;
  }
  if (compared > 0) {
    std::printf("%d files: mean of means %.3f, worst %d\n", compared, meanSum / compared, worst);
  }
  return 0;
}

}  // namespace
}  // namespace paintdoc

int main(int argc, char** argv) { return paintdoc::Run(argc, argv); }
