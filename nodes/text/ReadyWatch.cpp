#include "nodes/text/ReadyWatch.h"

#include <cerrno>
#include <sys/epoll.h>
#include <system_error>

namespace Trovio::Nodes {

ReadyWatch::ReadyWatch() : _set(::epoll_create1(EPOLL_CLOEXEC))
{
    if (!_set.isOpen())
        throw std::system_error(errno, std::generic_category(), "no descriptor to wait with");
}

void ReadyWatch::watch(int descriptor, bool forWriting)
{
    epoll_event event{};
    event.events = EPOLLIN | (forWriting ? EPOLLOUT : 0U);
    // A number may come again after its descriptor was closed, and is not in the set then.
    if (::epoll_ctl(_set.get(), EPOLL_CTL_MOD, descriptor, &event) != 0)
        ::epoll_ctl(_set.get(), EPOLL_CTL_ADD, descriptor, &event);
}

} // namespace Trovio::Nodes
