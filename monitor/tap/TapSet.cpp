#include "monitor/tap/TapSet.h"

#include "explain/text/Escape.h"
#include "trovio/Exception.h"
#include "trovio/Root.h"

#include <algorithm>
#include <chrono>

namespace Monitor {
namespace {

using Trovio::Root;

constexpr std::int64_t renewalPeriod = 1'000'000'000;
constexpr std::size_t fullTaps = 1'000;

template <class Clock>
std::int64_t nanoseconds()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch()).count();
}

/// What the wall clock says, in nanoseconds, when the steady clock says 0.
struct WallAtZero {
    std::int64_t _time, _bound;
};

WallAtZero readWallAtZero()
{
    const std::int64_t before = nanoseconds<std::chrono::steady_clock>();
    const std::int64_t wall = nanoseconds<std::chrono::system_clock>();
    const std::int64_t half = (nanoseconds<std::chrono::steady_clock>() - before + 1) / 2;
    return {wall - before - half, half};
}

/// The best of three: one may have been interrupted.
WallAtZero wallAtZero()
{
    return std::min({readWallAtZero(), readWallAtZero(), readWallAtZero()},
                    [](const WallAtZero& a, const WallAtZero& b) { return a._bound < b._bound; });
}

/// Of the out-slot that stands under the label; null if none does.
const SlotCodec* codecAt(const std::string& label)
{
    for (const Trovio::SlotInfo& slot : Root::get().findSlots(label))
        if (slot._direction == Trovio::Slot::Direction::Out)
            return SlotCodec::find(slot._typeName);
    return nullptr;
}

} // namespace

TapSet::TapSet(const TapSize& size, const std::string& name) : _size(size)
{
    auto space = std::make_unique<Trovio::Namespace>();
    space->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    _space = Root::get().addNamespace(name, std::move(space));
}

TapSet::~TapSet()
{
    const Ostrel::LockGuard guard(_lock);
    for (const auto& [label, watched] : _watched)
        unwire(label);
    Root::get().removeNamespace(_space);
}

std::string TapSet::whyNot(const std::string& label)
{
    if (isPattern(label))
        return Explain::inQuotes(label) + " cannot be looked at: in a route a '*' stands for any text; give the slot a "
                                          "label without";
    return codecAt(label) ? Explain::inQuotes(label) + " cannot be looked at: its label is too long"
                          : "no out-slot has the label " + Explain::inQuotes(label);
}

bool TapSet::add(const std::string& label, std::shared_ptr<TapReceiver> receiver)
{
    if (isPattern(label))
        return false;
    const Ostrel::LockGuard guard(_lock);
    if (const auto known = _watched.find(label); known != _watched.end()) {
        ++known->second->_users;
        return true;
    }
    auto watched = makeWatched(label, std::make_shared<Tally>(), std::move(receiver));
    if (!watched)
        return false;
    const auto added = _watched.emplace(label, watched).first;
    try {
        wire(*watched);
    } catch (const Trovio::Exception&) { // a label that is too long for a route
        _watched.erase(added);
        return false;
    } catch (...) {
        _watched.erase(added);
        throw;
    }
    _isRoomy = false;
    return true;
}

void TapSet::remove(const std::string& label)
{
    const Ostrel::LockGuard guard(_lock);
    const auto known = _watched.find(label);
    if (known == _watched.end())
        return;
    if (known->second->_users > 1) {
        --known->second->_users;
        return;
    }
    unwire(label);
    _watched.erase(known);
}

std::shared_ptr<TapSet::Watched> TapSet::makeWatched(const std::string& label, std::shared_ptr<Tally> tally,
                                                     std::shared_ptr<TapReceiver> receiver) const
{
    const SlotCodec* const codec = codecAt(label);
    if (!codec)
        return nullptr;
    const TapSize size = _watched.size() < fullTaps ? _size : TapSize{_size._bytes / 16, 1};
    return std::shared_ptr<Watched>(
        new Watched{label, *codec, makeTap(codec->slotType(), size), std::move(tally), std::move(receiver)});
}

