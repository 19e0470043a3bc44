#include "osg/Image.h"

#include "tests/support/LogCapture.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

struct Call {
    const char* _name;
    std::uint32_t _format;
    std::int32_t _width, _height, _depth, _mipmaps, _frames;
    double _delay;
    std::uint32_t _type;
    std::int32_t _sides;
    std::int64_t _bytes; // -1: refused
};

TEST(Image, TakesExactlyWhatTheSizesAskForOrStaysAsItWas)
{
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    const std::vector<std::uint8_t> pixels(4096, 7);
    for (const Call& call : {Call{"RGB", 0x1907, 3, 2, 1, 1, 1, 0, 0x1401, 1, 18},
                             Call{"float, frames, sides", 0x1909, 3, 2, 2, 1, 2, 0.5, 0x1406, 6, 576},
                             Call{"mipmaps", 0x1908, 4, 2, 1, 3, 1, 0, 0x1401, 1, 44},
                             Call{"empty", 0x1907, 0, 0, 1, 1, 1, 0, 0x1401, 1, 0},
                             Call{"unknown format", 0x1900, 3, 2, 1, 1, 1, 0, 0x1401, 1, -1},
                             Call{"unknown type", 0x1907, 3, 2, 1, 1, 1, 0, 0x1400, 1, -1},
                             Call{"negative", 0x1907, -3, 2, 1, 1, 1, 0, 0x1401, 1, -1},
                             Call{"delay no number", 0x1907, 3, 2, 1, 1, 1, std::nan(""), 0x1401, 1, -1},
                             Call{"too many mipmaps", 0x1907, 3, 2, 1, 33, 1, 0, 0x1401, 1, -1},
                             Call{"too large", 0x1907, 40'000, 40'000, 1, 1, 1, 0, 0x1401, 1, -1},
                             Call{"overflow", 0x1908, most, most, most, 1, most, 0, 0x1406, most, -1}}) {
        SCOPED_TRACE(call._name);
        const LogCapture capture;
        osg::Image image;
        ASSERT_TRUE(image.set(osg::Image::Luminance, 1, 2));
        const bool taken = call._bytes >= 0;
        EXPECT_EQ(image.set(call._format, call._width, call._height, call._depth, call._mipmaps, call._frames,
                            call._delay, pixels.data(), call._type, true, call._sides),
                  taken);
        EXPECT_EQ(capture.entries().size(), taken ? 0U : 1U);
        ASSERT_EQ(image.size(), taken ? static_cast<std::size_t>(call._bytes) : 2U);
        EXPECT_TRUE(image.size() == 0 || image.data()[image.size() - 1] == (taken ? 7 : 0));
    }
}

} // namespace
