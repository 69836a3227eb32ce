// The example documents that `paintdoc-examples` writes: small canvases that
// show the kinds of layers and the document features, built with the
// library's own model and archiver.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace paintdoc {

class PaintManager;

struct ExampleDocument {
  std::string name;  // file name without extension
  std::shared_ptr<PaintManager> canvas;
};

std::vector<ExampleDocument> MakeExampleDocuments();

// The file-name extension of documents that the examples use and the
// desktop's file type claims.
inline constexpr const char* kDocumentExtension = ".paintdoc";

}  // namespace paintdoc
