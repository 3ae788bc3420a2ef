#include <gmock/gmock.h>
#include <memory>

#include "core/CimClasses.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

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

// A provider whose name is another one each time.
class FickleProvider : public Provider {
 public:
  FickleProvider() : Provider("Test_Fan") {}

  [[nodiscard]] std::string getName() const override { return "Test_" + std::to_string(++m_asked); }

 private:
  mutable int m_asked = 0;
};

TEST(CimClasses, AsksAProviderForTheNameOfItsRecordAndThenForThatOfItsEntry) {
  core::CimClasses classes;
  const test::LogCapture log;
  classes.add(new FickleProvider);
  EXPECT_THAT(log.messages("core::CimClasses::add"), ElementsAre("Adding new class: Test_1"));
  EXPECT_TRUE(classes.contains("Test_2"));
}

TEST(CimClasses, HasNoVirtualOperationButItsDestructor) {
  struct Extended : core::CimClasses {
    virtual void extend() {}
  };
  EXPECT_EQ(test::slotOf(&Extended::extend), 2U);
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
