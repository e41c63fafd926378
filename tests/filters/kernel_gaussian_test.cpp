// SPDX-License-Identifier: MIT
/// Kernel Gaussian. Rounding is part of the contract: floats are compared bit for bit on purpose, a differing
/// last bit is a failure, and EXPECT_NEAR is not the remedy.
#include "filters/kernel_gaussian.h"

#include "image_size.h"
#include "random_image.h"
#include "same_bits.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <new>
#include <omp.h>
#include <vector>

namespace {

using umbrixlib::test::ImageSize;
using umbrixlib::test::random_image;
using umbrixlib::test::Values;

constexpr ImageSize kSizes[] = {{1, 1}, {5, 1}, {1, 5}, {3, 3}, {16, 9}, {31, 40}};
constexpr float kRadii[] = {1.0f, 2.5f, 3.0f, 7.25f, 40.0f};

std::vector<float> kernel_of(float radius)
{
    float* kernel = nullptr;
    int const length = makeKernel(kernel, radius);
    std::unique_ptr<float[]> const owner(kernel);
    return {kernel, kernel + length};
}

// ---- The convolution as it is defined, one pixel after the other ----

namespace plain {

double d(float value)
{
    return static_cast<double>(value);
}

float f(double value)
{
    return static_cast<float>(value);
}

std::vector<float> kernel_of(float radius)
{
    int const n = static_cast<int>(std::ceil(radius));
    float const sigma = f(d(radius) / 3.0);
    float const two_sigma_squared = f(d(sigma) * 2.0 * d(sigma));
    float const norm = f(std::sqrt(d(f(d(sigma) * 6.283185307179586))));
    std::vector<float> kernel;
    float sum = 0.0f;
    for (int i = -n; i <= n; ++i) {
        auto const square = static_cast<float>(i * i);
        float weight = 0.0f;
        if (!(square > f(d(radius) * d(radius)))) {
            weight = f(d(f(std::exp(d(f(d(-square) / d(two_sigma_squared)))))) / d(norm));
        }
        kernel.push_back(weight);
        sum = f(d(sum) + d(weight));
    }
    for (float& weight : kernel) {
        weight = f(d(weight) / d(sum));
    }
    return kernel;
}

template <typename Pixel>
std::vector<Pixel> convolve_and_transpose(std::vector<float> const& kernel, std::vector<Pixel> const& source,
                                          int width, int height, bool clamp_edges)
{
    constexpr std::size_t kComponents = sizeof(Pixel) / sizeof(float);
    int const half = static_cast<int>(kernel.size()) / 2;
    std::vector<Pixel> destination(source.size());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (std::size_t c = 0; c < kComponents; ++c) {
                float sum = 0.0f;
                for (int k = -half; k <= half; ++k) {
                    float const weight = kernel[static_cast<std::size_t>(half + k)];
                    if (weight == 0.0f) {
                        continue;
                    }
                    int t = x + k;
                    if (t < 0) {
                        t = clamp_edges ? 0 : (x + width) % width;
                    } else if (t >= width) {
                        t = clamp_edges ? width - 1 : (x + width) % width;
                    }
                    auto const* const pixel =
                        reinterpret_cast<float const*>(&source[static_cast<std::size_t>(y * width + t)]);
                    double const product = d(pixel[c]) * d(weight);
                    sum = kComponents == 1 ? f(product + d(sum)) : f(d(sum) + d(f(product)));
                }
                reinterpret_cast<float*>(&destination[static_cast<std::size_t>(y + x * height)])[c] = sum;
            }
        }
    }
    return destination;
}

template <typename Pixel>
std::vector<Pixel> blurred(std::vector<Pixel> const& source, ImageSize size, float radius, bool clamp_edges)
{
    bool const clamp = clamp_edges && !std::is_same_v<Pixel, float>;
    auto const kernel = kernel_of(radius);
    auto const rows = convolve_and_transpose(kernel, source, size.width, size.height, clamp);
    return convolve_and_transpose(kernel, rows, size.height, size.width, clamp);
}

} // namespace plain

template <typename Pixel>
std::vector<Pixel> convolved(std::vector<float> kernel, std::vector<Pixel> source, ImageSize size,
                             int clamp_edges)
{
    std::vector<Pixel> destination(source.size());
    convolveAndTranspose(kernel.data(), source.data(), destination.data(), size.width, size.height,
                         static_cast<int>(kernel.size()), clamp_edges);
    return destination;
}

