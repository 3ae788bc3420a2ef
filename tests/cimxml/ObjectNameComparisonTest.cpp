#include <algorithm>
#include <gmock/gmock.h>

#include "cimxml/ObjectNameComparison.h"

namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;
using cimxml::parseObjectPath;
using Kind = cimxml::KeyBinding::Kind;

// Asked both ways round: a rule holds whichever name comes first.
bool areSame(const ObjectName& left, const ObjectName& right) {
  const bool areSame = cimxml::isSameObject(left, right);
  EXPECT_EQ(cimxml::isSameObject(right, left), areSame);
  return areSame;
}

bool areSame(const std::string& left, const std::string& right) {
  return areSame(parseObjectPath(left), parseObjectPath(right));
}

ObjectName instance(std::vector<KeyBinding> keys) {
  return {"", "", "C", true, std::move(keys)};
}

TEST(ObjectNameComparison, LeavesHostsAndNamespacesAside) {
  EXPECT_TRUE(areSame("root/x:C.K=1", "root/y:C.K=1"));
  ObjectName hosted = parseObjectPath("C.K=1");
  hosted.host = "server1";
  EXPECT_TRUE(areSame(hosted, parseObjectPath("root/x:C.K=1")));
}

TEST(ObjectNameComparison, TakesNamesWithoutRegardToCase) {
  EXPECT_TRUE(areSame("CIM_Job.InstanceID=\"a\"", "cim_JOB.instanceid=\"a\""));
  EXPECT_FALSE(areSame("CIM_Job.InstanceID=\"a\"", "CIM_Jobs.InstanceID=\"a\""));
  EXPECT_FALSE(areSame("C.K=1", "C.L=1"));
}

TEST(ObjectNameComparison, TakesValuesWithTheirCase) {
  EXPECT_FALSE(areSame("C.K=\"a\"", "C.K=\"A\""));
  EXPECT_FALSE(areSame("C.K=0x1f", "C.K=0x1F"));
  EXPECT_FALSE(areSame("C.K=1", "C.K=01"));
}

TEST(ObjectNameComparison, TakesBooleansWithoutTheirs) {
  EXPECT_TRUE(areSame("C.K=TRUE", "C.K=true"));
  EXPECT_TRUE(areSame("C.K=\"true\"", "C.K=TRUE"));
  EXPECT_FALSE(areSame("C.K=TRUE", "C.K=FALSE"));
  EXPECT_FALSE(areSame("C.K=\"TRUE\"", "C.K=\"true\""));
}

TEST(ObjectNameComparison, DoesNotTellANumberFromItsText) {
  EXPECT_TRUE(areSame("C.K=7", "C.K=\"7\""));
}

TEST(ObjectNameComparison, PassesOverTheOrderOfKeys) {
  EXPECT_TRUE(areSame("C.A=1,b=2,C=3", "C.c=3,a=1,B=2"));
  EXPECT_FALSE(areSame("C.A=1,B=2", "C.A=2,B=1"));
  EXPECT_FALSE(areSame("C.A=1,B=2", "C.A=1"));
}

TEST(ObjectNameComparison, LetsAnOnlyKeyStandWithoutItsName) {
  const ObjectName lone = instance({{"", Kind::String, "a", {}}});
  EXPECT_TRUE(areSame(lone, parseObjectPath("C.K=\"a\"")));
  EXPECT_TRUE(areSame(lone, lone));
  EXPECT_FALSE(areSame(lone, parseObjectPath("C.K=\"b\"")));
  EXPECT_FALSE(areSame(instance({{"", Kind::Numeric, "1", {}}, {"L", Kind::Numeric, "2", {}}}),
                       parseObjectPath("C.K=1,L=2")));
}

TEST(ObjectNameComparison, FollowsReferences) {
  EXPECT_TRUE(areSame(R"(C.R="root/x:D.K=\"a\",L=1")", R"(C.r="d.l=1,k=\"a\"")"));
  EXPECT_FALSE(areSame(R"(C.R="D.K=\"a\"")", R"(C.R="D.K=\"A\"")"));
}

TEST(ObjectNameComparison, TakesATextBesideAReferenceForWhatItReadsAs) {
  const ObjectName reference = parseObjectPath(R"(C.R="D.K=\"a\"")");
  ASSERT_EQ(reference.keys.front().kind, Kind::Reference);
  EXPECT_TRUE(areSame(reference, instance({{"R", Kind::String, "root/x:d.k=\"a\"", {}}})));
  EXPECT_FALSE(areSame(reference, instance({{"R", Kind::String, "D.K=\"b\"", {}}})));
  EXPECT_FALSE(areSame(reference, instance({{"R", Kind::String, "nonsense.", {}}})));
  EXPECT_TRUE(areSame(instance({{"R", Kind::Reference, "", {{"", "", "D", false, {}}}}}),
                      parseObjectPath("C.R=\"D\"")));
}

TEST(ObjectNameComparison, TakesTwoTextsForTexts) {
  EXPECT_FALSE(areSame(instance({{"R", Kind::String, "D.K=1", {}}}),
                       instance({{"R", Kind::String, "d.k=1", {}}})));
}

TEST(ObjectNameComparison, NeverTakesAReferenceToNothingForAnything) {
  const ObjectName nothing = instance({{"R", Kind::Reference, "", {}}});
  EXPECT_FALSE(areSame(nothing, nothing));
  EXPECT_FALSE(areSame(nothing, instance({{"R", Kind::String, "", {}}})));
}

TEST(ObjectNameComparison, TellsAClassFromAnInstanceWithoutKeys) {
  EXPECT_TRUE(areSame("C", "c"));
  EXPECT_FALSE(areSame(parseObjectPath("C"), instance({})));
}

TEST(ObjectNameComparison, IsDoneSoonWithVeryManyKeys) {
  constexpr int kKeys = 100'000;
  ObjectName name = instance({});
  for (int i = 0; i < kKeys; ++i) {
    name.keys.push_back({"K" + std::to_string(i), Kind::Numeric, "1", {}});
  }
  ObjectName reversed = name;
  std::reverse(reversed.keys.begin(), reversed.keys.end());
  EXPECT_TRUE(areSame(name, reversed));
  reversed.keys.front().text = "2";
  EXPECT_FALSE(areSame(name, reversed));
}

}  // namespace
