#pragma once

#include "benchmarks/peers/ZmqFan.h"
#include "benchmarks/threads/Stream.h"
#include <boost/lockfree/spsc_queue.hpp>
#include <readerwriterqueue/readerwritercircularbuffer.h>
#include <thread>

namespace Bench {

// None of these drops a record: a writer waits while the buffer is full.

class ZmqStream {
public:
    ZmqStream()
    {
        const std::string address = freshInprocAddress();
        _writer.set(zmq::sockopt::sndhwm, static_cast<int>(streamCapacity / 2));
        _reader.set(zmq::sockopt::rcvhwm, static_cast<int>(streamCapacity / 2)); // the two add up
        _reader.bind(address);
        _writer.connect(address);
    }
    void push(double number)
    {
        Record record = someRecord;
        record._time = number;
        _writer.send(zmq::buffer(&record, sizeof record), zmq::send_flags::none);
    }
    double take()
    {
        Record record{};
        (void)_reader.recv(zmq::buffer(&record, sizeof record), zmq::recv_flags::none);
        return record._time;
    }

private:
    zmq::socket_t _writer{zmqContext(), zmq::socket_type::push};
    zmq::socket_t _reader{zmqContext(), zmq::socket_type::pull};
};

class MoodycamelStream {
public:
    void push(double number)
    {
        Record record = someRecord;
        record._time = number;
        _buffer.wait_enqueue(record);
    }
    double take()
    {
        Record record;
        _buffer.wait_dequeue(record);
        return record._time;
    }

private:
    moodycamel::BlockingReaderWriterCircularBuffer<Record> _buffer{streamCapacity};
};

/// Nobody sleeps here: who cannot go on yields.
class LockfreeStream {
public:
    void push(double number)
    {
        Record record = someRecord;
        record._time = number;
        while (!_queue.push(record))
            std::this_thread::yield();
    }
    double take()
    {
        Record record;
        while (!_queue.pop(record))
            std::this_thread::yield();
        return record._time;
    }

private:
    boost::lockfree::spsc_queue<Record, boost::lockfree::capacity<streamCapacity>> _queue;
};

} // namespace Bench
