#include "trovio/Image.h"
#include "trovio/Exception.h"
#include <algorithm>
#include <gtest/gtest.h>

using Trovio::Image;

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Conversion {
    const char* _name;
    Image::Format _from;
    Bytes _pixel;
    Image::Format _to;
    Bytes _expected;
};

class ImageConverts : public ::testing::TestWithParam<Conversion> {};

TEST_P(ImageConverts, EveryPixel)
{
    const auto& row = GetParam();
    constexpr unsigned width = 17; // in all more pixels than are moved at once, and some left over
    constexpr unsigned height = 5;
    Image image(row._from, width, height);
    ASSERT_EQ(image.getDataSize(), width * height * row._pixel.size());
    for (std::size_t i = 0; i < image.getDataSize(); ++i)
        image.getData()[i] = row._pixel[i % row._pixel.size()];
    Image result;
    ASSERT_TRUE(image.convertFormat(row._to, result));
    EXPECT_EQ(std::tuple(result.getFormat(), result.getWidth(), result.getHeight()),
              std::tuple(row._to, width, height));
    ASSERT_EQ(result.getDataSize(), width * height * row._expected.size());
    for (std::size_t i = 0; i < result.getDataSize(); ++i)
        ASSERT_EQ(result.getData()[i], row._expected[i % row._expected.size()]) << "byte " << i;
    ASSERT_TRUE(image.convertFormat(row._to, image));
    EXPECT_EQ(image, result) << "in place";
}

TEST_P(ImageConverts, EachPixelInItsPlace)
{
    const auto& row = GetParam();
    Image image(row._from, 17, 5);
    for (std::size_t i = 0; i < image.getDataSize(); ++i)
        image.getData()[i] = static_cast<std::uint8_t>(37 * i);
    Image whole;
    ASSERT_TRUE(image.convertFormat(row._to, whole));
    const std::size_t fromBytes = row._pixel.size(), toBytes = row._expected.size();
    for (std::size_t pixel = 0; pixel < 17 * 5; ++pixel) {
        Image alone(row._from, 1, 1);
        std::copy_n(image.getData() + pixel * fromBytes, fromBytes, alone.getData());
        ASSERT_TRUE(alone.convertFormat(row._to, alone));
        EXPECT_TRUE(std::equal(alone.getData(), alone.getData() + toBytes, whole.getData() + pixel * toBytes)) << pixel;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, ImageConverts,
    ::testing::Values(Conversion{"Bgr", Image::BGR, {1, 2, 3}, Image::RGB, {3, 2, 1}},
                      Conversion{"Bgra", Image::BGRA, {1, 2, 3, 4}, Image::RGB, {3, 2, 1}},
                      Conversion{"Rgba", Image::RGBA, {1, 2, 3, 4}, Image::RGB, {1, 2, 3}},
                      Conversion{"Argb", Image::ARGB, {4, 1, 2, 3}, Image::RGB, {1, 2, 3}},
                      Conversion{"Abgr", Image::ABGR, {4, 3, 2, 1}, Image::RGB, {1, 2, 3}},
                      Conversion{"Grey", Image::Luminance, {77}, Image::RGB, {77, 77, 77}},
                      Conversion{"GreyAlpha", Image::LuminanceAlpha, {77, 5}, Image::RGB, {77, 77, 77}},
                      Conversion{"WideGrey", Image::Luminance16, {9, 77}, Image::RGB, {77, 77, 77}},
                      Conversion{"OpaqueWithoutAlpha", Image::RGB, {1, 2, 3}, Image::BGRA, {3, 2, 1, 255}},
                      Conversion{"GreyBesideAlpha", Image::Luminance, {9}, Image::LuminanceAlpha, {9, 255}},
                      Conversion{"AlphaKept", Image::RGBA, {1, 2, 3, 4}, Image::ARGB, {4, 1, 2, 3}},
                      Conversion{"GreyKept", Image::RGB, {200, 200, 200}, Image::Luminance, {200}},
                      Conversion{"WhiteInSixteenBits", Image::RGB, {255, 255, 255}, Image::Luminance16, {255, 255}}),
    [](const auto& row) { return std::string(row.param._name); });

TEST(Image, RefusesWhatCannotBeConverted)
{
    const Image rgb(Image::RGB, 1, 1);
    Image result = rgb;
    EXPECT_FALSE(Image(Image::Depth, 1, 1).convertFormat(Image::RGB, result));
    EXPECT_FALSE(Image(Image::None, 4, 4).convertFormat(Image::Depth, result));
    EXPECT_FALSE(rgb.convertFormat(static_cast<Image::Format>(3), result));
    EXPECT_EQ(result, rgb);
    EXPECT_TRUE(Image().convertFormat(Image::RGB, result));
    EXPECT_TRUE(Image(Image::None, 4, 4).convertFormat(Image::RGB, result)) << "no pixels";
    EXPECT_TRUE(result.empty() && result.getFormat() == Image::RGB && result.getWidth() == 0);
}

TEST(Image, SizesAreCheckedBeforeAnythingIsAllocated)
{
    EXPECT_THROW(Image(Image::RGBA, 65537, 1), Trovio::Exception);
    EXPECT_THROW(Image(Image::RGBA, 65536, 65536), Trovio::Exception);
    EXPECT_THROW(Image(static_cast<Image::Format>(99), 1, 1), Trovio::Exception);
}

} // namespace
