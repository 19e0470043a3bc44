#include "nodes/dds/net/DdsDomain.h"
#include "nodes/dds/net/DdsQos.h"
#include "nodes/dds/wire/WireItem.h"
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

// hostilePeer DOMAIN PARTITION CASE: publishes one sample that no honest program would, on the topic "Target", waits
// until a subscriber has it, and says "sent".
namespace Trovio::Nodes {
namespace {

constexpr Trovio_Wire_Origin origin{1.0, 42, 1};
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// Sends the sample as a topic type of that name, whatever it is in truth.
class Sender {
public:
    Sender(unsigned domain, const std::string& partition)
        : _domain(DdsDomain::open({domain, "lo", {}, 0.5, 32, 67108864})),
          _participant(dds_create_participant(domain, nullptr, nullptr), "participant")
    {
        _quality._partition = partition;
    }

    void send(dds_topic_descriptor_t type, const char* typeName, const void* sample)
    {
        type.m_typename = typeName;
        const DdsQos group = makeGroupQos(_quality), qos = makeWriterQos(_quality);
        const DdsEntity topic(dds_create_topic(_participant.get(), &type, "Target", qos.get(), nullptr), "topic");
        const DdsEntity publisher(dds_create_publisher(_participant.get(), group.get(), nullptr), "publisher");
        const DdsEntity writer(dds_create_writer(publisher.get(), topic.get(), qos.get(), nullptr), "writer");
        dds_publication_matched_status_t matched{};
        while (matched.current_count == 0) {
            dds_get_publication_matched_status(writer.get(), &matched);
            dds_sleepfor(DDS_MSECS(5));
        }
        const DdsEntity written(dds_write(writer.get(), sample), "write");
        const DdsEntity taken(dds_wait_for_acks(writer.get(), DDS_INFINITY), "wait for the subscriber");
        std::puts("sent");
    }

private:
    DdsQuality _quality;
    std::shared_ptr<DdsDomain> _domain;
    DdsEntity _participant;
};

void send(Sender& sender, const std::string& which)
{
    std::vector<float> numbers{1.0F, 2.0F, nan, 4.0F};
    std::vector<char> truths(2 << 20, 1);
    std::vector<std::uint8_t> pixels(12);
    Trovio_Wire_Vec3fArray vectors{origin, {}};
    Trovio_Wire_Float number{origin, 1.0F};
    Trovio_Wire_Image image{origin, {Image::RGB, 2, 2, {}}};
    Trovio_Wire_BoolArray bytes{origin, {}};
    referTo(vectors.value, numbers.data(), which == "cutVector" ? 4 : 3);
    referTo(image.value.pixels, pixels.data(), pixels.size());
    referTo(bytes.value, reinterpret_cast<const bool*>(truths.data()), which == "endlessText" ? truths.size() : 64);
    if (which == "noNumber")
        number.value = nan;
    else if (which == "noTime")
        number.origin.stamp = static_cast<double>(nan);
    else if (which == "farTime")
        number.origin.stamp = 1e300;
    else if (which == "unknownFormat")
        image.value.format = 3;
    else if (which == "hugePicture")
        image.value.width = image.value.height = 4'294'967'295U;

    if (which == "cutVector" || which == "noNumberInside")
        sender.send(Trovio_Wire_Vec3fArray_desc, "Trovio::Wire::Vec3fArray", &vectors);
    else if (which == "unknownFormat" || which == "hugePicture")
        sender.send(Trovio_Wire_Image_desc, "Trovio::Wire::Image", &image);
    else if (which == "endlessText")
        sender.send(Trovio_Wire_BoolArray_desc, "Trovio::Wire::String", &bytes);
    else if (which == "falseLengths")
        sender.send(Trovio_Wire_BoolArray_desc, "Trovio::Wire::StringArray", &bytes);
    else
        sender.send(Trovio_Wire_Float_desc, "Trovio::Wire::Float", &number);
}

} // namespace
} // namespace Trovio::Nodes

int main(int count, char** arguments)
{
    if (count != 4)
        return 2;
    try {
        Trovio::Nodes::Sender sender(static_cast<unsigned>(std::stoul(arguments[1])), arguments[2]);
        Trovio::Nodes::send(sender, arguments[3]);
    } catch (const Trovio::Nodes::DdsProblem& problem) {
        std::fprintf(stderr, "%s\n", problem.what());
        return 1;
    }
    return 0;
}
