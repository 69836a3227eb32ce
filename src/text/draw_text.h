// Text layers: a text box, and text laid along a curve.
//
// A text box shows rich text wrapped at the width of its rectangle. The text
// is laid out once into a bitmap cropped to the pixels its glyphs cover
// (rectText_ says where that lies in the box); the bitmap is a cache, rebuilt
// whenever the text, the box size, the smoothing or the pixel scale it was
// made for changes, and drawn with the box's opacity or gradient fill,
// shadow and inner shadow.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "draws/draw_rectangle.h"
#include "platform/text/attributed_string.h"

namespace paintdoc {

class DrawText : public DrawRectangle {
  PAINTDOC_CLASS(DrawText, DrawRectangle)
  std::string name() const override { return "Text"; }
  // The text is drawn as glyphs, not as the box's outline.
  bool classDrawBezierPath() const override { return false; }

  // The empty text and opacity 1; the text system's default font and colour.
  void init() override;
  // "Text" (the text storage) and "Opacity" after DrawRectangle's keys. The
  // decoded box never strokes: its line width is 0.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  // The user's title, else the text's first non-blank line (cut near 20
  // characters), else "Text".
  std::string layerTitle() const override;

  // Fills unless a gradient fill is on without a gradient.
  bool drawFill() const override;
  // The gradient's average opacity with a gradient fill in use, else fOpacity_.
  float opacity() const override;
  void setOpacity(float opacity) override;
  DrawAttributes drawAttributes() const override;
  bool setDrawAttributes(const DrawAttributes& attributes) override;

  // The text, or nothing while editing or for empty text.
  void draw() override;
  void _draw() override;
  // Where the text's ink lies on the canvas; the zero rectangle without ink.
  Rect drawRect() const override;
  // While editing, the whole box and its selection border as well.
  Rect displayRect() const override;
  // Scaling with resizeLineWidth scales the fonts by the horizontal factor.
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;

  // --- The text

  const AttributedString& textStorage() const { return textStorage_; }
  // Replaces the text (nothing happens for an equal one).
  void setAttributedString(const AttributedString& text);
  // Drops the cached bitmap, for callers that changed what the text draws like.
  void forceUpdateString() { imgRepText_.reset(); }
  // The text laid out in the box at `scale` pixels a point, cropped to its
  // ink; sets rectText_. None for empty text, an empty box or no ink.
  std::shared_ptr<Bitmap> textImage(double scale = 1.0) const;
  const Rect& rectText() const { return rectText_; }
  float textOpacity() const { return fOpacity_; }

  // Summaries of the runs, as an inspector shows them.
  std::vector<Color> textColors() const;
  std::vector<Font> textFonts() const;
  bool underline() const;
  // The one alignment of every paragraph style (Left when none is set), or
  // kNotFound when paragraphs differ or the text is empty.
  int64_t textAlignment() const;

  bool isEditting() const { return bEditting_; }
  void startEditting() { bEditting_ = true; }
  void endEditting() { bEditting_ = false; }

  // The size the text takes when wrapped at `width` (the zero size for none).
  static Size drawSizeForAttributedString(const AttributedString& text, float width);

 protected:
  bool gradientFillInUse() const;
  // The cached bitmap, rebuilt when it was made for another box size,
  // smoothing or scale. Null without ink.
  const std::shared_ptr<Bitmap>& cachedTextImage(double scale) const;
  void drawTextImage(GraphicsContext& context, const Bitmap& image, const Rect& target);
  void drawInnerShadow(GraphicsContext& context, const Bitmap& image, const Rect& target);

  AttributedString textStorage_;
  mutable std::shared_ptr<Bitmap> imgRepText_;
  mutable Rect rectText_{};
  bool bEditting_ = false;
  float fOpacity_ = 1.0f;

 private:
  // What the cached bitmap was made for.
  mutable Size cachedBoxSize_{};
  mutable bool cachedSmooth_ = true;
  mutable double cachedScale_ = 1.0;
};

class DrawBezierText : public DrawText {
  PAINTDOC_CLASS(DrawBezierText, DrawText)
  std::string name() const override { return "Curved Text"; }
};

}  // namespace paintdoc
