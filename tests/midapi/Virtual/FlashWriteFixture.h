// The fixture of the tests that write an adapter's flash.

#ifndef ORVEX_TESTS_MIDAPI_VIRTUAL_FLASHWRITEFIXTURE_H_
#define ORVEX_TESTS_MIDAPI_VIRTUAL_FLASHWRITEFIXTURE_H_

#include <cstdint>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "midapi/Virtual/AdapterUpdate.h"
#include "tests/midapi/AdapterFixture.h"
#include "tests/midapi/WatchedFileSystem.h"
#include "tests/support/FakeClock.h"

namespace test {

class FlashWriteFixture : public testing::Test {
 protected:
  static constexpr const char* kPci = "0000:03:00";

  FlashWriteFixture() { m_adapters.makeAdapter(kPci, m_old); }

  void setRate(std::uint64_t bytesPerSecond) {
    m_adapters.set(kPci, "/writeRate", std::to_string(bytesPerSecond));
  }
  void setFaults(const std::string& faults) { m_adapters.set(kPci, "/faults", faults); }

  // Writes the image, alone in its update, as the description now asks for; keeps the code and text
  // of a failure.
  void write() {
    try {
      ma::AdapterUpdate update(m_files, {m_files, m_adapters.directory(), {0, 3, 0}}, m_clock);
      update.writeFlash(m_new, m_progress);
      update.commit();
      m_progress.complete();
    } catch (const ma::FlashFault& fault) {
      m_code = fault.code();
      m_text = fault.what();
    }
  }
  void expectFailure(std::uint32_t code, const std::string& text) {
    EXPECT_EQ(m_code, code);
    EXPECT_THAT(m_text, testing::HasSubstr(text));
    EXPECT_EQ(m_adapters.flash(kPci), m_old);
    EXPECT_THAT(m_adapters.filesOf(kPci), testing::ElementsAre("adapter.json", "flash.rom"));
    EXPECT_LT(m_progress.percent(), 100U);
  }
  void expectSuccess() {
    EXPECT_EQ(m_code, 0U) << m_text;
    EXPECT_EQ(m_adapters.flash(kPci), m_new);
    EXPECT_THAT(m_adapters.filesOf(kPci), testing::ElementsAre("adapter.json", "flash.rom"));
    EXPECT_EQ(m_progress.percent(), 100U);
  }

  const std::vector<std::uint8_t> m_old = std::vector<std::uint8_t>(1000, 'o');
  std::vector<std::uint8_t> m_new = std::vector<std::uint8_t>(200000, 'n');
  AdapterFixture m_adapters;
  WatchedFileSystem m_files;
  ma::WriteProgress m_progress;
  FakeClock m_clock;
  std::uint32_t m_code = 0;
  std::string m_text;
};

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_VIRTUAL_FLASHWRITEFIXTURE_H_
