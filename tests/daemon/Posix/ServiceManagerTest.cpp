#include <chrono>
#include <cstdlib>
#include <gmock/gmock.h>
#include <string>
#include <unistd.h>

#include "daemon/Posix/ServiceManager.h"
#include "tests/support/FakeClock.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Posix/DatagramSocket.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Variables.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ServiceManagerTest : public testing::Test {
 protected:
  ~ServiceManagerTest() override { test::unsetVariable("NOTIFY_SOCKET"); }

  static quorveld::ServiceManager managerAt(const std::string& address) {
    test::setVariable("NOTIFY_SOCKET", address);
    return quorveld::ServiceManager();
  }

  test::TempDirectory m_directory;
};

TEST_F(ServiceManagerTest, TellsHowTheDaemonDoes) {
  const std::string path = (m_directory.path() / "notify").string();
  const test::DatagramSocket socket(path);
  const quorveld::ServiceManager manager = managerAt(path);
  manager.tellReady("Serving");
  EXPECT_EQ(socket.receive(), "READY=1\nSTATUS=Serving\n");
  manager.tellStopping("Ending");
  EXPECT_EQ(socket.receive(), "STOPPING=1\nSTATUS=Ending\n");
  manager.tellStatus("Waiting");
  EXPECT_EQ(socket.receive(), "STATUS=Waiting\n");
}

TEST_F(ServiceManagerTest, TellsNothingButAStatusByItsText) {
  const std::string path = (m_directory.path() / "notify").string();
  const test::DatagramSocket socket(path);
  managerAt(path).tellStatus("a\nMAINPID=1\x1b");
  EXPECT_EQ(socket.receive(), "STATUS=a\\nMAINPID=1\\x1b\n");
}

TEST_F(ServiceManagerTest, TellsThatItLivesThreeTimesInTheTimeThatItHas) {
  const std::string path = (m_directory.path() / "notify").string();
  const test::DatagramSocket socket(path);
  test::setVariable("NOTIFY_SOCKET", path);
  test::setVariable("WATCHDOG_USEC", "30000000");
  test::FakeClock clock;
  const quorveld::ServiceManager manager(clock);
  EXPECT_EQ(std::getenv("WATCHDOG_USEC"), nullptr);
  for (int second = 0; second <= 20; ++second) {
    manager.tellAlive();
    clock.sleepFor(std::chrono::seconds(1));
  }
  manager.tellStatus("end");
  for (int sign = 0; sign < 3; ++sign) {
    EXPECT_EQ(socket.receive(), "WATCHDOG=1\n");
  }
  EXPECT_EQ(socket.receive(), "STATUS=end\n");
}

TEST_F(ServiceManagerTest, TellsNobodyThatItLivesWhoDoesNotWatch) {
  const std::string path = (m_directory.path() / "notify").string();
  const test::DatagramSocket socket(path);
  for (const char* const watchdog : {"", "0", "-5", "soon"}) {
    test::setVariable("WATCHDOG_USEC", watchdog);
    const quorveld::ServiceManager manager = managerAt(path);
    manager.tellAlive();
    manager.tellStatus("end");
    EXPECT_EQ(socket.receive(), "STATUS=end\n") << watchdog;
  }
}

TEST_F(ServiceManagerTest, SpeaksToAnAbstractSocket) {
  const std::string name = "@quorveld-test-" + std::to_string(getpid());
  const test::DatagramSocket socket(name);
  managerAt(name).tellReady("Serving");
  EXPECT_EQ(socket.receive(), "READY=1\nSTATUS=Serving\n");
}

TEST_F(ServiceManagerTest, KeepsTheSocketFromOtherPrograms) {
  static_cast<void>(managerAt("@quorveld-test"));
  EXPECT_EQ(std::getenv("NOTIFY_SOCKET"), nullptr);
}

TEST_F(ServiceManagerTest, TellsNobodyWhereNobodyAsks) {
  const test::LogCapture log;
  const quorveld::ServiceManager manager;
  manager.tellReady("Serving");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(ServiceManagerTest, LogsThatItCouldNotTell) {
  const test::LogCapture log;
  managerAt((m_directory.path() / "missing").string()).tellReady("Serving");
  managerAt("/" + std::string(200, 'x')).tellReady("Serving");
  EXPECT_THAT(log.messages("quorveld::ServiceManager::send"),
              ElementsAre(HasSubstr("No such file"), HasSubstr("too long")));
}

}  // namespace
