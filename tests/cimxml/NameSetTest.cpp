#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "cimxml/NameSet.h"

namespace {

TEST(NameSet, HasWhatItWasGivenInAnyCase) {
  const cimxml::NameSet names({"Slot", "name", "NAME", "_x", "Slot"});
  for (const char* name : {"Slot", "SLOT", "Name", "name", "_X"}) {
    EXPECT_TRUE(names.has(name)) << name;
  }
  for (const char* name : {"", "Slo", "Slots", "x"}) {
    EXPECT_FALSE(names.has(name)) << name;
  }
}

TEST(NameSet, HasNothingWhenItIsEmpty) {
  EXPECT_FALSE(cimxml::NameSet({}).has("Name"));
  EXPECT_FALSE(cimxml::NameSet({}).has(""));
}

TEST(NameSet, TakesVeryManyNames) {
  std::vector<std::string> names;
  for (int i = 0; i < 50'000; ++i) {
    names.push_back("N" + std::to_string(i));
  }
  const cimxml::NameSet set(names);
  for (const std::string& name : names) {
    ASSERT_TRUE(set.has(name)) << name;
  }
  EXPECT_FALSE(set.has("N50000"));
}

}  // namespace
