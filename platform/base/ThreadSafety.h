#pragma once

// Clang's thread-safety attributes; empty for compilers that do not know them.
// Source: https://clang.llvm.org/docs/ThreadSafetyAnalysis.html
#if defined(__clang__)
#define OSTREL_ATTRIBUTE(x) __attribute__((x))
#else
#define OSTREL_ATTRIBUTE(x)
#endif

#define OSTREL_CAPABILITY(name) OSTREL_ATTRIBUTE(capability(name))
#define OSTREL_SCOPED_CAPABILITY OSTREL_ATTRIBUTE(scoped_lockable)
#define OSTREL_GUARDED_BY(lock) OSTREL_ATTRIBUTE(guarded_by(lock))
#define OSTREL_PT_GUARDED_BY(lock) OSTREL_ATTRIBUTE(pt_guarded_by(lock))
#define OSTREL_ACQUIRED_BEFORE(...) OSTREL_ATTRIBUTE(acquired_before(__VA_ARGS__))
#define OSTREL_REQUIRES(...) OSTREL_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define OSTREL_EXCLUDES(...) OSTREL_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define OSTREL_ACQUIRE(...) OSTREL_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define OSTREL_RELEASE(...) OSTREL_ATTRIBUTE(release_capability(__VA_ARGS__))
#define OSTREL_TRY_ACQUIRE(...) OSTREL_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define OSTREL_RETURN_CAPABILITY(lock) OSTREL_ATTRIBUTE(lock_returned(lock))
#define OSTREL_NO_THREAD_SAFETY_ANALYSIS OSTREL_ATTRIBUTE(no_thread_safety_analysis)
