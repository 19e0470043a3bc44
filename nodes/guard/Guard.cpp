#include "nodes/guard/Guard.h"

#include "nodes/guard/GuardValue.h"
#include "nodes/relay/TypeChoices.h"
#include "nodes/relay/TypedLane.h"
#include "trovio/SlotTypes.h"

namespace Trovio::Nodes {

namespace {

enum class Then : std::size_t { Hold, Zero, Value }; // in the order of the setting's choices

Then readThen(const Settings& settings)
{
    const auto then = static_cast<Then>(settings.choice("then"));
    if (then != Then::Value && settings.isGiven("value"))
        throw settings.refusal("value", "only with then=value");
    return then;
}

} // namespace

const NodeTypeEntry& Guard::getEntry()
{
    static const RelayTable table(
        typeChoices([](auto) { return true; }), "Float",
        {Setting::number("after", "0.5", 0.001, 86400, "seconds without a record until the source counts as lost"),
         Setting::choice("then", "hold", "hold|zero|value",
                         "what goes out then: nothing, so that the last value stays; the type's default; 'value'"),
         Setting::text("value", "", "what goes out with then=value",
                       "what the type can be: a text, or numbers separated by blanks")});
    static const NodeTypeEntry entry{"Guard", "passes records on and declares when they stop coming", table.rows(),
                                     createOnSystemClock<Guard>};
    return entry;
}

Guard::Guard(Clock& clock) : RelayNode(clock), _losses(addCounter("losses")), _substituted(addCounter("substituted"))
{
    _alive.setWrittenOnChange();
    addOutSlot("alive", &_alive);
}

std::unique_ptr<Lane> Guard::createLane(const Settings& settings)
{
    std::unique_ptr<Lane> lane;
    withSlotType(settings.text("type"), [&]<class T>(TypeTag<T>) { lane = createTypedLane<T>(settings); });
    _after = settings.number("after");
    _complaint = "no record came for " + settings.text("after") + " s; look at what feeds 'in'";
    return lane;
}

template <class T>
std::unique_ptr<Lane> Guard::createTypedLane(const Settings& settings)
{
    const Then then = readThen(settings);
    const T value = then == Then::Value ? GuardValue<T>::read(settings) : GuardValue<T>::zero();
    const auto pass = [this](Data<T>&) {
        recordCame();
        return Outcome::Sent;
    };
    auto lane = std::make_unique<TypedLane<T, decltype(pass)>>(readQueue(settings), pass);
    _substitute = nullptr;
    if (then != Then::Hold)
        _substitute = [&slot = lane->getOutSlot(), value](const Time& now) { slot.push(Data<T>(value, now)); };
    return lane;
}

void Guard::start()
{
    _source = Source::Unknown;
    _lastCame = _clock.now();
    RelayNode::start();
}

void Guard::recordCame()
{
    _lastCame = _clock.now();
    if (_source == Source::Alive)
        return;
    pushAlive(true); // before the record that it speaks of
    setRunning();
    _source = Source::Alive;
}

std::optional<double> Guard::update()
{
    if (_source == Source::Lost)
        return std::nullopt;
    if (_clock.now() < _lastCame + _after)
        return _lastCame + _after;
    declareLoss();
    return std::nullopt;
}

void Guard::declareLoss()
{
    // What there is no memory for is tried again, all of it: the loss is noted last.
    pushAlive(false);
    setDegraded(_complaint);
    if (_substitute) {
        _substitute(_clock.wallTime());
        _substituted.add();
    }
    _source = Source::Lost;
    _losses.add();
}

void Guard::pushAlive(bool alive)
{
    _alive.push(Data<bool>(alive, _clock.wallTime()));
}

} // namespace Trovio::Nodes
