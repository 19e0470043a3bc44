#include "nodes/filters/convert/Join.h"

#include "nodes/filters/convert/JoinParts.h"
#include "nodes/relay/TypeChoices.h"
#include "trovio/OutSlot.h"
#include <deque>

namespace Trovio::Nodes {

namespace {

constexpr RejectionCauses causes{usualCauses[0], usualCauses[1],
                                 "with a stamp that fits those of no records of the other parts"};

template <Composite T>
class ComponentParts {
public:
    using Value = T;

    explicit ComponentParts(unsigned queue)
    {
        for (std::size_t i = 0; i < Components<T>::Count; ++i)
            _parts.emplace_back(componentName<T>(i), queue);
    }

    std::vector<JoinPart*> parts()
    {
        std::vector<JoinPart*> all;
        for (auto& part : _parts)
            all.push_back(&part);
        return all;
    }

    /// False where the parts that were used make no value.
    bool make(T& value) const
    {
        for (std::size_t i = 0; i < Components<T>::Count; ++i)
            Components<T>::set(value, i, _parts[i].value());
        if constexpr (std::is_same_v<T, Rotation>) {
            if (!isUsable(value))
                return false;
            value = Quaternion(value).toRotation();
        }
        return true;
    }

private:
    std::deque<TypedJoinPart<typename Components<T>::Component>> _parts; // never move: routes refer to their slots
};

template <PoseMatrix M>
class PoseParts {
public:
    using Value = M;

    explicit PoseParts(unsigned queue) : _position("position", queue), _rotation("rotation", queue) {}

    std::vector<JoinPart*> parts() { return {&_position, &_rotation}; }

    bool make(M& matrix) const
    {
        matrix = Pose<M>{_position.value(), Quaternion(_rotation.value()).normalized()}.toMatrix();
        return true;
    }

private:
    TypedJoinPart<typename Pose<M>::Position> _position;
    TypedJoinPart<Rotation> _rotation;
};

/// Which parts make a result go out.
struct Trigger {
    std::optional<double> _within;   // all, and their stamps lie within so many seconds; nothing: as below
    const JoinPart* _part = nullptr; // this one; null: any

    static Trigger read(const Settings& settings, const std::vector<JoinPart*>& parts);
};

Trigger Trigger::read(const Settings& settings, const std::vector<JoinPart*>& parts)
{
    const std::string& when = settings.text("when");
    if (when == "together")
        return {settings.number("within"), nullptr};
    if (settings.isGiven("within"))
        throw settings.refusal("within", "only with when=together");
    if (when == "any")
        return {};
    std::string names;
    for (JoinPart* const part : parts) {
        if (part->getSlot().getName() == when)
            return {std::nullopt, part};
        names += ", " + part->getSlot().getName();
    }
    throw settings.refusal("when", "one of together, any" + names);
}

template <class Parts>
class JoinLane final : public Lane {
public:
    JoinLane(unsigned queue, const Settings& settings)
        : _made(queue), _parts(_made.parts()), _trigger(Trigger::read(settings, _parts))
    {
    }

    std::vector<BasicInSlot*> getInSlots() override
    {
        std::vector<BasicInSlot*> slots;
        for (JoinPart* const part : _parts)
            slots.push_back(&part->getSlot());
        return slots;
    }
    std::vector<BasicOutSlot*> getOutSlots() override { return {&_out}; }

    std::optional<Outcome> relayNext() override
    {
        if (_partners != 0) {
            --_partners;
            return Outcome::Kept;
        }
        for (JoinPart* const part : _parts)
            if (const auto fault = fetch(*part))
                return fault;
        return _trigger._within ? joinAll() : takeOldest();
    }

private:
    static std::optional<Outcome> discard(JoinPart& part, Outcome outcome)
    {
        part.discard();
        return outcome;
    }

    static std::optional<Outcome> fetch(JoinPart& part)
    {
        if (part.fetch() && !part.isUsable())
            return discard(part, Outcome::BadValue);
        if (part.fetch() && !std::isfinite(part.stamp()))
            return discard(part, Outcome::BadStamp);
        return std::nullopt;
    }

    // What goes out depends on the records alone, and not on which slot's came first: a record waits until each other
    // part has one, and then either belongs to them or is older than what any later one could belong to.
    std::optional<Outcome> joinAll()
    {
        for (JoinPart* const part : _parts)
            if (!part->fetch())
                return std::nullopt;
        for (JoinPart* const part : _parts)
            if (part->isOvertaken())
                return discard(*part, Outcome::BadStamp);
        const auto [oldest, newest] = std::ranges::minmax_element(_parts, {}, &JoinPart::stamp);
        const double stamp = (*newest)->stamp();
        if (stamp - (*oldest)->stamp() > *_trigger._within)
            return discard(**oldest, Outcome::BadStamp);
        for (JoinPart* const part : _parts)
            part->use();
        _partners = _parts.size() - 1;
        return push(stamp);
    }

    std::optional<Outcome> takeOldest()
    {
        JoinPart* oldest = nullptr;
        for (JoinPart* const part : _parts)
            if (part->fetch() && (!oldest || part->stamp() < oldest->stamp()))
                oldest = part;
        if (!oldest)
            return std::nullopt;
        const double stamp = oldest->stamp();
        oldest->use();
        const bool complete = std::ranges::all_of(_parts, &JoinPart::wasUsed);
        const bool triggers = !_trigger._part || _trigger._part == oldest;
        return complete && triggers ? push(stamp) : Outcome::Kept;
    }

    Outcome push(double stamp)
    {
        typename Parts::Value value;
        if (!_made.make(value))
            return Outcome::BadValue;
        _out.push({value, Time(stamp)});
        return Outcome::Sent;
    }

    Parts _made;
    const std::vector<JoinPart*> _parts;
    const Trigger _trigger;
    std::size_t _partners = 0; // records that went out with the newest result, and are not yet accounted for
    OutSlot<typename Parts::Value> _out{"out"};
};

std::unique_ptr<Lane> createJoinLane(const Settings& settings, unsigned queue)
{
    const bool asPose = readAsPose(settings);
    std::unique_ptr<Lane> lane;
    withSlotType(settings.text("type"), [&]<class T>(TypeTag<T>) {
        if constexpr (PoseMatrix<T>)
            if (asPose) {
                lane = std::make_unique<JoinLane<PoseParts<T>>>(queue, settings);
                return;
            }
        if constexpr (Composite<T>)
            lane = std::make_unique<JoinLane<ComponentParts<T>>>(queue, settings);
    });
    return lane;
}

} // namespace

Join::Join(Clock& clock) : FilterNode(clock, createJoinLane, causes, "kept") {}

const NodeTypeEntry& Join::getEntry()
{
    static const RelayTable table(
        compositeTypes(), "Vec3f",
        {partsSetting(),
         Setting::text("when", "together",
                       "what makes a value go out: a record of each part, all of one time; a record of any part; a "
                       "record of the part named here",
                       "together, any, or the name of a part"),
         Setting::number("within", "0.002", 0, 3600,
                         "together: how far apart the stamps of one value's parts may be, in seconds; less than half "
                         "the time between two records")},
        "slot type of 'out'");
    static const NodeTypeEntry entry{"Join", "puts values together from parts that come through slots of their own",
                                     table.rows(), createOnSystemClock<Join>};
    return entry;
}

} // namespace Trovio::Nodes
