// The filter layer: an image layer showing one of ten effects applied to its
// stored bitmap, with the effect's settings kept in the layer. The filtered
// bitmap is cached until the settings change.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/filters/filter_inputs.h"
#include "platform/values/bezier_path.h"
#include "raster/draw_filter_types.h"
#include "raster/draw_image.h"

namespace paintdoc {

class DrawFilter : public DrawImage {
  PAINTDOC_CLASS(DrawFilter, DrawImage)
 public:
  // A layer of the image, or of the part of it a selection tool covers: for
  // effects that read around their pixels the selection's bounding rectangle
  // is filtered and the result cut to the selection's outline afterwards.
  // Effects without settings are applied at once. Null for a null image or
  // a failed effect.
  static std::shared_ptr<DrawFilter> withImage(const std::shared_ptr<Bitmap>& image,
                                               const std::shared_ptr<DrawBase>& selection, int64_t type);
  // A layer of the draw rendered (without its shadow and reflection) over
  // its drawn area, taking the draw's place, title, shadow and reflection.
  // Null for a null draw, an empty outline or a drawn area under a pixel.
  static std::shared_ptr<DrawFilter> withDraw(const std::shared_ptr<DrawBase>& draw, int64_t type);

  // The effect applied to a bitmap by type (see the class tables); null for
  // a null bitmap or an unknown type. The scissor cuts the result of the
  // effects that extend their input.
  static std::shared_ptr<Bitmap> imageWithFilter(const std::shared_ptr<Bitmap>& bitmap, int64_t type,
                                                 const FilterSettings* settings, const BezierPath* scissor);

  std::string name() const override { return std::string(filterName()); }
  bool hasControlKnob() const override { return false; }

  int64_t filterType() const { return dFilterType_; }
  std::string_view filterName() const { return NameOfFilterWithType(dFilterType_); }
  const std::optional<FilterSettings>& filterSettings() const { return dicFilterSettings_; }
  ArchiveValue availableSettings() const { return AvailableSettingsForFilter(dFilterType_); }
  const std::optional<BezierPath>& imageScissor() const { return imageScissor_; }

  // Stores every value that differs by more than 0.01 from the current one
  // (a missing one counts as 0) and then drops the cached effect. Nothing
  // for a layer without settings.
  void setFilterSettings(const FilterSettings& settings);
  // Whether setFilterSettings would store anything.
  bool isNewSettings(const FilterSettings& settings) const;

  // The stored bitmap for effects without settings (applied when the layer
  // was made); otherwise the cached effect, built on first use.
  std::shared_ptr<Bitmap> imageForDrawing() override;
  // Whether the effect is cached (it is built by imageForDrawing).
  bool hasCachedEffect() const { return imageEffect_ != nullptr; }

  // Mirrors the cached effect too, so it is not rebuilt.
  using DrawImage::flip;
  void flip(bool horizontal) override;

  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

 private:
  // Takes the source as the stored image at its pixel size, with the type
  // and scissor, and the type's default settings.
  void setUp(std::shared_ptr<Bitmap> source, int64_t type, std::optional<BezierPath> scissor);

  int64_t dFilterType_ = 0;
  std::optional<BezierPath> imageScissor_;
  std::optional<FilterSettings> dicFilterSettings_;
  std::shared_ptr<Bitmap> imageEffect_;  // not archived
};

}  // namespace paintdoc
