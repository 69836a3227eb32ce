// The one entry point that makes every archivable class of the library known
// by name. Whatever decodes archives (the document reader, copying draws)
// calls it first; it does its work once per process.
#pragma once

namespace paintdoc {

// Registers the document classes (PaintManager).
void RegisterDocumentClasses();

// Registers the classes of every module. Idempotent and thread-safe.
void RegisterAllClasses();

}  // namespace paintdoc
