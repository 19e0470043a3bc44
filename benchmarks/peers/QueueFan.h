#pragma once

#include "benchmarks/harness/Fan.h"
#include <boost/lockfree/queue.hpp>
#include <boost/lockfree/spsc_queue.hpp>
#include <concurrentqueue/concurrentqueue.h>
#include <readerwriterqueue/readerwriterqueue.h>

namespace Bench {

/// What the queues have in common, under one name each. All hold at least 1,024 records.
class MoodycamelOneToOne {
public:
    bool put(const Record& record) { return _queue.try_enqueue(record); }
    bool get(Record& record) { return _queue.try_dequeue(record); }

private:
    moodycamel::ReaderWriterQueue<Record> _queue{1024};
};

class MoodycamelManyToMany {
public:
    bool put(const Record& record) { return _queue.enqueue(record); }
    bool get(Record& record) { return _queue.try_dequeue(record); }

private:
    moodycamel::ConcurrentQueue<Record> _queue{1024};
};

class LockfreeOneToOne {
public:
    bool put(const Record& record) { return _queue.push(record); }
    bool get(Record& record) { return _queue.pop(record); }

private:
    boost::lockfree::spsc_queue<Record, boost::lockfree::capacity<1024>> _queue;
};

class LockfreeManyToMany {
public:
    bool put(const Record& record) { return _queue.push(record); }
    bool get(Record& record) { return _queue.pop(record); }

private:
    boost::lockfree::queue<Record, boost::lockfree::capacity<1024>> _queue;
};

/// A queue for each reader. Weaker than a slot: a full queue refuses the newest record, and nobody can wait.
template <class Queue>
class QueueFan {
public:
    explicit QueueFan(std::size_t readers)
    {
        for (std::size_t i = 0; i < readers; ++i)
            _queues.push_back(std::make_unique<Queue>());
    }

    void push()
    {
        for (const auto& queue : _queues)
            queue->put(someRecord);
    }

    bool poll(std::size_t i)
    {
        const bool came = _queues[i]->get(_record);
        keep(_record);
        return came;
    }
    void take(std::size_t i) { poll(i); }

private:
    std::vector<std::unique_ptr<Queue>> _queues;
    Record _record{};
};

} // namespace Bench
