// DrawGroup's transforms: each is passed on to the members, with rules that
// keep turns by right angles exact and refuse stretches that would skew a
// turned member.
#include <cmath>
#include <cstdio>
#include <string>

#include "draws/draw_group.h"
#include "draws/group_nesting.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

// Angles this close above a whole number of degrees count as whole.
constexpr float kWholeDegreeTolerance = 0.01f;
// A ratio of the scale factors this close to 1 counts as proportional.
constexpr float kUniformScaleTolerance = 0.01f;

// Whether `degrees` is a whole multiple of 90 (within the tolerance above its
// floor). Angles beyond the 32-bit range count as not whole.
bool IsRightAngleMultiple(float degrees, int32_t* wholeDegrees = nullptr) {
  const float floored = std::floor(degrees);
  if (!(std::fabs(floored) < 2147483520.0f)) return false;
  const auto whole = static_cast<int32_t>(floored);
  if (wholeDegrees != nullptr) *wholeDegrees = whole;
  return whole % 90 == 0 && !(degrees - static_cast<float>(whole) > kWholeDegreeTolerance);
}

std::string FormatDegrees(float degrees) {
  char text[64];
  std::snprintf(text, sizeof text, "%0.2f", static_cast<double>(degrees));
  return text;
}

}  // namespace

void DrawGroup::rotateMember(DrawBase& member, float degrees, const Point& center) {
  if (!member.visible()) {
    // Hidden members are shown for the turn, since the capability rules
    // answer no for anything hidden.
    member.setVisible(true);
    if (member.canBeRotated()) member.rotateByDegree(degrees, center);
    member.setVisible(false);
    return;
  }
  if (member.canBeResized()) member.rotateByDegree(degrees, center);
}

void DrawGroup::setRotating(bool rotating) {
  if (bRotating_ == rotating) return;
  GroupNesting nesting;
  if (nesting.tooDeep()) return;
  if (rotating) {
    fRotateDegree_ = 0;
    rebuildBezierPath();
    DrawBase::setRotating(true);
    return;
  }
  const Point center = rotateCenter();
  for (const auto& member : aryDraws_) rotateMember(*member, fRotateDegree_, center);
  fRotateDegree_ = 0;
  DrawBase::setRotating(false);
}

void DrawGroup::setRotateDegree(float degrees) {
  if (!IsRightAngleMultiple(degrees)) {
    Log("Error: Group can't be rotated with degree: " + FormatDegrees(degrees));
    return;
  }
  GroupNesting nesting;
  if (nesting.tooDeep()) return;
  const Point center = rotateCenter();
  for (const auto& member : aryDraws_) rotateMember(*member, degrees, center);
}

void DrawGroup::flip(bool horizontal) {
  GroupNesting nesting;
  if (nesting.tooDeep()) return;
  const Point center = rotateCenter();
  for (const auto& member : aryDraws_) member->flip(horizontal, center);
}

void DrawGroup::moveBy(float x, float y) {
  GroupNesting nesting;
  if (nesting.tooDeep()) return;
  for (const auto& member : aryDraws_) member->moveBy(x, y);
}

void DrawGroup::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  GroupNesting nesting;
  if (nesting.tooDeep()) return;
  if (resizeLineWidth) sy = sx;
  const float stretch = std::fabs(sy / sx - 1.0f);
  const float k = 1.0f - sx;
  for (const auto& member : aryDraws_) {
    // Hidden members are shown for the scaling, since the capability rules
    // answer no for anything hidden.
    const bool wasVisible = member->visible();
    if (!wasVisible) member->setVisible(true);
    if (member->canBeResized()) {
      if (!(stretch > kUniformScaleTolerance)) {
        member->scaleBy(sy, sx, center, resizeLineWidth);
      } else {
        int32_t whole = 0;
        const bool squarelyTurned = IsRightAngleMultiple(member->rotateDegree(), &whole);
        if (wasVisible && !squarelyTurned) {
          Log("Error: This group can't be resized!");
        } else if (whole % 180 == 90 || whole % 180 == -90) {
          // Standing on its side, the member stretches along its own axes
          // swapped, about its own centre, which then moves with the group.
          const Point ownCenter = member->rotateCenter();
          member->scaleBy(sy, sx, ownCenter, resizeLineWidth);
          member->moveBy(static_cast<float>((center.x - ownCenter.x) * k),
                         static_cast<float>((center.y - ownCenter.y) * k));
        } else {
          member->scaleBy(sx, sy, center, resizeLineWidth);
        }
      }
    }
    if (!wasVisible) member->setVisible(false);
  }
}

}  // namespace paintdoc
