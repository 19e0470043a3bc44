#include "nodes/filters/OnChange.h"

#include "nodes/filters/ElementWise.h"
#include "nodes/relay/TypeChoices.h"
#include "nodes/relay/TypedLane.h"

namespace Trovio::Nodes {

/// Lets a record out for its value, or for the time since the last one.
class ChangeLane : public Lane {
public:
    /// Sends the record that was kept back.
    virtual void release() = 0;
    bool isHolding() const { return _isHolding; }
    /// When something was sent last, on the clock.
    double lastSent() const { return _lastSent; }

protected:
    bool _isHolding = false;
    double _lastSent = 0.0;
};

namespace {

bool differ(const std::string& a, const std::string& b, double)
{
    return a != b;
}

bool differ(const Rotation& a, const Rotation& b, double tolerance)
{
    const auto turn = Quaternion(a).normalized().rotationTo(Quaternion(b).normalized());
    return std::hypot(turn[0], turn[1], turn[2]) > tolerance;
}

template <Numeric E>
bool differ(const E& a, const E& b, double tolerance)
{
    for (std::size_t i = 0; i < Components<E>::Count; ++i) {
        const auto x = Components<E>::get(a, i), y = Components<E>::get(b, i);
        // Whole numbers may differ where the doubles that are nearest to them do not.
        if (x != y && (tolerance == 0.0 || std::abs(double(x) - double(y)) > tolerance))
            return true;
    }
    return false;
}

template <class E>
bool differ(const SharedVector<E>& a, const SharedVector<E>& b, double tolerance)
{
    const std::size_t size = a ? a->size() : 0;
    if (size != (b ? b->size() : 0))
        return true;
    for (std::size_t i = 0; i < size; ++i)
        if (differ((*a)[i], (*b)[i], tolerance))
            return true;
    return false;
}

bool areUsable(const std::string&)
{
    return true;
}

template <Numeric E>
bool areUsable(const E& element)
{
    return isUsable(element);
}

template <class E>
bool areUsable(const SharedVector<E>& elements)
{
    if (elements)
        for (const E& element : *elements)
            if (!areUsable(element))
                return false;
    return true;
}

/// Types whose values can be compared; pictures are not.
template <class T>
concept Comparable = Numeric<typename ElementOf<T>::Type> || std::is_same_v<typename ElementOf<T>::Type, std::string>;

template <Comparable T>
class TypedChangeLane final : public ChangeLane {
public:
    TypedChangeLane(const Settings& settings, unsigned capacity, Clock& clock)
        : _tolerance(settings.number("tolerance")), _clock(clock), _in("in", capacity)
    {
    }

    std::vector<BasicInSlot*> getInSlots() override { return {&_in}; }
    std::vector<BasicOutSlot*> getOutSlots() override { return {&_out}; }

    std::optional<Outcome> relayNext() override
    {
        if (_in.empty())
            return std::nullopt;
        const Data<T> record = _in.pop();
        if (!areUsable(record.getValue()))
            return Outcome::BadValue;
        _newest = record;
        _isHolding = _sent && !differ(*_sent, record.getValue(), _tolerance);
        if (_isHolding)
            return Outcome::Kept;
        send();
        return Outcome::Sent;
    }

    void release() override
    {
        send();
        _isHolding = false;
    }

private:
    void send()
    {
        const double now = _clock.now(); // of the sending: whoever gets it may take time
        _out.push(_newest);
        _sent = _newest.getValue();
        _lastSent = now;
    }

    const double _tolerance;
    Clock& _clock;
    BufferedInSlot<T> _in;
    OutSlot<T> _out{"out"};
    Data<T> _newest;
    std::optional<T> _sent; // the value that went out last
};

std::string comparableTypes()
{
    return typeChoices([]<class T>(TypeTag<T>) { return Comparable<T>; });
}

} // namespace

OnChange::OnChange(Clock& clock)
    : FilterNode(
          clock,
          [this](const Settings& settings, unsigned queue) {
              std::unique_ptr<ChangeLane> lane;
              withSlotType(settings.text("type"), [&]<class T>(TypeTag<T>) {
                  if constexpr (Comparable<T>)
                      lane = std::make_unique<TypedChangeLane<T>>(settings, queue, _clock);
              });
              _changes = lane.get();
              _silence = settings.number("silence");
              return lane;
          },
          usualCauses, "unchanged"),
      _afterSilence(addCounter("after silence"))
{
}

std::optional<double> OnChange::update()
{
    if (_silence == 0.0 || !_changes->isHolding())
        return std::nullopt;
    const double due = _changes->lastSent() + _silence;
    if (_clock.now() < due)
        return due;
    _changes->release();
    addSent();
    _afterSilence.add();
    return std::nullopt;
}

const NodeTypeEntry& OnChange::getEntry()
{
    static const RelayTable table(
        comparableTypes(), "Float",
        {Setting::number("tolerance", "0", 0, 1e12,
                         "how far each number may be from the one sent last and still count as the same, in the "
                         "signal's unit; of rotations the angle in radians"),
         Setting::number("silence", "0", 0, 86400,
                         "seconds after which a value goes out although it is the same; 0: never")});
    static const NodeTypeEntry entry{"OnChange", "passes values on when they change", table.rows(),
                                     createOnSystemClock<OnChange>};
    return entry;
}

} // namespace Trovio::Nodes
