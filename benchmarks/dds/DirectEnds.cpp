#include "benchmarks/dds/DirectEnds.h"

#include "SlotSamples.h" // generated
#include "nodes/dds/net/DdsDomain.h"
#include "nodes/dds/net/DdsQos.h"
#include <functional>
#include <semaphore>
#include <thread>
#include <vector>

namespace Bench {

namespace {

using namespace Trovio::Nodes;

/// As a DDS node has it where its settings say nothing else.
DdsDomainSettings domainSettings(unsigned number)
{
    DdsDomainSettings settings;
    settings._number = number;
    settings._interface = "lo";
    settings._processes = 32;
    settings._largest = 1U << 26U;
    return settings;
}

const dds_topic_descriptor_t& descriptor(Load load)
{
    return load == Load::Vector ? Trovio_Wire_Vec3f_desc : Trovio_Wire_FloatArray_desc;
}

/// A participant with a topic that it writes and one that it reads.
class Ends {
public:
    Ends(const Meeting& meeting, const std::string& out, Load outLoad, const std::string& in, Load inLoad,
         Taking taking, std::function<void()> taken)
        : _taken(std::move(taken)),
          _domain(DdsDomain::open(domainSettings(meeting._domain))),
          _participant(dds_create_participant(meeting._domain, nullptr, nullptr), "participant")
    {
        DdsQuality quality;
        quality._depth = quality._readerDepth = 64;
        const DdsQos written = makeWriterQos(quality), read = makeReaderQos(quality);
        const auto topic = [&](const std::string& name, Load load) {
            return dds_create_topic(_participant.get(), &descriptor(load), name.c_str(), nullptr, nullptr);
        };
        _writer =
            DdsEntity(dds_create_writer(_participant.get(), topic(out, outLoad), written.get(), nullptr), "writer");
        dds_listener_t* listener = dds_create_listener(this);
        if (taking == Taking::Listener)
            dds_lset_data_available(listener, [](dds_entity_t, void* self) { static_cast<Ends*>(self)->takeAll(); });
        _waitset = DdsEntity(dds_create_waitset(_participant.get()), "waitset");
        _reader = DdsEntity(dds_create_reader(_participant.get(), topic(in, inLoad), read.get(), listener), "reader");
        dds_delete_listener(listener);
        dds_set_status_mask(_reader.get(), DDS_DATA_AVAILABLE_STATUS);
        dds_waitset_attach(_waitset.get(), _reader.get(), 0);
        dds_waitset_attach(_waitset.get(), _waitset.get(), 0);
    }

    void write(const void* sample)
    {
        while (dds_write(_writer.get(), sample) == DDS_RETCODE_TIMEOUT) {
        }
    }

    /// Calls taken for each sample that is there.
    void takeAll()
    {
        for (;;) {
            void* sample = nullptr;
            dds_sample_info_t info{};
            if (dds_take(reader(), &sample, &info, 1, 1) <= 0)
                return;
            if (info.valid_data)
                _taken();
            dds_return_loan(reader(), &sample, 1);
        }
    }
    /// Returns after a second at the latest.
    void wait() { dds_waitset_wait(_waitset.get(), nullptr, 0, DDS_SECS(1)); }
    void stopWaiting() { dds_waitset_set_trigger(_waitset.get(), true); }

private:
    dds_entity_t reader() const { return _reader.get(); }

    const std::function<void()> _taken;
    const std::shared_ptr<DdsDomain> _domain;
    const DdsEntity _participant;
    DdsEntity _writer, _waitset, _reader;
};

class NearDirect final : public NearEnd {
public:
    NearDirect(const Meeting& meeting, Taking taking)
        : _load(meeting._load),
          _taking(taking),
          _numbers(arrayLength, 1.0F),
          _ends(meeting, meeting.forth(), meeting._load, meeting.back(), Load::Vector, taking,
                [this] { _answers.release(); })
    {
        _array.value._buffer = _numbers.data();
        _array.value._length = _array.value._maximum = arrayLength;
    }

    void send() override { _ends.write(_load == Load::Vector ? static_cast<const void*>(&_vector) : &_array); }

    void take() override
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        bool answered = _taking == Taking::Listener ? _answers.try_acquire_until(end) : _answers.try_acquire();
        while (!answered && std::chrono::steady_clock::now() < end) {
            _ends.wait();
            _ends.takeAll();
            answered = _answers.try_acquire();
        }
        if (!answered)
            throw std::runtime_error("the other process did not answer within 10 s");
    }

    bool poll() override
    {
        if (_taking == Taking::Waitset)
            _ends.takeAll();
        return _answers.try_acquire();
    }

private:
    const Load _load;
    const Taking _taking;
    std::vector<float> _numbers;
    Trovio_Wire_Vec3f _vector{{1e9, 1, 1}, {0.1F, 1.6F, -0.3F}};
    Trovio_Wire_FloatArray _array{};
    std::counting_semaphore<> _answers{0}; // that were taken
    Ends _ends;
};

class FarDirect final : public FarEnd {
public:
    FarDirect(const Meeting& meeting, Taking taking)
        : _ends(meeting, meeting.back(), Load::Vector, meeting.forth(), meeting._load, taking,
                [this] { _ends.write(&_answer); })
    {
        if (taking == Taking::Waitset)
            _thread = std::thread([this] {
                while (!_stopping) {
                    _ends.wait();
                    _ends.takeAll();
                }
            });
    }
    ~FarDirect() override
    {
        _stopping = true;
        _ends.stopWaiting();
        if (_thread.joinable())
            _thread.join();
    }

private:
    const Trovio_Wire_Vec3f _answer{{1e9, 1, 1}, {0.1F, 1.6F, -0.3F}};
    std::atomic<bool> _stopping{false};
    Ends _ends;
    std::thread _thread;
};

} // namespace

std::unique_ptr<NearEnd> makeNearDirect(const Meeting& meeting, Taking taking)
{
    return std::make_unique<NearDirect>(meeting, taking);
}

std::unique_ptr<FarEnd> makeFarDirect(const Meeting& meeting, Taking taking)
{
    return std::make_unique<FarDirect>(meeting, taking);
}

} // namespace Bench
