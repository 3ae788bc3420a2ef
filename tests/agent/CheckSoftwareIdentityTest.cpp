// What InstallFromSoftwareIdentity does alike is in SoftwareIdentityMethodsTest.cpp.

#include "agent/Orvex_ConcreteJobClass.h"
#include "agent/TargetInProgress.h"
#include "tests/agent/FakeMidApi.h"
#include "tests/agent/FakeSystem.h"
#include "tests/agent/IdentityMethodFixture.h"
#include "tests/support/TempDirectory.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CheckSoftwareIdentity : public test::IdentityMethodFixture {
 protected:
  CheckSoftwareIdentity() : IdentityMethodFixture(test::kCheckMethod) {}

  // Invokes, and expects that the characteristics are refused and stay.
  void expectCharacteristicsRefused(const std::vector<std::uint16_t>& values) {
    m_characteristics.setValue(values);
    EXPECT_EQ(invoke(), 5u);
    EXPECT_EQ(messages(),
              startedWith({"InstallCharacterisitcs argument is an output method's argument. Any "
                           "input value is not supported."}));
    EXPECT_EQ(m_characteristics.getValue(), values);
    EXPECT_THAT(m_factory->requests, IsEmpty());
  }
};

TEST_F(CheckSoftwareIdentity, AnswersThatNoRebootIsRequired) {
  EXPECT_EQ(invoke(), 0u);
  EXPECT_THAT(m_characteristics.getValue(), ElementsAre(7));
  EXPECT_FALSE(m_characteristics.isNull());
  EXPECT_EQ(m_job, nullptr);
  EXPECT_EQ(messages(), allWithSource({"Verification of image returns: 0"}));
}

TEST_F(CheckSoftwareIdentity, AsksForAnImageCheckOnly) {
  const test::FakeJobFactory::Request asked = request();
  EXPECT_EQ(asked.target, "0000:03:00.0");
  EXPECT_EQ(asked.uri, "file:///image.rom");
  EXPECT_THAT(asked.installOptions, IsEmpty());
  EXPECT_THAT(asked.installOptionsValues, IsEmpty());
  EXPECT_FALSE(asked.create);
}

TEST_F(CheckSoftwareIdentity, WantsArgumentsWithoutLists) {
  EXPECT_THAT([this] { m_service.CheckSoftwareIdentity(nullptr, nullptr, nullptr); },
              throwsFault("Expected Source argument"));
}

TEST_F(CheckSoftwareIdentity, WantsTheCharacteristicsAsAnOutput) {
  EXPECT_THAT(invokingWith(m_characteristics),
              throwsFault("Expected InstallCharacteristics argument"));
}

TEST_F(CheckSoftwareIdentity, RefusesCharacteristicsThatHoldSomething) {
  expectCharacteristicsRefused({2});
  expectCharacteristicsRefused({7, 2});
}

TEST_F(CheckSoftwareIdentity, LooksAtTheCharacteristicsBeforeTheSource) {
  m_source.setText("Orvex_SoftwareIdentity.InstanceID=\"nowhere\"");
  expectCharacteristicsRefused({0});
}

TEST_F(CheckSoftwareIdentity, AcceptsAnEmptyArrayOfCharacteristics) {
  m_characteristics.clear();
  EXPECT_EQ(invoke(), 0u);
  EXPECT_THAT(m_characteristics.getValue(), ElementsAre(7));
}

TEST_F(CheckSoftwareIdentity, LeavesTheCharacteristicsAloneWhenItRefuses) {
  m_characteristics.clear();
  m_factory->result = agent::kJobOtherJobRunning;
  EXPECT_EQ(invoke(), 2u);
  EXPECT_FALSE(m_characteristics.isNull());
  EXPECT_THAT(m_characteristics.getValue(), IsEmpty());
}

// A check by the job class itself, and updates after it.
class CheckedSoftwareIdentity : public CheckSoftwareIdentity {
 protected:
  CheckedSoftwareIdentity() {
    m_siblings.addResource("firmware", m_uri);
    m_options.setValue({5});
    m_values.setValue({});
  }
  ~CheckedSoftwareIdentity() override { agent::clearTargetInProgress(); }

