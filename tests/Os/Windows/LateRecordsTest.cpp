// Records that are made under the loader's lock, as initialisers of a library make them.

#include <gmock/gmock.h>
#include <string>
#include <vector>
#include <windows.h>

#include "Os/Windows/LateRecords.h"
#include "Utils/Log.h"
#include "platform/Mutex.h"
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

class LateRecords : public testing::Test {
 protected:
  LateRecords() {
    const platform::Lock lock(s_mutex);
    s_reports.clear();
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
  {
    const LoaderLock lock;
    write("first");
  }
  os::writeRecordsNow();
  EXPECT_THAT(reports(), ElementsAre("first"));
  os::writeRecordsNow();
  EXPECT_THAT(reports(), ElementsAre("first"));
}

TEST_F(LateRecords, AreWrittenByAThreadOnceTheLockIsFree) {
  {
    const LoaderLock lock;
    write("first");
    os::writeRecordsSoon();
    EXPECT_THAT(reports(), IsEmpty());
  }
  EXPECT_TRUE(test::waitUntil([] { return reports().size() == 1; }));
}

TEST_F(LateRecords, AreNoMoreThanAHundred) {
  {
    const LoaderLock lock;
    for (int i = 0; i < 200; ++i) {
      write("line");
    }
  }
  os::writeRecordsNow();
  EXPECT_EQ(reports().size(), 100U);
}

}  // namespace
