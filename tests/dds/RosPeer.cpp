// ros-peer DOMAIN: another vendor's DDS library in the place of a ROS 2 system. What comes on rt/forth/MESSAGE is read
// into the message's members, and these are written to rt/back/MESSAGE, with the same time stamp. It has to be killed.
#include <csignal>
#include <cstdio>
#include <fastcdr/Cdr.h>
#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/domain/DomainParticipantFactory.hpp>
#include <fastdds/dds/publisher/DataWriter.hpp>
#include <fastdds/dds/publisher/Publisher.hpp>
#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/DataReaderListener.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>
#include <fastdds/dds/subscriber/Subscriber.hpp>
#include <fastdds/dds/topic/TopicDataType.hpp>
#include <fastdds/rtps/transport/UDPv4TransportDescriptor.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

namespace fast = eprosima::fastdds::dds;
namespace rtps = eprosima::fastrtps::rtps;
using eprosima::fastcdr::Cdr;

/// Members in their order on the wire, one after another: each(f) calls f for every one.
template <class T, std::size_t count = 1>
struct Run {
    std::array<T, count> _members;
    template <class F>
    void each(F f)
    {
        for (T& member : _members)
            f(member);
    }
};
struct Stamp {
    std::int32_t _seconds;
    std::uint32_t _nanoseconds;
    template <class F>
    void each(F f)
    {
        f(_seconds), f(_nanoseconds);
    }
};
template <class T>
struct MultiArray {
    std::uint32_t _dimensions, _offset; // no dimension is ever sent here
    std::vector<T> _data;
    template <class F>
    void each(F f)
    {
        f(_dimensions), f(_offset), f(_data);
    }
};
struct Image {
    Stamp _stamp;
    std::string _frame;
    std::uint32_t _height, _width;
    std::string _encoding;
    std::uint8_t _bigEndian;
    std::uint32_t _step;
    std::vector<std::uint8_t> _data;
    template <class F>
    void each(F f)
    {
        _stamp.each(f);
        f(_frame), f(_height), f(_width), f(_encoding), f(_bigEndian), f(_step), f(_data);
    }
};

template <class Message>
class Type final : public fast::TopicDataType {
public:
    explicit Type(const char* name)
    {
        setName(name);
        m_typeSize = 1U << 20U;
    }
    bool serialize(void* data, rtps::SerializedPayload_t* payload) override
    {
        eprosima::fastcdr::FastBuffer buffer(reinterpret_cast<char*>(payload->data), payload->max_size);
        Cdr cdr(buffer, Cdr::DEFAULT_ENDIAN, Cdr::DDS_CDR);
        cdr.serialize_encapsulation();
        static_cast<Message*>(data)->each([&cdr](const auto& member) { cdr << member; });
        payload->encapsulation = CDR_LE;
        payload->length = static_cast<std::uint32_t>(cdr.getSerializedDataLength());
        return true;
    }
    bool deserialize(rtps::SerializedPayload_t* payload, void* data) override
    {
        eprosima::fastcdr::FastBuffer buffer(reinterpret_cast<char*>(payload->data), payload->length);
        Cdr cdr(buffer, Cdr::DEFAULT_ENDIAN, Cdr::DDS_CDR);
        cdr.read_encapsulation();
        static_cast<Message*>(data)->each([&cdr](auto& member) { cdr >> member; });
        return true;
    }
    std::function<std::uint32_t()> getSerializedSizeProvider(void*) override
    {
        return [this] { return m_typeSize; };
    }
    void* createData() override { return new Message(); }
    void deleteData(void* data) override { delete static_cast<Message*>(data); }
    bool getKey(void*, rtps::InstanceHandle_t*, bool) override { return false; }
};

