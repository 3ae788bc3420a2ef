#include <new>

#include "tests/agent/IdentityMethod.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InstallFromSoftwareIdentity : public test::IdentityMethod {
 protected:
  InstallFromSoftwareIdentity()
      : IdentityMethod("InstallFromSoftwareIdentity",
                       {&m_options, &m_values, &m_source, &m_target, &m_collection}, {}) {
    m_options.setValue({3, 5});
    m_values.setValue({"", "x"});
  }
};

TEST_F(InstallFromSoftwareIdentity, HandsOutTheJob) {
  EXPECT_EQ(invoke(), 4096u);

  EXPECT_EQ(m_job, &m_created);
  ASSERT_EQ(m_factory->requests.size(), 1u);
  const test::FakeJobFactory::Request& request = m_factory->requests[0];
  EXPECT_EQ(request.target, "0000:03:00.0");
  EXPECT_EQ(request.uri, "file:///image.rom");
  EXPECT_THAT(request.installOptions, ElementsAre(3, 5));
  EXPECT_THAT(request.installOptionsValues, ElementsAre("", "x"));
  EXPECT_TRUE(request.create);
  EXPECT_EQ(messages(), allWithSource({"Creation of new job returns: 0"}));
}

TEST_F(InstallFromSoftwareIdentity, RefusesNullArguments) {
  m_source.setNull();
  EXPECT_THAT(invokingWithout({}),
              throwsFault("Source argument is set to NULL. It is not allowed"));
  m_options.setNull();
  EXPECT_THAT(invokingWithout({}),
              throwsFault("InstallOptions argument is set to NULL. It is not allowed"));
  EXPECT_THAT(messages(),
              ElementsAre("All arguments are defined", "Target:0, Source:1, Collection:1"));
}

TEST_F(InstallFromSoftwareIdentity, AcceptsNullValues) {
  m_values.setNull();
  EXPECT_EQ(invoke(), 4096u);
}

