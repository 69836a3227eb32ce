// The outlines of the pictograms. A point {a, b} is (x + a w, y + b h) in the
// box (x, y, w, h); {a, b, ra, rb} adds ra and rb corner radii. Curves list
// their end point first, then both control points. Control points may lie a
// little outside the box, so that curves bulge to its edges.
#include "shapes/fixed_outline_shapes.h"

namespace paintdoc {

namespace {

constexpr OutlineStep kHeart[] = {
    Move({0.5, 0}),
    Curve({0.5, 0.82}, {-0.49, 0.75}, {0.26, 1.3}),
    Curve({0.5, 0}, {0.74, 1.3}, {1.49, 0.75}),
};

constexpr OutlineStep kWaterDrip[] = {
    Move({0.5, 1}),
    Curve({0, 0.35}, {0.35, 0.75}, {0, 0.55}),
    Curve({1, 0.35}, {0, -0.11}, {1, -0.11}),
    Curve({0.5, 1}, {1, 0.55}, {0.65, 0.75}),
};

// A map pin with a round hole.
constexpr OutlineStep kLocation[] = {
    Move({0, 0.65}),
    Curve({1, 0.65}, {0, 1.115}, {1, 1.115}),
    Curve({0.5, 0}, {1, 0.5}, {0.5, 0}),
    Curve({0, 0.65}, {0.5, 0}, {0, 0.5}),
    Oval({0.5, 0.65}, 1 / 2.4f, 1 / 3.3f),
};

// A ribbon with a notch at the bottom and rounded top corners.
constexpr OutlineStep kBookmark[] = {
    Move({0, 0}),         Line({0.5, 0.2}),      Line({1, 0}),
    Line({1, 1, 0, -1}),  Arc({1, 1, -1, -1}, 0, 90),
    Line({0, 1, 1, 0}),   Arc({0, 1, 1, -1}, 90, 180),
    Close(),
};

constexpr OutlineStep kCloud[] = {
    Move({0.17, 0}),
    Curve({0.152, 0.583}, {-0.052, 0.025}, {-0.052, 0.5}),
    Curve({0.388, 0.845}, {0.125, 0.853}, {0.342, 0.885}),
    Curve({0.86, 0.583}, {0.585, 1.16}, {0.895, 0.95}),
    Curve({0.83, 0}, {1.052, 0.5}, {1.052, 0.025}),
    Close(),
};

constexpr OutlineStep kLightning[] = {
    Move({0, 0.4}), Line({0.5, 1}), Line({0.5, 0.6}), Line({1, 0.6}),
    Line({0.5, 0}), Line({0.5, 0.4}), Close(),
};

// Head and shoulders.
constexpr OutlineStep kPerson[] = {
    Move({0, 0}),
    Curve({0.2, 0.42}, {0, 0.27}, {0.08, 0.38}), Curve({0.36, 0.47}, {0.27, 0.45}, {0.33, 0.46}),
    Curve({0.25, 0.73}, {0.29, 0.53}, {0.25, 0.62}), Curve({0.5, 1}, {0.25, 0.88}, {0.36, 1}),
    Curve({0.75, 0.73}, {0.64, 1}, {0.75, 0.88}), Curve({0.64, 0.47}, {0.75, 0.62}, {0.71, 0.53}),
    Curve({0.8, 0.42}, {0.67, 0.46}, {0.73, 0.45}), Curve({1, 0}, {0.92, 0.38}, {1, 0.27}),
    Close(),
};

// An envelope: a rounded card with the flap cut out as a chevron.
constexpr OutlineStep kMail[] = {
    Move({0, 0, 1, 0}),   Line({1, 0, -1, 0}), Arc({1, 0, -1, 1}, 270, 360),
    Line({1, 1, 0, -1}),  Arc({1, 1, -1, -1}, 0, 90),
    Line({0, 1, 1, 0}),   Arc({0, 1, 1, -1}, 90, 180),
    Line({0, 0, 0, 1}),   Arc({0, 0, 1, 1}, 180, 270),
    Close(),
    BeginCutOut(),
    Move({0.12, 0.86}),   Line({0.5, 0.5}),    Line({0.88, 0.86}),
    Line({0.5, 0.62}),    Close(),
    EndCutOut(),
};

// A desktop computer: screen on a stand, the screen and a logo dot cut out.
constexpr OutlineStep kComputer[] = {
    Move({0.28, 0}),       Line({0.72, 0}),      Line({0.72, 0.05}),
    Line({0.62, 0.08}),    Line({0.6, 0.25}),    Line({1, 0.25, -1, 0}),
    Arc({1, 0.25, -1, 1}, 270, 360),             Line({1, 1, 0, -1}),
    Arc({1, 1, -1, -1}, 0, 90),                  Line({0, 1, 1, 0}),
    Arc({0, 1, 1, -1}, 90, 180),                 Line({0, 0.25, 0, 1}),
    Arc({0, 0.25, 1, 1}, 180, 270),              Line({0.4, 0.25}),
    Line({0.38, 0.08}),    Line({0.28, 0.05}),   Close(),
    BeginCutOut(), Box({0.06, 0.4}, {0.94, 0.94}), Oval({0.5, 0.325}, 0.05, 0.056), EndCutOut(),
};

// A fruit with a leaf.
constexpr OutlineStep kFruit[] = {
    Move({0.5, 0.78}),
    Curve({0.06, 0.62}, {0.32, 0.86}, {0.1, 0.8}), Curve({0.2, 0.08}, {0, 0.4}, {0.08, 0.2}),
    Curve({0.5, 0.04}, {0.3, -0.02}, {0.4, 0.06}), Curve({0.8, 0.08}, {0.6, 0.06}, {0.7, -0.02}),
    Curve({0.98, 0.42}, {0.9, 0.18}, {0.97, 0.3}), Curve({0.94, 0.64}, {1, 0.52}, {0.99, 0.58}),
    Curve({0.5, 0.78}, {0.88, 0.8}, {0.68, 0.86}),
    Move({0.5, 0.82}),
    Curve({0.72, 1}, {0.52, 0.94}, {0.62, 1}),
    Curve({0.5, 0.82}, {0.74, 0.9}, {0.62, 0.82}),
};

// The left wing from the top of the body round to its bottom; the right wing
// is its mirror image.
constexpr OutlineStep kButterfly[] = {
    Move({0.5, 0.62}),
    Curve({0.3, 0.9}, {0.45, 0.75}, {0.38, 0.85}), Curve({0.06, 0.98}, {0.22, 0.95}, {0.12, 1}),
    Curve({0, 0.8}, {0, 0.96}, {-0.01, 0.88}), Curve({0.12, 0.52}, {0.01, 0.68}, {0.06, 0.58}),
    Curve({0.2, 0.46}, {0.15, 0.49}, {0.18, 0.47}), Curve({0.08, 0.28}, {0.12, 0.42}, {0.07, 0.36}),
    Curve({0.16, 0.04}, {0.09, 0.18}, {0.1, 0.07}), Curve({0.38, 0.12}, {0.24, 0}, {0.33, 0.05}),
    Curve({0.47, 0.3}, {0.42, 0.18}, {0.45, 0.24}), Curve({0.5, 0.2}, {0.48, 0.26}, {0.49, 0.22}),
    MirroredHalf(),
    Close(),
};

// A camera body with a round viewfinder on top and the lens ring cut out.
constexpr OutlineStep kCamera[] = {
    Move({0, 0, 1, 0}),          Line({1, 0, -1, 0}),
    Arc({1, 0, -1, 1}, 270, 360), Line({1, 0.82, 0, -1}),
    Arc({1, 0.82, -1, -1}, 0, 90), Line({0.5, 0.82, 1.8, 0}),
    Arc({0.5, 0.82}, 0, 90, 1.8), Arc({0.5, 0.82}, 90, 180, 1.8),
    Line({0, 0.82, 1, 0}),       Arc({0, 0.82, 1, -1}, 90, 180),
    Line({0, 0, 0, 1}),          Arc({0, 0, 1, 1}, 180, 270),
    Close(),
    BeginCutOut(), Oval({0.5, 0.41}, 0.45, 0.54), Oval({0.5, 0.41}, 0.27, 0.324), EndCutOut(),
};

// An almond with the iris cut out as a ring around the pupil.
constexpr OutlineStep kEye[] = {
    Move({0, 0.5}),
    Curve({1, 0.5}, {0.25, 0}, {0.75, 0}),
    Curve({0, 0.5}, {0.75, 1}, {0.25, 1}),
    BeginCutOut(), Oval({0.5, 0.5}, 0.36, 0.593), Oval({0.5, 0.5}, 0.16, 0.263), EndCutOut(),
};

// A house with a door and a chimney; a window and a round gable window cut out.
constexpr OutlineStep kHome[] = {
    Move({0.5, 1}),      Line({0, 0.55}),    Line({0.12, 0.55}),  Line({0.12, 0}),
    Line({0.4, 0}),      Line({0.4, 0.3}),   Line({0.5, 0.36}),   Line({0.6, 0.3}),
    Line({0.6, 0}),      Line({0.88, 0}),    Line({0.88, 0.55}),  Line({1, 0.55}),
    Line({0.5, 1}),      Close(),
    Move({0.7, 0.8}),    Line({0.82, 0.69}), Line({0.82, 0.95}),  Line({0.7, 0.95}),
    Line({0.7, 0.8}),    Close(),
    BeginCutOut(),
    Move({0.66, 0.3}),   Line({0.8, 0.3}),   Line({0.8, 0.44}),   Line({0.66, 0.44}),
    Close(),
    Oval({0.5, 0.7}, 0.12, 0.12),
    EndCutOut(),
};

// Two curved arrows chasing each other round.
constexpr OutlineStep kRefresh[] = {
    Move({1, 0.496}),
    Curve({0.145, 0.856}, {0.984, 1.021}, {0.391, 1.126}),
    Line({0.056, 0.945}), Line({0, 0.601}), Line({0.351, 0.65}), Line({0.266, 0.735}),
    Curve({0.835, 0.496}, {0.48, 0.949}, {0.839, 0.791}),
    Close(),
    Move({0, 0.5}),
    Curve({0.854, 0.144}, {0.015, -0.02}, {0.608, -0.126}),
    Line({0.94, 0.06}), Line({1, 0.407}), Line({0.653, 0.347}), Line({0.738, 0.262}),
    Curve({0.169, 0.5}, {0.54, 0.06}, {0.169, 0.181}),
    Close(),
};

// A folder with its tab on the upper left.
constexpr OutlineStep kFolder[] = {
    Move({0.04, 0}),
    Line({0.96, 0}), Curve({1, 0.05}, {0.98, 0}, {1, 0.02}),
    Line({1, 0.78}), Curve({0.96, 0.83}, {1, 0.81}, {0.98, 0.83}),
    Line({0.5, 0.83}), Line({0.43, 0.93}), Curve({0.39, 0.95}, {0.42, 0.94}, {0.41, 0.95}),
    Line({0.04, 0.95}), Curve({0, 0.9}, {0.02, 0.95}, {0, 0.93}),
    Line({0, 0.05}), Curve({0.04, 0}, {0, 0.02}, {0.02, 0}),
    Close(),
};

// A framed landscape: the frame's opening cut out, mountains and sun left in it.
constexpr OutlineStep kPicture[] = {
    Move({0, 0}),         Line({1, 0}),         Line({1, 1}),        Line({0, 1}),
    Line({0, 0}),         Close(),
    BeginCutOut(),
    Move({0.07, 0.09}),   Line({0.93, 0.09}),   Line({0.93, 0.91}),  Line({0.07, 0.91}),
    Close(),
    Move({0.12, 0.14}),   Line({0.88, 0.14}),   Line({0.62, 0.58}),  Line({0.46, 0.38}),
    Line({0.34, 0.52}),   Close(),
    Oval({0.3, 0.72}, 0.16, 0.222),
    EndCutOut(),
};

// A round face with the hands cut out.
constexpr OutlineStep kClock[] = {
    Move({0.854, 0.146}),
    Curve({0.854, 0.854}, {1.049, 0.342}, {1.049, 0.658}),
    Curve({0.146, 0.854}, {0.658, 1.049}, {0.342, 1.049}),
    Curve({0.146, 0.146}, {-0.049, 0.658}, {-0.049, 0.342}),
    Curve({0.854, 0.146}, {0.342, -0.049}, {0.658, -0.049}),
    BeginCutOut(),
    Move({0.558, 0.785}), Curve({0.442, 0.785}, {0.558, 0.855}, {0.442, 0.855}),
    Line({0.442, 0.483}), Line({0.651, 0.267}),
    Curve({0.727, 0.343}, {0.698, 0.238}, {0.762, 0.285}), Line({0.558, 0.512}), Close(),
    EndCutOut(),
};

// Four bars of rising height standing on the bottom edge.
constexpr OutlineStep kSignal[] = {
    Box({0, 0}, {0.159, 0.165}),
    Box({0.278, 0}, {0.437, 0.403}),
    Box({0.563, 0}, {0.722, 0.705}),
    Box({0.841, 0}, {1, 1}),
};

}  // namespace

const FixedOutline kDrawRectHeartOutline{"Heart", 1.1f, {kHeart}};
const FixedOutline kDrawRectWaterDripOutline{"Water Drip", 0.67f, {kWaterDrip}};
const FixedOutline kDrawRectLocationOutline{"Location", 0.73f, {kLocation}};
const FixedOutline kDrawRectBookmarkOutline{"Bookmark", 0.5f, {kBookmark, 0.25f, 0.3f}};
const FixedOutline kDrawRectCloudOutline{"Cloud", 1.4f, {kCloud}};
const FixedOutline kDrawRectLightningOutline{"Lightning", 0.7f, {kLightning}};
const FixedOutline kDrawRectPersonOutline{"Person", 0.92f, {kPerson}};
const FixedOutline kDrawRectMailOutline{"Mail", 1.31f, {kMail, 0.1f, 0.1f}};
const FixedOutline kDrawRectiMacOutline{"iMac", 1.13f, {kComputer, 0.06f, 0.06f}};
const FixedOutline kDrawRectAppleLogoOutline{"Apple Logo", 0.858f, {kFruit}};
const FixedOutline kDrawRectButterflyOutline{"Butterfly", 1.294f, {kButterfly}};
const FixedOutline kDrawRectCameraOutline{"Camera", 1.2f, {kCamera, 0.1f, 0.1f}};
const FixedOutline kDrawRectEyeOutline{"Eye", 1.646f, {kEye}};
const FixedOutline kDrawRectHomeOutline{"Home", 1.007f, {kHome}};
const FixedOutline kDrawRectRefreshOutline{"Refresh", 0, {kRefresh}};
const FixedOutline kDrawRectFolderOutline{"Folder", 1.269f, {kFolder}};
const FixedOutline kDrawRectPictureOutline{"Picture", 1.389f, {kPicture}};
const FixedOutline kDrawRectClockOutline{"Clock", 0, {kClock}, true};
const FixedOutline kDrawRectSignalOutline{"Signal", 0, {kSignal}};

}  // namespace paintdoc
