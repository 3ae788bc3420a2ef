#include <gmock/gmock.h>
#include <string>

#include "agent/JobErrors.h"
#include "tests/support/LogCapture.h"

namespace {

template <class Error>
void expectErrorNamed(const std::string& name) {
  const test::LogCapture log;
  try {
    throw Error("the text");
  } catch (const utils::Exception& error) {
    EXPECT_EQ(std::string(error.what()), "Quorvel: " + name + ":the text");
  }
  EXPECT_THAT(log.records(), testing::ElementsAre(test::IsRecordOf(
                                 "Exception", test::LogLevel::Error, "utils::Exception::Exception",
                                 name + ":the text")));
}

TEST(JobErrors, BeginWithTheirNamesAndAreExceptionsOfTheSystem) {
  expectErrorNamed<ETargetInUse>("ETargetInUse");
  expectErrorNamed<EJobIsRunning>("EJobIsRunning");
  expectErrorNamed<EInvalidUri>("EInvalidUri");
  expectErrorNamed<EUriDoesNotExist>("EUriDoesNotExist");
  expectErrorNamed<EImageReadError>("EImageReadError");
  expectErrorNamed<EAdapterNotSupported>("EAdapterNotSupported");
  expectErrorNamed<EDowngradeDetected>("EDowngradeDetected");
  expectErrorNamed<ENotApplicableForTarget>("ENotApplicableForTarget");
}

}  // namespace
