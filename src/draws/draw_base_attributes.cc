// DrawBase: the attribute dictionary, the opacity control and the capability
// predicates an editor enables its controls by.
#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string_view>

#include "draws/draw_base.h"
#include "draws/draw_group.h"
#include "geometry/value_comparison.h"
#include "platform/values/class_registry.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

// Whether the draw is of one of the classes or of a subclass of one. Asked
// by name so that rules can name classes of the modules above this one.
bool IsKindOfAny(const DrawBase& draw, std::initializer_list<std::string_view> classes) {
  const std::vector<std::string> chain = ClassRegistry::shared().classChain(draw.className());
  return std::any_of(chain.begin(), chain.end(), [&](const std::string& name) {
    return std::find(classes.begin(), classes.end(), name) != classes.end();
  });
}

// The look of selection tools and of hidden draws is not edited.
bool LookEditable(const DrawBase& draw) {
  return !draw.isSelectTool() && draw.visibleWithGroup();
}

// A line width change smaller than this is typing noise, not an edit.
constexpr double kLineWidthTolerance = 0.1;
// Likewise for the angle of a linear gradient, in degrees.
constexpr float kGradientDegreeTolerance = 0.01f;
// A rotation within this of a whole multiple of 90 degrees keeps a member's
// box axis-aligned, so its group can still be resized freely.
constexpr double kSquareRotationTolerance = 0.01;

bool IsRotatedSquarely(float degrees) {
  const double whole = std::floor(degrees);
  return std::fmod(whole, 90.0) == 0 && degrees - whole <= kSquareRotationTolerance;
}

// A group's answer to a question about its shape: no without a visible
// member, else whether every visible member agrees.
template <class Question>
bool VisibleMembersAllow(const DrawGroup& group, Question question) {
  if (!group.hasVisibleDraw()) return false;
  return std::all_of(group.draws().begin(), group.draws().end(),
                     [&](const std::shared_ptr<DrawBase>& member) {
                       return !member->visible() || question(*member);
                     });
}

// Switches a shadow on with `wanted` unless it is already on and tolerantly
// equal, or off when it may not be set or is not wanted.
bool ApplyShadow(bool canSet, const Shadow* wanted, bool& enabled, std::optional<Shadow>& shadow) {
  if (canSet && wanted) {
    if (enabled && wt_isEqualWithShadow(*wanted, shadow)) return false;
    enabled = true;
    shadow = *wanted;
    return true;
  }
  if (!enabled) return false;
  enabled = false;
  return true;
}

}  // namespace

// --- Capabilities

bool DrawBase::visibleWithGroup() const { return bVisible_ && (!group_ || group_->visible()); }

bool DrawBase::shouldDrawBorderWhenCreating() const {
  if (IsKindOfAny(*this, {"DrawPen", "DrawAirbrush"})) return false;
  if (IsKindOfAny(*this, {"DrawFreePolygon"})) return true;
  return hasBorder();
}

bool DrawBase::shouldDrawKnobWhenCreating() const {
  return IsKindOfAny(*this, {"DrawBrokenLine", "DrawFreePolygon", "DrawPolygonSelection"});
}

bool DrawBase::shouldFocusedWhenAdded() const {
  return !IsKindOfAny(*this, {"DrawPen", "DrawFill", "DrawClear", "DrawAirbrush"});
}

bool DrawBase::canBeSelectedByClick() const {
  return !bLocked_ && !IsKindOfAny(*this, {"DrawEraser", "DrawClear", "DrawGroup"});
}

bool DrawBase::canSetStrokeColor() const {
  if (!LookEditable(*this) || IsKindOfAny(*this, {"DrawEraser"})) return false;
  return classDrawStroke();
}

bool DrawBase::canSetFillColor() const {
  if (!LookEditable(*this) || IsKindOfAny(*this, {"DrawImage", "DrawClear", "DrawGradient"})) {
    return false;
  }
  return classDrawFill();
}

bool DrawBase::canSetFillGradient() const {
  if (!LookEditable(*this) || IsKindOfAny(*this, {"DrawImage", "DrawClear", "DrawFill"})) {
    return false;
  }
  return classDrawFill();
}

bool DrawBase::canSetLineWidth() const {
  if (!LookEditable(*this) || !classDrawBezierPath()) return false;
  return classDrawStroke();
}

bool DrawBase::canSetDashStyle() const {
  return !IsKindOfAny(*this, {"DrawEraser", "DrawAirbrush"}) && canSetLineWidth();
}

bool DrawBase::canSetShadow() const {
  if (!LookEditable(*this) || IsKindOfAny(*this, {"DrawEraser", "DrawFill", "DrawClear"})) {
    return false;
  }
  return classDrawStroke() || classDrawFill();
}

