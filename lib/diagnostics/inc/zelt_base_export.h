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

/// Announces an instantiation that the library offers: `ZELT_BASE_TEMPLATE(class RangeConfigItem<double>);`
#if defined(__MINGW32__) && !defined(ZELT_BASE_EXPORTS)
// g++ exports no inline members from there, so that its clients have to make their own.
#define ZELT_BASE_TEMPLATE(...)
#elif defined(_MSC_VER) && defined(ZELT_BASE_EXPORTS)
// Microsoft's compiler exports by the definition only and warns of the announcement.
#define ZELT_BASE_TEMPLATE(...)
#else
#define ZELT_BASE_TEMPLATE(...) extern template __VA_ARGS__
#endif
