// The export macro of the OrvexCimCore library.
//
// The library is compiled with hidden visibility; what carries this macro is its interface. The
// library's own objects define ORVEX_CORE_BUILD.

#ifndef ORVEX_UTILS_EXPORT_H_
#define ORVEX_UTILS_EXPORT_H_

#if defined(_WIN32)
#if defined(ORVEX_CORE_BUILD)
#define ORVEX_CORE_API __declspec(dllexport)
#else
#define ORVEX_CORE_API __declspec(dllimport)
#endif
#else
#define ORVEX_CORE_API __attribute__((visibility("default")))
#endif

#endif  // ORVEX_UTILS_EXPORT_H_
