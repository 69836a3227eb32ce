#include "platform/gaussian_blur.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace paintdoc {
namespace {

// How one axis is blurred: either an exact kernel or a list of box radii.
struct BlurPlan {
  std::vector<float> kernel;  // 2·reach + 1 taps, when exact
  std::vector<int> boxRadii;  // when not exact
  int reach = 0;              // total radius of all passes
};

// Three boxes whose variances add up to σ² (widths w = 2r + 1, split between
// the two nearest odd widths: W. Wells / P. Kovesi).
std::vector<int> BoxRadii(double sigma) {
  constexpr int kPasses = 3;
  double ideal = std::sqrt(12.0 * sigma * sigma / kPasses + 1.0);
  int lower = static_cast<int>(std::floor(ideal));
  if (lower % 2 == 0) --lower;
  int upper = lower + 2;
  double lowerCount = (12.0 * sigma * sigma - kPasses * lower * lower - 4.0 * kPasses * lower -
                       3.0 * kPasses) /
                      (-4.0 * lower - 4.0);
  int passesWithLower = std::clamp(static_cast<int>(std::lround(lowerCount)), 0, kPasses);
  std::vector<int> radii;
  for (int i = 0; i < kPasses; ++i) radii.push_back(((i < passesWithLower ? lower : upper) - 1) / 2);
  return radii;
}

BlurPlan MakePlan(double sigma) {
  BlurPlan plan;
  if (sigma < kExactBlurMaxSigma) {
    plan.reach = std::max(1, static_cast<int>(std::ceil(3.5 * sigma)));
    double sum = 0;
    for (int j = -plan.reach; j <= plan.reach; ++j) {
      double weight = std::exp(-0.5 * j * j / (sigma * sigma));
      plan.kernel.push_back(static_cast<float>(weight));
      sum += weight;
    }
    for (float& weight : plan.kernel) weight = static_cast<float>(weight / sum);
  } else {
    plan.boxRadii = BoxRadii(sigma);
    for (int radius : plan.boxRadii) plan.reach += radius;
  }
  return plan;
}

// A line of `lanes` interleaved signals along `positions` samples, padded by
// `pad` samples on both ends: sample p of lane l is at [(p + pad)·lanes + l].
struct LaneBuffer {
  std::vector<float> data, scratch;
  int positions = 0, lanes = 0, pad = 0;

  void resize(int positionCount, int laneCount, int padding) {
    positions = positionCount;
    lanes = laneCount;
    pad = padding;
    size_t size = static_cast<size_t>(positions + 2 * pad) * static_cast<size_t>(lanes);
    data.resize(size);
    scratch.resize(size);
  }
  int total() const { return positions + 2 * pad; }
  float* at(int paddedPosition) { return data.data() + static_cast<size_t>(paddedPosition) * lanes; }

  // Fills the padding: zeros, or copies of the first and last samples.
  void fillPadding(BlurEdges edges) {
    const float* first = at(pad);
    const float* last = at(pad + positions - 1);
    for (int p = 0; p < pad; ++p) {
      float* before = at(p);
      float* after = at(pad + positions + p);
      for (int l = 0; l < lanes; ++l) {
        before[l] = edges == BlurEdges::Clamp ? first[l] : 0.0f;
        after[l] = edges == BlurEdges::Clamp ? last[l] : 0.0f;
      }
    }
  }

  // One box pass of radius r over the whole padded line. Indices beyond the
  // buffer read its end samples, which the padding made equal to the edge rule.
  void boxPass(int radius) {
    const int count = total();
    const float scale = 1.0f / static_cast<float>(2 * radius + 1);
    std::vector<float> sums(static_cast<size_t>(lanes), 0.0f);
    auto sample = [&](int p) { return data.data() + static_cast<size_t>(std::clamp(p, 0, count - 1)) * lanes; };
    for (int p = -radius; p <= radius; ++p) {
      const float* in = sample(p);
      for (int l = 0; l < lanes; ++l) sums[l] += in[l];
    }
    for (int p = 0; p < count; ++p) {
      float* out = scratch.data() + static_cast<size_t>(p) * lanes;
      const float* entering = sample(p + radius + 1);
      const float* leaving = sample(p - radius);
      for (int l = 0; l < lanes; ++l) {
        out[l] = sums[l] * scale;
        sums[l] += entering[l] - leaving[l];
      }
    }
    data.swap(scratch);
  }

