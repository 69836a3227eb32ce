#include "support/apps/app_fixtures.h"

#include <fstream>
#include <iterator>

#include "archive/keyed_archiver.h"
#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "draws/draw_rectangle.h"
#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "platform/codecs/image_codecs.h"
#include "preview/document_container.h"
#include "support/test_paths.h"

namespace paintdoc::test {

namespace {

uint32_t BigEndian32(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

}  // namespace

std::string WriteBytesFile(const std::string& name, const std::vector<uint8_t>& bytes) {
  const std::string path = OutputPath("apps/" + name);
  WriteFileBytes(path, bytes);
  return path;
}

std::string WriteDocumentFile(const std::string& name, Size canvasSize) {
  RegisterAllClasses();
  auto canvas = PaintManager::withSize(canvasSize);
  canvas->allDraws().push_back(MakeDraw<DrawRectangle>());
  return WriteBytesFile(name, WriteDocumentContainer(*canvas));
}

std::string WriteVersionedDocumentFile(const std::string& name, int64_t version) {
  RegisterAllClasses();
  KeyedArchiver container;
  container.encodeDataForKey(
      KeyedArchiver::archivedDataWithRootObject(*PaintManager::withSize({8, 8})), "PaintData");
  container.encodeDoubleForKey(72, "Resolution");
  container.encodeInt64ForKey(version, "Version");
  return WriteBytesFile(name, container.finishEncoding());
}

std::vector<uint8_t> SmallPng() {
  auto bitmap = Bitmap::create(2, 1);
  bitmap->setPixelAt(0, 0, Rgba8{255, 0, 0, 255});
  return *WritePNG(*bitmap);
}

PngFacts ReadPngFacts(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(file)),
                                   std::istreambuf_iterator<char>());
  PngFacts facts;
  static const uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  if (bytes.size() < 8 || !std::equal(kSignature, kSignature + 8, bytes.begin())) return facts;
  for (size_t at = 8; at + 12 <= bytes.size();) {
    const uint32_t length = BigEndian32(&bytes[at]);
    if (at + 12 + length > bytes.size()) return facts;
    const std::string type(bytes.begin() + at + 4, bytes.begin() + at + 8);
    const uint8_t* data = &bytes[at + 8];
    if (type == "IHDR" && length >= 13) {
      facts.width = BigEndian32(data);
      facts.height = BigEndian32(data + 4);
      facts.colorType = data[9];
    } else if (type == "tEXt") {
      const std::string entry(data, data + length);
      const size_t nul = entry.find('\0');
      if (nul != std::string::npos) facts.text[entry.substr(0, nul)] = entry.substr(nul + 1);
    } else if (type == "IEND") {
      facts.valid = true;
    }
    at += 12 + length;
  }
  return facts;
}

}  // namespace paintdoc::test