TEST_F(InstallFromSoftwareIdentity, RefusesOptionsThatItCannotHonour) {
  using Options = std::vector<std::uint16_t>;
  for (const Options& options :
       {Options{}, Options{3}, Options{5, 2}, Options{4, 5}, Options{5, 12}, Options{5, 32768}}) {
    m_options.setValue(options);
    expectReturn(5, {"One of value of InstallOptions value is not supported"});
  }
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(InstallFromSoftwareIdentity, LetsOtherOptionsPass) {
  m_options.setValue({0, 1, 5, 13, 32767, 32769});
  EXPECT_EQ(invoke(), 4096u);
}

TEST_F(InstallFromSoftwareIdentity, LooksAtTheOptionsBeforeTheSource) {
  m_source.setText("malformed");
  m_options.setValue({3});
  EXPECT_EQ(invoke(), 5u);
}

TEST_F(InstallFromSoftwareIdentity, WantsEveryArgumentInOrder) {
  expectEveryArgumentIsWanted();
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(InstallFromSoftwareIdentity, WantsArgumentsWithoutLists) {
  EXPECT_THAT([this] { m_service.InstallFromSoftwareIdentity(nullptr, nullptr, nullptr); },
              throwsFault("Expected InstallOptions argument"));
}

TEST_F(InstallFromSoftwareIdentity, IsTimed) {
  invoke();
  EXPECT_THAT(m_log.records(),
              test::HasRecord(test::LogLevel::Debug, "utils::TimeStamp::Init",
                              testing::HasSubstr("Entering 'InstallFromSoftwareIdentity'")));
  EXPECT_THAT(m_log.records().back().message,
              testing::HasSubstr("Leaving  'InstallFromSoftwareIdentity' after "));
}

TEST_F(InstallFromSoftwareIdentity, RefusesATargetBesideACollection) {
  m_collection.setText("Orvex_Collection.InstanceID=\"0\"");
  EXPECT_THAT(invokingWithout({}), throwsFault("Target and Collection are defined"));
  EXPECT_THAT(messages(),
              ElementsAre("All arguments are defined", "Target:0, Source:0, Collection:0"));
}

TEST_F(InstallFromSoftwareIdentity, RefusesNeitherTargetNorCollection) {
  m_target.setNull();
  m_source.setNull();
  EXPECT_THAT(invokingWithout({}), throwsFault("Neither Target nor Collection are defined"));
  EXPECT_THAT(messages(),
              ElementsAre("All arguments are defined", "Target:1, Source:1, Collection:1"));
}

TEST_F(InstallFromSoftwareIdentity, DoesNotSupportACollection) {
  m_target.setNull();
  m_source.setNull();
  m_collection.setText("Orvex_Collection.InstanceID=\"0\"");
  EXPECT_EQ(invoke(), 4108u);
  EXPECT_THAT(messages(),
              ElementsAre("All arguments are defined", "Target:1, Source:1, Collection:0"));
}

TEST_F(InstallFromSoftwareIdentity, RefusesASourceThatDoesNotExist) {
  m_source.setText("Orvex_SoftwareIdentity.DeviceID=\"7\"");
  expectReturn(5, {"Firmware Update cannot find instance '" + source() + "'"});
}

TEST_F(InstallFromSoftwareIdentity, RefusesASourceOfAnotherClass) {
  for (const std::string& other :
       {m_siblings.addResource("other", "file:///other.rom"), m_siblings.addService(), target()}) {
    m_source.setText(other);
    expectReturn(5, {"Firmware Update does not support source '" + other + "'"});
  }
}

TEST_F(InstallFromSoftwareIdentity, RefusesASourceThatIsNoFirmwareImage) {
  for (const std::uint32_t kind : {0u, 3u, 5u}) {
    m_source.setText(m_siblings.addSoftwareIdentity({"firmware", kind, {"IMG_PXE"}}));
    expectReturn(5, {"Firmware Update does not support source '" + source() +
                     "'. It is not a proper Firmware Image."});
  }
}

TEST_F(InstallFromSoftwareIdentity, RefusesASourceWithoutAResource) {
  m_source.setText(m_siblings.addSoftwareIdentity({"Firmware", 4, {"IMG_PXE"}}));
  expectReturn(5, {"Could not obtain URI from the SoftwareIdentityResource (Firmware)"});
}

TEST_F(InstallFromSoftwareIdentity, RefusesASourceWhoseResourceHasNoUri) {
  m_siblings.addResource("firmware", "");
  expectReturn(5, {"Could not obtain URI from the SoftwareIdentityResource (firmware)"});
}

TEST_F(InstallFromSoftwareIdentity, TakesTheLastResourceOfTheSource) {
  m_siblings.addResource("firmware", "file:///second.rom");
  m_siblings.addResource("other", "file:///third.rom");
  invoke();
  ASSERT_EQ(m_factory->requests.size(), 1u);
  EXPECT_EQ(m_factory->requests[0].uri, "file:///second.rom");
}

TEST_F(InstallFromSoftwareIdentity, RefusesASourceWithoutTargetTypes) {
  m_source.setText(m_siblings.addSoftwareIdentity({"firmware", 4, {}}));
  expectReturn(5, {"URI is: file:///image.rom",
                   "Source '" + source() + "' does not contain any TargetTypes"});
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_F(InstallFromSoftwareIdentity, JoinsTheTargetTypesInItsRecord) {
  m_source.setText(m_siblings.addSoftwareIdentity({"firmware", 4, {"IMG_PXE", "IMG_UEFI"}}));
  invoke();
  EXPECT_THAT(messages(), testing::Contains("TargetTypes are: IMG_PXE+IMG_UEFI"));
}

TEST_F(InstallFromSoftwareIdentity, LogsTextsWithConversionsAsTheyAre) {
  m_siblings.addResource("%s%n", "file:///%s%d.rom");
  m_source.setText(m_siblings.addSoftwareIdentity({"%s%n", 4, {"%s"}}));
  invoke();
  EXPECT_THAT(messages(),
              testing::IsSupersetOf({"URI is: file:///%s%d.rom", "TargetTypes are: %s"}));
}

TEST_F(InstallFromSoftwareIdentity, RefusesATargetThatDoesNotExist) {
  m_target.setText("Orvex_EthernetPort.DeviceID=\"7\"");
  expectReturn(5, afterSource({"Firmware Update cannot find instance '" + target() + "'"}));
}

TEST_F(InstallFromSoftwareIdentity, RefusesATargetOfAnotherClass) {
  m_target.setText(source());
  expectReturn(4106, afterSource({"Firmware Update does not support target '" + target() + "'"}));
}

TEST_F(InstallFromSoftwareIdentity, RefusesAControllerWithoutPorts) {
  m_target.setText(m_siblings.addController({}));
  expectReturn(5, afterSource({"Firmware Update does not support instance '" + target() + "'"}));
}

TEST_F(InstallFromSoftwareIdentity, TakesTheFirstPortOfAController) {
  m_siblings.addPort("0000:04:00.1");
  m_siblings.addPort("0000:04:00.0");
  m_target.setText(m_siblings.addController({"0000:04:00.0", "0000:04:00.1"}));
  invoke();
  ASSERT_EQ(m_factory->requests.size(), 1u);
  EXPECT_EQ(m_factory->requests[0].target, "0000:04:00.1");
}

TEST_F(InstallFromSoftwareIdentity, LeavesMalformedPathsToTheCaller) {
  m_target.setText("malformed");
  EXPECT_THROW(invoke(), utils::ESyntaxError);
  m_source.setText("malformed");
  EXPECT_THROW(invoke(), utils::ESyntaxError);
}

TEST_F(InstallFromSoftwareIdentity, WantsAJobClass) {
  m_factory.reset();
  EXPECT_THAT(invokingWithout({}), test::ThrowsExactly<utils::Exception>(test::IsAssertion(
                                       "Orvex_SoftwareInstallationService", "cimclass != NULL")));
}

TEST_F(InstallFromSoftwareIdentity, AnswersWhatTheJobClassThrowsByAWantOfMemory) {
  m_factory->fault = [] { throw std::bad_alloc(); };
  expectReturn(4100, afterSource({"Allocation error occured for '" + target() + "'"}));
}

TEST_F(InstallFromSoftwareIdentity, TranslatesInvalidParameter) {
  m_factory->result = 1;
  expectReturn(5, afterSource({"Creation of new job returns: 1",
                               "Job creation returned Invalid Parameter for '" + target() + "'"}));
}

class InstallFromSoftwareIdentityAnswer : public InstallFromSoftwareIdentity,
                                          public testing::WithParamInterface<test::JobAnswer> {};

TEST_P(InstallFromSoftwareIdentityAnswer, IsTranslated) {
  const test::JobAnswer& answer = GetParam();
  m_factory->result = answer.result;
  std::vector<std::string> records{"Creation of new job returns: " + std::to_string(answer.result)};
  if (!answer.before.empty()) {
    records.push_back(answer.before + target() + answer.after);
  }
  const bool isSuccess = answer.returnValue == 0;

  EXPECT_EQ(invoke(), isSuccess ? 4096 : answer.returnValue);

  EXPECT_EQ(m_job, isSuccess ? &m_created : nullptr);
  EXPECT_EQ(messages(), allWithSource(records));
}

INSTANTIATE_TEST_SUITE_P(JobClass, InstallFromSoftwareIdentityAnswer,
                         testing::ValuesIn(test::kJobAnswers));

}  // namespace