/// A route of its own for each label, so that slots that nobody looks at cost nothing.
void TapSet::wire(Watched& watched) const
{
    Trovio::Namespace& space = *Root::get().getNamespace(_space);
    space.addInSlot(watched._label, &watched._tap->slot());
    try {
        Root::get().addRoute(watched._label, _space + "/" + watched._label);
    } catch (...) {
        space.removeSlot(watched._label);
        throw;
    }
}

void TapSet::unwire(const std::string& label) const
{
    Root::get().getNamespace(_space)->removeSlot(label);
    Root::get().removeRoute(label, _space + "/" + label);
}

/// A node may have been replaced by one whose slot is of another type, to which the tap does not connect.
void TapSet::renewTypes(std::int64_t now)
{
    if (now < _nextRenewal)
        return;
    _nextRenewal = now + renewalPeriod;
    for (auto& [label, watched] : _watched) {
        const SlotCodec* const codec = watched->_tap->slot().isActive() ? &watched->_codec : codecAt(label);
        if (!codec || codec == &watched->_codec)
            continue;
        const auto renewed = makeWatched(label, watched->_tally, watched->_receiver);
        if (!renewed)
            continue;
        renewed->_users = watched->_users;
        unwire(label);
        watched->_tally->_seen += watched->_tap->seen();
        watched->_tally->_refused += watched->_tap->refused();
        watched = renewed;
        _isRoomy = false;
        wire(*watched);
    }
}

TapRecord& TapSet::Round::place()
{
    if (_count == _arrived.size())
        _arrived.emplace_back();
    _order.reserve(_arrived.capacity()); // so that sorting needs no memory any more
    return _arrived[_count]._record;
}

void TapSet::Round::keep(Share& share, std::function<void(Bytes&)> encode)
{
    Arrived& arrived = _arrived[_count++];
    arrived._share = &share;
    arrived._encode = std::move(encode);
    ++share._collected;
}

/// Else nothing is lost: the taps keep what they hold.
void TapSet::Round::reserve(std::size_t taps)
{
    _shares.reserve(taps);
    _losses.reserve(taps);
}

void TapSet::Round::sort()
{
    _order.clear();
    for (std::size_t i = 0; i < _count; ++i)
        _order.push_back(&_arrived[i]);
    const auto comesBefore = [](const Arrived* one, const Arrived* other) {
        return std::pair(one->_record._arrival, one) < std::pair(other->_record._arrival, other);
    };
    if (!std::ranges::is_sorted(_order, comesBefore)) // what one tap held is in order
        std::ranges::sort(_order, comesBefore);
}

/// Keeps memory for a round that is about as large: taking new memory for large records costs as much as copying them.
/// What this round did not need of it is given back.
void TapSet::Round::forget()
{
    constexpr std::size_t someRecords = 1'024, someBytes = 1'024;
    _shares.clear();
    _losses.clear();
    _arrived.resize(std::min(_arrived.size(), 2 * _count + someRecords));
    for (std::size_t i = _count; i < _arrived.size(); ++i)
        if (Bytes& cdr = _arrived[i]._record._cdr; cdr.capacity() > someBytes)
            Bytes().swap(cdr);
    if (!std::exchange(_needsLarge, false))
        Bytes().swap(_large);
    _count = 0;
}

class TapSet::RoundSink final : public TapSink {
public:
    RoundSink(Round& round, Share& share) : _round(round), _share(share) {}
    TapRecord& place() override { return _round.place(); }
    void keep() override { keep(nullptr); }
    void keep(std::function<void(Bytes&)> encode) override { _round.keep(_share, std::move(encode)); }

private:
    Round& _round;
    Share& _share;
};

TapSet::Round TapSet::collect()
{
    const Ostrel::LockGuard guard(_lock);
    const WallAtZero wall = wallAtZero();
    _arrivalBound = wall._bound;
    Round round = std::exchange(_spare, {});
    round.reserve(_watched.size());
    _isRoomy = true;
    for (const auto& [label, watched] : _watched)
        _isRoomy = collectFrom(watched, wall._time, round) && _isRoomy;
    renewTypes(nanoseconds<std::chrono::steady_clock>());
    return round;
}

