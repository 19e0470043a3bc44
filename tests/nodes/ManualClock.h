#pragma once

#include "base/Mutex.h"
#include "nodes/shared/Clock.h"
#include "nodes/shared/FileDescriptor.h"
#include <algorithm>
#include <cstdint>
#include <limits>
#include <sys/eventfd.h>
#include <vector>

namespace Trovio::Nodes {

/// A clock that stands still until a test moves it. Alarms go off inside advance().
class ManualClock final : public Clock {
public:
    /// The date when the clock reads 0.
    static constexpr double Epoch = 1'700'000'000.0;

    double now() const override
    {
        const Ostrel::LockGuard guard(_lock);
        return _now;
    }
    Time wallTime() const override { return Time(Epoch + now()); }

    void advance(double seconds)
    {
        const Ostrel::LockGuard guard(_lock);
        _now += seconds;
        for (HandAlarm* alarm : _alarms)
            alarm->look(_now);
    }

    std::unique_ptr<Alarm> createAlarm() override
    {
        auto alarm = std::make_unique<HandAlarm>(*this);
        const Ostrel::LockGuard guard(_lock);
        _alarms.push_back(alarm.get());
        return alarm;
    }

private:
    class HandAlarm final : public Alarm {
    public:
        explicit HandAlarm(ManualClock& clock) : _clock(clock), _event(::eventfd(0, EFD_NONBLOCK)) {}
        ~HandAlarm() override
        {
            const Ostrel::LockGuard guard(_clock._lock);
            std::erase(_clock._alarms, this);
        }

        int getDescriptor() const override { return _event.get(); }
        void set(double seconds) override
        {
            const Ostrel::LockGuard guard(_clock._lock);
            eventfd_t ignored = 0;
            ::eventfd_read(_event.get(), &ignored);
            _due = seconds;
            look(_clock._now);
        }
        void clear() override { set(std::numeric_limits<double>::infinity()); }

        void look(double now)
        {
            if (_due <= now)
                ::eventfd_write(_event.get(), 1);
        }

    private:
        ManualClock& _clock;
        FileDescriptor _event;
        double _due = std::numeric_limits<double>::infinity();
    };

    mutable Ostrel::Mutex _lock;
    double _now OSTREL_GUARDED_BY(_lock) = 0.0;
    std::vector<HandAlarm*> _alarms OSTREL_GUARDED_BY(_lock);
};

} // namespace Trovio::Nodes
