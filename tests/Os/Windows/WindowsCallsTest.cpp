// How mutexes and threads are asked of the system.

#include <atomic>
#include <gmock/gmock.h>
#include <string>
#include <vector>
#include <windows.h>

#include "Utils/Format.h"
#include "Utils/Mutex.h"
#include "Utils/Thread.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Regex.h"
#include "tests/support/Windows/ImportPatch.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using utils::format;

constexpr const char* kLibrary = "OrvexCimCore.dll";

// What the system was asked by the test's own thread.
std::vector<std::string> s_calls;
DWORD s_testThread = 0;
// The thread that was started last.
std::atomic<HANDLE> s_startedThread{nullptr};
bool s_isThreadWaitFailing = false;

void record(const std::string& call) {
  if (GetCurrentThreadId() == s_testThread) {
    s_calls.push_back(call);
  }
}

const char* wordFor(const void* pointer) {
  return pointer == nullptr ? "null" : "given";
}

HANDLE WINAPI createMutex(SECURITY_ATTRIBUTES* attributes, BOOL isOwned, const char* name) {
  record(format("mutex: attributes %s, owned %d, name %s", wordFor(attributes), isOwned,
                wordFor(name)));
  return CreateMutexA(attributes, isOwned, name);
}

HANDLE WINAPI createThread(SECURITY_ATTRIBUTES* attributes, SIZE_T stack,
                           LPTHREAD_START_ROUTINE body, void* argument, DWORD flags,
                           DWORD* identifier) {
  record(format("thread: attributes %s, stack %u, flags %u, identifier %s", wordFor(attributes),
                static_cast<unsigned>(stack), static_cast<unsigned>(flags), wordFor(identifier)));
  s_startedThread = CreateThread(attributes, stack, body, argument, flags, identifier);
  return s_startedThread;
}

DWORD WINAPI waitForObject(HANDLE handle, DWORD milliseconds) {
  record(format("%s: wait %x", handle == s_startedThread ? "thread" : "other",
                static_cast<unsigned>(milliseconds)));
  const DWORD result = WaitForSingleObject(handle, milliseconds);
  if (s_isThreadWaitFailing && handle == s_startedThread) {
    SetLastError(ERROR_INVALID_HANDLE);
    return WAIT_FAILED;
  }
  return result;
}

class EmptyThread : public utils::Thread {
 public:
  void run() override {}
};

class WindowsCalls : public testing::Test {
 protected:
  WindowsCalls() {
    s_calls.clear();
    s_testThread = GetCurrentThreadId();
  }

 private:
  test::ImportPatch m_createMutex{kLibrary, "CreateMutexA", &createMutex};
  test::ImportPatch m_createThread{kLibrary, "CreateThread", &createThread};
  test::ImportPatch m_wait{kLibrary, "WaitForSingleObject", &waitForObject};
};

TEST_F(WindowsCalls, MakeMutexesWithoutAnOwnerOrAName) {
  const utils::Mutex mutex;

  EXPECT_THAT(s_calls, ElementsAre("mutex: attributes null, owned 0, name null"));
}

TEST_F(WindowsCalls, WaitForMutexesWithoutLimit) {
  utils::Mutex mutex;
  s_calls.clear();
  { const utils::ScopedLock lock(mutex); }

  EXPECT_THAT(s_calls, ElementsAre("other: wait ffffffff"));
}

TEST_F(WindowsCalls, StartThreadsOfTheDefaultsAtOnceAndAskForTheirIdentifier) {
  EmptyThread thread;
  thread.cancel();
  thread.start();

  EXPECT_THAT(s_calls, Contains("thread: attributes null, stack 0, flags 0, identifier given"));
}

TEST_F(WindowsCalls, WaitForThreadsWithoutLimit) {
  {
    EmptyThread thread;
    thread.cancel();
    thread.start();
    s_calls.clear();
  }

  EXPECT_THAT(s_calls, Contains("thread: wait ffffffff").Times(1));
}

TEST_F(WindowsCalls, LogThatAThreadCouldNotBeWaitedFor) {
  const test::LogCapture log;
  {
    EmptyThread thread;
    thread.cancel();
    thread.start();
    s_isThreadWaitFailing = true;
  }
  s_isThreadWaitFailing = false;

  EXPECT_THAT(log.messages("utils::Thread::~Thread"),
              ElementsAre(test::MatchesRegex("Could not wait for thread [0-9]+. Error 6")));
}

}  // namespace
