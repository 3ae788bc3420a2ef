// The stories that are the same for InstallFromSoftwareIdentity and CheckSoftwareIdentity.

#include <new>
#include <stdexcept>
#include <tuple>

#include "tests/agent/IdentityMethodFixture.h"
#include "tests/agent/JobAnswers.h"

namespace {

using test::LogLevel;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kUnknownCollection = "Orvex_Collection.InstanceID=\"0\"";

class SoftwareIdentityMethods : public test::IdentityMethodFixture,
                                public testing::WithParamInterface<test::IdentityMethodTraits> {
 protected:
  SoftwareIdentityMethods() : IdentityMethodFixture(GetParam()) {}

  std::string lookUp(const std::string& record) const { return m_method.lookUp + record; }

  // Makes the source an image with these target types, behind those that are there.
  void describeSource(const std::vector<std::string>& targetTypes) {
    m_source.setText(m_siblings.addSoftwareIdentity({"firmware", 4, targetTypes}));
  }
};

std::string methodName(const testing::TestParamInfo<test::IdentityMethodTraits>& entry) {
  return entry.param.name;
}

INSTANTIATE_TEST_SUITE_P(Methods, SoftwareIdentityMethods,
                         testing::Values(test::kInstallMethod, test::kCheckMethod), methodName);

// -- arguments --

TEST_P(SoftwareIdentityMethods, WantEveryArgumentInOrder) {
  expectEveryArgumentIsWanted();
  EXPECT_THAT(m_factory->requests, IsEmpty());
}

TEST_P(SoftwareIdentityMethods, LookForMissingArgumentsBeforeAnythingElse) {
  m_source.setNull();
  m_target.setNull();
  EXPECT_THAT(invokingWithout({"Collection"}), throwsFault("Expected Collection argument"));
}

TEST_P(SoftwareIdentityMethods, TakeAnArgumentOfAnotherTypeForMissing) {
  for (const char* name : {"Source", "Target", "Collection"}) {
    core::CimPropertyString text(name, nullptr);
    text.setValue(source());
    EXPECT_THAT(invokingWith(text), throwsFault("Expected " + std::string(name) + " argument"));
  }
}

TEST_P(SoftwareIdentityMethods, AreTimedFromTheFirstCheckOn) {
  const auto expectTime = [this] {
    EXPECT_THAT(m_log.records(),
                test::HasRecord(LogLevel::Debug, "utils::TimeStamp::Init",
                                testing::EndsWith(" Entering '" + m_method.name + "'")));
    EXPECT_THAT(m_log.records().back().message,
                HasSubstr("Leaving  '" + m_method.name + "' after "));
  };
  invoke();
  expectTime();
  EXPECT_THROW(invokingWithout({"Source"})(), utils::EUnspecifiedError);
  expectTime();
}

TEST_P(SoftwareIdentityMethods, RefuseATargetBesideACollection) {
  m_collection.setText(kUnknownCollection);
  expectFault(m_method.bothTargets, "Target:0, Source:0, Collection:0");
}

TEST_P(SoftwareIdentityMethods, RefuseNeitherTargetNorCollection) {
  m_target.setNull();
  expectFault("Neither Target nor Collection are defined", "Target:1, Source:0, Collection:1");
}

TEST_P(SoftwareIdentityMethods, LookAtTheTargetBeforeNullArguments) {
  m_source.setNull();
  m_options.setNull();
  m_collection.setText(kUnknownCollection);
  expectFault(m_method.bothTargets, "Target:0, Source:1, Collection:0");
  m_collection.setNull();
  m_target.setNull();
  expectFault("Neither Target nor Collection are defined", "Target:1, Source:1, Collection:1");
}

TEST_P(SoftwareIdentityMethods, DoNotSupportACollection) {
  m_target.setNull();
  m_source.setNull();
  m_options.setNull();
  m_collection.setText(kUnknownCollection);
  EXPECT_EQ(invoke(), 4108u);
  EXPECT_EQ(m_job, nullptr);
  EXPECT_THAT(messages(), testing::ElementsAre("All arguments are defined",
                                               "Target:1, Source:1, Collection:0"));
  EXPECT_TRUE(m_characteristics.isNull());
}

TEST_P(SoftwareIdentityMethods, RefuseANullSource) {
  m_source.setNull();
  expectFault("Source argument is set to NULL. It is not allowed",
              "Target:0, Source:1, Collection:1");
}

TEST_P(SoftwareIdentityMethods, LeaveMalformedPathsToTheCaller) {
  m_target.setText("malformed");
  EXPECT_THROW(invoke(), utils::ESyntaxError);
  m_source.setText("malformed");
  EXPECT_THROW(invoke(), utils::ESyntaxError);
}

// -- source --

TEST_P(SoftwareIdentityMethods, RefuseASourceThatDoesNotExist) {
  for (const char* path :
       {"Orvex_SoftwareIdentity.DeviceID=\"7\"", "Orvex_Nothing.DeviceID=\"0\""}) {
    m_source.setText(path);
    expectEarlyRefusal(5, {lookUp("Firmware Update cannot find instance '" + source() + "'")});
  }
}

TEST_P(SoftwareIdentityMethods, RefuseASourceOfAnotherClass) {
  test::Software stranger;
  stranger.className = "Orvex_softwareIdentity";
  for (const std::string& other :
       {m_siblings.addResource("other", "file:///other.rom"),
        m_siblings.addSoftwareIdentity(stranger), m_siblings.addService(), target()}) {
    m_source.setText(other);
    expectEarlyRefusal(5, {lookUp("Firmware Update does not support source '" + other + "'")});
  }
}

TEST_P(SoftwareIdentityMethods, RefuseASourceThatIsNoFirmwareImage) {
  for (const std::uint32_t kind : {0u, 3u, 5u}) {
    m_source.setText(m_siblings.addSoftwareIdentity({"firmware", kind, {"IMG_PXE"}}));
    expectEarlyRefusal(5, {lookUp("Firmware Update does not support source '" + source() +
                                  "'. It is not a proper Firmware Image.")});
  }
}

TEST_P(SoftwareIdentityMethods, LookAtTheKindOfTheImageBeforeItsResource) {
  m_source.setText(m_siblings.addSoftwareIdentity({"no resource", 3, {}}));
  expectEarlyRefusal(5, {lookUp("Firmware Update does not support source '" + source() +
                                "'. It is not a proper Firmware Image.")});
}

TEST_P(SoftwareIdentityMethods, RefuseASourceWithoutAResource) {
  m_source.setText(m_siblings.addSoftwareIdentity({"Firmware", 4, {}}));
  expectEarlyRefusal(5, {"Could not obtain URI from the SoftwareIdentityResource (Firmware)"});
}

TEST_P(SoftwareIdentityMethods, RefuseASourceWhoseLastResourceHasNoUri) {
  m_siblings.addResource("firmware", "");
  expectEarlyRefusal(5, {"Could not obtain URI from the SoftwareIdentityResource (firmware)"});
}

TEST_P(SoftwareIdentityMethods, TakeTheLastResourceOfTheSource) {
  m_siblings.addResource("firmware", "file:///second.rom");
  m_siblings.addResource("other", "file:///third.rom");
  EXPECT_EQ(request().uri, "file:///second.rom");
  EXPECT_THAT(messages(), testing::Contains("URI is: file:///second.rom"));
}

TEST_P(SoftwareIdentityMethods, RefuseASourceWithoutTargetTypes) {
  describeSource({});
  expectEarlyRefusal(5, {"URI is: file:///image.rom",
                         "Source '" + source() + "' does not contain any TargetTypes"});
}

TEST_P(SoftwareIdentityMethods, JoinTheTargetTypesInTheirRecord) {
  describeSource({"IMG_PXE", "IMG_UEFI", "IMG_PXE"});
  invoke();
  EXPECT_THAT(messages(), testing::Contains("TargetTypes are: IMG_PXE+IMG_UEFI+IMG_PXE"));
}

TEST_P(SoftwareIdentityMethods, JoinEmptyTargetTypesToo) {
  describeSource({"", "IMG_UEFI", ""});
  invoke();
  EXPECT_THAT(messages(), testing::Contains("TargetTypes are: +IMG_UEFI+"));
}

TEST_P(SoftwareIdentityMethods, LogTextsWithConversionsAsTheyAre) {
  m_siblings.addResource("%s%n", "file:///%s%d.rom");
  m_source.setText(m_siblings.addSoftwareIdentity({"%s%n", 4, {"%s"}}));
  invoke();
  EXPECT_THAT(messages(),
              testing::IsSupersetOf({"URI is: file:///%s%d.rom", "TargetTypes are: %s"}));
}

TEST_P(SoftwareIdentityMethods, LookAtTheSourceBeforeTheTarget) {
  m_target.setText("Orvex_EthernetPort.DeviceID=\"7\"");
  describeSource({});
  expectEarlyRefusal(5, {"URI is: file:///image.rom",
                         "Source '" + source() + "' does not contain any TargetTypes"});
}

// -- target --

TEST_P(SoftwareIdentityMethods, RefuseATargetThatDoesNotExist) {
  m_target.setText("Orvex_EthernetPort.DeviceID=\"7\"");
  expectEarlyRefusal(
      5, afterSource({lookUp("Firmware Update cannot find instance '" + target() + "'")}));
}

TEST_P(SoftwareIdentityMethods, RefuseATargetOfAnotherClass) {
  for (const std::string& other : {source(), m_siblings.addService()}) {
    m_target.setText(other);
    expectEarlyRefusal(4106,
                       afterSource({"Firmware Update does not support target '" + other + "'"}));
  }
}

TEST_P(SoftwareIdentityMethods, RefuseATargetWithoutAPort) {
  for (const std::string& other : {m_siblings.addController({}), m_siblings.addPort("")}) {
    m_target.setText(other);
    expectEarlyRefusal(5,
                       afterSource({"Firmware Update does not support instance '" + other + "'"}));
  }
}

TEST_P(SoftwareIdentityMethods, TakeTheFirstPortOfAController) {
  m_siblings.addPort("0000:04:00.1");
  m_siblings.addPort("0000:04:00.0");
  m_target.setText(m_siblings.addController({"0000:04:00.0", "0000:04:00.1"}));
  EXPECT_EQ(request().target, "0000:04:00.1");
}

// -- the job class --

TEST_P(SoftwareIdentityMethods, WantAJobClass) {
  m_factory.reset();
  EXPECT_THAT(invokingWithout({}), test::ThrowsExactly<utils::Exception>(test::IsAssertion(
                                       "Orvex_SoftwareInstallationService", "cimclass != NULL")));
}

TEST_P(SoftwareIdentityMethods, AnswerWhatTheJobClassThrowsByAWantOfMemory) {
  const std::vector<std::function<void()>> faults = {
      [] { throw std::bad_alloc(); }, [] { throw std::runtime_error("x"); }, [] { throw 1; }};
  for (const auto& fault : faults) {
    m_factory->fault = fault;
    expectRefusal(4100, afterSource({"Allocation error occured for '" + target() + "'"}));
  }
}

using MethodAnswer = std::tuple<test::IdentityMethodTraits, test::JobAnswer>;

class SoftwareIdentityMethodsAnswer : public test::IdentityMethodFixture,
                                      public testing::WithParamInterface<MethodAnswer> {
 protected:
  SoftwareIdentityMethodsAnswer() : IdentityMethodFixture(std::get<0>(GetParam())) {}
};

TEST_P(SoftwareIdentityMethodsAnswer, IsTranslated) {
  const test::JobAnswer& answer = std::get<1>(GetParam());
  m_factory->result = answer.result;
  const bool givesJob = answer.isSuccess() && m_method.takesOptions;
  const bool givesCharacteristics = answer.isSuccess() && !m_method.takesOptions;

  EXPECT_EQ(invoke(), answer.isSuccess() ? m_method.success : answer.returnValue);

  EXPECT_EQ(m_job, givesJob ? &m_created : nullptr);
  EXPECT_EQ(m_characteristics.isNull(), !givesCharacteristics);
  EXPECT_EQ(messages(), allWithSource(answer.records(m_method.answer, target())));
}

INSTANTIATE_TEST_SUITE_P(Install, SoftwareIdentityMethodsAnswer,
                         testing::Combine(testing::Values(test::kInstallMethod),
                                          testing::ValuesIn(test::allJobAnswers(
                                              test::kInstallMethod.invalidParameter))));

INSTANTIATE_TEST_SUITE_P(
    Check, SoftwareIdentityMethodsAnswer,
    testing::Combine(testing::Values(test::kCheckMethod),
                     testing::ValuesIn(test::allJobAnswers(test::kCheckMethod.invalidParameter))));

}  // namespace
