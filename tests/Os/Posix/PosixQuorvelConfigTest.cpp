// What a configuration over a file logs, and what it does not.

#include <gmock/gmock.h>

#include "Os/QuorvelConfig.h"
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

}  // namespace
