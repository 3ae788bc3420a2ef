#include <gmock/gmock.h>
#include <memory>

#include "core/CimClasses.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace {

using test::IsRecordOf;
using test::LogLevel;
using test::Provider;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(CimClasses, RegistersAProviderUnderItsOwnName) {
  core::CimClasses classes;
  auto* provider = new Provider("Test_Fan");
  classes.add(provider);

  EXPECT_TRUE(classes.contains("Test_Fan"));
  EXPECT_EQ(classes.get("Test_Fan"), provider);
}

TEST(CimClasses, LogsTheNameOfAProviderThatIsAdded) {
  core::CimClasses classes;
  const test::LogCapture log;
  classes.add(new Provider("Test_Fan"));

  EXPECT_THAT(log.records(),
              ElementsAre(IsRecordOf("CimClasses", LogLevel::Debug, "core::CimClasses::add",
                                     "Adding new class: Test_Fan")));
}

TEST(CimClasses, RefusesNull) {
  core::CimClasses classes;

  EXPECT_THAT(
      [&] { classes.add(nullptr); },
      test::ThrowsExactly<utils::Exception>(test::IsAssertion("CimClasses", "cimClass != NULL")));
  EXPECT_THAT(classes.values(), IsEmpty());
}

TEST(CimClasses, DeletesItsProvidersInTheOrderOfTheirNames) {
  std::vector<std::string> deaths;
  {
    core::CimClasses classes;
    classes.add(new Provider("b", deaths));
    classes.add(new Provider("a", deaths));
    classes.add(new Provider("B", deaths));
  }

  EXPECT_THAT(deaths, ElementsAre("B", "a", "b"));
}

TEST(CimClasses, ForgetsAProviderWhoseNameIsTakenByALaterOne) {
  std::vector<std::string> deaths;
  const auto earlier = std::make_unique<Provider>("Test_Fan", deaths);
  const test::LogCapture log;
  {
    core::CimClasses classes;
    auto* later = new Provider("Test_Fan", deaths);
    classes.add(earlier.get());
    classes.add(later);
    EXPECT_EQ(classes.get("Test_Fan"), later);
  }

  EXPECT_THAT(deaths, ElementsAre("Test_Fan"));
  EXPECT_THAT(log.messages("core::CimClasses::add"),
              ElementsAre("Adding new class: Test_Fan", "Adding new class: Test_Fan"));
}

TEST(CimClasses, DeletesNothingForANameThatWasOnlyFetched) {
  core::CimClasses classes;

  EXPECT_EQ(classes.get("Test_Fan"), nullptr);
  EXPECT_THAT(classes.values(), ElementsAre(nullptr));
}

}  // namespace
