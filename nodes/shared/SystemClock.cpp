#include "nodes/shared/Clock.h"

#include "nodes/shared/FileDescriptor.h"
#include "trovio/Stepper.h"
#include <algorithm>
#include <cmath>
#include <ctime>
#include <sys/timerfd.h>
#include <system_error>

namespace Trovio::Nodes {

namespace {

double steadySeconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

class TimerAlarm final : public Alarm {
public:
    TimerAlarm() : _timer(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC))
    {
        if (!_timer.isOpen())
            throw std::system_error(errno, std::generic_category(), "no timer");
    }

    int getDescriptor() const override { return _timer.get(); }

    void set(double seconds) override
    {
        // All zeros would clear the timer; a year from now stands for never.
        const double latest = 3.2e7 + steadySeconds();
        const double bounded = std::clamp(seconds, 1e-9, latest);
        const double whole = std::floor(bounded);
        arm({static_cast<time_t>(whole), static_cast<long>((bounded - whole) * 1e9)});
    }

    void clear() override { arm({0, 0}); }

private:
    void arm(const timespec& when)
    {
        const itimerspec setting{{0, 0}, when};
        ::timerfd_settime(_timer.get(), TFD_TIMER_ABSTIME, &setting, nullptr);
    }

    FileDescriptor _timer;
};

class SystemClock final : public Clock {
public:
    double now() const override { return steadySeconds(); }
    Time wallTime() const override { return Time::getCurrentTime(); }
    std::unique_ptr<Alarm> createAlarm() override { return std::make_unique<TimerAlarm>(); }
};

/// Virtual time. Who waits by it tells the stepper until when, so alarms have nothing to do.
class SteppedClock final : public Clock {
public:
    double now() const override { return Stepper::now(); }
    Time wallTime() const override { return Time::getCurrentTime(); }
    std::unique_ptr<Alarm> createAlarm() override { return std::make_unique<NoAlarm>(); }

private:
    class NoAlarm final : public Alarm {
    public:
        int getDescriptor() const override { return -1; }
        void set(double) override {}
        void clear() override {}
    };
};

} // namespace

Clock& Clock::system()
{
    static SystemClock clock;
    static SteppedClock stepped;
    if (Stepper::isActive())
        return stepped;
    return clock;
}

} // namespace Trovio::Nodes
