#include <new>

#include "tests/agent/IdentityMethod.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CheckSoftwareIdentity : public test::IdentityMethod {
 protected:
  CheckSoftwareIdentity()
      : IdentityMethod("CheckSoftwareIdentity", {&m_source, &m_target, &m_collection},
                       {&m_characteristics}) {}
};

TEST_F(CheckSoftwareIdentity, AnswersThatNoRebootIsRequired) {
  EXPECT_EQ(invoke(), 0u);

  EXPECT_THAT(m_characteristics.getValue(), ElementsAre(7));
  EXPECT_FALSE(m_characteristics.isNull());
  EXPECT_EQ(m_job, nullptr);
  EXPECT_EQ(messages(), allWithSource({"Verification of image returns: 0"}));
}

TEST_F(CheckSoftwareIdentity, AsksForAnImageCheckOnly) {
  invoke();
  ASSERT_EQ(m_factory->requests.size(), 1u);
  const test::FakeJobFactory::Request& request = m_factory->requests[0];
  EXPECT_EQ(request.target, "0000:03:00.0");
  EXPECT_EQ(request.uri, "file:///image.rom");
  EXPECT_THAT(request.installOptions, IsEmpty());
  EXPECT_THAT(request.installOptionsValues, IsEmpty());
  EXPECT_FALSE(request.create);
}

TEST_F(CheckSoftwareIdentity, RefusesANullSource) {
  m_source.setNull();
  EXPECT_THAT(invokingWithout({}),
              throwsFault("Source argument is set to NULL. It is not allowed"));
  EXPECT_THAT(messages(),
              ElementsAre("All arguments are defined", "Target:0, Source:1, Collection:1"));
}

