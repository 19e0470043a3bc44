#include "tests/dds/Line.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <system_error>

namespace Trovio::Nodes {

namespace {

FileDescriptor newInterface(const std::string& name)
{
    FileDescriptor plug(::open("/dev/net/tun", O_RDWR | O_CLOEXEC));
    ifreq request{};
    request.ifr_flags = IFF_TAP | IFF_NO_PI;
    name.copy(request.ifr_name, IFNAMSIZ - 1);
    if (!plug.isOpen() || ::ioctl(plug.get(), TUNSETIFF, &request) != 0)
        throw std::system_error(errno, std::generic_category(), "no interface " + name);
    return plug;
}

} // namespace

Line::Line(const std::string& firstInterface, const std::string& secondInterface)
    : _plugs{newInterface(firstInterface), newInterface(secondInterface)}, _end(::eventfd(0, EFD_CLOEXEC))
{
    _thread = std::thread([this] { carry(); });
}

Line::~Line()
{
    ::eventfd_write(_end.get(), 1);
    _thread.join();
}

void Line::cut(Way way)
{
    const Ostrel::LockGuard guard(_lock);
    _cut = {way != Way::FromSecond, way != Way::FromFirst};
}

void Line::mend()
{
    const Ostrel::LockGuard guard(_lock);
    _cut = {};
}

void Line::delay(std::chrono::milliseconds eachWay)
{
    const Ostrel::LockGuard guard(_lock);
    _delay = eachWay;
}

void Line::carry()
{
    std::array<pollfd, 3> waiting{
        {{_end.get(), POLLIN, 0}, {_plugs[0].get(), POLLIN, 0}, {_plugs[1].get(), POLLIN, 0}}};
    while (::poll(waiting.data(), waiting.size(), patience()) >= 0 && waiting[0].revents == 0) {
        for (std::size_t i = 0; i < _plugs.size(); ++i)
            if (waiting[i + 1].revents != 0)
                take(i);
        deliver();
    }
}

/// Milliseconds until a packet is due; -1 for ever.
int Line::patience() const
{
    using namespace std::chrono;
    if (_onTheWay.empty())
        return -1;
    return std::max(0, static_cast<int>(ceil<milliseconds>(_onTheWay.front()._due - steady_clock::now()).count()));
}

void Line::take(std::size_t from)
{
    std::array<char, 65536> packet{};
    const ssize_t length = ::read(_plugs[from].get(), packet.data(), packet.size());
    const Ostrel::LockGuard guard(_lock);
    if (length > 0 && !_cut[from])
        _onTheWay.push_back(
            {std::chrono::steady_clock::now() + _delay, 1 - from, {packet.data(), packet.data() + length}});
}

void Line::deliver()
{
    while (!_onTheWay.empty() && _onTheWay.front()._due <= std::chrono::steady_clock::now()) {
        const Packet& packet = _onTheWay.front();
        // An interface that is down takes nothing.
        [[maybe_unused]] const auto written =
            ::write(_plugs[packet._to].get(), packet._bytes.data(), packet._bytes.size());
        _onTheWay.pop_front();
    }
}

} // namespace Trovio::Nodes
