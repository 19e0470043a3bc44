#include "trovio/Node.h"
#include <cstdio>
#include <unistd.h>

namespace {

/// Never comes back from one of its operations.
class HangingNode final : public Trovio::Node {
public:
    ~HangingNode() override { operation("destructor"); }

private:
    void configure(const Trovio::Settings& settings) override
    {
        _in = settings.text("in");
        operation("configure");
    }
    void start() override { operation("start"); }
    void stop() override { operation("stop"); }

    void operation(const std::string& name) const
    {
        if (name != _in)
            return;
        std::fputs(("hangs in " + name + "\n").c_str(), stderr);
        for (;;)
            pause();
    }
    std::string _in;
};

constexpr Trovio::Setting settings[] = {
    Trovio::Setting::choice("in", "stop", "configure|start|stop|destructor", "where it hangs"),
};

const Trovio::NodeTypeEntry types[] = {
    {"Hangs", "never comes back", settings,
     []() -> std::unique_ptr<Trovio::Node> { return std::make_unique<HangingNode>(); }},
};

} // namespace

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, types};
    return &module;
}
