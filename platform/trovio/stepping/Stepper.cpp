#include "trovio/Stepper.h"

#include <algorithm>
#include <limits>
#include <poll.h>
#include <stdexcept>

namespace Trovio {

using Ostrel::LockGuard;

namespace {

constexpr double never = std::numeric_limits<double>::infinity();
constexpr double tick = 1e-6; // seconds

} // namespace

Stepper* Stepper::_only = nullptr;

Stepper::Stepper(const Time& start, Descriptors descriptors)
    : _start(start.getSeconds()), _descriptors(descriptors), _driver(std::this_thread::get_id())
{
    if (_only)
        throw std::logic_error("there is a stepper already, and time is the same for all nodes");
    const LockGuard guard(_lock);
    moveTo(0);
    _only = this;
    _active = true;
}

Stepper::~Stepper()
{
    _active = false;
    _only = nullptr;
}

std::unique_ptr<Stepper::Turn> Stepper::join(const std::atomic<bool>& called)
{
    return isActive() ? std::unique_ptr<Turn>(new Turn(*_only, called)) : nullptr;
}

std::size_t Stepper::countJoined() const
{
    const LockGuard guard(_lock);
    return _joined;
}

void Stepper::advance(const Time& until)
{
    const LockGuard guard(_lock);
    const double target = until.getSeconds() - _start;
    lookAtDescriptors();
    while (Turn* const next = nextReady(target))
        run(*next);
    if (target > now())
        moveTo(target);
}

void Stepper::moveTo(double now)
{
    _now = now;
    _date = _start + now;
}

Stepper::Turn* Stepper::nextReady(double target)
{
    Turn* due = nullptr;
    for (Turn* const turn : _turns) {
        if (turn->_hasEnded)
            continue;
        if (turn->_called || turn->_isReadable || turn->_isFinishing)
            return turn;
        if (!due || turn->_until < due->_until)
            due = turn;
    }
    if (!due || due->_until > target || now() > target)
        return nullptr;
    // A thread that waits for what is past goes on at once, again and again: time must pass meanwhile, as it always
    // does.
    moveTo(due->_ranAt == now() ? std::max(now() + tick, due->_until) : std::max(now(), due->_until));
    due->_ranAt = now();
    return due;
}

void Stepper::lookAtDescriptors()
{
    if (_descriptors == Descriptors::Ignored)
        return;
    for (Turn* const turn : _turns) {
        std::vector<pollfd> waiting;
        for (const int descriptor : turn->_descriptors)
            waiting.push_back({descriptor, POLLIN, 0});
        turn->_isReadable = !waiting.empty() && ::poll(waiting.data(), waiting.size(), 0) > 0;
    }
}

void Stepper::run(Turn& turn)
{
    Turn* const me = _holder;
    turn._giver = me;
    turn._isReadable = false;
    give(&turn);
    waitForBaton(me);
}

void Stepper::give(Turn* to)
{
    _holder = to;
    (to ? to->_goesOn : _driverGoesOn).notify_all();
}

void Stepper::waitForBaton(Turn* me)
{
    while (_holder != me)
        (me ? me->_goesOn : _driverGoesOn).wait(_lock);
}

bool Stepper::hasBaton() const
{
    return (_holder ? _holder->_thread : _driver) == std::this_thread::get_id();
}

Stepper::Turn::Turn(Stepper& stepper, const std::atomic<bool>& called)
    : _stepper(stepper), _called(called), _until(-never)
{
    const LockGuard guard(_stepper._lock);
    _stepper._turns.push_back(this);
    ++_stepper._joined;
}

Stepper::Turn::~Turn()
{
    const LockGuard guard(_stepper._lock);
    std::erase(_stepper._turns, this);
}

void Stepper::Turn::begin()
{
    const LockGuard guard(_stepper._lock);
    _thread = std::this_thread::get_id();
    _stepper.waitForBaton(this);
}

void Stepper::Turn::wait(std::optional<double> until, std::span<const int> descriptors)
{
    const LockGuard guard(_stepper._lock);
    _until = until.value_or(never);
    _descriptors = descriptors;
    _stepper.give(_giver);
    _stepper.waitForBaton(this);
    _descriptors = {};
}

void Stepper::Turn::end()
{
    const LockGuard guard(_stepper._lock);
    _hasEnded = true;
    _goesOn.notify_all();
    _stepper.give(_giver);
}

void Stepper::Turn::finish()
{
    const LockGuard guard(_stepper._lock);
    _isFinishing = true;
    while (!_hasEnded)
        if (_stepper.hasBaton())
            _stepper.run(*this);
        else // the driver lets it run in advance()
            _goesOn.wait(_stepper._lock);
}

} // namespace Trovio
