// The calls that the sinks make of the event log and the debugger.

#include <cerrno>
#include <cstdio>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>
#include <windows.h>

#include "Utils/Format.h"
#include "Utils/Log.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/Windows/ImportPatch.h"

namespace {

using testing::ElementsAre;
using utils::format;

constexpr const char* kLibrary = "OrvexCimCore.dll";
constexpr utils::LogSource kLog{"Some"};
constexpr const char* kDebugLine = "OrvexQuorvel: Some:1:act: debug: d %d%%\n";
constexpr const char* kErrorLine = "OrvexQuorvel: Some:2:act: error: e %n\n";

// What the system was asked, as text, and the errors that it is to answer with.
std::vector<std::string> s_calls;
DWORD s_registerError = 0;
DWORD s_reportError = 0;
DWORD s_deregisterError = 0;
std::optional<test::FailingCall> s_noMemory;

HANDLE sourceHandle() {
  return &s_calls;
}

const char* nameOf(HANDLE source) {
  if (source == nullptr) {
    return "null";
  }
  return source == sourceHandle() ? "the source" : "another";
}

HANDLE WINAPI registerSource(const char* server, const char* name) {
  s_calls.push_back(format("register %s on %s", name, server == nullptr ? "this machine" : server));
  SetLastError(s_registerError);
  return s_registerError == 0 ? sourceHandle() : nullptr;
}

BOOL WINAPI report(HANDLE source, WORD type, WORD category, DWORD event, PSID user, WORD count,
                   DWORD dataSize, const char** strings, void* data) {
  s_calls.push_back(
      format(
          "report to %s: type %u category %u event %u %s, %u string, %u bytes %s: ", nameOf(source),
          type, category, static_cast<unsigned>(event), user == nullptr ? "no user" : "a user",
          count, static_cast<unsigned>(dataSize), data == nullptr ? "none" : "some") +
      strings[0]);
  SetLastError(s_reportError);
  return s_reportError == 0 ? TRUE : FALSE;
}

BOOL WINAPI reportWithoutMemory(HANDLE, WORD, WORD, DWORD, PSID, WORD, DWORD, const char**, void*) {
  s_noMemory.emplace(test::SystemCall::Allocate, ENOMEM);
  SetLastError(ERROR_ACCESS_DENIED);
  return FALSE;
}

BOOL WINAPI deregisterSource(HANDLE source) {
  s_calls.push_back(format("deregister %s", nameOf(source)));
  SetLastError(s_deregisterError);
  return source != nullptr && s_deregisterError == 0 ? TRUE : FALSE;
}

void WINAPI debugOutput(const char* text) {
  s_calls.push_back(std::string("debugger: ") + text);
}

std::string reportOf(const char* source, const std::string& line) {
  return std::string("report to ") + source +
         ": type 1 category 0 event 0 no user, 1 string, 0 bytes none: " + line;
}

// The platform's sinks in the place of those of the tests, over calls that are recorded.
class WindowsLogSinks : public testing::Test {
 protected:
  WindowsLogSinks() : m_previous(utils::exchangeLogSinks(&m_sinks)) {
    s_calls.clear();
    s_registerError = 0;
    s_reportError = 0;
    s_deregisterError = 0;
  }
  ~WindowsLogSinks() override { utils::exchangeLogSinks(m_previous); }

 private:
  // The platform's, without the copy on standard error.
  class Sinks : public utils::LogSinks {
   public:
    void writeEventLog(const std::string& line) noexcept override {
      utils::platformLogSinks().writeEventLog(line);
    }
    void writeDebugChannel(const std::string& line) noexcept override {
      utils::platformLogSinks().writeDebugChannel(line);
    }
    void writeStandardError(const std::string& /*text*/) noexcept override {}
  };

