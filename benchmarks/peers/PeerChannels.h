#pragma once

#include "benchmarks/peers/Dds.h"
#include "benchmarks/peers/ZmqFan.h"
#include "benchmarks/threads/Channels.h"
#include <boost/signals2/signal.hpp>
#include <concurrentqueue/blockingconcurrentqueue.h>
#include <condition_variable>
#include <mutex>
#include <readerwriterqueue/readerwriterqueue.h>

namespace Bench {

/// Signals2 into a value that a mutex guards, with a condition variable for whoever waits.
class SignalChannel {
public:
    SignalChannel()
    {
        _signal.connect([this](const Record& record) {
            {
                const std::lock_guard guard(_lock);
                _record = record;
                _fresh = true;
            }
            _came.notify_one();
        });
    }
    void push() { _signal(someRecord); }
    void take()
    {
        std::unique_lock guard(_lock);
        _came.wait(guard, [this] { return _fresh; });
        _fresh = false;
        const Record record = _record;
        keep(record);
    }

private:
    std::mutex _lock;
    std::condition_variable _came;
    Record _record{};
    bool _fresh = false;
    boost::signals2::signal<void(const Record&)> _signal;
};

/// A queue that a reader can wait at; its writer and its reader spin for a while before they sleep.
template <class Queue>
class QueueChannel {
public:
    void push() { _queue.enqueue(someRecord); }
    void take()
    {
        Record record;
        _queue.wait_dequeue(record);
        keep(record);
    }

private:
    Queue _queue{1024};
};

using MoodycamelOneToOneChannel = QueueChannel<moodycamel::BlockingReaderWriterQueue<Record>>;
using MoodycamelManyToManyChannel = QueueChannel<moodycamel::BlockingConcurrentQueue<Record>>;

using ZmqChannel = FanChannel<ZmqFan>;

/// Cyclone DDS with a waitset on the reader.
class DdsChannel {
public:
    DdsChannel() : _topic(BenchDds_Record_desc), _reader(_topic.makeReader()), _writer(_topic.makeWriter())
    {
        const dds_entity_t condition = Dds::check(dds_create_readcondition(_reader, DDS_ANY_STATE), "condition");
        Dds::check(dds_waitset_attach(_waitset, condition, condition), "attach");
    }
    DdsChannel(const DdsChannel&) = delete;
    DdsChannel& operator=(const DdsChannel&) = delete;
    ~DdsChannel() { dds_delete(_waitset); }

    void push() { Dds::check(dds_write(_writer, &_out), "write"); }
    void take()
    {
        void* samples[] = {&_in};
        dds_sample_info_t info;
        while (Dds::check(dds_take(_reader, samples, &info, 1, 1), "take") == 0)
            Dds::check(dds_waitset_wait(_waitset, nullptr, 0, DDS_INFINITY), "wait");
        keep(_in);
    }

private:
    Dds::Topic _topic;
    const dds_entity_t _reader, _writer;
    const dds_entity_t _waitset = Dds::check(dds_create_waitset(Dds::participant()), "waitset");
    BenchDds_Record _out{};
    BenchDds_Record _in{};
};

} // namespace Bench
