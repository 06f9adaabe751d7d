/// Is this build an instrumented one? The compilers say it in ways of their own.
#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZELT_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZELT_SANITIZED 1
#endif
#endif
#ifndef ZELT_SANITIZED
#define ZELT_SANITIZED 0
#endif
