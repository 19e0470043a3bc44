#include "nodes/dds/wire/RosTypes.h"
#include "tests/dds/DdsFixture.h"
#include "tests/host/HostProcess.h"
#include "tests/nodes/SampleValues.h"
#include <cmath>

namespace Trovio::Nodes {
namespace {

template <class T>
std::string messageOf()
{
    const std::string name = RosType<T>::Name;
    return name.substr(name.rfind('/') + 1);
}

/// Values that the message can say; the others among the samples are refused.
template <class T>
bool isCarried(const T&)
{
    return true;
}
bool isCarried(const std::string& text)
{
    return text.find('\0') == std::string::npos;
}
bool isCarried(const SharedImage& image)
{
    return image && image->getFormat() != Image::None;
}

template <class T>
std::vector<T> rosSamples()
{
    return sampleValues<T>();
}

template <>
std::vector<Matrix4<double>> rosSamples()
{
    // No turn, one about z, half ones about each axis and one about a slanting axis.
    const std::array<std::array<double, 9>, 6> rows{{{1, 0, 0, 0, 1, 0, 0, 0, 1},
                                                     {0.8, -0.6, 0, 0.6, 0.8, 0, 0, 0, 1},
                                                     {1, 0, 0, 0, -1, 0, 0, 0, -1},
                                                     {-1, 0, 0, 0, 1, 0, 0, 0, -1},
                                                     {-1, 0, 0, 0, -1, 0, 0, 0, 1},
                                                     {0, 0, 1, 1, 0, 0, 0, 1, 0}}};
    std::vector<Matrix4<double>> matrices(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t k = 0; k < 9; ++k) {
            const std::size_t row = k / 3;
            matrices[i][row * 4 + k % 3] = rows[i][k];
            matrices[i][row * 4 + 3] = static_cast<double>(row + i) - 2;
        }
    return matrices;
}

template <class T>
bool isClose(const T& left, const T& right)
{
    if constexpr (Numeric<T>) {
        for (std::size_t i = 0; i < Components<T>::Count; ++i)
            if (!(std::fabs(Components<T>::get(left, i) - Components<T>::get(right, i)) < 1e-6))
                return false;
        return true;
    }
    return isSame(left, right);
}

/// "forth/Bool Bool, forth/ColorRGBA ColorRGBA, ...". Float and double matrices share a message, so one is left out.
template <class Use>
void forEachMessage(Use use)
{
    forEachRosType([&]<class T>(TypeTag<T> type) {
        if constexpr (!std::is_same_v<T, Matrix4<float>>)
            use(type);
    });
}
std::string topics(const std::string& way)
{
    std::string list;
    forEachMessage([&]<class T>(TypeTag<T>) {
        list += (list.empty() ? "" : ", ") + way + messageOf<T>() + " " + TypeName<T>::getName();
    });
    return list;
}

/// Pushes the values, and reads them as they come back; how many were refused.
template <class T>
std::uint64_t exchange(Feed<T>& feed, Probe<T>& probe)
{
    // The peer keeps nothing for those who join later, so a value is sent until one comes back.
    while (probe.slot().empty()) {
        feed.push(rosSamples<T>()[2], 1.0);
        std::this_thread::yield();
    }
    double stamp = 1'700'000'000.125;
    std::uint64_t refused = 0;
    for (const auto& sample : rosSamples<T>()) {
        const T value = sample; // of truth values there is only a copy

        feed.push(value, ++stamp);
        if (!isCarried(value)) {
            ++refused;
            continue;
        }
        Data<T> arrived = probe.next();
        while (arrived.getTimeStamp() == Time(1.0))
            arrived = probe.next();
        EXPECT_TRUE(isClose(arrived.getValue(), value)) << TypeName<T>::getName();
        EXPECT_EQ(arrived.getTimeStamp(), Time(stamp)) << TypeName<T>::getName();
    }
    return refused;
}

TEST(DdsRos, MessagesGoToAnotherVendorsLibraryAndBack)
{
    const OpenRoot root;
    HostProcess peer(ROS_PEER, {std::to_string(domainOfTest())});
    ASSERT_TRUE(peer.waitFor("ready")) << peer.err();
    StandingNode<DdsNode> node(std::make_unique<DdsNode>(Clock::system()),
                               "ros2=yes label=ros publish='" + topics("forth/") + "' subscribe='" + topics("back/") +
                                   "' lease=0.5 domain=" + std::to_string(domainOfTest()));
    std::uint64_t refused = 0;
    forEachMessage([&]<class T>(TypeTag<T>) {
        Probe<T> probe("ros/back/" + messageOf<T>());
        Feed<T> feed("ros/forth/" + messageOf<T>());
        refused += exchange(feed, probe);
    });
    EXPECT_EQ(node.count("out failed"), refused);
    EXPECT_EQ(node.count("in refused"), 0U);
}

} // namespace
} // namespace Trovio::Nodes