template <typename Pixel>
std::vector<Pixel> blurred(std::vector<Pixel> const& image, ImageSize size, float radius, bool clamp_edges)
{
    std::vector<Pixel> source = image;
    std::vector<Pixel> destination(image.size());
    blur(source.data(), destination.data(), size.width, size.height, radius, clamp_edges);
    EXPECT_SAME_BITS(image, source);
    return destination;
}

/// Nested parallel regions for as long as it lives, three threads, each with a team of three.
class Nested {
public:
    Nested()
    {
        omp_set_dynamic(0);
        omp_set_num_threads(3);
        omp_set_max_active_levels(2);
    }
    Nested(Nested const&) = delete;
    Nested& operator=(Nested const&) = delete;
    ~Nested()
    {
        omp_set_max_active_levels(before_);
        omp_set_num_threads(omp_get_num_procs());
    }

private:
    int before_ = omp_get_max_active_levels();
};

class KernelGaussian : public testing::Test {
protected:
    void SetUp() override { omp_set_max_active_levels(1); }
};

template <typename Pixel>
class KernelGaussianOf : public KernelGaussian {
};

using Pixels = testing::Types<float, float3, float4>;
TYPED_TEST_SUITE(KernelGaussianOf, Pixels);

TYPED_TEST(KernelGaussianOf, ConvolutionEqualsItsDefinitionBitForBit)
{
    for (ImageSize const size : kSizes) {
        for (float const radius : kRadii) {
            for (int const clamp : {0, 1, -1, 256}) {
                auto const image = random_image<TypeParam>(size.pixels(), 3, Values::kHostile);
                auto const kernel = kernel_of(radius);
                EXPECT_SAME_BITS(
                    plain::convolve_and_transpose(kernel, image, size.width, size.height, clamp != 0),
                    convolved(kernel, image, size, clamp))
                    << size.width << "x" << size.height << " radius " << radius << " clamp " << clamp;
            }
        }
    }
}

TYPED_TEST(KernelGaussianOf, AnyKernelIsTakenAsItIs)
{
    constexpr ImageSize kSize{11, 6};
    auto const image = random_image<TypeParam>(kSize.pixels(), 4, Values::kSigned);
    for (std::size_t const length : {1U, 3U, 9U, 41U}) {
        auto kernel = random_image<float>(length, 5, Values::kSigned);
        kernel[length / 3] = 0.0f;
        kernel[length - 1] = -0.0f;
        for (bool const clamp : {false, true}) {
            EXPECT_SAME_BITS(plain::convolve_and_transpose(kernel, image, kSize.width, kSize.height, clamp),
                             convolved(kernel, image, kSize, clamp ? 1 : 0));
        }
    }
}

TYPED_TEST(KernelGaussianOf, BlurEqualsItsDefinitionBitForBit)
{
    for (ImageSize const size : kSizes) {
        for (float const radius : kRadii) {
            for (bool const clamp : {false, true}) {
                auto const image = random_image<TypeParam>(size.pixels(), 6, Values::kSigned);
                EXPECT_SAME_BITS(plain::blurred(image, size, radius, clamp),
                                 blurred(image, size, radius, clamp))
                    << size.width << "x" << size.height << " radius " << radius << " clamp " << clamp;
            }
        }
    }
}

TYPED_TEST(KernelGaussianOf, BlurMayWorkInPlace)
{
    constexpr ImageSize kSize{23, 14};
    auto image = random_image<TypeParam>(kSize.pixels(), 7);
    for (bool const clamp : {false, true}) {
        auto const expected = blurred(image, kSize, 2.5f, clamp);
        auto actual = image;
        blur(actual.data(), actual.data(), kSize.width, kSize.height, 2.5f, clamp);
        EXPECT_SAME_BITS(expected, actual);
    }
}

TYPED_TEST(KernelGaussianOf, AConstantImageStaysConstantInBothModes)
{
    constexpr ImageSize kSize{9, 5};
    std::vector<TypeParam> image(kSize.pixels());
    auto* const floats = reinterpret_cast<float*>(image.data());
    std::size_t const count = image.size() * sizeof(TypeParam) / sizeof(float);
    std::fill_n(floats, count, 0.5f);
    for (bool const clamp : {false, true}) {
        auto const result = blurred(image, kSize, 6.0f, clamp);
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_NEAR(reinterpret_cast<float const*>(result.data())[i], 0.5f, 1e-6f);
        }
    }
}

