#include <gmock/gmock.h>

#include "client/HostClasses.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Qualifiers = std::vector<cimxml::ClassValue::Qualifier>;

// Returns the value names of a property with these qualifiers.
client::NamedValues valuesOf(const Qualifiers& qualifiers) {
  cimxml::ClassValue declaration;
  declaration.properties.push_back({"State", "uint16", false, "", qualifiers});
  return client::describeClass(declaration).properties.at(0).values;
}

TEST(HostClasses, TakeWhatQualifiersSay) {
  cimxml::ClassValue declaration{
      "Test_Fan",
      "Test_Device",
      {{"association", {"TRUE"}},
       {"ABSTRACT", {"true"}},
       {"Version", {"1.0"}},
       {"Description", {"Moves air."}},
       {"Description", {"Second."}}},
      {{"State",
        "uint16",
        true,
        "",
        {{"Key", {"true"}}, {"Description", {"How it is."}}, {"Units", {"Percent"}}}},
       {"Peer", "reference", false, "Test_Fan", {}}},
      {{"Try",
        "uint32",
        {{"Values", {"Done"}}, {"ValueMap", {"0"}}},
        {{"Result", "string", false, "", {{"In", {"false"}}, {"Out", {"true"}}}}}}}};
  const client::ClassDescription fan = client::describeClass(declaration);
  EXPECT_TRUE(fan.isAssociation && fan.isAbstract);
  EXPECT_EQ(fan.superclass, "Test_Device");
  EXPECT_EQ(fan.version, "1.0");
  EXPECT_EQ(fan.description, "Moves air.");
  EXPECT_THAT(
      fan.properties,
      ElementsAre(
          client::ElementDescription{"State", "uint16[]", true, false, "How it is.", "Percent", {}},
          client::ElementDescription{"Peer", "Test_Fan REF", false, false, "", "", {}}));
  EXPECT_THAT(fan.methods.at(0).returns, ElementsAre(Pair("0", "Done")));
  EXPECT_TRUE(fan.methods.at(0).parameters.at(0).isOutput);
}

TEST(HostClasses, NameNumbersFromZeroWithoutAMap) {
  EXPECT_THAT(valuesOf({{"Values", {"Off", "On"}}}),
              ElementsAre(Pair("0", "Off"), Pair("1", "On")));
}

TEST(HostClasses, NameNoMoreValuesThanBothArraysHave) {
  EXPECT_THAT(valuesOf({{"ValueMap", {"4"}}, {"Values", {"On", "Off"}}}),
              ElementsAre(Pair("4", "On")));
  EXPECT_THAT(valuesOf({{"ValueMap", {"4", "5"}}, {"Values", {}}}), IsEmpty());
  EXPECT_THAT(valuesOf({{"ValueMap", {"4", "5"}}}), IsEmpty());
  EXPECT_THAT(valuesOf({{"ValueMap", {std::nullopt}}, {"Values", {std::nullopt}}}),
              ElementsAre(Pair("", "")));
}

}  // namespace
