/* The C interface of the preview plug-in: the instance record and its
 * function table in the preview service's generator layout, the exported
 * factory, allocation, query and reference-counting functions, and the four
 * generator entry points. Every name here is exported unmangled.
 *
 * A host loads the plug-in, calls QuickLookGeneratorPluginFactory with the
 * generator type identifier, queries the instance for the generator callbacks
 * interface, calls the entry points through the table and releases the
 * instance once for the factory's reference and once for the query's. */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A UUID as its 16 bytes, in the order of its text form. */
typedef struct PaintdocUUIDBytes {
  uint8_t bytes[16];
} PaintdocUUIDBytes;

typedef int32_t PaintdocResult; /* COM-style result code */
typedef int32_t PaintdocStatus; /* the entry points' status (always 0) */

enum {
  kPaintdocResultOK = 0,
  kPaintdocResultNoInterface = (int32_t)0x80000004u,
};

typedef struct PaintdocSize {
  double width;
  double height;
} PaintdocSize;

/* A request of the host (a paintdoc::PreviewRequest). */
typedef struct PaintdocPreviewRequest* PaintdocPreviewRequestRef;

/* The generator interface layout: 8 slots of 8 bytes. The static template
 * fills the first four; a successful query fills slots 5 to 8. */
typedef struct PaintdocGeneratorInterface {
  void* reserved;
  PaintdocResult (*QueryInterface)(void* instance, PaintdocUUIDBytes interfaceID, void** out);
  uint32_t (*AddRef)(void* instance);
  uint32_t (*Release)(void* instance);
  PaintdocStatus (*GenerateThumbnailForURL)(void* instance, PaintdocPreviewRequestRef request,
                                            const char* url, const char* contentTypeUTI,
                                            const void* options, PaintdocSize maxSize);
  void (*CancelThumbnailGeneration)(void* instance, PaintdocPreviewRequestRef request);
  PaintdocStatus (*GeneratePreviewForURL)(void* instance, PaintdocPreviewRequestRef request,
                                          const char* url, const char* contentTypeUTI,
                                          const void* options);
  void (*CancelPreviewGeneration)(void* instance, PaintdocPreviewRequestRef request);
} PaintdocGeneratorInterface;

/* The instance record, allocated with malloc and freed with free. */
typedef struct QuickLookGeneratorPluginType {
  PaintdocGeneratorInterface* conduitInterface; /* a heap copy of the template */
  PaintdocUUIDBytes* factoryID;                 /* owned copy, or null */
  uint32_t refCount;
} QuickLookGeneratorPluginType;

/* The preview service's generator type and callbacks interface, and the
 * factory identifier of this plug-in, in their text forms. */
#define PAINTDOC_GENERATOR_TYPE_ID "5E2D9680-5022-40FA-B806-43349622E5B9"
#define PAINTDOC_GENERATOR_CALLBACKS_INTERFACE_ID "865AF5E0-6D30-4345-951B-D37105754F2D"
#define PAINTDOC_PLUGIN_FACTORY_ID "F28543D5-8C4C-4393-89CF-D577E0EB2B58"

void* QuickLookGeneratorPluginFactory(const void* allocator, const PaintdocUUIDBytes* typeID);
QuickLookGeneratorPluginType* AllocQuickLookGeneratorPluginType(const PaintdocUUIDBytes* factoryID);
void DeallocQuickLookGeneratorPluginType(QuickLookGeneratorPluginType* instance);
PaintdocResult QuickLookGeneratorQueryInterface(void* instance, PaintdocUUIDBytes interfaceID,
                                                void** out);
uint32_t QuickLookGeneratorPluginAddRef(void* instance);
uint32_t QuickLookGeneratorPluginRelease(void* instance);

/* The entry points. `url` is a file path or a file:// URL; the content type,
 * the options and the maximum size are not used. They always answer 0. */
PaintdocStatus GenerateThumbnailForURL(void* instance, PaintdocPreviewRequestRef request,
                                       const char* url, const char* contentTypeUTI,
                                       const void* options, PaintdocSize maxSize);
void CancelThumbnailGeneration(void* instance, PaintdocPreviewRequestRef request);
PaintdocStatus GeneratePreviewForURL(void* instance, PaintdocPreviewRequestRef request,
                                     const char* url, const char* contentTypeUTI,
                                     const void* options);
void CancelPreviewGeneration(void* instance, PaintdocPreviewRequestRef request);

/* Provided by the host: the plug-in model's record of live instances by
 * factory. The plug-in calls them when they exist (a host that keeps no
 * record need not define them). */
void PaintdocPlugInAddInstanceForFactory(const PaintdocUUIDBytes* factoryID);
void PaintdocPlugInRemoveInstanceForFactory(const PaintdocUUIDBytes* factoryID);

#ifdef __cplusplus
}
#endif
