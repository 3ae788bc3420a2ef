// What clients see of a job: its properties.

#include <cstdint>
#include <gmock/gmock.h>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "Utils/Clock.h"
#include "tests/agent/ConcreteJobFixture.h"
#include "tests/agent/Enumeration.h"

namespace {

using ConcreteJobProperties = test::ConcreteJobFixture;
using test::kAdapter;
using testing::ElementsAre;

std::map<std::string, bool> nullStates(core::CimInstance& instance) {
  std::map<std::string, bool> states;
  core::CimPropertyList::Iterator cursor = instance.getProperties().iterator();
  for (core::CimProperty* property = cursor.first(); property != nullptr;
       property = cursor.next()) {
    states[property->getName()] = property->isNull();
  }
  return states;
}

TEST_F(ConcreteJobProperties, ArePublished) {
  // A value that somebody set does not stay.
  test::fillEveryProperty(*m_job);
  const std::uint64_t now = utils::currentMicroseconds();
  m_job->setError(5, "a text");
  change(4);
  m_midApi.progress = 42;
  m_job->setPropertyValues();

  EXPECT_EQ(m_job->Caption.getValue(), "Firmware Update Job 7");
  EXPECT_EQ(m_job->Description.getValue(), "Firmware Update Job 7");
  EXPECT_EQ(m_job->Name.getValue(), "Firmware Update Job 7");
  EXPECT_EQ(m_job->InstanceID.getValue(), "Orvex:FirmwareUpdate@Job#7");
  EXPECT_THAT(m_job->OperationalStatus.getValue(), ElementsAre(2));
  EXPECT_TRUE(m_job->StartTime.getValue().isTimestamp);
  EXPECT_LE(m_job->StartTime.getValue().value, now);
  EXPECT_GT(m_job->StartTime.getValue().value, now - 60'000'000);
  EXPECT_FALSE(m_job->ElapsedTime.getValue().isTimestamp);
  EXPECT_EQ(m_job->JobRunTimes.getValue(), 1u);
  EXPECT_EQ(m_job->Priority.getValue(), 0u);
  EXPECT_EQ(m_job->PercentComplete.getValue(), 42);
  EXPECT_EQ(m_job->DeleteOnCompletion.getValue(), 0);
  EXPECT_EQ(m_job->ErrorCode.getValue(), 5);
  EXPECT_EQ(m_job->ErrorDescription.getValue(), "a text");
  EXPECT_EQ(m_job->JobState.getValue(), 4);
  EXPECT_TRUE(m_job->TimeOfLastStateChange.getValue().isTimestamp);
  EXPECT_FALSE(m_job->TimeBeforeRemoval.getValue().isTimestamp);
  EXPECT_EQ(m_job->TimeBeforeRemoval.getValue().value, 300'000'000u);
}

TEST_F(ConcreteJobProperties, AreNullWhereNothingIsKnown) {
  const std::set<std::string> published{
      "Caption",          "Description",      "Name",
      "InstanceID",       "StartTime",        "OperationalStatus",
      "Priority",         "ElapsedTime",      "JobRunTimes",
      "PercentComplete",  "ErrorCode",        "DeleteOnCompletion",
      "JobState",         "ErrorDescription", "TimeOfLastStateChange",
      "TimeBeforeRemoval"};
  // A value that somebody set does not stay.
  test::fillEveryProperty(*m_job);

  m_job->setPropertyValues();

  std::set<std::string> filled;
  for (const auto& [name, isNull] : nullStates(*m_job)) {
    if (!isNull) {
      filled.insert(name);
    }
  }
  EXPECT_EQ(filled, published);
  EXPECT_EQ(nullStates(*m_job).size(), 39u);
}

TEST_F(ConcreteJobProperties, HaveOneStatusHoweverOftenTheyArePublished) {
  m_job->setPropertyValues();
  m_job->setPropertyValues();
  EXPECT_THAT(m_job->OperationalStatus.getValue(), ElementsAre(2));
}

// Its texts have always been those of a signed number.
TEST_F(ConcreteJobProperties, HaveTheNumberAsASignedOne) {
  const std::pair<std::uint32_t, std::string> kNumbers[] = {
      {1, "1"}, {2147483647, "2147483647"}, {2147483648, "-2147483648"}, {4294967295, "-1"}};
  for (const auto& [number, text] : kNumbers) {
    m_job = std::make_unique<Orvex_ConcreteJob>(kAdapter, number, agent::VerifiedImage{});
    m_job->setPropertyValues();
    EXPECT_EQ(m_job->getInstanceId(), "FirmwareUpdate@Job#" + text);
    EXPECT_EQ(m_job->InstanceID.getValue(), "Orvex:FirmwareUpdate@Job#" + text);
    EXPECT_EQ(m_job->Caption.getValue(), "Firmware Update Job " + text);
  }
}

TEST_F(ConcreteJobProperties, HaveTheInstanceIdAsKey) {
  m_job->setPropertyValues();
  EXPECT_EQ(m_job->getPath(), "Orvex_ConcreteJob.InstanceID=\"Orvex:FirmwareUpdate@Job#7\"");
}

}  // namespace
