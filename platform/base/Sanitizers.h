#pragma once

// OSTREL_ADDRESS_SANITIZER and OSTREL_THREAD_SANITIZER are defined where that sanitizer watches, whatever the compiler.
#if defined(__SANITIZE_ADDRESS__)
#define OSTREL_ADDRESS_SANITIZER
#endif
#if defined(__SANITIZE_THREAD__)
#define OSTREL_THREAD_SANITIZER
#endif
#if defined(__has_feature)
#if __has_feature(address_sanitizer) && !defined(OSTREL_ADDRESS_SANITIZER)
#define OSTREL_ADDRESS_SANITIZER
#endif
#if __has_feature(thread_sanitizer) && !defined(OSTREL_THREAD_SANITIZER)
#define OSTREL_THREAD_SANITIZER
#endif
#endif
