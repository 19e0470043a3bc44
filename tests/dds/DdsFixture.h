#pragma once

#include "nodes/dds/DdsNode.h"
#include "tests/nodes/NodeFixture.h"
#include <unistd.h>

namespace Trovio::Nodes {

// Tests that run at the same time do not meet: each process has a domain and a partition of its own.
inline unsigned domainOfTest()
{
    return 1 + static_cast<unsigned>(::getpid()) % 229;
}
inline std::string partitionOfTest()
{
    return "test-" + std::to_string(::getpid());
}
/// Settings for that, and a lease in seconds.
inline std::string apart(const std::string& lease = "0.5")
{
    return " domain=" + std::to_string(domainOfTest()) + " partition=" + partitionOfTest() + " lease=" + lease;
}

/// A DDS node under the root of this process, and ways to feed it.
class DdsPeer : public StandingNode<DdsNode> {
public:
    explicit DdsPeer(const std::string& settings, const std::string& lease = "0.5")
        : StandingNode(std::make_unique<DdsNode>(Clock::system()), settings + apart(lease))
    {
    }

    NodeState state() { return (*this)->getState(); }
    void awaitReason(const std::string& part)
    {
        await([&] { return state()._reason.find(part) != std::string::npos; });
    }
    void awaitRunning()
    {
        await([&] { return !state()._degraded; });
    }
    void awaitCount(const std::string& counter, std::uint64_t number)
    {
        await([&] { return count(counter) >= number; });
        EXPECT_EQ(count(counter), number) << counter;
    }
};

/// Pushes into an in-slot of a node, through a route.
template <class T>
class Feed {
public:
    explicit Feed(const std::string& target) : _target(target), _slot("feed")
    {
        Root::get().addOutSlot(label(), &_slot);
        Root::get().addRoute(label(), _target);
    }
    ~Feed()
    {
        Root::get().removeRoute(label(), _target);
        Root::get().removeSlot(label());
    }
    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;

    void push(const T& value, double stamp) { _slot.push(Data<T>(value, Time(stamp))); }

private:
    std::string label() const { return "feed of " + _target; }

    const std::string _target;
    OutSlot<T> _slot;
};

class DdsFixture : public ::testing::Test {
protected:
    OpenRoot _root;
};

} // namespace Trovio::Nodes
