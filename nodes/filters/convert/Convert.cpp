#include "nodes/filters/convert/Convert.h"

#include "nodes/filters/convert/ConvertFormula.h"
#include "nodes/relay/TypeChoices.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"
#include <numbers>

namespace Trovio::Nodes {

namespace {

constexpr RejectionCauses causes{"with a value that is not finite (NaN, infinite), or no rotation where one is made",
                                 usualCauses[1], usualCauses[2]};

template <class A, class B>
concept Convertible = requires
{
    typename ConvertFormula<A, B>::Type;
};

/// From an in-slot of one type to an out-slot of another. Values, and element by element arrays.
template <class A, class B>
class ConvertLane final : public Lane {
    using From = typename ElementOf<A>::Type;
    using To = typename ElementOf<B>::Type;
    using Formula = typename ConvertFormula<From, To>::Type;

public:
    ConvertLane(unsigned capacity, const Settings& settings)
        : _formula(settings), _states(1), _in("in", capacity), _out("out")
    {
    }

    std::vector<BasicInSlot*> getInSlots() override { return {&_in}; }
    std::vector<BasicOutSlot*> getOutSlots() override { return {&_out}; }

    std::optional<Outcome> relayNext() override
    {
        if (_in.empty())
            return std::nullopt;
        const Data<A> record = _in.pop();
        Data<B> result(B(), record.getTimeStamp());
        const Outcome outcome = convert(record.getValue(), result.getValue());
        if (outcome == Outcome::Sent)
            _out.push(result);
        return outcome;
    }

private:
    Outcome convert(const From& from, To& to)
    {
        return isUsable(from) ? _formula(from, to, _states.front()) : Outcome::BadValue;
    }

    Outcome convert(const SharedVector<From>& from, SharedVector<To>& to)
    {
        to.acquire();
        to->clear();
        if (!from)
            return Outcome::Sent;
        for (const From& element : *from)
            if (!isUsable(element))
                return Outcome::BadValue;
        if (_states.size() != from->size())
            _states.assign(from->size(), {});
        Outcome worst = Outcome::Sent;
        for (std::size_t i = 0; i < from->size(); ++i) {
            To element{};
            worst = std::max(worst, _formula((*from)[i], element, _states[i]));
            to->push_back(element);
        }
        return worst;
    }

    const Formula _formula;
    std::vector<typename Formula::State> _states; // one for each element
    BufferedInSlot<A> _in;
    OutSlot<B> _out;
};

/// Calls visit(TypeTag<A>(), TypeTag<B>()) for each pair of slot value types of which one can be made into the other.
template <class Visit>
void forEachPair(Visit&& visit)
{
    forEachSlotType([&]<class A>(TypeTag<A> from) {
        if constexpr (Numeric<typename ElementOf<A>::Type>)
            forEachSlotType([&]<class B>(TypeTag<B> to) {
                constexpr bool alike = Numeric<A> == Numeric<B>; // both arrays, or none
                if constexpr (alike && Convertible<typename ElementOf<A>::Type, typename ElementOf<B>::Type>)
                    visit(from, to);
            });
    });
}

bool isOfAngles(const Settings& settings)
{
    const std::string &from = settings.text("type"), &to = settings.text("to");
    return from.starts_with("Rotation") ? to.starts_with("Vec3")
                                        : to.starts_with("Rotation") && from.starts_with("Vec3");
}

void refuseWhatMeansNothing(const Settings& settings)
{
    if (!settings.text("to").starts_with("Bool"))
        for (const char* const name : {"threshold", "hysteresis"})
            refuseIfGiven(settings, name, "to=Bool");
    if (!isOfAngles(settings))
        for (const char* const name : {"order", "components", "unit"})
            refuseIfGiven(settings, name, "Vec3f or Vec3d to Rotation, or back");
}

using CreateLane = std::unique_ptr<Lane> (*)(unsigned queue, const Settings& settings);

template <class A, class B>
std::unique_ptr<Lane> newLane(unsigned queue, const Settings& settings)
{
    return std::make_unique<ConvertLane<A, B>>(queue, settings);
}

/// Looks among the pairs for the one that the settings name.
struct LaneSearch {
    const Settings& _settings;
    std::string _allowed{}; // what can become of the type
    CreateLane _found = nullptr;

