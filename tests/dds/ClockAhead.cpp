#include <pthread.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

// To be loaded before a program: for it the wall clock is five seconds ahead, and nothing else changes.

namespace {
constexpr time_t ahead = 5; // seconds
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const long result = ::syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && clock == CLOCK_REALTIME)
        time->tv_sec += ahead;
    return static_cast<int>(result);
}

// Waits until a date that the program read from its clock.
extern "C" int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* until)
{
    const timespec ours{until->tv_sec - ahead, until->tv_nsec};
    return ::pthread_cond_clockwait(condition, mutex, CLOCK_REALTIME, &ours);
}
