// Moments, and time zones to write them in.

#ifndef ORVEX_TESTS_UTILS_DATETIMETEXTFIXTURE_H_
#define ORVEX_TESTS_UTILS_DATETIMETEXTFIXTURE_H_

#include <cstdlib>
#include <ctime>
#include <gmock/gmock.h>
#include <optional>
#include <string>

#include "Utils/Datetime.h"
#include "tests/support/Variables.h"

namespace test {

// 2023-11-14 22:13:20.123 UTC.
constexpr std::uint64_t kMoment = 1'700'000'000'123'000;

inline utils::Datetime timestamp(std::uint64_t microseconds) {
  utils::Datetime moment;
  moment.value = microseconds;
  return moment;
}

// A test in a time zone of its choice.
class DatetimeTextFixture : public testing::Test {
 protected:
  DatetimeTextFixture() {
    if (const char* zone = std::getenv("TZ")) {
      m_zoneBefore = zone;
    }
  }
  ~DatetimeTextFixture() override {
    if (m_zoneBefore) {
      enterZone(*m_zoneBefore);
    } else {
      unsetVariable("TZ");
      tzset();
    }
  }

  static void enterZone(const std::string& zone) {
    setVariable("TZ", zone);
    tzset();
  }

 private:
  std::optional<std::string> m_zoneBefore;
};

}  // namespace test

#endif  // ORVEX_TESTS_UTILS_DATETIMETEXTFIXTURE_H_
