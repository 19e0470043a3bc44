#include "trovio/Hooks.h"

namespace Trovio::Hooks {

Ostrel::Mutex& wiringLock()
{
    static Ostrel::Mutex lock(Ostrel::LockRank::Wiring);
    return lock;
}

} // namespace Trovio::Hooks
