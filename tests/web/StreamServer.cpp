// Serves an out-slot of each of the 40 types, called by its type, on a Unix socket whose path is the first line. For
// each line that comes in, and once before, every slot pushes its next value, and a line tells by type what the host
// shows for them: {"Bool":"true", …}. "{}" when there are no more.
#include "monitor/Server.h"
#include "monitor/codec/SlotCodec.h"
#include "tests/monitor/AllValues.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"

#include <iostream>
#include <nlohmann/json.hpp>

using namespace Monitor;

namespace {

class AnyValues {
public:
    virtual ~AnyValues() = default;
    virtual std::size_t count() const = 0;
    /// Adds the value as the host shows it. Once there are no more, the last one again.
    virtual void push(std::size_t number, nlohmann::json& shown) = 0;
};

template <class T>
class Values final : public AnyValues {
public:
    Values() { Trovio::Root::get().addOutSlot(_type, &_slot); }
    ~Values() override { Trovio::Root::get().removeSlot(_type); }

    std::size_t count() const override { return _values.size(); }
    void push(std::size_t number, nlohmann::json& shown) override
    {
        const T& value = _values[std::min(number, _values.size() - 1)];
        std::string json, problem;
        if (!SlotCodec::find(_type)->toJson(encoded(value), json, problem))
            throw std::runtime_error(problem);
        shown[_type] = json;
        _slot.push(Trovio::Data<T>(value, Trovio::Time(1.5)));
    }

private:
    const std::string _type = Trovio::TypeName<T>::getName();
    const std::vector<T> _values = allValues<T>();
    Trovio::OutSlot<T> _slot{"test"};
};

void serve(const std::vector<std::unique_ptr<AnyValues>>& all)
{
    std::size_t rounds = 0;
    for (const auto& values : all)
        rounds = std::max(rounds, values->count());
    std::string line;
    for (std::size_t round = 0; round == 0 || std::getline(std::cin, line); ++round) {
        nlohmann::json shown = nlohmann::json::object();
        if (round < rounds)
            for (const auto& values : all)
                values->push(round, shown);
        std::cout << shown.dump() << std::endl;
    }
}

} // namespace

int main(int, char** arguments)
{
    Trovio::Root::init();
    {
        std::vector<std::unique_ptr<AnyValues>> all;
        Trovio::forEachSlotType([&all]<class T>(Trovio::TypeTag<T>) { all.push_back(std::make_unique<Values<T>>()); });
        const Server server({.socketFolder = arguments[1]});
        std::cout << server.socketPath() << std::endl;
        serve(all);
    }
    Trovio::Root::shutdown();
}
