#include "nodes/osc/UdpReceiver.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <utility>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t batchSize = 64;
constexpr std::size_t packetBytes = 65536; // more than any datagram has
constexpr int maxBatchesAtOnce = 16;

std::string describeProblem(const SocketAddress& address, int error)
{
    const std::string reason = error == EADDRINUSE ? "the port is taken by another program" : std::strerror(error);
    return "cannot listen on " + address.str() + ": " + reason;
}

template <class Value>
bool setOption(int descriptor, int level, int option, Value value)
{
    return ::setsockopt(descriptor, level, option, &value, sizeof(value)) == 0;
}

/// When the kernel took the packet in; the current time where it does not say.
Time arrivalOf(msghdr& header)
{
    for (cmsghdr* part = CMSG_FIRSTHDR(&header); part; part = CMSG_NXTHDR(&header, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SO_TIMESTAMPNS)
            continue;
        timespec stamp{};
        std::memcpy(&stamp, CMSG_DATA(part), sizeof(stamp));
        return Time(static_cast<double>(stamp.tv_sec) + static_cast<double>(stamp.tv_nsec) * 1e-9);
    }
    return Time::getCurrentTime();
}

} // namespace

struct UdpReceiver::Batch {
    struct Slot {
        sockaddr_storage _sender;
        iovec _part;
        alignas(cmsghdr) char _control[CMSG_SPACE(sizeof(timespec))];
    };

    // Left as it comes from the system: only the pages that packets reach ever take memory.
    std::unique_ptr<std::uint8_t[]> _bytes = std::make_unique_for_overwrite<std::uint8_t[]>(batchSize * packetBytes);
    Slot _slots[batchSize];
    mmsghdr _headers[batchSize];

    void prepare()
    {
        for (std::size_t i = 0; i < batchSize; ++i) {
            Slot& slot = _slots[i];
            slot._part = {_bytes.get() + i * packetBytes, packetBytes};
            _headers[i] = {};
            _headers[i].msg_hdr = {
                &slot._sender, sizeof(slot._sender), &slot._part, 1, slot._control, sizeof(slot._control), 0};
        }
    }
};

UdpReceiver::UdpReceiver() : _batch(std::make_unique<Batch>()) {}
UdpReceiver::~UdpReceiver() = default;

std::string UdpReceiver::open(const std::vector<SocketAddress>& addresses, int bufferBytes)
{
    close();
    std::string missing;
    for (SocketAddress address : addresses) {
        if (address.getPort() == 0 && isOpen())
            address.setPort(getAddresses().front().getPort());
        const int error = openOne(address, bufferBytes);
        if (error == 0)
            continue;
        missing = describeProblem(address, error);
        if (error != EADDRNOTAVAIL && error != EAFNOSUPPORT) {
            close();
            return missing;
        }
    }
    return isOpen() ? std::string() : missing;
}

int UdpReceiver::openOne(const SocketAddress& address, int bufferBytes)
{
    FileDescriptor socket(::socket(address.getFamily(), SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket.isOpen())
        return errno;
    if (address.getFamily() == AF_INET6)
        setOption(socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, 1);
    // The first needs a privilege, and may exceed the limit of the system.
    if (!setOption(socket.get(), SOL_SOCKET, SO_RCVBUFFORCE, bufferBytes))
        setOption(socket.get(), SOL_SOCKET, SO_RCVBUF, bufferBytes);
    setOption(socket.get(), SOL_SOCKET, SO_TIMESTAMPNS, 1);
    if (::bind(socket.get(), address.get(), address.getLength()) != 0)
        return errno;
    _descriptors.push_back(socket.get());
    _sockets.push_back({std::move(socket)});
    return 0;
}

void UdpReceiver::close()
{
    _sockets.clear();
    _descriptors.clear();
}

void UdpReceiver::receive(UdpPacketVisitor& visitor)
{
    for (Socket& socket : _sockets)
        receiveFrom(socket, visitor);
}

void UdpReceiver::receiveFrom(Socket& socket, UdpPacketVisitor& visitor)
{
    for (int round = 0; round < maxBatchesAtOnce; ++round) {
        const int count = receiveBatch(socket);
        for (int i = 0; i < count; ++i) {
            mmsghdr& header = _batch->_headers[i];
            const Bytes packet(static_cast<const std::uint8_t*>(header.msg_hdr.msg_iov->iov_base), header.msg_len);
            const SocketAddress sender(static_cast<const sockaddr*>(header.msg_hdr.msg_name),
                                       header.msg_hdr.msg_namelen);
            if (!visitor.receive(packet, sender, arrivalOf(header.msg_hdr))) {
                _turnedDown += static_cast<std::uint64_t>(count - i - 1);
                return;
            }
        }
        if (count < static_cast<int>(batchSize))
            return;
    }
}

int UdpReceiver::receiveBatch(Socket& socket)
{
    _batch->prepare();
    return ::recvmmsg(socket._descriptor.get(), _batch->_headers, batchSize, MSG_DONTWAIT, nullptr);
}

std::uint64_t UdpReceiver::discardUnread()
{
    constexpr int maxBatches = 1 << 16; // a sender that never rests must not keep us here
    std::uint64_t unread = std::exchange(_turnedDown, 0U);
    for (Socket& socket : _sockets) {
        int count = static_cast<int>(batchSize);
        for (int round = 0; round < maxBatches && count == static_cast<int>(batchSize); ++round) {
            count = receiveBatch(socket);
            unread += static_cast<std::uint64_t>(std::max(count, 0));
        }
    }
    return unread;
}

std::uint64_t UdpReceiver::takeDropped()
{
    std::uint64_t taken = 0;
    for (Socket& socket : _sockets) {
        // SO_RXQ_OVFL tells the same number, but only with the next packet, which may never come.
        std::uint32_t info[SK_MEMINFO_VARS] = {};
        socklen_t size = sizeof(info);
        if (::getsockopt(socket._descriptor.get(), SOL_SOCKET, SO_MEMINFO, info, &size) != 0)
            continue;
        taken += info[SK_MEMINFO_DROPS] - std::exchange(socket._dropped, info[SK_MEMINFO_DROPS]);
    }
    return taken;
}

std::vector<SocketAddress> UdpReceiver::getAddresses() const
{
    std::vector<SocketAddress> addresses;
    for (const Socket& socket : _sockets)
        addresses.push_back(SocketAddress::ofSocket(socket._descriptor.get()));
    return addresses;
}

int UdpReceiver::getGrantedBuffer() const
{
    int granted = 0;
    socklen_t size = sizeof(granted);
    if (isOpen())
        ::getsockopt(_sockets.front()._descriptor.get(), SOL_SOCKET, SO_RCVBUF, &granted, &size);
    return granted / 2; // half of what the kernel tells is for its own bookkeeping
}

} // namespace Trovio::Nodes
