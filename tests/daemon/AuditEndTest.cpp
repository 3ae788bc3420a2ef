// What becomes of the audit's records when the program ends.

#include <csignal>
#include <gmock/gmock.h>
#include <string>

#include "tests/daemon/Posix/ErrorsTo.h"
#include "tests/daemon/Posix/OwnSystemLog.h"
#include "tests/daemon/Posix/QuorveldFixture.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kRecord = R"(action="InstallFromURI" result="5")";

class AuditEnd : public test::QuorveldFixture {
 protected:
  void SetUp() override {
    addPxeAdapter("0000:03:00");
    if (!m_log.run([this] { start(); })) {
      GTEST_SKIP() << "this user may not show a program another system log";
    }
  }

  // Has the client ask for an update from a file that there is not, and be answered.
  void install() const {
    EXPECT_THAT(ask({"cm"}, service(),
                    {"InstallFromURI.URI=\"file:///none.rom\",Target=" + port() +
                     R"(,InstallOptions=5,InstallOptionsValues="")"}),
                HasSubstr("InstallFromURI: 5"));
  }

  test::OwnSystemLog m_log;
};

TEST_F(AuditEnd, LosesNothingByAKillOfWhatWasAnswered) {
  for (int i = 0; i < 5; ++i) {
    install();
    EXPECT_THAT(m_log.takeAll(), HasSubstr(kRecord));
  }
  install();
  daemon().signal(SIGKILL);
  EXPECT_THAT(m_log.takeAll(), HasSubstr(kRecord));
}

TEST_F(AuditEnd, WritesWhatWaitsWhenItIsStopped) {
  m_log.fill();
  install();
  daemon().signal(SIGTERM);
  std::string records;
  EXPECT_TRUE(test::waitUntil([&] {
    records += m_log.takeAll();
    return !daemon().isRunning();
  }));
  EXPECT_EQ(daemon().wait(), 0);
  EXPECT_THAT(records + m_log.takeAll(), HasSubstr(kRecord));
}

TEST_F(AuditEnd, WritesToStandardErrorWhatTheLogHasNotTakenInTheEnd) {
  const std::string errors = path("errors").string();
  {
    const test::ErrorsTo file(errors);
    EXPECT_TRUE(m_log.run([this] { start(); }));
  }
  m_log.fill();
  install();
  EXPECT_THAT(test::readText(errors), Not(HasSubstr(kRecord)));
  daemon().signal(SIGTERM);
  EXPECT_EQ(daemon().wait(), 0);
  EXPECT_THAT(test::readText(errors), HasSubstr(kRecord));
}

TEST_F(AuditEnd, LosesByAKillWhatALogThatDoesNotReadHasNotTaken) {
  m_log.fill();
  install();
  daemon().signal(SIGKILL);
  EXPECT_EQ(daemon().wait(), 128 + SIGKILL);
  EXPECT_THAT(m_log.takeAll(), Not(HasSubstr(kRecord)));
}

}  // namespace
