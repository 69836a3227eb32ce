#include "platform/graphics/gaussian_blur.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/golden_image.h"
#include "support/pixel_math.h"

namespace paintdoc {
namespace {

using test::BlurredBox;
using test::NormalCdf;

// A vertical step: columns left of `edge` transparent, the rest opaque grey-blue.
std::shared_ptr<Bitmap> Step(int width, int height, int edge) {
  return test::MakeImage(width, height, [=](int x, int) {
    return x < edge ? Rgba8{} : Rgba8{60, 120, 255, 255};
  });
}

// Both kernels (exact below σ 3, box passes above) follow the Gaussian's
// distribution function across a step, on every channel, within 2 codes.
TEST(GaussianBlur, StepEdgeFollowsTheNormalDistribution) {
  for (double sigma : {0.8, 1.5, 2.9, 3.0, 4.0, 10.0, 25.0}) {
    auto bitmap = Step(200, 3, 100);
    GaussianBlur(*bitmap, sigma, BlurEdges::Clamp);
    auto expected = test::MakeImage(200, 3, [&](int x, int) {
      double coverage = NormalCdf((x + 0.5 - 100) / sigma);
      return test::PixelValue{60 / 255.0, 120 / 255.0, 1, 1}.operator*(coverage).toRgba8();
    });
    EXPECT_TRUE(test::ImagesMatch(*bitmap, *expected, 2,
                                  "blur_step_" + std::to_string(static_cast<int>(sigma * 10))));
  }
}

TEST(GaussianBlur, ClampedEdgesKeepAUniformImageAndTransparentEdgesFade) {
  auto uniform = test::MakeImage(60, 50, [](int, int) { return Rgba8{10, 20, 30, 255}; });
  auto clamped = uniform->copy();
  GaussianBlur(*clamped, 6, BlurEdges::Clamp);
  EXPECT_TRUE(test::ImagesMatch(*clamped, *uniform, 0, "blur_clamped_uniform"));

  GaussianBlur(*uniform, 6, BlurEdges::Transparent);
  // At a corner a quarter of the kernel lies inside: Φ(0.5/σ)² of the value.
  double corner = NormalCdf(0.5 / 6) * NormalCdf(0.5 / 6);
  EXPECT_NEAR(test::PixelAt(*uniform, 0, 0).alpha, 255 * corner, 2);
  EXPECT_EQ(test::PixelAt(*uniform, 30, 25).alpha, 255);  // over 4σ from every edge
}

TEST(GaussianBlur, SingleChannelBlurOfABoxMatchesTheProductOfOneDimensionalBlurs) {
  for (double sigma : {2.0, 7.0}) {
    constexpr int kSize = 64;
    std::vector<uint8_t> mask(kSize * kSize, 0);
    for (int y = 20; y < 40; ++y)
      for (int x = 24; x < 36; ++x) mask[y * kSize + x] = 255;
    GaussianBlurChannel(mask.data(), kSize, kSize, kSize, sigma, BlurEdges::Transparent);
    int worst = 0;
    for (int y = 0; y < kSize; ++y) {
      for (int x = 0; x < kSize; ++x) {
        double value = 255 * BlurredBox(x, 24, 36, sigma) * BlurredBox(y, 20, 40, sigma);
        worst = std::max(worst, std::abs(mask[y * kSize + x] - static_cast<int>(std::lround(value))));
      }
    }
    // Box passes (σ 7) trade up to 3 codes in two dimensions for speed.
    EXPECT_LE(worst, sigma < kExactBlurMaxSigma ? 1 : 3) << "sigma " << sigma;
  }
}

TEST(GaussianBlur, KeepsPremultipliedColourWithinAlphaAndIgnoresNonPositiveSigma) {
  auto bitmap = test::MakeImage(40, 40, [](int x, int y) {
    uint8_t alpha = static_cast<uint8_t>((x * 37 + y * 91) % 256);
    return Rgba8{alpha, static_cast<uint8_t>(alpha / 2), 0, alpha};
  });
  auto original = bitmap->copy();
  GaussianBlur(*bitmap, 0, BlurEdges::Transparent);
  GaussianBlur(*bitmap, -3, BlurEdges::Transparent);
  EXPECT_TRUE(bitmap->samePixels(*original));
  GaussianBlur(*bitmap, 5, BlurEdges::Transparent);
  for (int row = 0; row < 40; ++row) {
    for (int x = 0; x < 40; ++x) {
      Rgba8 p = bitmap->pixelAt(x, row);
      ASSERT_LE(p.red, p.alpha);
      ASSERT_LE(p.green, p.alpha);
    }
  }
}

TEST(GaussianBlur, ReachCoversTheVisibleSpread) {
  EXPECT_EQ(GaussianBlurReach(0), 0);
  for (double sigma : {1.0, 2.5, 3.0, 12.0, 40.0}) {
    EXPECT_GE(GaussianBlurReach(sigma), 3 * sigma) << sigma;
    EXPECT_LE(GaussianBlurReach(sigma), 5 * sigma + 2) << sigma;
  }
}

}  // namespace
}  // namespace paintdoc
