// Names with characters beyond ASCII, as the text in the code page that the tests run in, and as
// the path.

#ifndef ORVEX_TESTS_SUPPORT_WINDOWS_UMLAUTS_H_
#define ORVEX_TESTS_SUPPORT_WINDOWS_UMLAUTS_H_

#include <gtest/gtest.h>
#include <windows.h>

namespace test {

inline constexpr const char* kUmlautText = "m\xFC.rom";
inline constexpr const char* kUmlautUtf8 = "m\xC3\xBC.rom";
inline constexpr const wchar_t* kUmlautPath = L"m\u00FC.rom";
// This one the code page lacks; its likeness is a plain "a".
inline constexpr const wchar_t* kMacronPath = L"\u0101.rom";
inline constexpr const char* kMacronLikeness = "a.rom";

inline void demandWesternCodePage() {
  ASSERT_EQ(GetACP(), 1252u) << "the names of the tests are written in this code page";
}

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_WINDOWS_UMLAUTS_H_
