#pragma once

#include "benchmarks/harness/Fan.h"
#include "benchmarks/peers/Dds.h"

namespace Bench {

/// Cyclone DDS within the process.
class DdsFan {
public:
    explicit DdsFan(std::size_t readers) : _topic(BenchDds_Record_desc)
    {
        for (std::size_t i = 0; i < readers; ++i)
            _readers.push_back(_topic.makeReader());
        _writer = _topic.makeWriter();
        std::copy_n(someRecord._value, 3, _out.value);
        _out.time = someRecord._time;
    }

    void push() { Dds::check(dds_write(_writer, &_out), "write"); }

    bool poll(std::size_t i)
    {
        void* samples[] = {&_in};
        dds_sample_info_t info;
        const bool came = Dds::check(dds_take(_readers[i], samples, &info, 1, 1), "take") != 0;
        keep(_in);
        return came;
    }
    void take(std::size_t i) { poll(i); }

private:
    Dds::Topic _topic;
    std::vector<dds_entity_t> _readers;
    dds_entity_t _writer = 0;
    BenchDds_Record _out{};
    BenchDds_Record _in{};
};

} // namespace Bench
