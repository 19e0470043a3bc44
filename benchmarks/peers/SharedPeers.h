#pragma once

#include "benchmarks/peers/Dds.h"
#include "benchmarks/peers/ZmqFan.h"
#include <boost/signals2/signal.hpp>
#include <memory>
#include <mutex>

namespace Bench {

/// Signals2 with shared pointers into values that a mutex guards. Two arrays take turns.
class SignalSharedFan {
public:
    SignalSharedFan(std::size_t readers, std::size_t size)
        : _arrays{std::make_shared<Array>(size), std::make_shared<Array>(size)}
    {
        for (std::size_t i = 0; i < readers; ++i)
            _signal.connect([cell = _cells.emplace_back(std::make_unique<Cell>()).get()](const Handle& handle) {
                const std::lock_guard guard(cell->_lock);
                cell->_handle = handle;
                cell->_fresh = true;
            });
    }

    void push()
    {
        _signal(_arrays[0]);
        _arrays[0].swap(_arrays[1]);
    }

private:
    using Array = std::vector<float>;
    using Handle = std::shared_ptr<const Array>;
    struct Cell {
        std::mutex _lock;
        Handle _handle;
        bool _fresh = false;
    };
    Handle _arrays[2];
    std::vector<std::unique_ptr<Cell>> _cells;
    boost::signals2::signal<void(const Handle&)> _signal;
};

/// ZeroMQ with messages that refer to an array of ours; two take turns. Subscribers keep the newest message.
class ZmqSharedFan {
public:
    ZmqSharedFan(std::size_t readers, std::size_t size) : _arrays{Array(size), Array(size)}
    {
        const std::string address = freshInprocAddress();
        _writer.bind(address);
        for (std::size_t i = 0; i < readers; ++i) {
            zmq::socket_t& reader = _readers.emplace_back(zmqContext(), zmq::socket_type::sub);
            reader.set(zmq::sockopt::conflate, 1);
            reader.set(zmq::sockopt::subscribe, "");
            reader.connect(address);
        }
        for (zmq::socket_t& reader : _readers)
            for (zmq::message_t message; !reader.recv(message, zmq::recv_flags::dontwait);)
                push();
    }

    void push()
    {
        zmq::message_t message(_arrays[0].data(), _arrays[0].size() * sizeof(float), [](void*, void*) {});
        _writer.send(message, zmq::send_flags::none);
        _arrays[0].swap(_arrays[1]);
    }

private:
    using Array = std::vector<float>;
    Array _arrays[2];
    zmq::socket_t _writer{zmqContext(), zmq::socket_type::pub};
    std::vector<zmq::socket_t> _readers;
};

/// Cyclone DDS, which copies the array for its readers.
class DdsSharedFan {
public:
    DdsSharedFan(std::size_t readers, std::size_t size) : _topic(BenchDds_Array_desc), _values(size)
    {
        for (std::size_t i = 0; i < readers; ++i)
            _topic.makeReader();
        _writer = _topic.makeWriter();
        _out.values._buffer = _values.data();
        _out.values._length = _out.values._maximum = static_cast<std::uint32_t>(size);
    }

    void push() { Dds::check(dds_write(_writer, &_out), "write"); }

private:
    Dds::Topic _topic;
    std::vector<float> _values;
    dds_entity_t _writer = 0;
    BenchDds_Array _out{};
};

} // namespace Bench
