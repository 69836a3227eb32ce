#include "platform/graphics/gaussian_blur.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/values/parallel_loops.h"

namespace paintdoc {
namespace {

// One extended box: weight 1 on [−radius, radius] and `endWeight` (< 1) on
// ±(radius + 1), normalised. The fractional ends let its variance take any
// value, not just those of odd integer widths (Gwosdek et al., 2011).
struct ExtendedBox {
  int radius = 0;
  float endWeight = 0;
};

// How one axis is blurred: either an exact kernel or a list of boxes.
struct BlurPlan {
  std::vector<float> kernel;       // 2·reach + 1 taps, when exact
  std::vector<ExtendedBox> boxes;  // when not exact
  int reach = 0;                   // total radius of all passes
};

// Five passes, each with a fifth of the variance σ²: three leave errors of
// up to 4 codes next to thin features, five stay within about 2.
std::vector<ExtendedBox> ExtendedBoxes(double sigma) {
  constexpr int kPasses = 5;
  const double variance = sigma * sigma / kPasses;
  // The widest plain box whose variance r(r + 1)/3 does not exceed the target.
  int radius = static_cast<int>(std::floor(0.5 * std::sqrt(12.0 * variance + 1.0) - 0.5));
  double r = radius;
  double endWeight = (2 * r + 1) * (r * (r + 1) - 3 * variance) / (6 * (variance - (r + 1) * (r + 1)));
  return std::vector<ExtendedBox>(kPasses, ExtendedBox{radius, static_cast<float>(endWeight)});
}

BlurPlan MakePlan(double sigma) {
  BlurPlan plan;
  if (sigma < kExactBlurMaxSigma) {
    // Each tap is the Gaussian's mass over one pixel's width, not its value
    // at the pixel centre: the two differ visibly below σ ≈ 1.
    plan.reach = std::max(1, static_cast<int>(std::ceil(3.5 * sigma)));
    auto cdf = [sigma](double x) { return 0.5 * std::erfc(-x / (sigma * std::sqrt(2.0))); };
    double sum = 0;
    for (int j = -plan.reach; j <= plan.reach; ++j) {
      double weight = cdf(j + 0.5) - cdf(j - 0.5);
      plan.kernel.push_back(static_cast<float>(weight));
      sum += weight;
    }
    for (float& weight : plan.kernel) weight = static_cast<float>(weight / sum);
  } else {
    plan.boxes = ExtendedBoxes(sigma);
    for (const ExtendedBox& box : plan.boxes) plan.reach += box.radius + 1;
  }
  return plan;
}

// The two passes are the blur's hot loops: on processors with AVX2 a
// second, wider build of them is picked at load time.
#if defined(__x86_64__)
#define PAINTDOC_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define PAINTDOC_VECTOR_CLONES
#endif

// One extended box pass over `count` positions of `lanes` signals, from `in`
// to `out`. Indices beyond the buffer read its end samples, which the padding
// made equal to the edge rule.
PAINTDOC_VECTOR_CLONES
void ExtendedBoxPass(const float* in, float* out, int count, int lanes, const ExtendedBox& box) {
  const int radius = box.radius;
  const float endWeight = box.endWeight;
  const float scale = 1.0f / (2.0f * radius + 1.0f + 2.0f * endWeight);
  std::vector<float> sums(static_cast<size_t>(lanes), 0.0f);
  auto sample = [&](int p) { return in + static_cast<size_t>(std::clamp(p, 0, count - 1)) * lanes; };
  float* __restrict sum = sums.data();
  for (int p = -radius; p <= radius; ++p) {
    const float* __restrict value = sample(p);
    for (int l = 0; l < lanes; ++l) sum[l] += value[l];
  }
  for (int p = 0; p < count; ++p) {
    float* __restrict result = out + static_cast<size_t>(p) * lanes;
    const float* __restrict beforeWindow = sample(p - radius - 1);
    const float* __restrict afterWindow = sample(p + radius + 1);
    const float* __restrict leaving = sample(p - radius);
    for (int l = 0; l < lanes; ++l) {
      result[l] = (sum[l] + endWeight * (beforeWindow[l] + afterWindow[l])) * scale;
      sum[l] += afterWindow[l] - leaving[l];
    }
  }
}

PAINTDOC_VECTOR_CLONES
void KernelPass(const float* in, float* out, int count, int lanes, const std::vector<float>& kernel) {
  const int reach = static_cast<int>(kernel.size() / 2);
  for (int p = 0; p < count; ++p) {
    float* __restrict result = out + static_cast<size_t>(p) * lanes;
    for (int l = 0; l < lanes; ++l) result[l] = 0.0f;
    for (int j = -reach; j <= reach; ++j) {
      const float* __restrict value = in + static_cast<size_t>(std::clamp(p + j, 0, count - 1)) * lanes;
      const float weight = kernel[static_cast<size_t>(j + reach)];
      for (int l = 0; l < lanes; ++l) result[l] += weight * value[l];
    }
  }
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

  void boxPass(const ExtendedBox& box) {
    ExtendedBoxPass(data.data(), scratch.data(), total(), lanes, box);
    data.swap(scratch);
  }
  void kernelPass(const std::vector<float>& kernel) {
    KernelPass(data.data(), scratch.data(), total(), lanes, kernel);
    data.swap(scratch);
  }

  void blur(const BlurPlan& plan, BlurEdges edges) {
    fillPadding(edges);
    if (!plan.kernel.empty()) {
      kernelPass(plan.kernel);
    } else {
      for (const ExtendedBox& box : plan.boxes) boxPass(box);
    }
  }
};

uint8_t ToSample(float value) {
  return static_cast<uint8_t>(std::clamp(value + 0.5f, 0.0f, 255.0f));
}

// Blocks of rows and strips of columns are blurred together, this many
// samples side by side: long enough for vectorised inner loops, short enough
// that a block's buffers stay in cache.
constexpr int kLanes = 64;
// Below this many samples (a few milliseconds of work) threading costs more
// than it saves: waking the workers and waiting for the slowest one, which on
// a busy machine may not be running at all.
constexpr long kParallelThreshold = 1 << 19;

// Rows are moved between the bitmap and the line buffer in tiles of this
// many pixels, so that both the reads and the writes stay within a few
// kilobytes (a transpose in cache-sized pieces).
constexpr int kTile = 16;

// Rows in blocks: sample x of every row of the block forms position x.
template <int kChannels>
void BlurRowBlocks(uint8_t* samples, int width, int height, size_t stride, const BlurPlan& plan,
                   BlurEdges edges) {
  constexpr int kRowsPerBlock = kLanes / kChannels;
  const int blocks = (height + kRowsPerBlock - 1) / kRowsPerBlock;
  bool parallel = ParallelPixelLoops() &&
                  static_cast<long>(width) * height * kChannels >= kParallelThreshold;
#pragma omp parallel if (parallel)
  {
    LaneBuffer line;
#pragma omp for schedule(static)
    for (int block = 0; block < blocks; ++block) {
      const int firstRow = block * kRowsPerBlock;
      const int rows = std::min(kRowsPerBlock, height - firstRow);
      const int lanes = rows * kChannels;
      line.resize(width, lanes, plan.reach);
      float* positions = line.at(line.pad);
      for (int x0 = 0; x0 < width; x0 += kTile) {
        const int tileEnd = std::min(width, x0 + kTile);
        for (int r = 0; r < rows; ++r) {
          const uint8_t* row = samples + stride * static_cast<size_t>(firstRow + r);
          for (int x = x0; x < tileEnd; ++x) {
            for (int c = 0; c < kChannels; ++c) {
              positions[static_cast<size_t>(x) * lanes + r * kChannels + c] = row[x * kChannels + c];
            }
          }
        }
      }
      line.blur(plan, edges);
      positions = line.at(line.pad);
      for (int x0 = 0; x0 < width; x0 += kTile) {
        const int tileEnd = std::min(width, x0 + kTile);
        for (int r = 0; r < rows; ++r) {
          uint8_t* row = samples + stride * static_cast<size_t>(firstRow + r);
          for (int x = x0; x < tileEnd; ++x) {
            for (int c = 0; c < kChannels; ++c) {
              row[x * kChannels + c] = ToSample(positions[static_cast<size_t>(x) * lanes + r * kChannels + c]);
            }
          }
        }
      }
    }
  }
}

void BlurRows(uint8_t* samples, int width, int height, size_t stride, int channels,
              const BlurPlan& plan, BlurEdges edges) {
  if (channels == 1) {
    BlurRowBlocks<1>(samples, width, height, stride, plan, edges);
  } else {
    BlurRowBlocks<Bitmap::kBytesPerPixel>(samples, width, height, stride, plan, edges);
  }
}

// Columns in strips: row y of the strip forms position y.
void BlurColumns(uint8_t* samples, int width, int height, size_t stride, int channels,
                 const BlurPlan& plan, BlurEdges edges) {
  const int stripWidth = std::max(1, kLanes / channels);
  const int strips = (width + stripWidth - 1) / stripWidth;
  bool parallel = ParallelPixelLoops() &&
                  static_cast<long>(width) * height * channels >= kParallelThreshold;
#pragma omp parallel if (parallel)
  {
    LaneBuffer column;
#pragma omp for schedule(static)
    for (int strip = 0; strip < strips; ++strip) {
      const int x0 = strip * stripWidth;
      const int lanes = std::min(stripWidth, width - x0) * channels;
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