  Sinks m_sinks;
  utils::LogSinks* m_previous;
  test::ImportPatch m_register{kLibrary, "RegisterEventSourceA", &registerSource};
  test::ImportPatch m_report{kLibrary, "ReportEventA", &report};
  test::ImportPatch m_deregister{kLibrary, "DeregisterEventSource", &deregisterSource};
  test::ImportPatch m_debugger{kLibrary, "OutputDebugStringA", &debugOutput};
};

TEST_F(WindowsLogSinks, SendDebugEntriesToTheDebugger) {
  utils::logDebug(kLog, {"act", 1}, "%s", "d %d%%");

  EXPECT_THAT(s_calls, ElementsAre(std::string("debugger: ") + kDebugLine));
}

TEST_F(WindowsLogSinks, ReportErrorsFromASourceThatIsRegisteredForEach) {
  for (int i = 0; i < 2; ++i) {
    s_calls.clear();
    utils::logError(kLog, {"act", 2}, "%s", "e %n");

    EXPECT_THAT(s_calls, ElementsAre("register Zolan Quorvel Provider on this machine",
                                     reportOf("the source", kErrorLine), "deregister the source",
                                     std::string("debugger: ") + kErrorLine));
  }
}

TEST_F(WindowsLogSinks, TellTheDebuggerOfASourceThatCannotBeRegisteredAndReportAllTheSame) {
  s_registerError = 0x6BA;
  utils::logError(kLog, {"act", 2}, "%s", "e %n");

  EXPECT_THAT(s_calls, ElementsAre("register Zolan Quorvel Provider on this machine",
                                   "debugger: Problem 6ba with RegisterEventSource\n",
                                   reportOf("null", kErrorLine), "deregister null",
                                   std::string("debugger: ") + kErrorLine));
}

TEST_F(WindowsLogSinks, TellTheDebuggerOfAReportThatFailed) {
  s_reportError = ERROR_ACCESS_DENIED;
  utils::logError(kLog, {"act", 2}, "%s", "e %n");

  EXPECT_THAT(s_calls,
              ElementsAre("register Zolan Quorvel Provider on this machine",
                          reportOf("the source", kErrorLine),
                          std::string("debugger: Problem 5 with ReportEvent ") + kErrorLine + "\n",
                          "deregister the source", std::string("debugger: ") + kErrorLine));
}

TEST_F(WindowsLogSinks, TellTheDebuggerOfASourceThatStaysRegistered) {
  s_deregisterError = ERROR_INVALID_HANDLE;
  utils::logError(kLog, {"act", 2}, "%s", "e %n");

  EXPECT_THAT(s_calls, ElementsAre("register Zolan Quorvel Provider on this machine",
                                   reportOf("the source", kErrorLine), "deregister the source",
                                   "debugger: Problem 6 with DeregisterEventSource\n",
                                   std::string("debugger: ") + kErrorLine));
}

TEST_F(WindowsLogSinks, TellTheDebuggerOfTheNumberAloneWithoutMemory) {
  const test::ImportPatch patch(kLibrary, "ReportEventA", &reportWithoutMemory);
  utils::logError(kLog, {"act", 2}, "%s", "e %n");
  s_noMemory.reset();

  EXPECT_THAT(s_calls, ElementsAre("register Zolan Quorvel Provider on this machine",
                                   "debugger: Problem 5\n", "deregister the source",
                                   std::string("debugger: ") + kErrorLine));
}

// A suite of its own, and so a process: they have not been used before.
TEST(FirstLogSinks, NeedNoMemory) {
  const test::FailingCall noMemory(test::SystemCall::Allocate, ENOMEM);
  EXPECT_NO_THROW(static_cast<void>(utils::platformLogSinks()));
}

TEST_F(WindowsLogSinks, TellTheDebuggerOfBothFailures) {
  s_registerError = 0x6BA;
  s_reportError = ERROR_INVALID_HANDLE;
  utils::logError(kLog, {"act", 2}, "%s", "e %n");

  EXPECT_THAT(
      s_calls,
      ElementsAre("register Zolan Quorvel Provider on this machine",
                  "debugger: Problem 6ba with RegisterEventSource\n", reportOf("null", kErrorLine),
                  std::string("debugger: Problem 6 with ReportEvent ") + kErrorLine + "\n",
                  "deregister null", std::string("debugger: ") + kErrorLine));
}

}  // namespace
