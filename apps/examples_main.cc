// `paintdoc-examples DIR`: writes the example documents into DIR, each as
// DIR/<name>.paintdoc, through the library's own archiver.
#include <cstdio>
#include <string>

#include "document/register_all_classes.h"
#include "example_documents.h"
#include "platform/values/file_bytes.h"
#include "preview/document_container.h"

int main(int argc, char** argv) {
  if (argc != 2 || std::string(argv[1]) == "--help") {
    std::fputs("Usage: paintdoc-examples DIR\n", argc == 2 ? stdout : stderr);
    return argc == 2 ? 0 : 2;
  }
  paintdoc::RegisterAllClasses();
  const std::string directory = argv[1];
  for (const paintdoc::ExampleDocument& example : paintdoc::MakeExampleDocuments()) {
    const std::string path = directory + "/" + example.name + paintdoc::kDocumentExtension;
    const auto written =
        paintdoc::WriteFileBytes(path, paintdoc::WriteDocumentContainer(*example.canvas));
    if (!written) {
      std::fprintf(stderr, "paintdoc-examples: can't write %s\n", written.reason().c_str());
      return 1;
    }
    std::printf("wrote %s\n", path.c_str());
  }
  return 0;
}
