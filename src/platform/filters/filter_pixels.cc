#include "platform/filters/filter_pixels.h"

namespace paintdoc::filter_pixels {
namespace {

constexpr float kLumaRed = 0.2126f, kLumaGreen = 0.7152f, kLumaBlue = 0.0722f;

std::vector<float> Kernel(double sigma) {
  const int reach = std::max(1, static_cast<int>(std::ceil(3.5 * sigma)));
  std::vector<float> kernel(static_cast<size_t>(2 * reach + 1));
  double sum = 0;
  for (int i = -reach; i <= reach; ++i) {
    const double weight = std::exp(-0.5 * i * i / (sigma * sigma));
    kernel[static_cast<size_t>(i + reach)] = static_cast<float>(weight);
    sum += weight;
  }
  for (float& weight : kernel) weight = static_cast<float>(weight / sum);
  return kernel;
}

int EdgeIndex(int p, int count, FilterEdges edges) {
  if (p >= 0 && p < count) return p;
  return edges == FilterEdges::Transparent ? -1 : std::clamp(p, 0, count - 1);
}

// The kernel along each row of `in`.
void ConvolveRows(const Plane& in, Plane& out, const std::vector<float>& kernel, FilterEdges edges) {
  const int reach = static_cast<int>(kernel.size() / 2);
  ForEachRow(in.height, static_cast<long>(in.width) * in.height, [&](int row) {
    for (int x = 0; x < in.width; ++x) {
      float sum = 0;
      for (int k = -reach; k <= reach; ++k) {
        const int p = EdgeIndex(x + k, in.width, edges);
        if (p >= 0) sum += kernel[static_cast<size_t>(k + reach)] * in.at(p, row);
      }
      out.at(x, row) = sum;
    }
  });
}

// The kernel down each column of `in`, a whole row of sums at a time.
void ConvolveColumns(const Plane& in, Plane& out, const std::vector<float>& kernel,
                     FilterEdges edges) {
  const int reach = static_cast<int>(kernel.size() / 2);
  ForEachRow(in.height, static_cast<long>(in.width) * in.height, [&](int row) {
    float* __restrict sums = &out.at(0, row);
    std::fill(sums, sums + in.width, 0.0f);
    for (int k = -reach; k <= reach; ++k) {
      const int source = EdgeIndex(row + k, in.height, edges);
      if (source < 0) continue;
      const float weight = kernel[static_cast<size_t>(k + reach)];
      const float* __restrict values = &in.at(0, source);
      for (int x = 0; x < in.width; ++x) sums[x] += weight * values[x];
    }
  });
}

}  // namespace

Plane PremultipliedLuma(const Bitmap& bitmap) {
  Plane plane{bitmap.pixelsWide(), bitmap.pixelsHigh(), {}};
  plane.values.resize(static_cast<size_t>(plane.width) * plane.height);
  ForEachRow(plane.height, static_cast<long>(plane.width) * plane.height, [&](int row) {
    const uint8_t* pixel = bitmap.rowAt(row);
    for (int x = 0; x < plane.width; ++x, pixel += Bitmap::kBytesPerPixel) {
      plane.at(x, row) = (kLumaRed * pixel[Bitmap::kRed] + kLumaGreen * pixel[Bitmap::kGreen] +
                          kLumaBlue * pixel[Bitmap::kBlue]) / 255.0f;
    }
  });
  return plane;
}

Plane BlurPlane(const Plane& plane, double sigma, FilterEdges edges) {
  if (!(sigma > 0) || plane.values.empty()) return plane;
  const std::vector<float> kernel = Kernel(sigma);
  Plane across = plane, result = plane;
  ConvolveRows(plane, across, kernel, edges);
  ConvolveColumns(across, result, kernel, edges);
  return result;
}

}  // namespace paintdoc::filter_pixels