  void kernelPass(const std::vector<float>& kernel) {
    const int count = total();
    const int reach = static_cast<int>(kernel.size() / 2);
    std::fill(scratch.begin(), scratch.end(), 0.0f);
    for (int p = 0; p < count; ++p) {
      float* out = scratch.data() + static_cast<size_t>(p) * lanes;
      for (int j = -reach; j <= reach; ++j) {
        const float* in = data.data() + static_cast<size_t>(std::clamp(p + j, 0, count - 1)) * lanes;
        const float weight = kernel[static_cast<size_t>(j + reach)];
        for (int l = 0; l < lanes; ++l) out[l] += weight * in[l];
      }
    }
    data.swap(scratch);
  }

  void blur(const BlurPlan& plan, BlurEdges edges) {
    fillPadding(edges);
    if (!plan.kernel.empty()) {
      kernelPass(plan.kernel);
    } else {
      for (int radius : plan.boxRadii) boxPass(radius);
    }
  }
};

uint8_t ToSample(float value) {
  return static_cast<uint8_t>(std::clamp(value + 0.5f, 0.0f, 255.0f));
}

// Columns are blurred in strips of this many pixels: wide enough for long
// vectorised inner loops, narrow enough that a strip's buffer stays in cache.
constexpr int kStripWidth = 32;
// Below this many samples threading costs more than it saves.
constexpr long kParallelThreshold = 1 << 16;

void BlurRows(uint8_t* samples, int width, int height, size_t stride, int channels,
              const BlurPlan& plan, BlurEdges edges) {
  bool parallel = static_cast<long>(width) * height * channels >= kParallelThreshold;
#pragma omp parallel if (parallel)
  {
    LaneBuffer line;
    line.resize(width, channels, plan.reach);
#pragma omp for schedule(static)
    for (int y = 0; y < height; ++y) {
      uint8_t* row = samples + stride * static_cast<size_t>(y);
      float* middle = line.at(line.pad);
      for (int i = 0; i < width * channels; ++i) middle[i] = row[i];
      line.blur(plan, edges);
      middle = line.at(line.pad);
      for (int i = 0; i < width * channels; ++i) row[i] = ToSample(middle[i]);
    }
  }
}

void BlurColumns(uint8_t* samples, int width, int height, size_t stride, int channels,
                 const BlurPlan& plan, BlurEdges edges) {
  int strips = (width + kStripWidth - 1) / kStripWidth;
  bool parallel = static_cast<long>(width) * height * channels >= kParallelThreshold;
#pragma omp parallel if (parallel)
  {
    LaneBuffer column;
#pragma omp for schedule(static)
    for (int strip = 0; strip < strips; ++strip) {
      int x0 = strip * kStripWidth;
      int lanes = std::min(kStripWidth, width - x0) * channels;
      column.resize(height, lanes, plan.reach);
      for (int y = 0; y < height; ++y) {
        const uint8_t* in = samples + stride * static_cast<size_t>(y) + static_cast<size_t>(x0) * channels;
        float* out = column.at(column.pad + y);
        for (int l = 0; l < lanes; ++l) out[l] = in[l];
      }
      column.blur(plan, edges);
      for (int y = 0; y < height; ++y) {
        uint8_t* out = samples + stride * static_cast<size_t>(y) + static_cast<size_t>(x0) * channels;
        const float* in = column.at(column.pad + y);
        for (int l = 0; l < lanes; ++l) out[l] = ToSample(in[l]);
      }
    }
  }
}

void BlurInterleaved(uint8_t* samples, int width, int height, size_t stride, int channels,
                     double sigma, BlurEdges edges) {
  if (!(sigma > 0) || width <= 0 || height <= 0 || samples == nullptr) return;
  BlurPlan plan = MakePlan(sigma);
  BlurRows(samples, width, height, stride, channels, plan, edges);
  BlurColumns(samples, width, height, stride, channels, plan, edges);
}

}  // namespace

void GaussianBlur(Bitmap& bitmap, double sigma, BlurEdges edges) {
  BlurInterleaved(bitmap.data(), bitmap.pixelsWide(), bitmap.pixelsHigh(), bitmap.bytesPerRow(),
                  Bitmap::kBytesPerPixel, sigma, edges);
}

void GaussianBlurChannel(uint8_t* samples, int width, int height, size_t stride, double sigma,
                         BlurEdges edges) {
  BlurInterleaved(samples, width, height, stride, 1, sigma, edges);
}

int GaussianBlurReach(double sigma) {
  if (!(sigma > 0)) return 0;
  return MakePlan(sigma).reach;
}

}  // namespace paintdoc
