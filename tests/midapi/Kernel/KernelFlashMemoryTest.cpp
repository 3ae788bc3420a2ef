// Writes for which memory runs out, at each of their allocations in its turn.

#include <filesystem>
#include <gmock/gmock.h>
#include <new>
#include <string>

#include "tests/agent/ProviderMemory.h"
#include "tests/midapi/Kernel/AskedChildren.h"
#include "tests/midapi/Kernel/KernelBackendFixture.h"

namespace {

using test::Bytes;
using test::kernelPackage;
using test::kKernelFunction;
using test::kKernelPort;
using testing::IsEmpty;

class KernelFlashWithoutMemory : public test::KernelBackendFixture {
 protected:
  void SetUp() override {
#ifdef QUORVEL_TEST_THREAD_SANITIZER
    GTEST_SKIP() << "ThreadSanitizer lets no program have an operator new of its own";
#endif
    m_drivers.onDevlinkFlash = [this](const std::string&, const std::string&, const auto&) {
      m_isFlashed = true;
      std::swap(m_drivers.answers[kKernelFunction], m_afterwards);
      return ma::NetlinkAck{};
    };
  }

  // A flash that holds what the file is checked against.
  void begin() {
    std::filesystem::remove(m_places.journal / "0000-03-00.json");
    store("1.1.0", "7.2.0");
    m_afterwards = m_drivers.answers[kKernelFunction];
    store("1.0.0", "7.1.0");
    m_isFlashed = false;
    passASecond();
    m_image.resize(m_file.size());
    ASSERT_EQ(m_backend.prepare(kKernelPort, m_file, m_image, {}).status, ma::PrepareStatus::Ok);
    passASecond();
  }
  // Returns whether it succeeded.
  bool writeWithoutAllocation(int number) {
    m_progress.start();
    test::refuseMemoryOnce(number);
    bool isDone = true;
    try {
      m_backend.writeFlash(kKernelPort, m_image, m_progress);
    } catch (const std::bad_alloc&) {
      isDone = false;
    } catch (const ma::FlashFault&) {
      isDone = false;
    }
    test::refuseMemoryOnce(-1);
    return isDone;
  }
  void expectTheTruth(bool isDone) {
    EXPECT_TRUE(m_isFlashed || !isDone);
    EXPECT_EQ(m_progress.percent() == 100, isDone);
    const bool hadEntry = hasEntry();
    // A flash that has begun and whose end nobody has told is one that somebody has to look at.
    EXPECT_TRUE(isDone || !m_isFlashed || hadEntry ||
                m_backend.firmwareVersions(kKernelPort)[0].stored == "1.1.0");
    const std::string notes = testing::PrintToString(listing().notes);
    EXPECT_EQ(notes.find("has finished it since") != std::string::npos, hadEntry && m_isFlashed)
        << notes;
    EXPECT_EQ(notes.find("holds what it held before") != std::string::npos,
              hadEntry && !m_isFlashed)
        << notes;
    EXPECT_EQ(m_backend.firmwareVersions(kKernelPort)[0].stored, m_isFlashed ? "1.1.0" : "1.0.0");
    EXPECT_THAT(staged(), IsEmpty());
  }

  const Bytes m_file = kernelPackage("1.1.0", "7.2.0");
  Bytes m_image;
  ma::DriverAnswer m_afterwards;
  bool m_isFlashed = false;
};

TEST_F(KernelFlashWithoutMemory, SaysTheTruthOrKeepsTheEntry) {
  int flashesThatFailed = 0;
  int number = 0;
  for (;; ++number) {
    SCOPED_TRACE(number);
    begin();
    const std::size_t openFiles = test::countOpenFiles();
    const int refused = test::countRefusedMemory();
    const bool isDone = writeWithoutAllocation(number);
    EXPECT_EQ(test::countOpenFiles(), openFiles);
    flashesThatFailed += m_isFlashed && !isDone ? 1 : 0;
    expectTheTruth(isDone);
    if (test::countRefusedMemory() == refused || HasFailure()) {
      EXPECT_TRUE(isDone);
      break;
    }
  }
  // Far fewer would mean that it does not reach what it is about.
  EXPECT_GT(number, 200);
  EXPECT_GT(flashesThatFailed, 20);
}

}  // namespace
