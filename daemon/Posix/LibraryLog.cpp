#include "daemon/Posix/LibraryLog.h"

#include <atomic>
#include <cstdarg>
#include <dlfcn.h>
#include <exception>
#include <string>

#include "Utils/Format.h"

// The functions under the names that libraries look for; the last two are what the first two become
// in a library that is compiled with the checks of the C library.
#pragma GCC visibility push(default)
extern "C" {
void logForLibrary(int priority, const char* text, ...) __asm__("syslog") ORVEX_PRINTF(2, 3);
void logListForLibrary(int priority, const char* text, va_list arguments) __asm__("vsyslog")
    ORVEX_PRINTF(2, 0);
void logCheckedForLibrary(int priority, int flag, const char* text, ...) __asm__("__syslog_chk")
    ORVEX_PRINTF(3, 4);
void logCheckedListForLibrary(int priority, int flag, const char* text,
                              va_list arguments) __asm__("__vsyslog_chk") ORVEX_PRINTF(3, 0);
}
#pragma GCC visibility pop

namespace quorveld {
namespace {

constexpr const char* kTag = "quorveld";

std::atomic<os::SystemLogSink*> s_sink{nullptr};

os::SystemLogSink& currentSink() {
  // Never destroyed: libraries may log until the process has ended.
  static auto& systemLog = *new os::SystemLogSink(platform::kSystemLogSocket, kTag);
  os::SystemLogSink* const sink = s_sink.load(std::memory_order_acquire);
  return sink != nullptr ? *sink : systemLog;
}

void write(int priority, const char* text, va_list arguments) ORVEX_PRINTF(2, 0);

void write(int priority, const char* text, va_list arguments) {
  try {
    // At once: the text may ask for the last error number.
    const std::string line = utils::formatArguments(text, arguments);
    currentSink().write(priority, line);
  } catch (const std::exception&) {
    // A library in C cannot be told that there is no memory for its record.
  }
}

template <class Function>
bool isFound(const char* name, Function* function) {
  return dlsym(RTLD_DEFAULT, name) == reinterpret_cast<void*>(function);
}

}  // namespace

bool isLibraryLogInForce() {
  return isFound("syslog", &logForLibrary) && isFound("vsyslog", &logListForLibrary) &&
         isFound("__syslog_chk", &logCheckedForLibrary) &&
         isFound("__vsyslog_chk", &logCheckedListForLibrary);
}

os::SystemLogSink* exchangeLibraryLog(os::SystemLogSink* sink) {
  return s_sink.exchange(sink, std::memory_order_acq_rel);
}

}  // namespace quorveld

extern "C" {

void logListForLibrary(int priority, const char* text, va_list arguments) {
  quorveld::write(priority, text, arguments);
}

void logForLibrary(int priority, const char* text, ...) {
  va_list arguments;
  va_start(arguments, text);
  quorveld::write(priority, text, arguments);
  va_end(arguments);
}

void logCheckedListForLibrary(int priority, int /*flag*/, const char* text, va_list arguments) {
  quorveld::write(priority, text, arguments);
}

void logCheckedForLibrary(int priority, int /*flag*/, const char* text, ...) {
  va_list arguments;
  va_start(arguments, text);
  quorveld::write(priority, text, arguments);
  va_end(arguments);
}

}  // extern "C"
