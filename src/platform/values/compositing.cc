#include "platform/values/compositing.h"

namespace paintdoc {

namespace {

struct OperationPair {
  CompositingOperation operation;
  BlendMode mode;
};

// Each operation with its blend mode; Highlight shares SourceOver's mode.
constexpr OperationPair kPairs[] = {
    {CompositingOperation::Clear, BlendMode::Clear},
    {CompositingOperation::Copy, BlendMode::Copy},
    {CompositingOperation::SourceOver, BlendMode::Normal},
    {CompositingOperation::SourceIn, BlendMode::SourceIn},
    {CompositingOperation::SourceOut, BlendMode::SourceOut},
    {CompositingOperation::SourceAtop, BlendMode::SourceAtop},
    {CompositingOperation::DestinationOver, BlendMode::DestinationOver},
    {CompositingOperation::DestinationIn, BlendMode::DestinationIn},
    {CompositingOperation::DestinationOut, BlendMode::DestinationOut},
    {CompositingOperation::DestinationAtop, BlendMode::DestinationAtop},
    {CompositingOperation::XOR, BlendMode::XOR},
    {CompositingOperation::PlusDarker, BlendMode::PlusDarker},
    {CompositingOperation::Highlight, BlendMode::Normal},
    {CompositingOperation::PlusLighter, BlendMode::PlusLighter},
    {CompositingOperation::Multiply, BlendMode::Multiply},
    {CompositingOperation::Screen, BlendMode::Screen},
    {CompositingOperation::Overlay, BlendMode::Overlay},
    {CompositingOperation::Darken, BlendMode::Darken},
    {CompositingOperation::Lighten, BlendMode::Lighten},
    {CompositingOperation::ColorDodge, BlendMode::ColorDodge},
    {CompositingOperation::ColorBurn, BlendMode::ColorBurn},
    {CompositingOperation::SoftLight, BlendMode::SoftLight},
    {CompositingOperation::HardLight, BlendMode::HardLight},
    {CompositingOperation::Difference, BlendMode::Difference},
    {CompositingOperation::Exclusion, BlendMode::Exclusion},
    {CompositingOperation::Hue, BlendMode::Hue},
    {CompositingOperation::Saturation, BlendMode::Saturation},
    {CompositingOperation::Color, BlendMode::Color},
    {CompositingOperation::Luminosity, BlendMode::Luminosity},
};

}  // namespace

CompositingOperation CompositingOperationForBlendMode(BlendMode mode) {
  for (const OperationPair& pair : kPairs) {
    if (pair.mode == mode) return pair.operation;  // Normal finds SourceOver first
  }
  return CompositingOperation::SourceOver;
}

BlendMode BlendModeForCompositingOperation(CompositingOperation operation) {
  for (const OperationPair& pair : kPairs) {
    if (pair.operation == operation) return pair.mode;
  }
  return BlendMode::Normal;
}

std::optional<CompositingOperation> CompositingOperationFromInt(int value) {
  if (value < 0 || value > static_cast<int>(CompositingOperation::Luminosity)) return std::nullopt;
  return static_cast<CompositingOperation>(value);
}

std::optional<BlendMode> BlendModeFromInt(int value) {
  if (value < 0 || value > static_cast<int>(BlendMode::PlusLighter)) return std::nullopt;
  return static_cast<BlendMode>(value);
}

}  // namespace paintdoc
