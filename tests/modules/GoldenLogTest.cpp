// The log of one whole update at level 3, from the loading of the modules to the end of the job,
// compared with golden-update.log.

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "Os/Environment.h"
#include "Utils/Log.h"
#include "platform/Mutex.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"
#include "tests/support/LogCapture.h"
#include "tests/support/SourcePlace.h"
#include "tests/support/WaitUntil.h"

namespace {

using test::firmware;
using test::kAdapter;
using test::kFirstPort;

// Keeps the records of each thread apart: their order between threads is not fixed.
class ThreadedLog : private utils::LogSinks {
 public:
  ThreadedLog() : m_previous(utils::exchangeLogSinks(this)) {}
  ~ThreadedLog() override { utils::exchangeLogSinks(m_previous); }

  [[nodiscard]] bool hasLine(const std::string& part) const {
    const platform::Lock lock(m_mutex);
    for (const Thread& thread : m_threads) {
      for (const std::string& line : thread.lines) {
        if (line.find(part) != std::string::npos) {
          return true;
        }
      }
    }
    return false;
  }

  // Returns the lines, thread by thread in the order in which they began to log.
  [[nodiscard]] std::vector<std::vector<std::string>> threads() const {
    const platform::Lock lock(m_mutex);
    std::vector<std::vector<std::string>> threads;
    for (const Thread& thread : m_threads) {
      threads.push_back(thread.lines);
    }
    return threads;
  }

  // Returns whether each line went to the debug channel and to the standard error stream, and each
  // error to the event log.
  [[nodiscard]] bool wentEverywhere() const {
    const platform::Lock lock(m_mutex);
    return m_debugLines == m_consoleLines && m_errorLines == m_eventLines;
  }

 private:
  struct Thread {
    std::thread::id id;
    std::vector<std::string> lines;
  };

  void writeEventLog(const std::string& line) noexcept override {
    const platform::Lock lock(m_mutex);
    ++m_eventLines[line];
  }
  void writeDebugChannel(const std::string& line) noexcept override {
    const platform::Lock lock(m_mutex);
    ++m_debugLines[line];
    if (test::parseLogLine(line).level == test::LogLevel::Error) {
      ++m_errorLines[line];
    }
    for (Thread& thread : m_threads) {
      if (thread.id == std::this_thread::get_id()) {
        thread.lines.push_back(line);
        return;
      }
    }
    m_threads.push_back({std::this_thread::get_id(), {line}});
  }
  void writeStandardError(const std::string& text) noexcept override {
    const platform::Lock lock(m_mutex);
    ++m_consoleLines[text];
  }

