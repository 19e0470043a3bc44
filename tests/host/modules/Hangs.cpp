#include "trovio/Node.h"
#include <cstdio>
#include <unistd.h>

namespace {

/// Never comes back from stop(), or with start=true from start().
class HangingNode final : public Trovio::Node {
    void configure(const Trovio::Settings& settings) override { _inStart = settings.flag("start"); }
    void start() override
    {
        if (!_inStart)
            return;
        std::fputs("hangs in start\n", stderr);
        hang();
    }
    void stop() override { hang(); }

    static void hang()
    {
        for (;;)
            pause();
    }
    bool _inStart = false;
};

constexpr Trovio::Setting settings[] = {
    Trovio::Setting::boolean("start", "false", "whether it hangs as it starts"),
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
