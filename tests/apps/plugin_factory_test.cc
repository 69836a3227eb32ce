// The plug-in's factory, instance record, interface query and reference
// counting, called in-process as the preview service would call them (the
// loaded library's own run is plugin_library_test.cc).
#include <gtest/gtest.h>

#include "plugin/plugin_interface.h"
#include "plugin/plugin_registry.h"
#include "plugin/plugin_uuid.h"

namespace paintdoc {
namespace {

PaintdocUUIDBytes Uuid(const char* text) { return *UUIDFromString(text); }

class PluginFactory : public ::testing::Test {
 protected:
  void SetUp() override { PlugInRegistry::shared().reset(); }
  int instances() { return PlugInRegistry::shared().instanceCount(factoryID); }
  const PaintdocUUIDBytes typeID = Uuid(PAINTDOC_GENERATOR_TYPE_ID);
  const PaintdocUUIDBytes interfaceID = Uuid(PAINTDOC_GENERATOR_CALLBACKS_INTERFACE_ID);
  const PaintdocUUIDBytes factoryID = Uuid(PAINTDOC_PLUGIN_FACTORY_ID);
};

TEST(PluginUUID, TextFormRoundTripsInEitherCase) {
  const auto uuid = UUIDFromString("5e2d9680-5022-40fa-b806-43349622e5b9");
  ASSERT_TRUE(uuid.has_value());
  EXPECT_EQ(uuid->bytes[0], 0x5E);
  EXPECT_EQ(uuid->bytes[15], 0xB9);
  EXPECT_EQ(StringFromUUID(*uuid), PAINTDOC_GENERATOR_TYPE_ID);
  for (const char* bad : {"5E2D9680-5022-40FA-B806-43349622E5B", "5E2D9680+5022-40FA-B806-43349622E5B9",
                          "5E2D9680-5022-40FA-B806-43349622E5BG"}) {
    EXPECT_FALSE(UUIDFromString(bad).has_value()) << bad;
  }
}

TEST_F(PluginFactory, OnlyTheGeneratorTypeGivesAnInstanceAndOnlyWithAFactoryIsItRegistered) {
  EXPECT_EQ(QuickLookGeneratorPluginFactory(nullptr, &interfaceID), nullptr);
  EXPECT_EQ(QuickLookGeneratorPluginFactory(nullptr, nullptr), nullptr);
  QuickLookGeneratorPluginType* bare = AllocQuickLookGeneratorPluginType(nullptr);
  ASSERT_NE(bare, nullptr);
  EXPECT_EQ(bare->factoryID, nullptr);
  DeallocQuickLookGeneratorPluginType(bare);
  EXPECT_EQ(PlugInRegistry::shared().additions(), 0);
  EXPECT_EQ(PlugInRegistry::shared().removals(), 0);
}

TEST_F(PluginFactory, QueryAndAddRefCountReferencesAndTheLastReleaseFrees) {
  auto* instance =
      static_cast<QuickLookGeneratorPluginType*>(QuickLookGeneratorPluginFactory(nullptr, &typeID));
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(instance->refCount, 1u);
  ASSERT_NE(instance->factoryID, nullptr);
  EXPECT_TRUE(UUIDEqual(*instance->factoryID, factoryID));
  EXPECT_EQ(instances(), 1);
  void* generator = nullptr;
  EXPECT_EQ(QuickLookGeneratorQueryInterface(instance, interfaceID, &generator), kPaintdocResultOK);
  EXPECT_EQ(generator, instance);
  EXPECT_EQ(instance->conduitInterface->GenerateThumbnailForURL, &GenerateThumbnailForURL);
  EXPECT_EQ(QuickLookGeneratorPluginAddRef(instance), 3u);
  for (unsigned left : {2u, 1u}) {
    EXPECT_EQ(QuickLookGeneratorPluginRelease(instance), left);
    EXPECT_EQ(instances(), 1);
  }
  EXPECT_EQ(QuickLookGeneratorPluginRelease(instance), 0u);
  EXPECT_EQ(instances(), 0);
  EXPECT_EQ(PlugInRegistry::shared().additions(), 1);
  EXPECT_EQ(PlugInRegistry::shared().removals(), 1);
}

TEST_F(PluginFactory, AnyOtherInterfaceIsRefusedAndClearsTheOutPointer) {
  void* instance = QuickLookGeneratorPluginFactory(nullptr, &typeID);
  // The plug-in model's base interface is not answered either.
  const PaintdocUUIDBytes base = Uuid("00000000-0000-0000-C000-000000000046");
  for (const PaintdocUUIDBytes& other : {base, typeID, factoryID}) {
    void* out = &out;
    EXPECT_EQ(QuickLookGeneratorQueryInterface(instance, other, &out), kPaintdocResultNoInterface);
    EXPECT_EQ(out, nullptr);
  }
  EXPECT_EQ(static_cast<QuickLookGeneratorPluginType*>(instance)->refCount, 1u);
  EXPECT_EQ(QuickLookGeneratorPluginRelease(instance), 0u);
}

TEST_F(PluginFactory, EntryPointsAnswerZeroWithoutARequest) {
  EXPECT_EQ(GenerateThumbnailForURL(nullptr, nullptr, "/no/such/file", nullptr, nullptr, {64, 64}), 0);
  EXPECT_EQ(GeneratePreviewForURL(nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  CancelThumbnailGeneration(nullptr, nullptr);
  CancelPreviewGeneration(nullptr, nullptr);
}

}  // namespace
}  // namespace paintdoc
