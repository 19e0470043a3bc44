#include "osg/Image.h"

#include "tests/support/LogCapture.h"
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

struct Call {
    const char* _name;
    std::uint32_t _format;
    std::int32_t _width, _height, _depth, _mipmaps, _frames;
    double _delay;
    std::uint32_t _type;
    std::int32_t _sides;
    std::int64_t _bytes; // -1: refused
};

class ImageSet : public ::testing::TestWithParam<Call> {};

TEST_P(ImageSet, TakesExactlyWhatTheSizesAskFor)
{
    const Call& call = GetParam();
    const LogCapture capture;
    const std::vector<std::uint8_t> pixels(4096, 7);
    osg::Image image;
    ASSERT_TRUE(image.set(osg::Image::Luminance, 1, 2));
    EXPECT_EQ(image.set(call._format, call._width, call._height, call._depth, call._mipmaps, call._frames, call._delay,
                        pixels.data(), call._type, true, call._sides),
              call._bytes >= 0);
    EXPECT_EQ(capture.entries().size(), call._bytes >= 0 ? 0U : 1U);
    EXPECT_EQ(image.size(), call._bytes >= 0 ? static_cast<std::size_t>(call._bytes) : 2U);
    EXPECT_EQ(image.width(), call._bytes >= 0 ? call._width : 1);
    if (image.data()) {
        EXPECT_EQ(image.data()[image.size() - 1], call._bytes >= 0 ? 7 : 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ImageSet,
                         ::testing::Values(Call{"Rgb", 0x1907, 3, 2, 1, 1, 1, 0, 0x1401, 1, 18},
                                           Call{"Bgra", 0x80E1, 3, 2, 1, 1, 1, 0, 0x1401, 1, 24},
                                           Call{"FloatFramesSides", 0x1909, 3, 2, 2, 1, 2, 0.5, 0x1406, 6, 576},
                                           Call{"Mipmaps", 0x1908, 4, 2, 1, 3, 1, 0, 0x1401, 1, 44},
                                           Call{"Empty", 0x1907, 0, 0, 1, 1, 1, 0, 0x1401, 1, 0},
                                           Call{"UnknownFormat", 0x1900, 3, 2, 1, 1, 1, 0, 0x1401, 1, -1},
                                           Call{"UnknownType", 0x1907, 3, 2, 1, 1, 1, 0, 0x1400, 1, -1},
                                           Call{"Negative", 0x1907, -3, 2, 1, 1, 1, 0, 0x1401, 1, -1},
                                           Call{"NoFrame", 0x1907, 3, 2, 1, 1, 0, 0, 0x1401, 1, -1},
                                           Call{"BadDelay", 0x1907, 3, 2, 1, 1, 1,
                                                std::numeric_limits<double>::quiet_NaN(), 0x1401, 1, -1},
                                           Call{"TooManyMipmaps", 0x1907, 3, 2, 1, 33, 1, 0, 0x1401, 1, -1},
                                           Call{"TooLarge", 0x1907, 40'000, 40'000, 1, 1, 1, 0, 0x1401, 1, -1},
                                           Call{"Overflows", 0x1908, most, most, most, 1, most, 0, 0x1406, most, -1}),
                         [](const auto& row) { return std::string(row.param._name); });

TEST(Image, CopiesAreDeepAndHandlesShare)
{
    std::uint8_t pixel = 1;
    const osg::ImagePtr first;
    first->set(osg::Image::Luminance, 1, 1, 1, 1, 1, 0.0, &pixel);
    pixel = 2; // the image has its own
    const osg::ImagePtr second = first;
    osg::Image copy = *first;
    first->data()[0] = 9;
    EXPECT_EQ(second->data()[0], 9);
    EXPECT_EQ(copy.data()[0], 1);
    std::vector<osg::ImagePtr> several(2);
    several.resize(3);
    EXPECT_NE(several[0].get(), several[2].get());
    EXPECT_EQ(several[2]->data(), nullptr);
}

} // namespace
