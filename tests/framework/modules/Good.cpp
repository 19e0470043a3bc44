#include "trovio/Node.h"
#include <stdexcept>

namespace {

class GoodNode final : public Trovio::Node {};

constexpr Trovio::Setting settings[] = {
    Trovio::Setting::number("gain", "1", 0.5, 2, "what each value is multiplied by"),
};

const Trovio::NodeTypeEntry types[] = {
    {"Good", "does nothing, well", settings,
     []() -> std::unique_ptr<Trovio::Node> { return std::make_unique<GoodNode>(); }},
    {"Throws",
     "cannot be built",
     {},
     []() -> std::unique_ptr<Trovio::Node> { throw std::runtime_error("no such device"); }},
    {"NoEntry",
     "is no type of this module, for another file is called like it",
     {},
     []() -> std::unique_ptr<Trovio::Node> { return std::make_unique<GoodNode>(); }},
    {"MakesNothing", "cannot be built either", {}, [] { return std::unique_ptr<Trovio::Node>(); }},
};

} // namespace

const Trovio::NodeModule* trovioNodeModule()
{
    static const Trovio::NodeModule module{Trovio::NodeModule::Version, types};
    return &module;
}
