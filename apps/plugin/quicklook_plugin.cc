// The plug-in's instance record, its function table, reference counting, the
// interface query, the factory and the four generator entry points.
#include <cstdlib>
#include <cstring>
#include <string>

#include "plugin/plugin_interface.h"
#include "plugin/plugin_uuid.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"

// The host's record of instances is optional: weak references stay null when
// the host defines no such functions.
extern "C" void PaintdocPlugInAddInstanceForFactory(const PaintdocUUIDBytes*)
    __attribute__((weak));
extern "C" void PaintdocPlugInRemoveInstanceForFactory(const PaintdocUUIDBytes*)
    __attribute__((weak));

namespace {

// The preview service's identifiers as constant bytes (their text forms are
// PAINTDOC_GENERATOR_TYPE_ID and PAINTDOC_GENERATOR_CALLBACKS_INTERFACE_ID).
constexpr PaintdocUUIDBytes kGeneratorTypeID = {{0x5E, 0x2D, 0x96, 0x80, 0x50, 0x22, 0x40, 0xFA,
                                                 0xB8, 0x06, 0x43, 0x34, 0x96, 0x22, 0xE5, 0xB9}};
constexpr PaintdocUUIDBytes kGeneratorCallbacksInterfaceID = {
    {0x86, 0x5A, 0xF5, 0xE0, 0x6D, 0x30, 0x43, 0x45, 0x95, 0x1B, 0xD3, 0x71, 0x05, 0x75, 0x4F, 0x2D}};

// Slots 1 to 4; the entry points are filled in by a successful query.
const PaintdocGeneratorInterface kInterfaceTemplate = {
    nullptr,
    QuickLookGeneratorQueryInterface,
    QuickLookGeneratorPluginAddRef,
    QuickLookGeneratorPluginRelease,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};
static_assert(sizeof(PaintdocGeneratorInterface) == 64, "the generator table has 8 slots");

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// A file:// URL as a path (percent escapes decoded); anything else is a path.
std::string PathFromURL(const char* url) {
  std::string_view text(url);
  constexpr std::string_view kScheme = "file://";
  if (text.substr(0, kScheme.size()) != kScheme) return std::string(text);
  text.remove_prefix(kScheme.size());
  // "file://localhost/path": the host part is skipped.
  const size_t slash = text.find('/');
  text.remove_prefix(slash == std::string_view::npos ? text.size() : slash);
  std::string path;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      const int high = HexDigit(text[i + 1]);
      const int low = HexDigit(text[i + 2]);
      if (high >= 0 && low >= 0) {
        path += static_cast<char>(high * 16 + low);
        i += 2;
        continue;
      }
    }
    path += text[i];
  }
  return path;
}

PaintdocStatus Generate(PaintdocPreviewRequestRef requestRef, const char* url,
                        paintdoc::PreviewKind kind) {
  if (requestRef == nullptr || url == nullptr) return 0;
  auto* request = reinterpret_cast<paintdoc::PreviewRequest*>(requestRef);
  try {
    paintdoc::GeneratePreviewForFile(*request, PathFromURL(url), kind);
  } catch (...) {
    // Nothing may leave a C entry point; a failure draws nothing.
  }
  return 0;
}

}  // namespace

extern "C" {

void* QuickLookGeneratorPluginFactory(const void* /*allocator*/, const PaintdocUUIDBytes* typeID) {
  if (typeID == nullptr || !paintdoc::UUIDEqual(*typeID, kGeneratorTypeID)) return nullptr;
  const std::optional<PaintdocUUIDBytes> factoryID =
      paintdoc::UUIDFromString(PAINTDOC_PLUGIN_FACTORY_ID);
  return AllocQuickLookGeneratorPluginType(&*factoryID);
}

QuickLookGeneratorPluginType* AllocQuickLookGeneratorPluginType(const PaintdocUUIDBytes* factoryID) {
  auto* instance =
      static_cast<QuickLookGeneratorPluginType*>(std::malloc(sizeof(QuickLookGeneratorPluginType)));
  auto* table = static_cast<PaintdocGeneratorInterface*>(std::malloc(sizeof kInterfaceTemplate));
  if (instance == nullptr || table == nullptr) {
    std::free(instance);
    std::free(table);
    return nullptr;
  }
  std::memcpy(table, &kInterfaceTemplate, sizeof kInterfaceTemplate);
  instance->conduitInterface = table;
  instance->factoryID = nullptr;
  if (factoryID != nullptr) {
    instance->factoryID = static_cast<PaintdocUUIDBytes*>(std::malloc(sizeof(PaintdocUUIDBytes)));
    if (instance->factoryID != nullptr) {
      *instance->factoryID = *factoryID;
      if (PaintdocPlugInAddInstanceForFactory) PaintdocPlugInAddInstanceForFactory(factoryID);
    }
  }
  instance->refCount = 1;
  return instance;
}

void DeallocQuickLookGeneratorPluginType(QuickLookGeneratorPluginType* instance) {
  if (instance == nullptr) return;
  PaintdocUUIDBytes* factoryID = instance->factoryID;
  std::free(instance->conduitInterface);
  std::free(instance);
  if (factoryID != nullptr) {
    if (PaintdocPlugInRemoveInstanceForFactory) PaintdocPlugInRemoveInstanceForFactory(factoryID);
    std::free(factoryID);
  }
}

PaintdocResult QuickLookGeneratorQueryInterface(void* instance, PaintdocUUIDBytes interfaceID,
                                                void** out) {
  auto* record = static_cast<QuickLookGeneratorPluginType*>(instance);
  if (record != nullptr && paintdoc::UUIDEqual(interfaceID, kGeneratorCallbacksInterfaceID)) {
    PaintdocGeneratorInterface* table = record->conduitInterface;
    table->GenerateThumbnailForURL = GenerateThumbnailForURL;
    table->CancelThumbnailGeneration = CancelThumbnailGeneration;
    table->GeneratePreviewForURL = GeneratePreviewForURL;
    table->CancelPreviewGeneration = CancelPreviewGeneration;
    table->AddRef(record);
    if (out != nullptr) *out = record;
    return kPaintdocResultOK;
  }
  if (out != nullptr) *out = nullptr;
  return kPaintdocResultNoInterface;
}

uint32_t QuickLookGeneratorPluginAddRef(void* instance) {
  auto* record = static_cast<QuickLookGeneratorPluginType*>(instance);
  if (record == nullptr) return 0;
  return ++record->refCount;
}

uint32_t QuickLookGeneratorPluginRelease(void* instance) {
  auto* record = static_cast<QuickLookGeneratorPluginType*>(instance);
  if (record == nullptr) return 0;
  if (record->refCount <= 1) {
    DeallocQuickLookGeneratorPluginType(record);
    return 0;
  }
  return --record->refCount;
}

PaintdocStatus GenerateThumbnailForURL(void* /*instance*/, PaintdocPreviewRequestRef request,
                                       const char* url, const char* /*contentTypeUTI*/,
                                       const void* /*options*/, PaintdocSize /*maxSize*/) {
  return Generate(request, url, paintdoc::PreviewKind::Thumbnail);
}

void CancelThumbnailGeneration(void* /*instance*/, PaintdocPreviewRequestRef /*request*/) {}

PaintdocStatus GeneratePreviewForURL(void* /*instance*/, PaintdocPreviewRequestRef request,
                                     const char* url, const char* /*contentTypeUTI*/,
                                     const void* /*options*/) {
  return Generate(request, url, paintdoc::PreviewKind::Preview);
}

void CancelPreviewGeneration(void* /*instance*/, PaintdocPreviewRequestRef /*request*/) {}

}  // extern "C"