bool DrawBase::canSetInnerShadow() const {
  if (!LookEditable(*this) || !IsKindOfAny(*this, {"DrawRectangle", "DrawFreePolygon"})) {
    return false;
  }
  return classDrawFill();
}

bool DrawBase::canToggleSmooth() const {
  if (IsKindOfAny(*this, {"DrawFill"})) return false;
  if (IsKindOfAny(*this, {"DrawText"})) return true;
  return canSetStrokeColor();
}

bool DrawBase::canSetReflection() const { return canSetShadow(); }

bool DrawBase::canBeRotated() const {
  if (!visibleWithGroup()) return false;
  if (const auto* group = dynamic_cast<const DrawGroup*>(this)) {
    return VisibleMembersAllow(*group, [](const DrawBase& m) { return m.canBeRotated(); });
  }
  return true;
}

bool DrawBase::canBeRotatedFreely() const {
  if (!visibleWithGroup() || dynamic_cast<const DrawGroup*>(this)) return false;
  return canBeRotated();
}

bool DrawBase::canBeResized() const {
  if (!visibleWithGroup() || IsKindOfAny(*this, {"DrawMagicSelection"})) return false;
  if (const auto* group = dynamic_cast<const DrawGroup*>(this)) {
    return VisibleMembersAllow(*group, [](const DrawBase& m) { return m.canBeResized(); });
  }
  return true;
}

bool DrawBase::canBeResizedFreely() const {
  if (!visibleWithGroup() || IsKindOfAny(*this, {"DrawMagicSelection"})) return false;
  if (const auto* group = dynamic_cast<const DrawGroup*>(this)) {
    // Resizing a group freely stretches its members along the group's axes,
    // which only keeps members turned by a right angle in shape.
    const bool membersStayBoxes = VisibleMembersAllow(*group, [](const DrawBase& m) {
      return m.canBeResized() && IsRotatedSquarely(m.rotateDegree());
    });
    if (!membersStayBoxes) return false;
  }
  return canBeResized();
}

bool DrawBase::canBeFliped(bool /*horizontal*/) const {
  if (!visibleWithGroup()) return false;
  const auto* group = dynamic_cast<const DrawGroup*>(this);
  return !group || group->hasVisibleDraw();
}

bool DrawBase::canCreateBezierText() const {
  return IsKindOfAny(*this, {"DrawCurve", "DrawBrokenLine", "DrawEllipse", "DrawRoundRectangle",
                             "DrawFreePolygon", "DrawRectPolygon", "DrawRectHeart"});
}

bool DrawBase::canAdjustOpacity() const {
  if (!visibleWithGroup() || IsKindOfAny(*this, {"DrawGroup", "DrawEraser", "DrawClear"})) {
    return false;
  }
  if (isSelectTool()) return !IsKindOfAny(*this, {"DrawCrop", "DrawMagicSelection"});
  if (classDrawFill() && bEnableFill_) return true;
  return classDrawStroke() && bEnableStroke_;
}

// --- Opacity

float DrawBase::opacity() const {
  auto alphaOf = [](const std::optional<Color>& color) {
    return color ? static_cast<float>(color->alphaComponent()) : 0.0f;
  };
  if (classDrawFill() && bEnableFill_) {
    if (bFillWithGdt_) return gradientFill_ ? averageOpacity(*gradientFill_) : 0.0f;
    return alphaOf(colorFill_);
  }
  if (classDrawStroke() && bEnableStroke_) return alphaOf(colorStroke_);
  return 0;
}

void DrawBase::setOpacity(float opacity) {
  if (std::isnan(opacity)) {
    Log("Error: setOpacity: the opacity is not a number; the draw is unchanged");
    return;
  }
  opacity = std::clamp(opacity, 0.0f, 1.0f);
  if (classDrawFill() && bEnableFill_) {
    if (bFillWithGdt_) {
      // A gradient without stops has no opacity to change and is kept.
      if (gradientFill_) {
        if (std::optional<Gradient> faded = gradientWithOpacity(*gradientFill_, opacity)) {
          setFillGradient(std::move(faded));
        }
      }
    } else if (colorFill_) {
      setFillColor(colorFill_->withAlphaComponent(opacity));
    }
  }
  if (classDrawStroke() && bEnableStroke_ && colorStroke_) {
    setStrokeColor(colorStroke_->withAlphaComponent(opacity));
  }
}

// --- The attribute dictionary

