// What the platform layers have different words and numbers for. Defined per platform.

#ifndef ORVEX_TESTS_OS_PLATFORM_H_
#define ORVEX_TESTS_OS_PLATFORM_H_

namespace test {

// The names that they log under.
extern const char* const kConfigSource;
extern const char* const kFilesSource;
extern const char* const kLockerSource;
extern const char* const kMutexSource;
extern const char* const kThreadSource;

// The error of unlocking a mutex that nobody has locked.
extern const int kNotOwnerError;

// A part of the loader's words about a library that is missing.
extern const char* const kLibraryIsMissing;

}  // namespace test

#endif  // ORVEX_TESTS_OS_PLATFORM_H_
