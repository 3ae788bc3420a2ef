// What a configuration over a file logs, and what it does not.

#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "Os/QuorvelConfig.h"
#include "tests/Os/NoMemoryAfter.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Settings.h"
#include "tests/support/TempDirectory.h"

namespace {

using test::LogLevel;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(PosixQuorvelConfig, LogsUnderItsOwnNameOnly) {
  const test::Settings settings;
  utils::QuorvelConfig config(settings.path());
  const test::LogCapture log;
  config.initialize();

  EXPECT_EQ(log.records().size(), 5U);
  EXPECT_THAT(log.records(),
              testing::Each(test::IsRecordOf("Os/Posix/PosixQuorvelConfig", LogLevel::Debug,
                                             "utils::QuorvelConfig::initialize", testing::_)));
}

TEST(PosixQuorvelConfig, KeepsWhatItHadWhateverReadingThrows) {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
  GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
  test::Settings settings;
  settings.write({{"Namespace", "root/of/the/settings"}});
  utils::QuorvelConfig config(settings.path());
  const test::LogCapture log;
  {
    const test::NoMemoryAfter noMemory("Trying to read register ...", test::kNoStandardException);
    config.initialize();
  }

  EXPECT_THAT(
      log.messages("utils::QuorvelConfig::initialize"),
      ElementsAre("Trying to read register ...", "Reading config values from register - failed"));
  EXPECT_EQ(config.getNamespace(), "root/of/the/settings");
}

// A configuration over a file whose text the test writes.
class WrittenConfig : public testing::Test {
 protected:
  // Replaces the file, reads it and returns the errors that this logs.
  std::vector<std::string> problemsOf(const std::string& content) {
    m_directory.write("agent.conf", content);
    const test::LogCapture log;
    m_config.initialize();
    std::vector<std::string> messages;
    for (const test::LogRecord& record : log.records(test::LogSink::EventLog)) {
      EXPECT_EQ(record.source, "Os/Posix/PosixQuorvelConfig");
      messages.push_back(record.message);
    }
    return messages;
  }
  [[nodiscard]] std::string at(int line) const {
    return m_path + ":" + std::to_string(line) + ": ";
  }

  test::TempDirectory m_directory;
  const std::string m_path = m_directory.path() / "agent.conf";
  utils::QuorvelConfig m_config{m_path};
};

TEST_F(WrittenConfig, TakesADirectoryWithTheSignOfComments) {
  std::filesystem::create_directory(m_directory.path() / "fw#1");
  const std::string directory = m_directory.path() / "fw#1";

  EXPECT_THAT(problemsOf("FWFilePath = \"" + directory + "\" # the new ones\n"), IsEmpty());
  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(directory));
}

TEST_F(WrittenConfig, TakesADecimalTimeoutOfMoreThan31Bits) {
  EXPECT_THAT(problemsOf("Timeout = 3000000000\n"), IsEmpty());
  EXPECT_EQ(m_config.getTimeout(), 3'000'000'000U);
}

TEST_F(WrittenConfig, ReportsAMisspeltNameWithItsLineAndTheNearestName) {
  EXPECT_THAT(problemsOf("# settings\nTimout = 250\n"),
              ElementsAre(at(2) + "there is no setting 'Timout'; did you mean 'Timeout'?"));
}

TEST_F(WrittenConfig, ReportsEachValueThatCannotBeUsed) {
  const std::string missing = m_directory.path() / "missing";
  EXPECT_THAT(
      problemsOf("Timeout = 0\nNamespace = interop\nOEMCustomizeable = yes\nFWFilePath = x;;" +
                 missing + ";..\nTimeout\n"),
      ElementsAre(at(1) + "Timeout is ignored: it must not be 0",
                  at(2) + "Namespace is ignored: 'interop' does not begin with root",
                  at(3) + "OEMCustomizeable is ignored: 'yes' is no number below 4294967296, "
                          "decimal without leading zeros or hexadecimal with 0x",
                  at(4) + "FWFilePath: '" + missing +
                      "' is ignored: there is no such directory, or it does not answer",
                  at(4) + "FWFilePath: 'x' is ignored: it is too short; write it with a directory "
                          "before it",
                  at(5) + "expected 'name = value', found 'Timeout'"));
  EXPECT_THAT(m_config.getFWFilePaths(), ElementsAre(".."));
}

TEST_F(WrittenConfig, ReportsAProblemOnceUntilItWasMended) {
  EXPECT_EQ(problemsOf("Timout = 250\n").size(), 1U);
  EXPECT_THAT(problemsOf("Timout = 250\n"), IsEmpty());
  EXPECT_EQ(problemsOf("Timout = 250\nx\n").size(), 1U);
  EXPECT_THAT(problemsOf("Timeout = 250\n"), IsEmpty());
  EXPECT_EQ(problemsOf("Timout = 250\n").size(), 1U);
}

}  // namespace