DrawAttributes DrawBase::drawAttributes() const {
  DrawAttributes attributes;
  attributes.set(DAKeySmooth, smooth());
  if (classDrawStroke() && bEnableStroke_ && colorStroke_) {
    attributes.set(DAKeyStrokeColor, *colorStroke_);
    attributes.set(DAKeyStrokeWidth, bezierPath_ ? bezierPath_->lineWidth() : 0.0);
    // The shortest dash text with two entries ("6:3") has three characters.
    if (std::string dash = lineDashStyle(); dash.size() >= 3) {
      attributes.set(DAKeyStrokeDash, std::move(dash));
    }
  }
  if (classDrawFill() && bEnableFill_) {
    if (bFillWithGdt_ && gradientFill_) {
      attributes.set(DAKeyFillGradient, *gradientFill_);
      if (bFillRadialGdt_) {
        attributes.set(DAKeyFillGdtCenter, ptFillGdtCenter_);
      } else {
        attributes.set(DAKeyFillGdtDegree, SinglePrecision{fFillGdtDegree_});
      }
    } else if (!bFillWithGdt_ && colorFill_) {
      attributes.set(DAKeyFillColor, *colorFill_);
    }
    if (bEnableInnerShadow_ && shadowInner_) attributes.set(DAKeyInnerShadow, *shadowInner_);
  }
  if (bEnableShadow_ && shadow_) attributes.set(DAKeyShadow, *shadow_);
  return attributes;
}

bool DrawBase::setDrawAttributes(const DrawAttributes& attributes) {
  const Color* strokeColor = attributes.get<Color>(DAKeyStrokeColor);
  const Color* fillColor = attributes.get<Color>(DAKeyFillColor);
  const Gradient* gradient = attributes.get<Gradient>(DAKeyFillGradient);
  // A dictionary that names no colour carries no look: leave the draw be.
  if (!strokeColor && !fillColor && !gradient) return false;
  bool changed = false;

  if (const ArchiveValue* smoothValue = attributes.number(DAKeySmooth)) {
    if (smoothValue->toBool() != smooth()) {
      setSmooth(smoothValue->toBool());
      changed = true;
    }
  }

  if (strokeColor && classDrawStroke()) {
    if (!bEnableStroke_ || !wt_isEqualWithColor(*strokeColor, colorStroke_)) {
      setEnableStroke(true);
      setStrokeColor(*strokeColor);
      changed = true;
    }
    if (const ArchiveValue* width = attributes.number(DAKeyStrokeWidth)) {
      const double current = bezierPath_ ? bezierPath_->lineWidth() : 0.0;
      if (std::fabs(width->toDouble() - current) >= kLineWidthTolerance) {
        setBezierPathLineWidth(static_cast<float>(width->toDouble()));
        changed = true;
      }
    }
    // A missing or empty dash means a solid line.
    const std::string* dash = attributes.get<std::string>(DAKeyStrokeDash);
    const std::string currentDash = lineDashStyle();
    if (dash && *dash != currentDash) {
      setLineDashStyle(*dash);
      changed = true;
    } else if ((!dash || dash->empty()) && !currentDash.empty()) {
      setLineDashStyle("");
      changed = true;
    }
  } else if (bEnableStroke_) {
    setEnableStroke(false);
    changed = true;
  }

  if ((!fillColor && !gradient) || !classDrawFill()) {
    if (bEnableFill_) {
      setEnableFill(false);
      changed = true;
    }
  } else if (gradient) {  // a gradient wins over a fill colour
    if (!bEnableFill_ || !bFillWithGdt_ || !wt_isEqualWithGradient(*gradient, gradientFill_)) {
      setEnableFill(true);
      setFillWithGradient(true);
      setFillGradient(*gradient);
      changed = true;
    }
    const ArchiveValue* degree = attributes.number(DAKeyFillGdtDegree);
    if (const Point* center = attributes.get<Point>(DAKeyFillGdtCenter)) {
      if (!bFillRadialGdt_) {
        setFillRadialGradient(true);
        changed = true;
      }
      if (*center != ptFillGdtCenter_) {
        setFillGradientCenter(*center);
        changed = true;
      }
    } else {
      if (bFillRadialGdt_) {
        setFillRadialGradient(false);
        changed = true;
      }
      if (degree) {
        const float wanted = static_cast<float>(degree->toDouble());
        if (std::fabs(wanted - fFillGdtDegree_) > kGradientDegreeTolerance) {
          setFillGradientDegree(wanted);
          changed = true;
        }
      }
    }
  } else if (!(bEnableFill_ && !bFillWithGdt_ && wt_isEqualWithColor(*fillColor, colorFill_))) {
    setEnableFill(true);
    setFillWithGradient(false);
    setFillColor(*fillColor);
    changed = true;
  }

  changed |= ApplyShadow(canSetInnerShadow(), attributes.get<Shadow>(DAKeyInnerShadow),
                         bEnableInnerShadow_, shadowInner_);
  changed |= ApplyShadow(canSetShadow(), attributes.get<Shadow>(DAKeyShadow), bEnableShadow_,
                         shadow_);
  return changed;
}

}  // namespace paintdoc
