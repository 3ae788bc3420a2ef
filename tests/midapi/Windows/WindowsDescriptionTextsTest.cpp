// Texts in the code page, in descriptions that are UTF-8.

#include <gmock/gmock.h>
#include <string>

#include "midapi/Virtual/AdapterDescription.h"
#include "tests/support/Windows/Umlauts.h"

namespace {

using ma::AdapterDescription;
using ma::BootType;
using ma::formatDescription;
using ma::InjectedFault;
using ma::parseDescription;
using testing::HasSubstr;

class WindowsDescriptionTexts : public testing::Test {
 protected:
  void SetUp() override { test::demandWesternCodePage(); }
};

TEST_F(WindowsDescriptionTexts, AreUtf8InDescriptions) {
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
