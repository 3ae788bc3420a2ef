#include <cstdio>
#include <windows.h>

#include "Utils/Format.h"
#include "Utils/Log.h"

namespace utils {
namespace {

constexpr const char* kEventSource = "Zolan Quorvel Provider";

class WindowsLogSinks : public LogSinks {
 public:
  // The source is registered and deregistered for every entry: nothing is kept open in the host's
  // process. Without a source the report is tried all the same.
  void writeEventLog(const std::string& line) noexcept override {
    const HANDLE source = RegisterEventSourceA(nullptr, kEventSource);
    if (source == nullptr) {
      writeDebugChannel(
          format("Problem %x with RegisterEventSource\n", static_cast<unsigned>(GetLastError())));
    }
    const char* text = line.c_str();
    if (ReportEventA(source, EVENTLOG_ERROR_TYPE, 0, 0, nullptr, 1, 0, &text, nullptr) == FALSE) {
      writeDebugChannel(
          format("Problem %x with ReportEvent %s\n", static_cast<unsigned>(GetLastError()), text));
    }
    DeregisterEventSource(source);
  }

  void writeDebugChannel(const std::string& line) noexcept override {
    OutputDebugStringA(line.c_str());
  }

  void writeStandardError(const std::string& text) noexcept override {
    std::fwrite(text.data(), 1, text.size(), stderr);
  }
};

}  // namespace

LogSinks& platformLogSinks() {
  // Never destroyed: objects that are destroyed at the end of the process still log.
  static auto* sinks = new WindowsLogSinks;
  return *sinks;
}

}  // namespace utils
