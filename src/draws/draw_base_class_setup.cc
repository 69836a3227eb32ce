// The one-time class set-up of DrawBase: the process-wide border constants, and
// the background task that animates the border dash, started on first use.
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <system_error>
#include <thread>

#include "draws/draw_base.h"
#include "platform/values/log.h"

namespace paintdoc {

float borderLineWidth = 1.0f;
const double borderDashStyle[2] = {4.0, 4.0};
const int64_t borderDaskPhaseCount = 2;
std::atomic<double> fBorderDashPhaseStart{0.0};
const Color colorDrawBaseHighlight =
    Color::calibratedRGB(29.0 / 255.0, 89.0 / 255.0, 236.0 / 255.0, 1.0);

namespace {

constexpr auto kDashPhaseStepInterval = std::chrono::microseconds(100000);
constexpr double kDashPhaseWrap = 8.0;

// The backing scale of the display. There is no display to ask on the
// platforms this library runs on, so the desktop's own scale setting decides
// (GDK_SCALE, an integer factor); without it the scale is 1.
double DisplayBackingScale() {
  const char* scale = std::getenv("GDK_SCALE");
  if (scale == nullptr) return 1.0;
  char* end = nullptr;
  const double value = std::strtod(scale, &end);
  if (end == scale || !(value >= 1.0) || value > 16.0) return 1.0;
  return value;
}

// Runs for the life of the process: one step of the dash every 0.1 s.
void AnimateBorderDashPhase() {
  for (;;) {
    std::this_thread::sleep_for(kDashPhaseStepInterval);
    fBorderDashPhaseStart.store(
        NextBorderDashPhase(fBorderDashPhaseStart.load(std::memory_order_relaxed)),
        std::memory_order_relaxed);
  }
}

void StartBorderDashTask() {
  try {
    std::thread(AnimateBorderDashPhase).detach();
  } catch (const std::system_error& error) {
    // Without threads the border dash simply stands still.
    Log(std::string("Error: can't start the border dash task: ") + error.what());
  }
}

}  // namespace

double NextBorderDashPhase(double phase) {
  const double next = phase + 1.0;
  return next >= kDashPhaseWrap ? 0.0 : next;
}

double BorderDashPhaseStart() {
  static std::once_flag once;
  std::call_once(once, StartBorderDashTask);
  return fBorderDashPhaseStart.load(std::memory_order_relaxed);
}

void DrawBase::initialize() {
  static std::once_flag once;
  std::call_once(once, [] {
    const double scale = DisplayBackingScale();
    if (scale > 1.0) borderLineWidth = static_cast<float>(1.0 / scale);
  });
}

}  // namespace paintdoc
