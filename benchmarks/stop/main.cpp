#include "benchmarks/harness/Workload.h"
#include "benchmarks/road/Road.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <stdexcept>
#include <stdlib.h>
#include <sys/socket.h>

namespace Bench {

namespace {

struct WaitingNode {
    const char* _type;
    std::string _settings; // so that it waits for what it waits for
};

/// The far end of a serial line. It stays open, and says nothing.
std::string silentLine()
{
    static const int end = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (end < 0 || grantpt(end) != 0 || unlockpt(end) != 0)
        throw std::runtime_error("no pair of terminals");
    return ptsname(end);
}

/// A broker that takes each connection, and never answers.
std::string silentBroker()
{
    static const int listening = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    constexpr int waiting = 4096; // connections that the kernel takes
    if (bind(listening, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listening, waiting) != 0 ||
        getsockname(listening, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("no port to listen on");
    return "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
}

std::vector<WaitingNode> waitingNodes()
{
    return {
        {"Scale", "type=Vec3f"},
        {"Guard", "type=Vec3f after=3600"},
        {"Generator", "rate=0.001"},
        {"OSC", "listen=127.0.0.1:0 in='/wand/position Vec3f' send=127.0.0.1:9 out='/rumble Float'"},
        {"Serial", "port=" + silentLine() + " in='position Vec3f'"},
        {"MQTT", "broker=" + silentBroker() + " in='room/temperature Float'"},
        {"Controller", ""},
        {"DDS", "publish='out Vec3f' subscribe='in Vec3f'"},
    };
}

Sample startAndStop(const WaitingNode& row)
{
    Trovio::Namespace& root = Trovio::Root::get();
    auto node = Trovio::NodeType::newInstance(row._type);
    node->setFieldValues(row._settings);
    const auto start = Clock::now();
    const std::string label = root.addNamespace(std::move(node));
    const double started = nanosecondsSince(start);
    const auto stop = Clock::now();
    root.removeNamespace(label);
    return {{nanosecondsSince(stop), started}, {}};
}

/// What it takes to stop a node that waits: for records, for its time, for packets, for devices. All of them wait with
/// a way to be woken, so none is waited for.
void stop(Workload& workload)
{
    const auto root = std::make_shared<OpenRoot>();
    workload.setMetrics({{"", "ms", 1e-6}, {"start", "ms", 1e-6}});
    for (const WaitingNode& row : waitingNodes())
        workload.add(row._type, [root, row] { return startAndStop(row); });
}

} // namespace

} // namespace Bench

int main(int argc, char** argv)
{
    return Bench::runWorkloads({{"stop", Bench::stop}}, argc, argv);
}
