#include "trovio/Node.h"
#include <semaphore>
#include <thread>

namespace {

/// Has a thread of its own, which waits where no stepper sees it.
class OwnThread final : public Trovio::Node {
    void start() override
    {
        _thread = std::thread([this] { _end.acquire(); });
    }
    void stop() override
    {
        _end.release();
        _thread.join();
    }

    std::binary_semaphore _end{0};
    std::thread _thread;
};

const Trovio::NodeTypeEntry types[] = {
    {"OwnThread",
     "waits by itself",
     {},
     []() -> std::unique_ptr<Trovio::Node> { return std::make_unique<OwnThread>(); }},
};

} // namespace

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, types};
    return &module;
}
