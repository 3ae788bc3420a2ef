// What CheckSoftwareIdentity does alike is in SoftwareIdentityMethodsTest.cpp.

#include "tests/agent/IdentityMethodFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InstallFromSoftwareIdentity : public test::IdentityMethodFixture {
 protected:
  InstallFromSoftwareIdentity() : IdentityMethodFixture(test::kInstallMethod) {}

  void expectOptionsRefused(const std::vector<std::uint16_t>& options) {
    m_options.setValue(options);
    expectEarlyRefusal(5, {"One of value of InstallOptions value is not supported"});
  }
};

TEST_F(InstallFromSoftwareIdentity, HandsOutTheJob) {
  EXPECT_EQ(invoke(), 4096u);
  EXPECT_EQ(m_job, &m_created);
  EXPECT_EQ(messages(), allWithSource({"Creation of new job returns: 0"}));
}

TEST_F(InstallFromSoftwareIdentity, AsksForAJobWithTheOptions) {
  const test::FakeJobFactory::Request asked = request();
  EXPECT_EQ(asked.target, "0000:03:00.0");
  EXPECT_EQ(asked.uri, "file:///image.rom");
  EXPECT_THAT(asked.installOptions, ElementsAre(3, 5));
  EXPECT_THAT(asked.installOptionsValues, ElementsAre("", "x"));
  EXPECT_TRUE(asked.create);
}

TEST_F(InstallFromSoftwareIdentity, WantsArgumentsWithoutLists) {
  EXPECT_THAT([this] { m_service.InstallFromSoftwareIdentity(nullptr, nullptr, nullptr); },
              throwsFault("Expected InstallOptions argument"));
}

TEST_F(InstallFromSoftwareIdentity, TakesOptionsOfAnotherTypeForMissing) {
  for (const char* name : {"InstallOptions", "InstallOptionsValues"}) {
    core::CimPropertyString text(name, nullptr);
    text.setValue("5");
    EXPECT_THAT(invokingWith(text), throwsFault("Expected " + std::string(name) + " argument"));
  }
}

TEST_F(InstallFromSoftwareIdentity, RefusesNullOptionsBeforeANullSource) {
  m_options.setNull();
  m_source.setNull();
  expectFault("InstallOptions argument is set to NULL. It is not allowed",
              "Target:0, Source:1, Collection:1");
}

TEST_F(InstallFromSoftwareIdentity, AcceptsNullValuesAndPassesWhatTheyHold) {
  m_values.setNull();
  EXPECT_EQ(invoke(), 4096u);
  ASSERT_EQ(m_factory->requests.size(), 1u);
  EXPECT_THAT(m_factory->requests[0].installOptionsValues, ElementsAre("", "x"));
}

TEST_F(InstallFromSoftwareIdentity, RefusesOptionsWithoutUpdate) {
  expectOptionsRefused({});
  expectOptionsRefused({3});
  expectOptionsRefused({0, 1, 13});
}

TEST_F(InstallFromSoftwareIdentity, RefusesOptionsThatItCannotHonour) {
  for (const std::uint16_t option :
       std::vector<std::uint16_t>{2, 4, 6, 7, 8, 9, 10, 11, 12, 32768}) {
    expectOptionsRefused({5, option});
    expectOptionsRefused({option, 3, 5});
  }
}

TEST_F(InstallFromSoftwareIdentity, LetsOtherOptionsPass) {
  m_options.setValue({0, 1, 5, 13, 32767, 32769, 65535});
  EXPECT_EQ(invoke(), 4096u);
}

TEST_F(InstallFromSoftwareIdentity, LooksAtTheOptionsBeforeTheSource) {
  m_source.setText("Orvex_SoftwareIdentity.InstanceID=\"nowhere\"");
  expectOptionsRefused({3});
}

TEST_F(InstallFromSoftwareIdentity, LeavesTheOutputArgumentsAlone) {
  core::CimPropertyList in;
  for (core::CimProperty* argument : std::initializer_list<core::CimProperty*>{
           &m_options, &m_values, &m_source, &m_target, &m_collection}) {
    in.add(argument);
  }
  core::CimPropertyList out;
  out.add(&m_characteristics);
  EXPECT_EQ(m_service.InstallFromSoftwareIdentity(&in, &out, &m_job), 4096u);
  EXPECT_EQ(out.size(), 1u);
  EXPECT_TRUE(m_characteristics.isNull());
  EXPECT_THAT(m_characteristics.getValue(), IsEmpty());
}

}  // namespace