TEST_F(CheckSoftwareIdentity, RefusesCharacteristicsThatHoldSomething) {
  m_characteristics.setValue({2});
  expectReturn(5, {"InstallCharacterisitcs argument is an output method's argument. Any input "
                   "value is not supported."});
  EXPECT_THAT(m_characteristics.getValue(), ElementsAre(2));
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(CheckSoftwareIdentity, LeavesTheCharacteristicsAloneWhenItRefuses) {
  m_factory->result = kJobOtherJobRunning;
  EXPECT_EQ(invoke(), 2u);
  EXPECT_TRUE(m_characteristics.isNull());
  EXPECT_THAT(m_characteristics.getValue(), IsEmpty());
}

TEST_F(CheckSoftwareIdentity, WantsEveryArgumentInOrder) {
  expectEveryArgumentIsWanted();
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(CheckSoftwareIdentity, WantsArgumentsWithoutLists) {
  EXPECT_THAT([this] { m_service.CheckSoftwareIdentity(nullptr, nullptr, nullptr); },
              throwsFault("Expected Source argument"));
}

TEST_F(CheckSoftwareIdentity, IsTimed) {
  invoke();
  EXPECT_THAT(m_log.records(),
              test::HasRecord(test::LogLevel::Debug, "utils::TimeStamp::Init",
                              testing::HasSubstr("Entering 'CheckSoftwareIdentity'")));
  EXPECT_THAT(m_log.records().back().message,
              testing::HasSubstr("Leaving  'CheckSoftwareIdentity' after "));
}

TEST_F(CheckSoftwareIdentity, RefusesATargetBesideACollection) {
  m_collection.setText("Orvex_Collection.InstanceID=\"0\"");
  EXPECT_THAT(invokingWithout({}), throwsFault("Both Target and Collection are defined"));
  EXPECT_THAT(messages(),
              ElementsAre("All arguments are defined", "Target:0, Source:0, Collection:0"));
}

TEST_F(CheckSoftwareIdentity, RefusesNeitherTargetNorCollection) {
  m_target.setNull();
  m_source.setNull();
  EXPECT_THAT(invokingWithout({}), throwsFault("Neither Target nor Collection are defined"));
  EXPECT_THAT(messages(),
              ElementsAre("All arguments are defined", "Target:1, Source:1, Collection:1"));
}

TEST_F(CheckSoftwareIdentity, DoesNotSupportACollection) {
  m_target.setNull();
  m_source.setNull();
  m_collection.setText("Orvex_Collection.InstanceID=\"0\"");
  EXPECT_EQ(invoke(), 4108u);
  EXPECT_THAT(messages(),
              ElementsAre("All arguments are defined", "Target:1, Source:1, Collection:0"));
}

TEST_F(CheckSoftwareIdentity, RefusesASourceThatDoesNotExist) {
  m_source.setText("Orvex_SoftwareIdentity.DeviceID=\"7\"");
  expectReturn(5, {"Checking Firmware Update cannot find instance '" + source() + "'"});
}

TEST_F(CheckSoftwareIdentity, RefusesASourceOfAnotherClass) {
  for (const std::string& other :
       {m_siblings.addResource("other", "file:///other.rom"), m_siblings.addService(), target()}) {
    m_source.setText(other);
    expectReturn(5, {"Checking Firmware Update does not support source '" + other + "'"});
  }
}

TEST_F(CheckSoftwareIdentity, RefusesASourceThatIsNoFirmwareImage) {
  for (const std::uint32_t kind : {0u, 3u, 5u}) {
    m_source.setText(m_siblings.addSoftwareIdentity({"firmware", kind, {"IMG_PXE"}}));
    expectReturn(5, {"Checking Firmware Update does not support source '" + source() +
                     "'. It is not a proper Firmware Image."});
  }
}

TEST_F(CheckSoftwareIdentity, RefusesASourceWithoutAResource) {
  m_source.setText(m_siblings.addSoftwareIdentity({"Firmware", 4, {"IMG_PXE"}}));
  expectReturn(5, {"Could not obtain URI from the SoftwareIdentityResource (Firmware)"});
}

TEST_F(CheckSoftwareIdentity, RefusesASourceWhoseResourceHasNoUri) {
  m_siblings.addResource("firmware", "");
  expectReturn(5, {"Could not obtain URI from the SoftwareIdentityResource (firmware)"});
}

TEST_F(CheckSoftwareIdentity, TakesTheLastResourceOfTheSource) {
  m_siblings.addResource("firmware", "file:///second.rom");
  m_siblings.addResource("other", "file:///third.rom");
  invoke();
  ASSERT_EQ(m_factory->requests.size(), 1u);
  EXPECT_EQ(m_factory->requests[0].uri, "file:///second.rom");
}

TEST_F(CheckSoftwareIdentity, RefusesASourceWithoutTargetTypes) {
  m_source.setText(m_siblings.addSoftwareIdentity({"firmware", 4, {}}));
  expectReturn(5, {"URI is: file:///image.rom",
                   "Source '" + source() + "' does not contain any TargetTypes"});
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(CheckSoftwareIdentity, JoinsTheTargetTypesInItsRecord) {
  m_source.setText(m_siblings.addSoftwareIdentity({"firmware", 4, {"IMG_PXE", "IMG_UEFI"}}));
  invoke();
  EXPECT_THAT(messages(), testing::Contains("TargetTypes are: IMG_PXE+IMG_UEFI"));
}

TEST_F(CheckSoftwareIdentity, LogsTextsWithConversionsAsTheyAre) {
  m_siblings.addResource("%s%n", "file:///%s%d.rom");
  m_source.setText(m_siblings.addSoftwareIdentity({"%s%n", 4, {"%s"}}));
  invoke();
  EXPECT_THAT(messages(),
              testing::IsSupersetOf({"URI is: file:///%s%d.rom", "TargetTypes are: %s"}));
}

TEST_F(CheckSoftwareIdentity, RefusesATargetThatDoesNotExist) {
  m_target.setText("Orvex_EthernetPort.DeviceID=\"7\"");
  expectReturn(5,
               afterSource({"Checking Firmware Update cannot find instance '" + target() + "'"}));
}

TEST_F(CheckSoftwareIdentity, RefusesATargetOfAnotherClass) {
  m_target.setText(source());
  expectReturn(4106, afterSource({"Firmware Update does not support target '" + target() + "'"}));
}

TEST_F(CheckSoftwareIdentity, RefusesAControllerWithoutPorts) {
  m_target.setText(m_siblings.addController({}));
  expectReturn(5, afterSource({"Firmware Update does not support instance '" + target() + "'"}));
}

TEST_F(CheckSoftwareIdentity, TakesTheFirstPortOfAController) {
  m_siblings.addPort("0000:04:00.1");
  m_siblings.addPort("0000:04:00.0");
  m_target.setText(m_siblings.addController({"0000:04:00.0", "0000:04:00.1"}));
  invoke();
  ASSERT_EQ(m_factory->requests.size(), 1u);
  EXPECT_EQ(m_factory->requests[0].target, "0000:04:00.1");
}

TEST_F(CheckSoftwareIdentity, LeavesMalformedPathsToTheCaller) {
  m_target.setText("malformed");
  EXPECT_THROW(invoke(), utils::ESyntaxError);
  m_source.setText("malformed");
  EXPECT_THROW(invoke(), utils::ESyntaxError);
}

TEST_F(CheckSoftwareIdentity, WantsAJobClass) {
  m_factory.reset();
  EXPECT_THAT(invokingWithout({}), test::ThrowsExactly<utils::Exception>(test::IsAssertion(
                                       "Orvex_SoftwareInstallationService", "cimclass != NULL")));
}

TEST_F(CheckSoftwareIdentity, AnswersWhatTheJobClassThrowsByAWantOfMemory) {
  m_factory->fault = [] { throw std::bad_alloc(); };
  expectReturn(4100, afterSource({"Allocation error occured for '" + target() + "'"}));
}

TEST_F(CheckSoftwareIdentity, TranslatesInvalidParameter) {
  m_factory->result = 1;
  expectReturn(
      5, afterSource({"Verification of image returns: 1",
                      "Image verification returned Invalid Parameter for '" + target() + "'"}));
}

class CheckSoftwareIdentityAnswer : public CheckSoftwareIdentity,
                                    public testing::WithParamInterface<test::JobAnswer> {};

TEST_P(CheckSoftwareIdentityAnswer, IsTranslated) {
  const test::JobAnswer& answer = GetParam();
  m_factory->result = answer.result;
  std::vector<std::string> records{"Verification of image returns: " +
                                   std::to_string(answer.result)};
  if (!answer.before.empty()) {
    records.push_back(answer.before + target() + answer.after);
  }
  const bool isSuccess = answer.returnValue == 0;

  EXPECT_EQ(invoke(), answer.returnValue);

  EXPECT_EQ(m_job, nullptr);
  EXPECT_EQ(m_characteristics.isNull(), !isSuccess);
  EXPECT_EQ(messages(), allWithSource(records));
}

INSTANTIATE_TEST_SUITE_P(JobClass, CheckSoftwareIdentityAnswer,
                         testing::ValuesIn(test::kJobAnswers));

}  // namespace
