// Records that are made under the loader's lock, as initialisers of a library make them.

#include <cerrno>
#include <gmock/gmock.h>
#include <string>
#include <vector>
#include <windows.h>

#include "Os/Windows/LateRecords.h"
#include "Utils/Log.h"
#include "platform/Mutex.h"
#include "tests/Os/SystemFaults.h"
#include "tests/support/WaitUntil.h"
#include "tests/support/Windows/ImportPatch.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kLibrary = "OrvexCimCore.dll";

platform::Mutex s_mutex;
std::vector<std::string> s_reports ORVEX_GUARDED_BY(s_mutex);

std::vector<std::string> reports() {
  const platform::Lock lock(s_mutex);
  return s_reports;
}

BOOL WINAPI report(HANDLE /*source*/, WORD /*type*/, WORD /*category*/, DWORD /*event*/,
                   PSID /*user*/, WORD /*count*/, DWORD /*dataSize*/, const char** strings,
                   void* /*data*/) {
  const platform::Lock lock(s_mutex);
  s_reports.emplace_back(strings[0]);
  return TRUE;
}

std::vector<std::string> s_debugLines;

void WINAPI debugOutput(const char* text) {
  s_debugLines.emplace_back(text);
}

template <class Function>
Function* systemFunction(const char* name) {
  return reinterpret_cast<Function*>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), name)));
}

// Has the lock of the loader, as it has itself while it runs the initialisers of a library.
class LoaderLock {
 public:
  LoaderLock() {
    EXPECT_EQ(systemFunction<LONG NTAPI(ULONG, ULONG*, ULONG_PTR*)>("LdrLockLoaderLock")(0, nullptr,
                                                                                         &m_cookie),
              0);
  }
  LoaderLock(const LoaderLock&) = delete;
  LoaderLock& operator=(const LoaderLock&) = delete;
  ~LoaderLock() {
    systemFunction<LONG NTAPI(ULONG, ULONG_PTR)>("LdrUnlockLoaderLock")(0, m_cookie);
  }

 private:
  ULONG_PTR m_cookie = 0;
};

void write(const std::string& line) {
  utils::platformLogSinks().writeEventLog(line);
}

void writeInLoader(const std::string& line) {
  const LoaderLock lock;
  write(line);
}

bool awaitReports(std::size_t count) {
  return test::waitUntil([count] { return reports().size() == count; });
}

class LateRecords : public testing::Test {
 protected:
  LateRecords() {
    const platform::Lock lock(s_mutex);
    s_reports.clear();
    s_debugLines.clear();
  }

 private:
  test::ImportPatch m_report{kLibrary, "ReportEventA", &report};
};

TEST_F(LateRecords, AreThoseOfTheThreadThatHasTheLoadersLock) {
  EXPECT_FALSE(os::isInLoader());
  const LoaderLock lock;
  EXPECT_TRUE(os::isInLoader());
}

TEST_F(LateRecords, AreWrittenBeforeTheNextOne) {
  {
    const LoaderLock lock;
    write("first");
    write("second");
    os::writeRecordsNow();
    EXPECT_THAT(reports(), IsEmpty());
  }
  write("third");
  EXPECT_THAT(reports(), ElementsAre("first", "second", "third"));
}

TEST_F(LateRecords, AreWrittenByWhoeverHasLoadedALibrary) {
  writeInLoader("first");
  os::writeRecordsNow();
  EXPECT_THAT(reports(), ElementsAre("first"));
  os::writeRecordsNow();
  EXPECT_THAT(reports(), ElementsAre("first"));
}

TEST_F(LateRecords, AreWrittenByAThreadOnceTheLockIsFree) {
  const os::LateRecordWriter writer;
  {
    const LoaderLock lock;
    write("first");
    write("second");
    EXPECT_THAT(reports(), IsEmpty());
  }
  EXPECT_TRUE(awaitReports(2));
  writeInLoader("third");
  EXPECT_TRUE(awaitReports(3));
  EXPECT_THAT(reports(), ElementsAre("first", "second", "third"));
}

TEST_F(LateRecords, AreWrittenByAThreadWhenItsWriterCameLater) {
  writeInLoader("first");
  const os::LateRecordWriter writer;
  EXPECT_TRUE(awaitReports(1));
}

TEST_F(LateRecords, AreWrittenByAThreadWhenItsWriterHasGone) {
  {
    const LoaderLock lock;
    const os::LateRecordWriter writer;
    write("first");
  }
  EXPECT_TRUE(awaitReports(1));
}

TEST_F(LateRecords, WaitForAnotherWriterWhereNoThreadCanBeStarted) {
  const os::LateRecordWriter writer;
  {
    const test::FailingCall noThread(test::SystemCall::StartThread, ERROR_NOT_ENOUGH_MEMORY);
    writeInLoader("first");
  }
  EXPECT_THAT(reports(), IsEmpty());
  write("second");
  EXPECT_THAT(reports(), ElementsAre("first", "second"));
}

TEST_F(LateRecords, AreHandedToTheDebuggerWhenNobodyCanWriteThemAnyMore) {
  writeInLoader("first");
  writeInLoader("second");
  const test::ImportPatch patch(kLibrary, "OutputDebugStringA", &debugOutput);
  os::abandonRecords();
  EXPECT_THAT(s_debugLines, ElementsAre("first", "second"));
  os::writeRecordsNow();
  EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(LateRecords, AreNoMoreThanAHundredAndTheDebuggerIsToldOfTheRest) {
  const test::ImportPatch patch(kLibrary, "OutputDebugStringA", &debugOutput);
  {
    const LoaderLock lock;
    for (int i = 0; i < 102; ++i) {
      write("line");
    }
  }
  EXPECT_EQ(s_debugLines.size(), 2U);
  os::writeRecordsNow();
  EXPECT_EQ(reports().size(), 100U);
}

// A suite of its own, and so a process: nothing has been kept before.
TEST(FirstLateRecord, CostsTheHostNothingWhereThereIsNoMemory) {
  const std::string line = "a line that is longer than a string has room for by itself";
  const LoaderLock lock;
  {
    const test::FailingCall noMemory(test::SystemCall::Allocate, ENOMEM);
    const os::LateRecordWriter writer;
    write(line);
  }
  EXPECT_THAT(os::takeRecords(), IsEmpty());
}

}  // namespace