/// Whether it is roomy.
bool TapSet::collectFrom(const std::shared_ptr<Watched>& watched, std::int64_t wallAtZero, Round& round)
{
    Share& share = round._shares.emplace_back();
    RoundSink sink(round, share);
    const TapState state = watched->_tap->drain(wallAtZero, sink);
    const Tally& tally = *watched->_tally;
    share._refused = tally._refused + state._refused;
    if (share._collected != 0 || share._refused + tally._unwritten != tally._told)
        share._watched = watched;
    else
        round._shares.pop_back();
    return state._isRoomy;
}

/// Lets go of the value. False where there is no memory for its message.
bool TapSet::Arrived::write()
{
    const auto encode = std::exchange(_encode, nullptr);
    try {
        encode(_record._cdr);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void TapSet::Arrived::handOut(const Use& use)
{
    const Watched& watched = *_share->_watched;
    ++_share->_handedOut;
    if (watched._receiver)
        watched._receiver->take(watched._codec, _record);
    else if (use)
        use(watched._label, watched._codec, std::move(_record));
}

/// Messages of large values are written one over the other, for memory that is in the processor's caches is the faster:
/// a round may hold more of them than go into those.
void TapSet::Round::handOutLarge(Arrived& arrived, const Use& use)
{
    _needsLarge = true;
    arrived._record._cdr.swap(_large);
    if (arrived.write())
        arrived.handOut(use);
    arrived._record._cdr.swap(_large);
}

void TapSet::Round::handOut(const Use& use)
{
    for (Arrived* const arrived : _order) {
        if (arrived->_encode)
            handOutLarge(*arrived, use);
        else
            arrived->handOut(use);
    }
}

void TapSet::drain(const Use& use)
{
    Round round = collect();
    round.sort();
    try {
        round.handOut(use);
    } catch (...) {
        settle(round);
        throw;
    }
    settle(round);
    tellLosses(round);
    round.forget();
    const Ostrel::LockGuard guard(_lock);
    _spare = std::move(round);
}

/// Counts what was handed out, and finds who has to be told of losses.
void TapSet::settle(Round& round)
{
    const Ostrel::LockGuard guard(_lock);
    for (const Share& share : round._shares) {
        Tally& tally = *share._watched->_tally;
        tally._drained += share._handedOut;
        tally._unwritten += share._collected - share._handedOut;
        const std::uint64_t refused = share._refused + tally._unwritten;
        if (refused != tally._told)
            round._losses.push_back({share._watched.get(), refused});
    }
}

void TapSet::tellLosses(const Round& round)
{
    for (const Loss& loss : round._losses)
        if (loss._watched->_receiver)
            loss._watched->_receiver->miss(loss._refused);
    const Ostrel::LockGuard guard(_lock);
    for (const Loss& loss : round._losses)
        loss._watched->_tally->_told = loss._refused;
}

bool TapSet::isRoomy() const
{
    const Ostrel::LockGuard guard(_lock);
    return _isRoomy;
}

double TapSet::arrivalBound() const
{
    const Ostrel::LockGuard guard(_lock);
    return static_cast<double>(_arrivalBound) / 1e9;
}

TapCounts TapSet::countsOf(const Watched& watched)
{
    const Tally& tally = *watched._tally;
    return {watched._label, tally._seen + watched._tap->seen(), tally._drained,
            tally._refused + watched._tap->refused() + tally._unwritten};
}

std::vector<TapCounts> TapSet::getCounts() const
{
    const Ostrel::LockGuard guard(_lock);
    std::vector<TapCounts> counts;
    for (const auto& [label, watched] : _watched)
        counts.push_back(countsOf(*watched));
    return counts;
}

TapCounts TapSet::getCounts(const std::string& label) const
{
    const Ostrel::LockGuard guard(_lock);
    const auto known = _watched.find(label);
    return known == _watched.end() ? TapCounts{label} : countsOf(*known->second);
}

} // namespace Monitor