  // Asks for an update of the target by the method.
  std::uint32_t update(const std::string& method, const std::string& target) {
    core::CimPropertyString uri("URI", nullptr);
    uri.setValue(m_uri);
    m_target.setText(target);
    core::CimPropertyList in;
    for (core::CimProperty* argument : std::initializer_list<core::CimProperty*>{
             &uri, &m_options, &m_values, &m_source, &m_target, &m_collection}) {
      in.add(argument);
    }
    core::CimPropertyList out;
    m_log.clear();
    return m_service.invokeMethod(method, &in, &out, &m_job);
  }

  // Expects that an update by either method is refused with this record.
  void expectUpdatesRefused(const std::string& target, std::uint32_t expected,
                            std::int32_t jobResult, const std::string& record) {
    for (const std::string method : {"InstallFromURI", "InstallFromSoftwareIdentity"}) {
      EXPECT_EQ(update(method, target), expected) << method;
      EXPECT_EQ(m_job, nullptr);
      const std::vector<std::string> messages =
          m_log.messages("Orvex_SoftwareInstallationService::" + method);
      ASSERT_GE(messages.size(), 2u);
      EXPECT_EQ(*(messages.end() - 2), "Creation of new job returns: " + std::to_string(jobResult));
      EXPECT_EQ(messages.back(), record);
    }
    EXPECT_EQ(m_jobs.getInstances().first(), nullptr);
  }

  std::string inUse() const {
    return "Target '" + target() + "' is in update state at this moment";
  }

  test::FakeConfig m_config;
  test::FakeLocker m_locker;
  test::FakeMidApi m_midApi;
  test::TempDirectory m_directory;
  std::string m_uri = "file://" + m_directory.write("image.rom", std::string("rom")).string();
  Orvex_ConcreteJobClass m_jobs;  // takes the place of the job class of the other tests
};

TEST_F(CheckedSoftwareIdentity, LeavesNoJob) {
  EXPECT_EQ(invoke(), 0u);
  EXPECT_THAT(m_characteristics.getValue(), ElementsAre(7));
  EXPECT_EQ(m_jobs.getInstances().first(), nullptr);
  EXPECT_THAT(m_midApi.calls(), testing::Contains(testing::StartsWith("prepareFlashImage ")));
  EXPECT_THAT(m_midApi.calls(),
              testing::Not(testing::Contains(testing::StartsWith("writeFlashImage "))));
}

TEST_F(CheckedSoftwareIdentity, KeepsItsTargetInUse) {
  EXPECT_EQ(invoke(), 0u);
  expectUpdatesRefused(target(), 6, agent::kJobTargetInUse, inUse());
}

TEST_F(CheckedSoftwareIdentity, HoldsUpUpdatesOfOtherTargets) {
  const std::string other = m_siblings.addPort("0000:04:00.0");
  EXPECT_EQ(invoke(), 0u);
  expectUpdatesRefused(other, 2, agent::kJobOtherJobRunning,
                       "Other job is in progress '" + other + "'");
}

TEST_F(CheckedSoftwareIdentity, IsNotCheckedAgain) {
  const std::string other = m_siblings.addPort("0000:04:00.0");
  EXPECT_EQ(invoke(), 0u);

  m_characteristics.clear();
  EXPECT_EQ(invoke(), 6u);
  EXPECT_EQ(messages().back(), inUse());
  m_target.setText(other);
  EXPECT_EQ(invoke(), 2u);
  EXPECT_EQ(messages().back(), "Other job is in progress '" + other + "'");
}

TEST_F(CheckedSoftwareIdentity, HoldsUpNothingWhenItsCheckFailed) {
  m_midApi.prepareStatus = ma::PrepareStatus::NotForAdapter;
  EXPECT_EQ(invoke(), 4097u);
  EXPECT_EQ(agent::getTargetInProgress(), "");

  m_midApi.prepareStatus = ma::PrepareStatus::Ok;
  EXPECT_EQ(update("InstallFromSoftwareIdentity", target()), 4096u);
  EXPECT_EQ(m_jobs.getInstances().first(), m_job);
}

}  // namespace
