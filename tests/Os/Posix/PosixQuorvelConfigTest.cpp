// What a configuration over a file logs, and what it does not.

#include <gmock/gmock.h>

#include "Os/QuorvelConfig.h"
#include "tests/Os/NoMemoryAfter.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Settings.h"

namespace {

using test::LogLevel;

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

  EXPECT_THAT(log.messages("utils::QuorvelConfig::initialize"),
              testing::ElementsAre("Trying to read register ...",
                                   "Reading config values from register - failed"));
  EXPECT_EQ(config.getNamespace(), "root/of/the/settings");
}

}  // namespace
