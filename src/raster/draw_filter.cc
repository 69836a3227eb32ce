#include "raster/draw_filter.h"

#include <cmath>
#include <string>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/filters/image_with_filter.h"
#include "platform/graphics/bitmap_functions.h"
#include "platform/graphics/graphics_context.h"
#include "raster/draw_selections.h"

namespace paintdoc {
namespace {

// Settings closer than this to the current value are no change.
constexpr float kSettingsThreshold = 0.01f;

// "Adjust Colors" is this chain, each filter picking its own keys from the
// whole settings.
struct ChainStep {
  std::string_view filterName;
  bool newerPlatformOnly;
};
constexpr ChainStep kAdjustColorsChain[] = {
    {"CIExposureAdjust", false}, {"CIColorControls", false}, {"CIHighlightShadowAdjust", true},
    {"CISepiaTone", true},       {"CIHueAdjust", false},     {"CIGammaAdjust", false},
};
constexpr int64_t kInvertColorsType = 0, kAdjustColorsType = 3, kBlackAndWhiteType = 9;

std::shared_ptr<Bitmap> AdjustColors(std::shared_ptr<Bitmap> image, const FilterSettings* settings) {
  for (const ChainStep& step : kAdjustColorsChain) {
    if (step.newerPlatformOnly && !kHasNewerColorSettings) continue;
    image = ImageWithFilter(image, step.filterName, false, settings);
  }
  return image;
}

bool DiffersFromCurrent(const std::optional<FilterSettings>& current, const std::string& key, double value) {
  auto found = current->find(key);
  const float now = found == current->end() ? 0.0f : static_cast<float>(found->second);
  return std::fabs(static_cast<float>(value) - now) > kSettingsThreshold;
}

// Archived numbers: whole values as integers, others as doubles.
ArchiveValue SettingsDictionary(const FilterSettings& settings) {
  ValueDictionary entries;
  for (const auto& [key, value] : settings) {
    const bool whole = std::trunc(value) == value && std::fabs(value) < 1e15;
    entries.emplace_back(key, whole ? ArchiveValue(static_cast<int64_t>(value)) : ArchiveValue(value));
  }
  return ArchiveValue::dictionary(std::move(entries)).setMutable(true);
}

// The numbers of an archived dictionary under string keys; other entries skipped.
FilterSettings SettingsFromDictionary(const ArchiveValue& value) {
  FilterSettings settings;
  if (const ValueDictionary* entries = value.asDictionary()) {
    for (const auto& [key, number] : *entries) {
      if (const std::string* name = key.asString(); name && number.isNumber()) settings[*name] = number.toDouble();
    }
  }
  return settings;
}

}  // namespace

std::shared_ptr<Bitmap> DrawFilter::imageWithFilter(const std::shared_ptr<Bitmap>& bitmap, int64_t type,
                                                    const FilterSettings* settings, const BezierPath* scissor) {
  if (!bitmap) return nullptr;
  if (type == kInvertColorsType) return ImageInvertedColors(bitmap);
  if (type == kBlackAndWhiteType) return ImageToBlackAndWhite(bitmap);
  if (type == kAdjustColorsType) return AdjustColors(bitmap, settings);
  if (CIFilterNameWithType(type).empty()) return nullptr;
  const bool extend = ExtendImageWhenApplyFilter(type);
  std::shared_ptr<Bitmap> result = ImageWithFilter(bitmap, CIFilterNameWithType(type), extend, settings);
  if (scissor && extend) return ScissorImage(result, *scissor);
  return result;
}

void DrawFilter::setUp(std::shared_ptr<Bitmap> source, int64_t type, std::optional<BezierPath> scissor) {
  setBezierPathWithBounds(MakeRect(0, 0, source->pixelsWide(), source->pixelsHigh()));
  bezierPath_->setLineWidth(0);
  image_ = std::move(source);
  dFilterType_ = type;
  imageScissor_ = std::move(scissor);
  dicFilterSettings_ = DefaultSettingsForFilter(type);
}

std::shared_ptr<DrawFilter> DrawFilter::withImage(const std::shared_ptr<Bitmap>& image,
                                                  const std::shared_ptr<DrawBase>& selection, int64_t type) {
  if (!image) return nullptr;
  const bool hasSettings = FilterTypeHasSettings(type);
  std::shared_ptr<Bitmap> source = image;
  std::optional<BezierPath> scissor;
  if (selection && selection->isSelectTool() && selection->bezierPath()) {
    const BezierPath& outline = *selection->bezierPath();
    const Rect whole = MakeRect(0, 0, image->pixelsWide(), image->pixelsHigh());
    if (hasSettings && ExtendImageWhenApplyFilter(type)) {
      // The effect sees the pixels around the shape; its result is cut to
      // the shape afterwards.
      const Rect area = RectIntersection(selection->pathBounds(), whole);
      if (!(std::dynamic_pointer_cast<DrawSelection>(selection) && area == whole)) {
        source = ScissorImage(image, BezierPath::withRect(area));
        scissor = outline.transformed(AffineTransform::translation(-area.origin.x, -area.origin.y));
      }
    } else {
      source = ScissorImage(image, outline);
    }
  }
  if (!hasSettings) source = imageWithFilter(source, type, nullptr, nullptr);
  if (!source) return nullptr;
  auto layer = MakeDraw<DrawFilter>();
  layer->setUp(std::move(source), type, std::move(scissor));
  return layer;
}

std::shared_ptr<DrawFilter> DrawFilter::withDraw(const std::shared_ptr<DrawBase>& draw, int64_t type) {
  if (!draw || !draw->bezierPath() || draw->bezierPath()->isEmpty()) return nullptr;
  const Rect area = draw->drawRect();
  if (!(area.width() >= 1.0) || !(area.height() >= 1.0)) return nullptr;
  std::shared_ptr<Bitmap> rendered = InitImageRep(area.width(), area.height());
  if (!rendered) return nullptr;
  {
    BitmapFocus focus(rendered);
    const bool shadowOn = draw->enableShadow(), reflectionOn = draw->enableReflection();
    draw->setEnableShadow(false);
    draw->setEnableReflection(false);
    focus.context().translate(-area.origin.x, -area.origin.y);
    draw->draw();
    draw->setEnableShadow(shadowOn);
    draw->setEnableReflection(reflectionOn);
  }
  if (!FilterTypeHasSettings(type)) rendered = imageWithFilter(rendered, type, nullptr, nullptr);
  if (!rendered) return nullptr;
  auto layer = MakeDraw<DrawFilter>();
  layer->setUp(std::move(rendered), type, std::nullopt);
  layer->setBezierPathWithBounds(area);
  layer->setLayerTitle(draw->layerTitle());
  layer->setShadow(draw->shadow());
  layer->setEnableShadow(draw->enableShadow());
  layer->setEnableReflection(draw->enableReflection());
  layer->setReflection(draw->reflection());
  layer->setReflectionDis(draw->reflectionDis());
  return layer;
}

void DrawFilter::setFilterSettings(const FilterSettings& settings) {
  if (!dicFilterSettings_) return;
  bool stored = false;
  for (const auto& [key, value] : settings) {
    if (!DiffersFromCurrent(dicFilterSettings_, key, value)) continue;
    (*dicFilterSettings_)[key] = value;
    stored = true;
  }
  if (stored) imageEffect_.reset();
}

bool DrawFilter::isNewSettings(const FilterSettings& settings) const {
  if (!dicFilterSettings_) return false;
  for (const auto& [key, value] : settings) {
    if (DiffersFromCurrent(dicFilterSettings_, key, value)) return true;
  }
  return false;
}

std::shared_ptr<Bitmap> DrawFilter::imageForDrawing() {
  if (!dicFilterSettings_) return image_;
  if (!imageEffect_ && image_) {
    imageEffect_ = imageWithFilter(image_, dFilterType_, &*dicFilterSettings_,
                                   imageScissor_ ? &*imageScissor_ : nullptr);
  }
  return imageEffect_;
}

void DrawFilter::flip(bool horizontal) {
  if (imageEffect_) imageEffect_ = ImageFliped(imageEffect_, horizontal);
  DrawImage::flip(horizontal);
}

void DrawFilter::encodeWithCoder(KeyedArchiver& coder) const {
  DrawImage::encodeWithCoder(coder);
  coder.encodeIntegerForKey(dFilterType_, "FilterType");
  if (imageScissor_) coder.encodeBezierPathForKey(*imageScissor_, "ImageScissor");
  if (dicFilterSettings_) coder.encodeValueForKey(SettingsDictionary(*dicFilterSettings_), "FilterSettings");
}

bool DrawFilter::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawImage::initWithCoder(coder)) return false;
  dFilterType_ = coder.containsValueForKey("FilterType") ? coder.decodeIntegerForKey("FilterType") : 0;
  imageScissor_ = coder.decodeBezierPathForKey("ImageScissor");
  // The settings are read only when the archive holds the key spelt with
  // three t's, which writers never write: a saved layer comes back with its
  // type's defaults. Files depend on this, so it stays.
  std::optional<FilterSettings> settings = coder.containsValueForKey("FilterSetttings")
                                               ? SettingsFromDictionary(coder.decodeValueForKey("FilterSettings"))
                                               : DefaultSettingsForFilter(dFilterType_);
  dicFilterSettings_.reset();
  if (settings && !settings->empty()) dicFilterSettings_ = std::move(settings);
  imageEffect_.reset();
  if (bezierPath_) bezierPath_->setLineWidth(0);
  return true;
}

}  // namespace paintdoc
