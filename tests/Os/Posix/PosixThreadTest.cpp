#include <gmock/gmock.h>

#include "Utils/Thread.h"
#include "tests/Os/Posix/LateThread.h"
#include "tests/support/LogCapture.h"

namespace {

class NotingThread : public utils::Thread {
 public:
  explicit NotingThread(bool& isRun) : m_isRun(isRun) {}

  void run() override { m_isRun = true; }

 private:
  bool& m_isRun;
};

TEST(PosixThread, EndsWithoutItsBodyWhenItIsDestroyedBeforeItBegins) {
  const test::LogCapture log;
  bool isRun = false;
  {
    const test::LateThread late;
    NotingThread thread(isRun);
    thread.start();
  }

  EXPECT_FALSE(isRun);
  EXPECT_TRUE(log.records().empty());
}

}  // namespace