template <class Message>
class Echo final : public fast::DataReaderListener {
public:
    Echo(fast::DomainParticipant& participant, const std::string& package, const std::string& message)
    {
        const std::string type = package + "::msg::dds_::" + message + "_";
        fast::TypeSupport(new Type<Message>(type.c_str())).register_type(&participant);
        auto* forth = participant.create_topic("rt/forth/" + message, type, fast::TOPIC_QOS_DEFAULT);
        auto* back = participant.create_topic("rt/back/" + message, type, fast::TOPIC_QOS_DEFAULT);
        // What a ROS 2 system asks for where nothing else is said.
        fast::DataWriterQos writing;
        writing.reliability().kind = fast::RELIABLE_RELIABILITY_QOS;
        writing.durability().kind = fast::VOLATILE_DURABILITY_QOS;
        writing.endpoint().history_memory_policy = rtps::PREALLOCATED_WITH_REALLOC_MEMORY_MODE;
        fast::DataReaderQos reading;
        reading.reliability().kind = fast::RELIABLE_RELIABILITY_QOS;
        reading.endpoint().history_memory_policy = rtps::PREALLOCATED_WITH_REALLOC_MEMORY_MODE;
        _writer = participant.create_publisher(fast::PUBLISHER_QOS_DEFAULT)->create_datawriter(back, writing);
        participant.create_subscriber(fast::SUBSCRIBER_QOS_DEFAULT)->create_datareader(forth, reading, this);
    }

    void on_data_available(fast::DataReader* reader) override
    {
        Message message{};
        fast::SampleInfo info;
        while (reader->take_next_sample(&message, &info) == ReturnCode_t::RETCODE_OK)
            if (info.valid_data)
                _writer->write_w_timestamp(&message, {}, info.source_timestamp.to_duration_t());
    }

private:
    fast::DataWriter* _writer;
};

/// On the loopback, without multicast; peers are looked for at the first few places of this machine.
fast::DomainParticipantQos makeQos()
{
    fast::DomainParticipantQos qos;
    const auto transport = std::make_shared<eprosima::fastdds::rtps::UDPv4TransportDescriptor>();
    transport->interfaceWhiteList.emplace_back("127.0.0.1");
    qos.transport().use_builtin_transports = false;
    qos.transport().user_transports.push_back(transport);
    rtps::Locator_t peer;
    eprosima::fastrtps::rtps::IPLocator::setIPv4(peer, 127, 0, 0, 1);
    qos.wire_protocol().builtin.initialPeersList.push_back(peer);
    qos.wire_protocol().builtin.avoid_builtin_multicast = true;
    return qos;
}

} // namespace

int main(int, char** arguments)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    auto& factory = *fast::DomainParticipantFactory::get_instance();
    auto* participant = factory.create_participant(static_cast<std::uint32_t>(std::stoul(arguments[1])), makeQos());
    if (!participant)
        return 1;
    const Echo<Run<bool>> truth(*participant, "std_msgs", "Bool");
    const Echo<Run<float, 4>> color(*participant, "std_msgs", "ColorRGBA");
    const Echo<Run<double>> wide(*participant, "std_msgs", "Float64");
    const Echo<Run<float>> narrow(*participant, "std_msgs", "Float32");
    const Echo<Run<std::int64_t>> whole(*participant, "std_msgs", "Int64");
    const Echo<Run<std::string>> text(*participant, "std_msgs", "String");
    const Echo<MultiArray<double>> wides(*participant, "std_msgs", "Float64MultiArray");
    const Echo<MultiArray<float>> narrows(*participant, "std_msgs", "Float32MultiArray");
    const Echo<MultiArray<std::int64_t>> wholes(*participant, "std_msgs", "Int64MultiArray");
    const Echo<Run<double, 7>> pose(*participant, "geometry_msgs", "Pose");
    const Echo<Run<double, 4>> turn(*participant, "geometry_msgs", "Quaternion");
    const Echo<Run<double, 3>> point(*participant, "geometry_msgs", "Point");
    const Echo<Run<float, 3>> point32(*participant, "geometry_msgs", "Point32");
    const Echo<Stamp> time(*participant, "builtin_interfaces", "Time");
    const Echo<Image> image(*participant, "sensor_msgs", "Image");
    std::puts("ready");
    std::fflush(stdout);
    for (;;)
        ::pause();
}