    void consider(const std::string& from, const std::string& to, CreateLane create)
    {
        if (from != _settings.text("type"))
            return;
        _allowed += (_allowed.empty() ? "" : ", ") + to;
        if (to == _settings.text("to"))
            _found = create;
    }
};

std::unique_ptr<Lane> createConvertLane(const Settings& settings, unsigned queue)
{
    refuseWhatMeansNothing(settings);
    LaneSearch search{settings};
    forEachPair([&]<class A, class B>(TypeTag<A>, TypeTag<B>) {
        search.consider(TypeName<A>::getName(), TypeName<B>::getName(), newLane<A, B>);
    });
    if (!search._found)
        throw settings.refusal("to", "what " + settings.text("type") + " can become: " + search._allowed);
    return search._found(queue, settings);
}

/// The names of all types that take part.
std::string convertibleTypes()
{
    return typeChoices([]<class T>(TypeTag<T>) { return Numeric<typename ElementOf<T>::Type>; });
}

EulerOrder readOrder(const Settings& settings)
{
    if (const auto order = EulerOrder::parse(settings.text("order")))
        return *order;
    throw settings.refusal("order", "each of the letters x, y, z once");
}

AxisOrder readAngleComponents(const Settings& settings)
{
    if (const auto components = AxisOrder::parse(settings.text("components"), 3))
        return *components;
    throw settings.refusal("components", "each of the letters x, y, z once, as a capital where the angle is negated");
}

} // namespace

AngleForm::AngleForm(const Settings& settings)
    : _order(readOrder(settings)),
      _components(readAngleComponents(settings)),
      _unit(settings.choice("unit") == 0 ? 1.0 : std::numbers::pi / 180.0)
{
}

Quaternion AngleForm::read(const std::array<double, 3>& components) const
{
    std::array<double, 3> angles{};
    for (std::size_t i = 0; i < 3; ++i)
        angles[_components.source(i)] = _unit * _components.sign(i) * components[i];
    return _order.toRotation(angles);
}

std::array<double, 3> AngleForm::write(const Quaternion& rotation) const
{
    const auto angles = _order.toAngles(rotation);
    std::array<double, 3> components{};
    for (std::size_t i = 0; i < 3; ++i)
        components[i] = _components.sign(i) * angles[_components.source(i)] / _unit;
    return components;
}

Convert::Convert(Clock& clock) : FilterNode(clock, createConvertLane, causes) {}

const NodeTypeEntry& Convert::getEntry()
{
    static const std::string types = convertibleTypes();
    static const RelayTable table(
        types, "Float",
        {Setting::choice("to", nullptr, types.c_str(), "slot type of 'out'"),
         Setting::number("threshold", "0.5", -1e12, 1e12, "a number from here on becomes true"),
         Setting::number("hysteresis", "0", 0, 1e12, "how far below the threshold a number must be to become false"),
         Setting::text("order", "",
                       "angles, must be given: the order of the turns about axes that stand still, e.g. zxy",
                       "each of the letters x, y, z once"),
         Setting::text("components", "xyz",
                       "angles: about which axis each component turns, as a capital where it is negated",
                       "each of the letters x, y, z once"),
         Setting::choice("unit", "rad", "rad|deg", "angles: their unit")},
        "slot type of 'in'");
    static const NodeTypeEntry entry{"Convert", "makes values of one type into values of another", table.rows(),
                                     createOnSystemClock<Convert>};
    return entry;
}

} // namespace Trovio::Nodes
