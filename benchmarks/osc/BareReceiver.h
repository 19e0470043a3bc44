#pragma once

#include "benchmarks/floor/FloorSlot.h"
#include "benchmarks/harness/Fan.h"
#include "benchmarks/osc/Sender.h"
#include <atomic>
#include <thread>

namespace Bench {

/// What a program would write for this one message: a thread that takes packets, many with each system call, looks
/// whether they are what it expects and puts three floats into a slot.
class BareReceiver {
public:
    explicit BareReceiver(int bufferBytes) : _socket(::socket(AF_INET, SOCK_DGRAM, 0))
    {
        sockaddr_in here{};
        here.sin_family = AF_INET;
        here.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof here;
        if (::setsockopt(_socket, SOL_SOCKET, SO_RCVBUFFORCE, &bufferBytes, sizeof bufferBytes) != 0)
            ::setsockopt(_socket, SOL_SOCKET, SO_RCVBUF, &bufferBytes, sizeof bufferBytes);
        const timeval patience{0, 20'000}; // how long the end of this object may take
        ::setsockopt(_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        if (::bind(_socket, reinterpret_cast<const sockaddr*>(&here), size) != 0 ||
            ::getsockname(_socket, reinterpret_cast<sockaddr*>(&here), &size) != 0)
            throw std::runtime_error("cannot listen on the loopback");
        _port = ntohs(here.sin_port);
        _thread = std::thread([this] { run(); });
    }
    BareReceiver(const BareReceiver&) = delete;
    BareReceiver& operator=(const BareReceiver&) = delete;
    ~BareReceiver()
    {
        _ends = true;
        _thread.join();
        ::close(_socket);
    }

    std::uint16_t port() const { return _port; }
    std::uint64_t received() const { return _received; }

    /// True when the value is the newest that was taken.
    bool sees(float value)
    {
        _slot.poll([this](const Record& record) { _last = record._value[0]; });
        return _last == value;
    }

private:
    static constexpr std::size_t batch = 64;

    void run()
    {
        std::array<Sender::Packet, batch> packets;
        std::array<iovec, batch> parts;
        std::array<mmsghdr, batch> headers{};
        for (std::size_t i = 0; i < batch; ++i) {
            parts[i] = {packets[i].data(), packets[i].size()};
            headers[i].msg_hdr.msg_iov = &parts[i];
            headers[i].msg_hdr.msg_iovlen = 1;
        }
        while (!_ends) {
            const int count = ::recvmmsg(_socket, headers.data(), batch, MSG_WAITFORONE, nullptr);
            for (int i = 0; i < count; ++i)
                take(packets[static_cast<std::size_t>(i)]);
            _received += static_cast<std::uint64_t>(std::max(count, 0));
        }
    }

    void take(const Sender::Packet& packet)
    {
        static const Sender::Packet expected = Sender::packet();
        if (std::memcmp(packet.data(), expected.data(), Sender::headBytes) != 0)
            return;
        Record record{};
        for (std::size_t i = 0; i < 3; ++i) {
            std::uint32_t wire = 0;
            std::memcpy(&wire, packet.data() + Sender::headBytes + 4 * i, sizeof wire);
            record._value[i] = std::bit_cast<float>(ntohl(wire));
        }
        record._time = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
        _slot.push(record);
    }

    const int _socket;
    std::uint16_t _port = 0;
    FloorIn<Record> _slot;
    float _last = -1;
    std::atomic<bool> _ends{false};
    std::atomic<std::uint64_t> _received{0};
    std::thread _thread;
};

} // namespace Bench
