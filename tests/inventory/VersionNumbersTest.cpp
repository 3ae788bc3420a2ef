#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>

#include "inventory/VersionNumbers.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Software : public CIM_SoftwareIdentity {
 public:
  [[nodiscard]] std::string getClassName() const override { return "Test_Software"; }
};

// Returns the properties that are filled: "MajorVersion=1".
std::vector<std::string> filledBy(const std::string& text) {
  Software software;
  inventory::setVersionNumbers(software, text);
  std::vector<std::string> filled;
  for (const char* name : {"MajorVersion", "MinorVersion", "RevisionNumber", "BuildNumber",
                           "LargeBuildNumber", "IsLargeBuildNumber"}) {
    const core::CimProperty& property = *software.getProperty(name);
    if (!property.isNull()) {
      filled.push_back(name + ("=" + property.toString()));
    }
  }
  return filled;
}

TEST(VersionNumbers, AreThoseBetweenTheDots) {
  EXPECT_THAT(filledBy("3"), ElementsAre("MajorVersion=3"));
  EXPECT_THAT(filledBy("3.0"), ElementsAre("MajorVersion=3", "MinorVersion=0"));
  EXPECT_THAT(filledBy("1.22.65535"),
              ElementsAre("MajorVersion=1", "MinorVersion=22", "RevisionNumber=65535"));
  EXPECT_THAT(filledBy("1.2.3.4"),
              ElementsAre("MajorVersion=1", "MinorVersion=2", "RevisionNumber=3", "BuildNumber=4",
                          "IsLargeBuildNumber=0"));
}

TEST(VersionNumbers, HaveAPlaceForALargeBuildNumber) {
  EXPECT_THAT(filledBy("1.2.3.65536"),
              ElementsAre("MajorVersion=1", "MinorVersion=2", "RevisionNumber=3",
                          "LargeBuildNumber=65536", "IsLargeBuildNumber=1"));
}

TEST(VersionNumbers, AreNoneWhereTheTextIsAnythingElse) {
  for (const char* text : {"", "v1.2", "1.2-rc1", "1.2+3.4", "1..2", "1.", ".1", " 1", "-1", "0x1",
                           "1.2.3.4.5", "65536.1", "1.2.3.18446744073709551616"}) {
    EXPECT_THAT(filledBy(text), IsEmpty()) << text;
  }
}

}  // namespace
