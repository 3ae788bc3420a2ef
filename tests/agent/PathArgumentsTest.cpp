#include <gmock/gmock.h>

#include "Utils/Exception.h"
#include "agent/PathArguments.h"
#include "tests/agent/IdentityMethodFixture.h"

namespace {

using test::IdentityMethodTraits;
using testing::ElementsAre;

TEST(PathArguments, AreObjectPathsOrFaults) {
  core::CimPropertyRef path("Source", nullptr);
  path.setText("Test_Class.Key=\"value\"");
  core::CimPropertyRef text("Target", nullptr);
  text.setText("malformed");
  const agent::PathArgument argument(path);
  EXPECT_EQ(argument.text, "Test_Class.Key=\"value\"");
  EXPECT_EQ(argument.path.getClassName(), "Test_Class");
  EXPECT_THROW(const agent::PathArgument wrong(text), utils::ESyntaxError);
}

class PathArgumentsOf : public test::IdentityMethodFixture,
                        public testing::WithParamInterface<IdentityMethodTraits> {
 protected:
  PathArgumentsOf() : IdentityMethodFixture(GetParam()) {}

  void expectFaultOfTheArguments() {
    EXPECT_THROW(invoke(), utils::ESyntaxError);
    EXPECT_THAT(messages(),
                ElementsAre("All arguments are defined", "Target:0, Source:0, Collection:1"));
  }
};

INSTANTIATE_TEST_SUITE_P(Methods, PathArgumentsOf,
                         testing::Values(test::kInstallMethod, test::kCheckMethod),
                         [](const auto& method) { return method.param.name; });

TEST_P(PathArgumentsOf, AreReadBeforeAnythingIsLookedUp) {
  m_target.setText("malformed");
  expectFaultOfTheArguments();
  m_options.setValue({5, 4});
  m_characteristics.setValue({2});
  expectFaultOfTheArguments();
}

TEST_P(PathArgumentsOf, AreTheSourceToo) {
  m_source.setText("malformed");
  expectFaultOfTheArguments();
}

}  // namespace