  mutable platform::Mutex m_mutex;
  std::vector<Thread> m_threads ORVEX_GUARDED_BY(m_mutex);
  std::map<std::string, int> m_debugLines ORVEX_GUARDED_BY(m_mutex);
  std::map<std::string, int> m_consoleLines ORVEX_GUARDED_BY(m_mutex);
  std::map<std::string, int> m_errorLines ORVEX_GUARDED_BY(m_mutex);
  std::map<std::string, int> m_eventLines ORVEX_GUARDED_BY(m_mutex);
  // Last: from its construction on, threads log here.
  utils::LogSinks* const m_previous;
};

// A value that differs from run to run: the text before it, what it is made of, and what stands for
// it in the stored log.
struct Mask {
  const char* before;
  const char* characters;
  const char* name;
};

constexpr Mask kMasks[] = {
    {"### ", "0123456789:", "HH:MM:SS"},
    {" after ", "0123456789", "N"},
};

// An address, as the one or the other platform prints it.
constexpr const char* kPointer = "0x[0-9a-f]{4,}|\\b[0-9a-f]{16}\\b";

// Returns the source's name without that of the platform: "Os/PLATFORM" for "Os/Posix/PosixFiles".
std::string maskSource(const std::string& source) {
  return source.starts_with("Os/Posix/") || source.starts_with("Os/Windows/") ? "Os/PLATFORM"
                                                                              : source;
}

// Returns whether only one platform logs such a record: that its loader calls the module for a
// thread, that it makes its access to settings and to semaphores, and what it opens for a setting.
bool isOfOnePlatform(const std::string& record) {
  constexpr const char* kStarts[] = {
      "MainDllEntry:DllMain: debug: SoftwareUpdate Agent DllMain(2)\n",
      "MainDllEntry:DllMain: debug: SoftwareUpdate Agent DllMain(3)\n",
      "Utils/Singleton:utils::Singleton<class utils::WindowsRegistry>::Singleton: debug: New ",
      ("Utils/Singleton:utils::Singleton<class utils::WindowsSemaphoreWrapper>::Singleton: debug: "
       "New "),
      "Os/PLATFORM:utils::WindowsRegistry::getRegistryData: debug: Opennig key ",
  };
  return std::any_of(std::begin(kStarts), std::end(kStarts),
                     [&record](const char* start) { return record.starts_with(start); });
}

std::string apply(const Mask& mask, std::string text) {
  for (std::size_t at = text.find(mask.before); at != std::string::npos;
       at = text.find(mask.before, at + 1)) {
    const std::size_t begin = at + std::string(mask.before).size();
    const std::size_t end = std::min(text.find_first_not_of(mask.characters, begin), text.size());
    if (end > begin) {
      text.replace(begin, end - begin, mask.name);
    }
  }
  return text;
}

class GoldenLog : public testing::Test {
 protected:
  // Returns the record without what differs from run to run.
  std::string mask(const std::string& line) const {
    const test::LogRecord record = test::parseLogLine(line);
    std::string text = std::regex_replace(record.message, std::regex(kPointer), "POINTER");
    for (const Mask& entry : kMasks) {
      text = apply(entry, text);
    }
    const std::string directory = m_host.directory().string();
    for (std::size_t at = text.find(directory); at != std::string::npos;
         at = text.find(directory)) {
      text.replace(at, directory.size(), "DIRECTORY");
    }
    std::replace(text.begin(), text.end(), '\\', '/');
    return maskSource(record.source) + ":" + record.function + ": " +
           (record.level == test::LogLevel::Error ? "error" : "debug") + ": " + text + "\n";
  }

  // Expects that each record stands at the line that it names, and at none beside that.
  void expectPlaces() const {
    for (const std::vector<std::string>& lines : m_log.threads()) {
      for (const std::string& line : lines) {
        test::LogRecord record = test::parseLogLine(line);
        EXPECT_EQ(test::findMisplacement(record), "") << line;
        for (const int step : {-1, 2}) {
          record.line += step;
          EXPECT_NE(test::findMisplacement(record), "") << record.line << ", beside " << line;
        }
      }
    }
  }

  // Returns the log as the file has it.
  std::string log() const {
    std::string text;
    for (const std::vector<std::string>& lines : m_log.threads()) {
      text += text.empty() ? "--- the request\n" : "--- the job\n";
      for (const std::string& line : lines) {
        const std::string record = mask(line);
        text += isOfOnePlatform(record) ? "" : record;
      }
    }
    return text;
  }

  test::ModuleHost m_host;
  ThreadedLog m_log;
};

TEST_F(GoldenLog, OfAnUpdateIsTheStoredOne) {
  os::setEnvironment("COMPUTERNAME", "testhost");
  m_host.makeAdapter(kAdapter, firmware(2));
  const std::string image = m_host.makeImage(firmware(3));

  m_host.load();
  ASSERT_EQ(m_host.install(kFirstPort, image, {32768}, {"", "IMG_PXE+IMG_UEFI"}), 4096u);
  ASSERT_TRUE(test::waitUntil([this] { return m_log.hasLine(" finishing"); }));
  static_cast<void>(core::GetCimBroker().getInstances("Orvex_ConcreteJob"));

  EXPECT_EQ(m_log.threads().size(), 2u);
  EXPECT_TRUE(m_log.wentEverywhere());
  expectPlaces();
  const std::filesystem::path stored = QUORVEL_TEST_GOLDEN_LOG;
  EXPECT_EQ(log(), test::readText(stored)) << "The log that was found:\n" << log();
}

}  // namespace
