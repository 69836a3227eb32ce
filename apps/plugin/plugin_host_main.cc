// `paintdoc-preview-host`: loads the preview plug-in the way a preview service
// does (factory, interface query, one entry point, two releases) and writes
// the context it was given back as PNG. For checking the plug-in by hand.
#include <dlfcn.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "platform/codecs/image_codecs.h"
#include "plugin/plugin_interface.h"
#include "plugin/plugin_registry.h"
#include "plugin/plugin_uuid.h"
#include "preview/preview_request.h"

namespace {

constexpr const char* kUsage =
    "Usage: paintdoc-preview-host [--plugin LIBRARY] (--thumbnail | --preview) FILE OUT.png\n";

using Factory = void* (*)(const void*, const PaintdocUUIDBytes*);

int Fail(const std::string& message) {
  std::fprintf(stderr, "paintdoc-preview-host: %s\n", message.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  std::string plugin = PAINTDOC_DEFAULT_PLUGIN_PATH;
  std::optional<bool> thumbnail;
  std::string input;
  std::string output;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (argument == "--plugin" && i + 1 < argc) {
      plugin = argv[++i];
    } else if (argument == "--thumbnail" || argument == "--preview") {
      thumbnail = argument == "--thumbnail";
    } else if (argument == "--help") {
      std::fputs(kUsage, stdout);
      return 0;
    } else if (input.empty()) {
      input = argument;
    } else if (output.empty()) {
      output = argument;
    } else {
      std::fputs(kUsage, stderr);
      return 2;
    }
  }
  if (!thumbnail || input.empty() || output.empty()) {
    std::fputs(kUsage, stderr);
    return 2;
  }

  void* library = dlopen(plugin.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return Fail(std::string("can't load the plug-in: ") + dlerror());
  auto factory = reinterpret_cast<Factory>(dlsym(library, "QuickLookGeneratorPluginFactory"));
  if (factory == nullptr) return Fail("the plug-in exports no factory");

  const PaintdocUUIDBytes typeID = *paintdoc::UUIDFromString(PAINTDOC_GENERATOR_TYPE_ID);
  const PaintdocUUIDBytes interfaceID =
      *paintdoc::UUIDFromString(PAINTDOC_GENERATOR_CALLBACKS_INTERFACE_ID);
  void* instance = factory(nullptr, &typeID);
  if (instance == nullptr) return Fail("the factory made no instance");
  auto* table = *static_cast<PaintdocGeneratorInterface**>(instance);
  void* generator = nullptr;
  if (table->QueryInterface(instance, interfaceID, &generator) != kPaintdocResultOK) {
    return Fail("the instance has no generator interface");
  }

  paintdoc::BitmapPreviewRequest request;
  auto* requestRef = reinterpret_cast<PaintdocPreviewRequestRef>(
      static_cast<paintdoc::PreviewRequest*>(&request));
  if (*thumbnail) {
    table->GenerateThumbnailForURL(generator, requestRef, input.c_str(), nullptr, nullptr,
                                   PaintdocSize{256, 256});
  } else {
    table->GeneratePreviewForURL(generator, requestRef, input.c_str(), nullptr, nullptr);
  }
  table->Release(generator);
  table->Release(instance);

  const PaintdocUUIDBytes factoryID = *paintdoc::UUIDFromString(PAINTDOC_PLUGIN_FACTORY_ID);
  if (paintdoc::PlugInRegistry::shared().instanceCount(factoryID) != 0) {
    return Fail("the plug-in left an instance registered");
  }
  const std::shared_ptr<paintdoc::Bitmap>& context = request.flushedContext();
  if (!context || context->isEmpty()) return Fail(input + ": nothing was drawn");
  auto png = paintdoc::WritePNG(*context);
  if (!png) return Fail(png.reason());
  if (const auto written = paintdoc::WriteFileBytes(output, *png); !written) {
    return Fail(written.reason());
  }
  return 0;
}
