#pragma once

#include "benchmarks/harness/Fan.h"
#include <string>
#include <zmq.hpp>

namespace Bench {

/// The context of all sockets in this program: inproc needs no thread of its own.
inline zmq::context_t& zmqContext()
{
    static zmq::context_t context(0, 20'000);
    return context;
}

inline std::string freshInprocAddress()
{
    static int last = 0;
    return "inproc://" + std::to_string(++last);
}

/// ZeroMQ within the process: a pair for one reader, publish and subscribe for more. A subscriber keeps the newest
/// message only, as an in-slot does.
class ZmqFan {
public:
    explicit ZmqFan(std::size_t readers)
        : _writer(zmqContext(), readers == 1 ? zmq::socket_type::pair : zmq::socket_type::pub)
    {
        const std::string address = freshInprocAddress();
        _writer.bind(address);
        for (std::size_t i = 0; i < readers; ++i) {
            zmq::socket_t& reader =
                _readers.emplace_back(zmqContext(), readers == 1 ? zmq::socket_type::pair : zmq::socket_type::sub);
            if (readers != 1) {
                reader.set(zmq::sockopt::conflate, 1);
                reader.set(zmq::sockopt::subscribe, "");
            }
            reader.connect(address);
        }
        // A writer learns of its readers in its own time, and drops what comes before.
        for (std::size_t i = 0; i < readers; ++i)
            while (!poll(i))
                push();
    }

    void push() { _writer.send(zmq::buffer(&someRecord, sizeof someRecord), zmq::send_flags::none); }

    void take(std::size_t i) { receive(i, zmq::recv_flags::none); }
    bool poll(std::size_t i) { return receive(i, zmq::recv_flags::dontwait); }

private:
    bool receive(std::size_t i, zmq::recv_flags flags)
    {
        const bool came = _readers[i].recv(zmq::buffer(&_record, sizeof _record), flags).has_value();
        keep(_record);
        return came;
    }

    zmq::socket_t _writer;
    std::vector<zmq::socket_t> _readers;
    Record _record{};
};

} // namespace Bench
