#include <gmock/gmock.h>
#include <limits>
#include <optional>
#include <string>

#include "Utils/Clock.h"
#include "Utils/Datetime.h"
#include "Utils/Exception.h"
#include "tests/Utils/DatetimeTextFixture.h"
#include "tests/support/Throws.h"

namespace {

using testing::AllOf;
using testing::Ge;
using testing::Le;

using DatetimeText = test::DatetimeTextFixture;
using test::kMoment;
using test::timestamp;

TEST(Datetime, StartsAsTheCurrentMoment) {
  const std::uint64_t before = utils::currentMicroseconds();
  const utils::Datetime datetime;

  EXPECT_TRUE(datetime.isTimestamp);
  EXPECT_THAT(datetime.value, AllOf(Ge(before), Le(utils::currentMicroseconds())));
}

TEST(Datetime, IsAnIntervalWhenMadeFromMicroseconds) {
  const utils::Datetime interval(1500);

  EXPECT_FALSE(interval.isTimestamp);
  EXPECT_EQ(interval.value, 1500U);
}

TEST(Datetime, BecomesTheCurrentMoment) {
  utils::Datetime datetime(5);
  const std::uint64_t before = utils::currentMicroseconds();
  datetime.setToNow();

  EXPECT_TRUE(datetime.isTimestamp);
  EXPECT_THAT(datetime.value, AllOf(Ge(before), Le(utils::currentMicroseconds())));
}

TEST(Datetime, CountsSecondsWithoutOverflow) {
  const utils::Datetime longest =
      utils::Datetime::fromSeconds(std::numeric_limits<std::uint32_t>::max());

  EXPECT_FALSE(longest.isTimestamp);
  EXPECT_EQ(longest.value, 4'294'967'295'000'000U);
  EXPECT_EQ(utils::Datetime::fromSeconds(0).value, 0U);
}

TEST(Datetime, MeasuresTheTimeSinceAMoment) {
  const utils::Datetime start = timestamp(utils::currentMicroseconds() - 5'000'000);
  const utils::Datetime elapsed = utils::Datetime::elapsedSince(start);

  EXPECT_FALSE(elapsed.isTimestamp);
  EXPECT_THAT(elapsed.value, AllOf(Ge(5'000'000U), Le(35'000'000U)));
}

TEST(Datetime, RefusesToMeasureTheTimeSinceAnInterval) {
  const utils::Datetime interval(5);

  EXPECT_THAT([&] { static_cast<void>(utils::Datetime::elapsedSince(interval)); },
              test::ThrowsExactly<utils::Exception>(
                  test::IsAssertion("Datetime", "dtStart.isTimestamp == true")));
}

TEST_F(DatetimeText, OfAMomentIsItsLocalTimeWithTheUtcOffsetInMinutes) {
  enterZone("UTC0");
  EXPECT_EQ(timestamp(kMoment).toCimText(), "20231114221320.123000+000");
  enterZone("EST5");
  EXPECT_EQ(timestamp(kMoment).toCimText(), "20231114171320.123000-300");
  enterZone("IST-5:30");
  EXPECT_EQ(timestamp(kMoment).toCimText(), "20231115034320.123000+330");
  enterZone("AST0:30");
  EXPECT_EQ(timestamp(kMoment).toCimText(), "20231114214320.123000-030");
}

TEST_F(DatetimeText, OfTheEpoch) {
  enterZone("UTC0");
  EXPECT_EQ(timestamp(0).toCimText(), "19700101000000.000000+000");
  EXPECT_EQ(timestamp(999'999).toCimText(), "19700101000000.999999+000");
}

TEST_F(DatetimeText, OfAnIntervalIsDaysHoursMinutesAndSeconds) {
  EXPECT_EQ(utils::Datetime(0).toCimText(), "00000000000000.000000:000");
  EXPECT_EQ(utils::Datetime(1).toCimText(), "00000000000000.000001:000");
  EXPECT_EQ(utils::Datetime::fromSeconds(59).toCimText(), "00000000000059.000000:000");
  EXPECT_EQ(utils::Datetime::fromSeconds(60).toCimText(), "00000000000100.000000:000");
  EXPECT_EQ(utils::Datetime::fromSeconds(3 * 86'400 + 4 * 3600 + 5 * 60 + 6).toCimText(),
            "00000003040506.000000:000");
  EXPECT_EQ(utils::Datetime::fromSeconds(std::numeric_limits<std::uint32_t>::max()).toCimText(),
            "00049710062815.000000:000");
}

TEST_F(DatetimeText, HasTheLargestNumberOfDaysForALongerInterval) {
  constexpr std::uint64_t kDay = 86'400'000'000;

  EXPECT_EQ(utils::Datetime(99'999'999 * kDay).toCimText(), "99999999000000.000000:000");
  EXPECT_EQ(utils::Datetime(100'000'000 * kDay).toCimText(), "99999999000000.000000:000");
}

TEST_F(DatetimeText, HasTwentyFiveCharactersWhateverTheValue) {
  for (const std::uint64_t value :
       {std::uint64_t{0}, kMoment, kMoment * 1000, std::numeric_limits<std::uint64_t>::max()}) {
    EXPECT_EQ(utils::Datetime(value).toCimText().size(), 25U) << value;
    EXPECT_EQ(timestamp(value).toCimText().size(), 25U) << value;
  }
}

std::optional<std::uint64_t> readMoment(const std::string& text) {
  const std::optional<utils::Datetime> read = utils::Datetime::fromCimText(text);
  return read && read->isTimestamp ? std::optional(read->value) : std::nullopt;
}

std::optional<std::uint64_t> readInterval(const std::string& text) {
  const std::optional<utils::Datetime> read = utils::Datetime::fromCimText(text);
  return read && !read->isTimestamp ? std::optional(read->value) : std::nullopt;
}

TEST(DatetimeFromText, IsTheMomentWhateverTheUtcOffset) {
  EXPECT_EQ(readMoment("20231114221320.123000+000"), kMoment);
  EXPECT_EQ(readMoment("20231114171320.123000-300"), kMoment);
  EXPECT_EQ(readMoment("20231115034320.123000+330"), kMoment);
  EXPECT_EQ(readMoment("19700101000000.000001+000"), 1U);
  EXPECT_EQ(readMoment("20240229000000.000000+000"), 1'709'164'800'000'000U);
}

TEST(DatetimeFromText, IsTheInterval) {
  EXPECT_EQ(readInterval("00000000000000.000000:000"), 0U);
  EXPECT_EQ(readInterval("00000003040506.000007:000"),
            ((3U * 86'400U + 4 * 3600 + 5 * 60 + 6) * std::uint64_t{1'000'000}) + 7);
  EXPECT_EQ(readInterval("99999999235959.999999:000"), 8'640'000'000'000'000'000U - 1);
}

TEST_F(DatetimeText, IsReadAgain) {
  enterZone("IST-5:30");
  EXPECT_EQ(readMoment(timestamp(kMoment).toCimText()), kMoment);
  EXPECT_EQ(readInterval(utils::Datetime(kMoment).toCimText()), kMoment);
}

class NoDatetimeText : public testing::TestWithParam<const char*> {};

TEST_P(NoDatetimeText, IsRefused) {
  EXPECT_FALSE(utils::Datetime::fromCimText(GetParam())) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Texts, NoDatetimeText,
                         testing::Values("", "now", "20231114221320.123000+00",
                                         "20231114221320.123000+0000", "20231114221320,123000+000",
                                         "20231114221320.123000*000", "20231114221320.123***+000",
                                         "2023**14221320.123000+000", "20231314221320.123000+000",
                                         "20230014221320.123000+000", "20230229221320.123000+000",
                                         "20231100221320.123000+000", "20231114241320.123000+000",
                                         "20231114226020.123000+000", "20231114221360.123000+000",
                                         "20231114221320.-23000+000", "20231114221320.123000+ 00",
                                         "19691231235959.999999+000", "19700101000000.000000+001",
                                         "00000003240506.000007:000", "00000003040506.000007:001",
                                         "0000000*040506.000007:000", "-0000003040506.000007:000"));

}  // namespace