TYPED_TEST(KernelGaussianOf, ARadiusOfZeroMakesEverythingNaN)
{
    constexpr ImageSize kSize{4, 3};
    auto const image = random_image<TypeParam>(kSize.pixels(), 8);
    auto const result = blurred(image, kSize, 0.0f, true);
    for (std::size_t i = 0; i < result.size() * sizeof(TypeParam) / sizeof(float); ++i) {
        EXPECT_TRUE(std::isnan(reinterpret_cast<float const*>(result.data())[i]));
    }
}

TYPED_TEST(KernelGaussianOf, TheLastTapOfAnEvenKernelIsLeftOutAndNoKernelGivesZeros)
{
    constexpr ImageSize kSize{6, 4};
    auto image = random_image<TypeParam>(kSize.pixels(), 9);
    std::vector<float> const even{0.25f, 0.5f, 0.125f, 0.75f};
    std::vector<float> odd = even;
    odd.push_back(0.0f);
    EXPECT_SAME_BITS(convolved(odd, image, kSize, 1), convolved(even, image, kSize, 1));
    for (int const size : {0, -1, -3, std::numeric_limits<int>::min()}) {
        std::vector<TypeParam> result = image;
        convolveAndTranspose(nullptr, image.data(), result.data(), kSize.width, kSize.height, size, 0);
        EXPECT_SAME_BITS(std::vector<TypeParam>(image.size()), result);
    }
}

TYPED_TEST(KernelGaussianOf, DoesNothingWithoutWidthOrHeight)
{
    auto image = random_image<TypeParam>(6, 10);
    auto const before = random_image<TypeParam>(6, 11);
    auto actual = before;
    std::vector<float> kernel = kernel_of(1.0f);
    for (ImageSize const size : {ImageSize{0, 6}, ImageSize{6, 0}, ImageSize{0, 0}, ImageSize{-2, 3},
                                 ImageSize{3, -2}, ImageSize{-2, -3}}) {
        convolveAndTranspose(kernel.data(), image.data(), actual.data(), size.width, size.height, 3, 1);
        blur(image.data(), actual.data(), size.width, size.height, 2.0f, true);
    }
    EXPECT_SAME_BITS(before, actual);
}

TYPED_TEST(KernelGaussianOf, ANegativeRadiusRaisesAndLeavesTheDestinationAlone)
{
    auto image = random_image<TypeParam>(6, 12);
    auto const before = random_image<TypeParam>(6, 13);
    auto actual = before;
    EXPECT_THROW(blur(image.data(), actual.data(), 3, 2, -2.0f, true), std::bad_array_new_length);
    EXPECT_SAME_BITS(before, actual);
}

TEST_F(KernelGaussian, KernelsEqualTheirDefinitionBitForBit)
{
    for (float const radius : {0.01f, 0.5f, 1.0f, 1.5f, 2.0f, 2.5f, 3.0f, 10.75f, 100.0f, 1000.5f}) {
        EXPECT_SAME_BITS(plain::kernel_of(radius), kernel_of(radius)) << radius;
    }
}

/// Each rounding on the way shows at some of these radii; that of sigma * 2 pi at 1.082 and few others.
TEST_F(KernelGaussian, KernelsRoundAtEveryStep)
{
    for (int thousandths = 1; thousandths <= 6000; ++thousandths) {
        float const radius = static_cast<float>(thousandths) / 1000.0f;
        ASSERT_TRUE(umbrixlib::test::same_bits(plain::kernel_of(radius), kernel_of(radius))) << radius;
    }
}

TEST_F(KernelGaussian, AWholeRadiusUsesTheWholeKernel)
{
    auto const kernel = kernel_of(3.0f);
    ASSERT_EQ(kernel.size(), 7U);
    float sum = 0.0f;
    for (std::size_t i = 0; i < 7; ++i) {
        EXPECT_GT(kernel[i], 0.0f) << i;
        EXPECT_EQ(kernel[i], kernel[6 - i]);
        sum += kernel[i];
    }
    EXPECT_NEAR(sum, 1.0f, 1e-6f);
    EXPECT_EQ(kernel_of(1.0f).size(), 3U);
    EXPECT_NEAR(kernel_of(1.0f)[0] / kernel_of(1.0f)[1], std::exp(-4.5f), 1e-6f) << "sigma is one third";
}

