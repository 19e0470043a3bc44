#pragma once

// Tells the thread sanitizer what the locks do, so that it sees inversions of their order and misuse; nothing in other
// builds.
#include "base/Sanitizers.h"

#ifdef OSTREL_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#define OSTREL_LOCK_EVENT(event, ...) __tsan_mutex_##event(__VA_ARGS__)
#else
#define OSTREL_LOCK_EVENT(event, ...) static_cast<void>(0)
#endif
