#include "ostrel/FieldTypes.h"
#include "scene/file/SceneReader.h"
#include "scene/run/Session.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <thread>

namespace {

struct Picture {
    std::string_view _sensor;
    std::uint32_t _format;
    int _bytesPerPixel;
    int _red, _green, _alpha; // places in a pixel; -1 where there is none
};

constexpr Picture pictures[] = {
    {"BGR", osg::Image::Bgr, 3, 2, 1, -1},
    {"RGB", osg::Image::Rgb, 3, 0, 1, -1},
    {"BGRA", osg::Image::Bgra, 4, 2, 1, 3},
    {"RGBA", osg::Image::Rgba, 4, 0, 1, 3},
    {"luminance", osg::Image::Luminance, 1, 0, -1, -1},
    {"ARGB", osg::Image::Rgb, 3, 0, 1, -1}, // converted
};

// Red is full at the right, green at the bottom, alpha at the left.
void expectPicture(const osg::Image& image, const Picture& expected)
{
    ASSERT_EQ(image.pixelFormat(), expected._format);
    ASSERT_EQ(image.width(), 64);
    ASSERT_EQ(image.height(), 48);
    const auto* const topRight = image.data() + 63 * expected._bytesPerPixel;
    const auto* const bottomLeft = image.data() + 47 * 64 * expected._bytesPerPixel;
    const auto expectChannel = [&](int place, int atTopRight, int atBottomLeft) {
        if (place < 0)
            return;
        EXPECT_EQ(topRight[place], atTopRight) << place;
        EXPECT_EQ(bottomLeft[place], atBottomLeft) << place;
    };
    expectChannel(expected._red, 255, 0);
    expectChannel(expected._green, 0, 255);
    expectChannel(expected._alpha, 0, 255);
}

TEST(Pictures, ReachImageFieldsInEveryFormat)
{
    Scenes::Session session;
    std::vector<Scenes::SceneFile> files;
    files.push_back(Scenes::readScene(PROJECT_FOLDER "/examples/pictures.toml"));
    session.build(std::move(files), [](const std::string& line) { ADD_FAILURE() << line; });
    const auto watches = session.watches();
    ASSERT_EQ(watches.size(), 2 * std::size(pictures));
    for (double now = 0; std::ranges::any_of(watches, [](auto* watch) { return watch->changes() == 0; }); ++now) {
        session.frame(now);
        std::this_thread::yield();
    }
    for (const Scenes::SensorWatch* watch : watches) {
        std::string name = watch->sensor().getName();
        SCOPED_TRACE(name);
        name.erase(0, name.starts_with("many ") ? 5 : 0);
        const auto* const expected = std::ranges::find(pictures, name, &Picture::_sensor);
        ASSERT_NE(expected, std::end(pictures));
        if (const auto* single = dynamic_cast<const Ostrel::SFImage*>(&watch->field())) {
            expectPicture(*single->value(), *expected);
            continue;
        }
        const auto& many = dynamic_cast<const Ostrel::MFImage&>(watch->field()).values();
        ASSERT_EQ(many.size(), 2U);
        for (const auto& image : many)
            expectPicture(*image, *expected);
    }
}
} // namespace
