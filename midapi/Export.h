// The export macro of the OrvexMidApi library; its own objects define ORVEX_MIDAPI_BUILD.

#ifndef ORVEX_MIDAPI_EXPORT_H_
#define ORVEX_MIDAPI_EXPORT_H_

#if defined(_WIN32)
#if defined(ORVEX_MIDAPI_BUILD)
#define ORVEX_MIDAPI_API __declspec(dllexport)
#else
#define ORVEX_MIDAPI_API __declspec(dllimport)
#endif
#else
#define ORVEX_MIDAPI_API __attribute__((visibility("default")))
#endif

#endif  // ORVEX_MIDAPI_EXPORT_H_
