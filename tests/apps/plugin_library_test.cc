// The preview plug-in as a shared library: loaded with dlopen and driven the
// way a preview service drives it, with its instances registered in this
// (host) process's registry.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "support/apps/app_fixtures.h"
#include "platform/values/bitmap.h"
#include "plugin/plugin_interface.h"
#include "plugin/plugin_registry.h"
#include "plugin/plugin_uuid.h"
#include "preview/preview_request.h"

namespace paintdoc::test {
namespace {

using Factory = void* (*)(const void*, const PaintdocUUIDBytes*);

class PluginLibrary : public ::testing::Test {
 protected:
  void SetUp() override {
    PlugInRegistry::shared().reset();
    library = dlopen(PAINTDOC_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    factory = reinterpret_cast<Factory>(dlsym(library, "QuickLookGeneratorPluginFactory"));
    ASSERT_NE(factory, nullptr);
  }
  void TearDown() override {
    if (library) dlclose(library);
  }
  PaintdocPreviewRequestRef Ref(PreviewRequest& request) {
    return reinterpret_cast<PaintdocPreviewRequestRef>(&request);
  }

  void* library = nullptr;
  Factory factory = nullptr;
  const PaintdocUUIDBytes typeID = *UUIDFromString(PAINTDOC_GENERATOR_TYPE_ID);
  const PaintdocUUIDBytes interfaceID = *UUIDFromString(PAINTDOC_GENERATOR_CALLBACKS_INTERFACE_ID);
  const PaintdocUUIDBytes factoryID = *UUIDFromString(PAINTDOC_PLUGIN_FACTORY_ID);
};

TEST_F(PluginLibrary, ExportsThePlainCNames) {
  for (const char* name :
       {"QuickLookGeneratorPluginFactory", "AllocQuickLookGeneratorPluginType",
        "DeallocQuickLookGeneratorPluginType", "QuickLookGeneratorQueryInterface",
        "QuickLookGeneratorPluginAddRef", "QuickLookGeneratorPluginRelease",
        "GenerateThumbnailForURL", "CancelThumbnailGeneration", "GeneratePreviewForURL",
        "CancelPreviewGeneration"}) {
    EXPECT_NE(dlsym(library, name), nullptr) << name;
  }
  // The library linked into the plug-in stays private.
  EXPECT_EQ(dlsym(library, "_ZN8paintdoc13ClassRegistry6sharedEv"), nullptr);
}

TEST_F(PluginLibrary, FactoryQueryThumbnailReleaseRelease) {
  const std::string document = WriteDocumentFile("plugin.paintdoc", {96, 64});
  void* instance = factory(nullptr, &typeID);
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(PlugInRegistry::shared().instanceCount(factoryID), 1);

  auto* table = *static_cast<PaintdocGeneratorInterface**>(instance);
  void* generator = nullptr;
  ASSERT_EQ(table->QueryInterface(instance, interfaceID, &generator), kPaintdocResultOK);
  ASSERT_EQ(generator, instance);

  BitmapPreviewRequest request;
  const std::string url = "file://" + document;
  EXPECT_EQ(table->GenerateThumbnailForURL(generator, Ref(request), url.c_str(), "public.data",
                                           nullptr, PaintdocSize{32, 32}),
            0);
  ASSERT_EQ(request.flushCount(), 1);
  EXPECT_EQ(request.requestedSizes()[0], (Size{96, 64}));  // not the 32 × 32 maximum
  EXPECT_EQ(request.flushedContext()->pixelsWide(), 96);

  EXPECT_EQ(table->Release(generator), 1u);
  EXPECT_EQ(PlugInRegistry::shared().instanceCount(factoryID), 1);
  EXPECT_EQ(table->Release(instance), 0u);
  EXPECT_EQ(PlugInRegistry::shared().instanceCount(factoryID), 0);
  EXPECT_EQ(PlugInRegistry::shared().additions(), 1);
  EXPECT_EQ(PlugInRegistry::shared().removals(), 1);
}

// A refused file flushes nothing and still answers zero; a file URL is decoded.
TEST_F(PluginLibrary, PreviewsOfRefusedAndEscapedFiles) {
  const std::string newer = WriteVersionedDocumentFile("plugin-newer.paintdoc", 11);
  std::string spaced = "file://";
  for (const char c : WriteDocumentFile("plugin with space.paintdoc", {5, 6})) {
    spaced += c == ' ' ? std::string("%20") : std::string(1, c);
  }
  for (const auto& [url, flushes] : {std::pair{newer, 0}, std::pair{spaced, 1}}) {
    SCOPED_TRACE(url);
    void* instance = factory(nullptr, &typeID);
    auto* table = *static_cast<PaintdocGeneratorInterface**>(instance);
    void* generator = nullptr;
    table->QueryInterface(instance, interfaceID, &generator);
    BitmapPreviewRequest request;
    EXPECT_EQ(table->GeneratePreviewForURL(generator, Ref(request), url.c_str(), nullptr, nullptr), 0);
    EXPECT_EQ(request.flushCount(), flushes);
    EXPECT_EQ(request.requestedSizes().size(), size_t(flushes));
    table->CancelPreviewGeneration(generator, Ref(request));
    table->Release(generator);
    table->Release(instance);
    EXPECT_EQ(PlugInRegistry::shared().instanceCount(factoryID), 0);
  }
}

}  // namespace
}  // namespace paintdoc::test
