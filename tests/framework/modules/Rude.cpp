#include "trovio/Node.h"

namespace {

/// Throws what is no exception, where its setting says.
class RudeNode final : public Trovio::Node {
public:
    std::vector<Trovio::RemarkInfo> getRemarks() const override
    {
        throwAt("remarks");
        return {};
    }

protected:
    void configure(const Trovio::Settings& settings) override
    {
        _where = settings.text("where");
        throwAt("configure");
    }
    void start() override { throwAt("start"); }
    void stop() override { throwAt("remarks"); }

private:
    void throwAt(const char* place) const
    {
        if (_where == place)
            throw 7;
    }

    std::string _where;
};

constexpr Trovio::Setting settings[] = {
    Trovio::Setting::choice("where", "start", "configure|start|remarks", "where it throws"),
};

const Trovio::NodeTypeEntry types[] = {
    {"Rude", "throws", settings, []() -> std::unique_ptr<Trovio::Node> { return std::make_unique<RudeNode>(); }},
    {"RudeFactory", "cannot be built", {}, []() -> std::unique_ptr<Trovio::Node> { throw 7; }},
};

} // namespace

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, types};
    return &module;
}
