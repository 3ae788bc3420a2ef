#include <cstddef>
#include <cstdio>
#include <new>
#include <windows.h>

#include "Os/Windows/LateRecords.h"
#include "Utils/Format.h"
#include "Utils/Log.h"
#include "Utils/Printable.h"

namespace utils {
namespace {

constexpr const char* kEventSource = "Zolan Quorvel Provider";

class WindowsLogSinks : public LogSinks {
 public:
  void writeEventLog(const std::string& line) noexcept override {
    if (os::isInLoader()) {
      os::keepRecord(line);
      return;
    }
    os::writeRecordsNow();
    report(line);
  }

  void writeDebugChannel(const std::string& line) noexcept override {
    OutputDebugStringA(line.c_str());
  }

  void writeStandardError(const std::string& text) noexcept override {
    try {
      const std::string shown = toPrintableLines(text);
      std::fwrite(shown.data(), 1, shown.size(), stderr);
    } catch (const std::bad_alloc&) {
      std::fputs("OrvexQuorvel: a record is lost for want of memory\n", stderr);
    }
  }

 private:
  // The source is registered and deregistered for every entry: nothing is kept open in the host's
  // process. Without a source the report is tried all the same.
  void report(const std::string& line) noexcept {
    const HANDLE source = RegisterEventSourceA(nullptr, kEventSource);
    if (source == nullptr) {
      reportProblem("RegisterEventSource", "");
    }
    const char* text = line.c_str();
    if (ReportEventA(source, EVENTLOG_ERROR_TYPE, 0, 0, nullptr, 1, 0, &text, nullptr) == FALSE) {
      reportProblem("ReportEvent ", text);
    }
    if (DeregisterEventSource(source) == FALSE && source != nullptr) {
      reportProblem("DeregisterEventSource", "");
    }
  }

  // Tells the debugger of the system's last error; of its number alone where there is no memory.
  void reportProblem(const char* operation, const char* line) noexcept {
    const auto error = static_cast<unsigned>(GetLastError());
    try {
      writeDebugChannel(format("Problem %x with %s%s\n", error, operation, line));
    } catch (const std::bad_alloc&) {
      char text[32];
      std::snprintf(text, sizeof text, "Problem %x\n", error);
      OutputDebugStringA(text);
    }
  }
};

}  // namespace

LogSinks& platformLogSinks() {
  // Never destroyed: objects that are destroyed at the end of the process still log. Whoever logs
  // first may have no memory.
  alignas(WindowsLogSinks) static std::byte place[sizeof(WindowsLogSinks)];
  static LogSinks& sinks = *new (place) WindowsLogSinks;
  return sinks;
}

}  // namespace utils
