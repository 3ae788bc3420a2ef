#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>

#include "agent/InstallSteps.h"
#include "core/CimBroker.h"
#include "tests/agent/FakeSiblings.h"
#include "tests/support/Throws.h"

namespace {

using test::ThrowsExactly;

using Options = std::vector<std::uint16_t>;

TEST(InstallArguments, AreMissingWithoutAListAndWhereTheyHaveAnotherType) {
  core::CimPropertyString text("Number", nullptr);
  core::CimPropertyList list;
  list.add(&text);
  for (core::CimPropertyList* given : {static_cast<core::CimPropertyList*>(nullptr), &list}) {
    EXPECT_THAT([given] { agent::Arguments(given).expect<core::CimPropertyUint16>("Number"); },
                ThrowsExactly<utils::EUnspecifiedError>(
                    "Quorvel: EUnspecifiedError:Expected Number argument"));
  }
  EXPECT_EQ(&agent::Arguments(&list).expect<core::CimPropertyString>("Number"), &text);
}

TEST(InstallArguments, WantTheFirstOfTheirValues) {
  core::CimPropertyString filled("First", nullptr);
  core::CimPropertyString second("Second", nullptr);
  core::CimPropertyString third("Third", nullptr);
  filled.setValue("");
  agent::expectValues({&filled});
  EXPECT_THAT(
      [&] {
        agent::expectValues({&filled, &second, &third});
      },
      ThrowsExactly<utils::EUnspecifiedError>(
          "Quorvel: EUnspecifiedError:Second argument is set to NULL. It is not allowed"));
}

class FindTargetPort : public testing::Test {
 protected:
  static std::optional<std::string> find(const std::string& path) {
    return agent::findTargetPort(*core::GetCimBroker().getInstanceByPath(core::CimPath(path)));
  }

  test::FakeSiblings m_siblings;
};

TEST_F(FindTargetPort, IsThePortOrTheFirstOfAController) {
  const std::string port = m_siblings.addPort("0000:03:00.1");
  m_siblings.addPort("0000:03:00.0");
  EXPECT_EQ(find(port), "0000:03:00.1");
  EXPECT_EQ(find(m_siblings.addController({"0000:03:00.0", "0000:03:00.1"})), "0000:03:00.1");
  EXPECT_EQ(find(m_siblings.addController({"0000:04:00.0"})), "");
}

TEST_F(FindTargetPort, GoesByTheExactNameOfTheClass) {
  m_siblings.addPort("0000:03:00.0");
  for (const char* name : {"Orvex_ethernetport", "ORVEX_ETHERNETPORT", "Orvex_EthernetPort2"}) {
    EXPECT_EQ(find(m_siblings.addPort("0000:03:00.1", name)), std::nullopt) << name;
  }
  for (const char* name : {"orvex_PortController", "Orvex_PortControlle"}) {
    EXPECT_EQ(find(m_siblings.addController({"0000:03:00.0"}, name)), std::nullopt) << name;
  }
}

TEST_F(FindTargetPort, IsNothingForAnotherClass) {
  EXPECT_EQ(find(m_siblings.addSoftwareIdentity()), std::nullopt);
}

TEST(FindResourceUri, TakesTheLastOfAFile) {
  test::FakeSiblings siblings;
  siblings.addResource("a", "file:///1");
  siblings.addResource("b", "file:///2");
  siblings.addResource("a", "file:///3");
  EXPECT_EQ(agent::findResourceUri("a"), "file:///3");
  EXPECT_EQ(agent::findResourceUri("A"), "");
}

TEST(InstallJoin, PutsTheSeparatorBetween) {
  EXPECT_EQ(agent::join({}, '+'), "");
  EXPECT_EQ(agent::join({"a"}, '+'), "a");
  EXPECT_EQ(agent::join({"", "a", ""}, '+'), "+a+");
}

TEST(AreOptionsSupported, NeedsTheUpdateOption) {
  EXPECT_TRUE(agent::areOptionsSupported({5}));
  EXPECT_TRUE(agent::areOptionsSupported({3, 5}));
  EXPECT_FALSE(agent::areOptionsSupported({3}));
  EXPECT_FALSE(agent::areOptionsSupported({}));
}

TEST(AreOptionsSupported, RefusesWhatTheServiceCannotDo) {
  for (const std::uint16_t option : Options{2, 4, 6, 7, 8, 9, 10, 11, 12}) {
    EXPECT_FALSE(agent::areOptionsSupported(Options{5, option})) << option;
    EXPECT_FALSE(agent::areOptionsSupported(Options{option, 3, 5})) << option;
  }
}

TEST(AreOptionsSupported, LetsOtherValuesPass) {
  for (const std::uint16_t option : Options{0, 1, 3, 13, 14, 32767, 32768, 65535}) {
    EXPECT_TRUE(agent::areOptionsSupported(Options{5, option})) << option;
  }
}

}  // namespace
