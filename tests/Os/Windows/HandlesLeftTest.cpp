// That nothing of the layer leaves handles behind.

#include <functional>
#include <gmock/gmock.h>
#include <string>
#include <windows.h>

#include "Os/Files.h"
#include "Os/Windows/WindowsOSLocker.h"
#include "Os/Windows/WindowsRegistry.h"
#include "Utils/Log.h"
#include "Utils/Mutex.h"
#include "Utils/Thread.h"
#include "platform/Windows/Handle.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/Windows/MachineRegistry.h"
#include "tests/support/Windows/OpenHandles.h"

namespace {

using platform::Handle;
using test::countHandles;
using test::makeEvent;
using utils::WindowsRegistry;

// What the layer does over and over, with a registry and files to do it with.
class HandlesLeft : public testing::Test {
 protected:
  static void by(const std::function<void()>& act) {
    act();  // what the system opens on the first use stays
    const int before = countHandles();
    for (int round = 0; round < 100; ++round) {
      act();
    }
    EXPECT_EQ(countHandles(), before);
  }

  void readNumber(const std::string& key, WindowsRegistry::ValueType type, bool isThere) {
    std::uint32_t number = 0;
    const auto hive = reinterpret_cast<WindowsRegistry::Hive>(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(m_registry.getRegistryData(hive, key, type, "Number", number), isThere);
  }
  static void findFile(const std::string& path, bool isThere) {
    bool isFound = true;
    try {
      static_cast<void>(os::getFileSize(path));
    } catch (const std::exception&) {
      isFound = false;
    }
    EXPECT_EQ(isFound, isThere);
  }

  test::TempDirectory m_directory;
  test::OwnMachineRegistry m_machine;
  WindowsRegistry m_registry;
};

TEST_F(HandlesLeft, AreCounted) {
  const int before = countHandles();
  const Handle first(makeEvent());
  const Handle second(makeEvent());

  EXPECT_EQ(countHandles(), before + 2);
}

TEST_F(HandlesLeft, AreNoneByMutexes) {
  by([] {
    utils::Mutex mutex;
    const utils::ScopedLock lock(mutex);
  });
}

TEST_F(HandlesLeft, AreNoneByThreads) {
  class EmptyThread : public utils::Thread {
   public:
    void run() override {}
  };
  by([] {
    EmptyThread thread;
    thread.cancel();  // a derived thread may be gone before its body is reached
    thread.start();
  });
}

TEST_F(HandlesLeft, AreNoneByReadsOfTheRegistry) {
  m_machine.writeNumber("SOFTWARE\\Some", "Number", 1);
  m_machine.writeNumber("SOFTWARE\\Other", "Another", 1);
  by([this] {
    readNumber("SOFTWARE\\Some", REG_DWORD, true);
    readNumber("SOFTWARE\\Some", REG_SZ, false);
    readNumber("SOFTWARE\\Other", REG_DWORD, false);
    readNumber("SOFTWARE\\Absent", REG_DWORD, false);
  });
}

TEST_F(HandlesLeft, AreNoneBySearchesForFiles) {
  const std::string file = m_directory.write("file", std::string("x")).string();
  by([this, &file] {
    findFile(file, true);
    findFile(file + ".absent", false);
    findFile(m_directory.path().string(), false);
  });
}

TEST_F(HandlesLeft, AreNoneByFlashLocks) {
  by([] { const os::OSLockerWindows locker; });
}

TEST_F(HandlesLeft, AreNoneByTheEventLog) {
  by([] { utils::platformLogSinks().writeEventLog("A line of a test\n"); });
}

}  // namespace
