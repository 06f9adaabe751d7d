/// Marks what the shared library `zelt_base` offers. Host and plug-in both link that library, so that the
/// assertion hook, the loggers and the live-instance counters exist once per process.
#pragma once

#if defined(_WIN32)
#if defined(ZELT_BASE_EXPORTS)
#define ZELT_BASE_API __declspec(dllexport)
#else
#define ZELT_BASE_API __declspec(dllimport)
#endif
#else
#define ZELT_BASE_API __attribute__((visibility("default")))
#endif
