#include "trovio/Image.h"
#include "trovio/Exception.h"
#include <algorithm>
#include <gtest/gtest.h>

using Trovio::Image;

namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(Image, ConvertsEveryPixelInItsPlace)
{
    const struct {
        const char* _name;
        Image::Format _from;
        Bytes _pixel;
        Image::Format _to;
        Bytes _expected;
    } rows[] = {{"Bgr", Image::BGR, {1, 2, 3}, Image::RGB, {3, 2, 1}},
                {"Bgra", Image::BGRA, {1, 2, 3, 4}, Image::RGB, {3, 2, 1}},
                {"Rgba", Image::RGBA, {1, 2, 3, 4}, Image::RGB, {1, 2, 3}},
                {"Argb", Image::ARGB, {4, 1, 2, 3}, Image::RGB, {1, 2, 3}},
                {"Abgr", Image::ABGR, {4, 3, 2, 1}, Image::RGB, {1, 2, 3}},
                {"Grey", Image::Luminance, {77}, Image::RGB, {77, 77, 77}},
                {"GreyAlpha", Image::LuminanceAlpha, {77, 5}, Image::RGB, {77, 77, 77}},
                {"WideGrey", Image::Luminance16, {9, 77}, Image::RGB, {77, 77, 77}},
                {"OpaqueWithoutAlpha", Image::RGB, {1, 2, 3}, Image::BGRA, {3, 2, 1, 255}},
                {"GreyBesideAlpha", Image::Luminance, {9}, Image::LuminanceAlpha, {9, 255}},
                {"AlphaKept", Image::RGBA, {1, 2, 3, 4}, Image::ARGB, {4, 1, 2, 3}},
                {"GreyKept", Image::RGB, {200, 200, 200}, Image::Luminance, {200}},
                {"WhiteInSixteenBits", Image::RGB, {255, 255, 255}, Image::Luminance16, {255, 255}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row._name);
        const auto converted = [&row](const std::uint8_t* pixel) {
            Image alone(row._from, 1, 1);
            std::copy_n(pixel, row._pixel.size(), alone.getData());
            EXPECT_TRUE(alone.convertFormat(row._to, alone)) << "in place";
            return Bytes(alone.getData(), alone.getData() + alone.getDataSize());
        };
        EXPECT_EQ(converted(row._pixel.data()), row._expected);
        Image image(row._from, 17, 5); // more pixels than are moved at once, and some left over
        for (std::size_t i = 0; i < image.getDataSize(); ++i)
            image.getData()[i] = static_cast<std::uint8_t>(37 * i);
        Image whole;
        ASSERT_TRUE(image.convertFormat(row._to, whole));
        EXPECT_EQ(std::tuple(whole.getFormat(), whole.getWidth(), whole.getHeight()), std::tuple(row._to, 17U, 5U));
        Bytes expected;
        for (std::size_t pixel = 0; pixel < 17 * 5; ++pixel)
            for (const std::uint8_t byte : converted(image.getData() + pixel * row._pixel.size()))
                expected.push_back(byte);
        EXPECT_EQ(Bytes(whole.getData(), whole.getData() + whole.getDataSize()), expected);
    }
}

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
