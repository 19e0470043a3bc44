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
};

class DdsFixture : public ::testing::Test {
protected:
    OpenRoot _root;
};

} // namespace Trovio::Nodes
