// Texts in the code page, and the descriptions that they stand in.

#include <gmock/gmock.h>
#include <string>

#include "midapi/AdapterDescription.h"
#include "midapi/Texts.h"
#include "tests/support/Windows/Umlauts.h"

namespace ma {
namespace {

using testing::HasSubstr;

class WindowsMidApiTexts : public testing::Test {
 protected:
  void SetUp() override { test::demandWesternCodePage(); }
};

TEST_F(WindowsMidApiTexts, AreInTheCodePageOfTheSystem) {
  EXPECT_EQ(toShownText(test::kUmlautPath), test::kUmlautText);
  EXPECT_EQ(toShownText(test::kMacronPath), test::kMacronLikeness);
  EXPECT_EQ(fromUtf8(test::kUmlautUtf8), test::kUmlautText);
  EXPECT_EQ(toUtf8(test::kUmlautText), test::kUmlautUtf8);
}

TEST_F(WindowsMidApiTexts, MayBeLongerOrShorterInUtf8) {
  EXPECT_EQ(fromUtf8("\xE2\x82\xAC"), "\x80");
  EXPECT_EQ(toUtf8("\x80"), "\xE2\x82\xAC");
  EXPECT_EQ(fromUtf8("\xF0\x9F\x99\x82"), "??");
}

TEST_F(WindowsMidApiTexts, AreUtf8InDescriptions) {
  AdapterDescription description;
  description.name = test::kUmlautText;
  description.ports.push_back({0, "02:00:00:03:00:00", BootType::None});
  description.capabilityWordFault = InjectedFault{1, test::kUmlautText};
  const std::string text = formatDescription(description);

  EXPECT_THAT(text, HasSubstr(std::string("\"name\": \"") + test::kUmlautUtf8));
  EXPECT_THAT(text, HasSubstr(std::string("\"text\": \"") + test::kUmlautUtf8));
  EXPECT_EQ(parseDescription(text).name, test::kUmlautText);
  EXPECT_EQ(parseDescription(text).capabilityWordFault->text, test::kUmlautText);
}

}  // namespace
}  // namespace ma
