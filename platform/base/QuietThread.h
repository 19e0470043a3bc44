#pragma once

#include <csignal>
#include <pthread.h>
#include <thread>
#include <utility>

namespace Ostrel {

/// A thread that takes no signals: those are for the program's own threads. `name` has up to 15 bytes. Throws
/// std::system_error where no thread can be started.
template <class Body>
std::thread quietThread(const char* name, Body body)
{
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    try {
        std::thread thread(std::move(body));
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        pthread_setname_np(thread.native_handle(), name);
        return thread;
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        throw;
    }
}
} // namespace Ostrel
