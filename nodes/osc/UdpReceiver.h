#pragma once

#include "nodes/osc/packet/OscArguments.h"
#include "nodes/shared/FileDescriptor.h"
#include "nodes/shared/SocketAddress.h"
#include "trovio/Time.h"
#include <memory>
#include <string>
#include <vector>

namespace Trovio::Nodes {

/// Takes what receivers find in a packet. sender is valid during the call only.
class UdpPacketVisitor {
public:
    /// False if no more packets are wanted for now.
    virtual bool receive(Bytes packet, const SocketAddress& sender, const Time& arrival) = 0;

protected:
    ~UdpPacketVisitor() = default;
};

/// Receives datagrams on one or two addresses, many with each system call.
/// Threads: one at a time.
class UdpReceiver {
public:
    UdpReceiver();
    ~UdpReceiver();

    /// Binds every address, all to the port that the first one got where that was 0, and asks for a receive buffer of
    /// that many bytes. Addresses that this machine does not have are left out as long as one is left.
    /// Returns the problem, and nothing is open then; empty if all went well.
    std::string open(const std::vector<SocketAddress>& addresses, int bufferBytes);
    void close();
    bool isOpen() const { return !_sockets.empty(); }

    /// Hands over what has arrived, but only so much that the caller can look at other things from time to time.
    /// Never waits.
    void receive(UdpPacketVisitor& visitor);

    /// Throws away what waits in the sockets, up to a bound that no socket's buffer reaches by itself, and returns how
    /// many packets that were, with those that the visitor had turned down before.
    std::uint64_t discardUnread();

    /// Packets that the kernel dropped since the last call, for want of space. Exact when nothing is on its way.
    std::uint64_t takeDropped();

    /// To wait for.
    const std::vector<int>& getDescriptors() const { return _descriptors; }
    std::vector<SocketAddress> getAddresses() const;
    /// Bytes, which may be fewer than were asked for.
    int getGrantedBuffer() const;

private:
    struct Socket {
        FileDescriptor _descriptor;
        std::uint32_t _dropped = 0; // as the kernel counts, modulo 2^32
    };
    struct Batch; // the buffers of one system call

    /// The error number, or 0.
    int openOne(const SocketAddress& address, int bufferBytes);
    void receiveFrom(Socket& socket, UdpPacketVisitor& visitor);
    int receiveBatch(Socket& socket);

    std::vector<Socket> _sockets;
    std::vector<int> _descriptors; // of the sockets, in their order
    const std::unique_ptr<Batch> _batch;
    std::uint64_t _turnedDown = 0; // packets of a batch that the visitor left in the middle
};

} // namespace Trovio::Nodes