TEST_F(KernelGaussian, AFractionalRadiusLeavesZerosAtTheTipsWhichReadNothing)
{
    auto const kernel = kernel_of(2.5f);
    ASSERT_EQ(kernel.size(), 7U);
    EXPECT_EQ(kernel[0], 0.0f);
    EXPECT_EQ(kernel[6], 0.0f);
    EXPECT_GT(kernel[1], 0.0f);
    std::vector<float> row(7, 0.5f);
    row[0] = row[6] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(std::isnan(convolved(kernel, row, {7, 1}, 0)[3])) << "three texels off on either side";
}

TEST_F(KernelGaussian, ARadiusOfZeroIsOneWeightThatIsNoNumber)
{
    for (float const radius : {0.0f, -0.0f, -0.5f}) {
        auto const kernel = kernel_of(radius);
        ASSERT_EQ(kernel.size(), 1U);
        EXPECT_TRUE(std::isnan(kernel[0])) << radius;
    }
}

TEST_F(KernelGaussian, ALengthThatCannotBeRaisesAndLeavesThePointerAlone)
{
    float mark = 0.0f;
    for (float const radius : {-1.0f, -1000.0f, 1.5e9f, 1e20f, -1e20f, std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN()}) {
        float* kernel = &mark;
        EXPECT_THROW(makeKernel(kernel, radius), std::bad_array_new_length) << radius;
        EXPECT_EQ(kernel, &mark);
    }
}

TEST_F(KernelGaussian, SquaresBeyondAnIntWrapAround)
{
    auto const kernel = kernel_of(70000.0f);
    ASSERT_EQ(kernel.size(), 140001U);
    EXPECT_EQ(kernel[70000 - 65536], kernel[70000]) << "65536 squared is 0 in 32 bits";
}

TEST_F(KernelGaussian, TheFloatFormNeverClamps)
{
    constexpr ImageSize kSize{12, 9};
    auto const image = random_image<float>(kSize.pixels(), 14);
    auto const result = blurred(image, kSize, 4.0f, true);
    EXPECT_SAME_BITS(blurred(image, kSize, 4.0f, false), result);
    auto const clamped =
        plain::convolve_and_transpose(kernel_of(4.0f), image, kSize.width, kSize.height, true);
    EXPECT_FALSE(umbrixlib::test::same_bits(
        plain::convolve_and_transpose(kernel_of(4.0f), clamped, kSize.height, kSize.width, true), result));
    auto const pixels = random_image<float3>(kSize.pixels(), 15);
    EXPECT_FALSE(
        umbrixlib::test::same_bits(blurred(pixels, kSize, 4.0f, false), blurred(pixels, kSize, 4.0f, true)));
}

TEST_F(KernelGaussian, WithoutClampingATapOutsideReadsTheCentre)
{
    std::vector<float> row(20, 0.0f);
    row[0] = 1.0f;
    auto const kernel = kernel_of(3.0f);
    auto const edge = convolved(kernel, row, {20, 1}, 0);
    float const outside = kernel[0] + kernel[1] + kernel[2];
    EXPECT_NEAR(edge[0], kernel[3] + outside, 1e-6f);
    EXPECT_EQ(edge[19], 0.0f) << "nothing wraps around";
    EXPECT_EQ(edge[1], kernel[2]) << "its outer taps read pixel 1, not the edge";
    EXPECT_GT(convolved(kernel, row, {20, 1}, 1)[1], edge[1]);
    std::vector<float> middle(20, 0.0f);
    middle[10] = 1.0f;
    EXPECT_GT(edge[0], convolved(kernel, middle, {20, 1}, 0)[10]);
}

TEST_F(KernelGaussian, TheResultLiesTransposed)
{
    std::vector<float> const image{1, 2, 3, 4, 5, 6};
    EXPECT_EQ(convolved({1.0f}, image, {3, 2}, 0), (std::vector<float>{1, 4, 2, 5, 3, 6}));
}

TEST_F(KernelGaussian, FloatTapsRoundOnceAndPixelTapsTwice)
{
    // The product is 2^-24 * (1 + 2^-27). Rounded by itself it is 2^-24, and the sum with 1 a tie that goes
    // down.
    float const factor = 1.0f + 0x1p-9f;
    float const weight = 0x1p-24f * (1.0f - 0x1p-9f + 0x1p-18f);
    std::vector<float> const kernel{1.0f, weight, 0.0f};
    EXPECT_EQ(convolved(kernel, std::vector<float>{1.0f, factor}, {2, 1}, 0)[1], 1.0f + 0x1p-23f);
    std::vector<float3> const threes{{1.0f, 0.0f, 1.0f}, {factor, 0.0f, factor}};
    EXPECT_EQ(convolved(kernel, threes, {2, 1}, 0)[1].z, 1.0f);
    std::vector<float4> const fours{{0.0f, 0.0f, 0.0f, 1.0f}, {0.0f, 0.0f, 0.0f, factor}};
    EXPECT_EQ(convolved(kernel, fours, {2, 1}, 0)[1].w, 1.0f);
}

TEST_F(KernelGaussian, TheNumberOfThreadsDoesNotShowWhileNestingIsOff)
{
    constexpr ImageSize kSize{37, 29};
    auto const image = random_image<float>(kSize.pixels(), 17);
    auto const expected = plain::blurred(image, kSize, 3.5f, false);
    omp_set_dynamic(0);
    for (int const threads : {1, 2, 3, 8}) {
        omp_set_num_threads(threads);
        EXPECT_SAME_BITS(expected, blurred(image, kSize, 3.5f, false)) << threads;
    }
    omp_set_num_threads(omp_get_num_procs());
}

TEST_F(KernelGaussian, ThreadsThatShareARowWriteItInAnyOrder)
{
    constexpr ImageSize kSize{40, 6};
    auto const image = random_image<float>(kSize.pixels(), 18);
    auto const kernel = kernel_of(2.0f);
    auto expected = plain::convolve_and_transpose(kernel, image, kSize.width, kSize.height, false);
    constexpr std::size_t kMargin = 64;
    std::vector<float> guarded(kSize.pixels() + 2 * kMargin, -7.0f);
    {
        Nested const nested;
        for (int run = 0; run < 50; ++run) {
            std::fill(guarded.begin(), guarded.end(), -7.0f);
            convolveAndTranspose(const_cast<float*>(kernel.data()), const_cast<float*>(image.data()),
                                 guarded.data() + kMargin, kSize.width, kSize.height,
                                 static_cast<int>(kernel.size()), 0);
            for (std::size_t i = 0; i < kMargin; ++i) {
                ASSERT_EQ(guarded[i], -7.0f);
                ASSERT_EQ(guarded[guarded.size() - 1 - i], -7.0f);
            }
            for (std::size_t y = 0; y < kSize.rows(); ++y) {
                std::vector<float> wanted;
                std::vector<float> got;
                for (std::size_t x = 0; x < kSize.columns(); ++x) {
                    wanted.push_back(expected[y + x * kSize.rows()]);
                    got.push_back(guarded[kMargin + y + x * kSize.rows()]);
                }
                std::sort(wanted.begin(), wanted.end());
                std::sort(got.begin(), got.end());
                ASSERT_EQ(wanted, got) << "row " << y;
            }
        }
    }
}

TEST_F(KernelGaussian, PixelsOfSeveralComponentsKeepTheirPlacesWithNesting)
{
    constexpr ImageSize kSize{40, 6};
    auto const image = random_image<float3>(kSize.pixels(), 19);
    auto const expected = plain::blurred(image, kSize, 2.0f, true);
    Nested const nested;
    EXPECT_SAME_BITS(expected, blurred(image, kSize, 2.0f, true));
}

TEST_F(KernelGaussian, AlphaIsBlurredLikeTheOtherComponents)
{
    constexpr ImageSize kSize{15, 8};
    auto image = random_image<float4>(kSize.pixels(), 20);
    for (float4& pixel : image) {
        pixel.w = pixel.x;
    }
    for (float4 const& pixel : blurred(image, kSize, 2.0f, true)) {
        EXPECT_EQ(pixel.w, pixel.x);
    }
}

} // namespace
