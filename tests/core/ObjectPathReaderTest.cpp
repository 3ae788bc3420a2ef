#include <gmock/gmock.h>

#include "core/ObjectPathReader.h"

namespace core {

static bool operator==(const ObjectPathKey& left, const ObjectPathKey& right) {
  return left.name == right.name && left.value == right.value;
}

}  // namespace core

namespace {

using core::ObjectPathKey;
using core::ObjectPathKind;
using core::ObjectPathParts;
using testing::ElementsAre;
using testing::IsEmpty;

ObjectPathParts read(std::string_view text, ObjectPathKind kind = ObjectPathKind::Instance) {
  ObjectPathParts parts;
  EXPECT_FALSE(core::readObjectPath(text, kind, parts)) << text;
  return parts;
}

std::string problemOf(std::string_view text, ObjectPathKind kind = ObjectPathKind::Instance) {
  ObjectPathParts parts;
  const auto problem = core::readObjectPath(text, kind, parts);
  return problem ? problem->describe() : "none";
}

TEST(ObjectPathReader, SplitsAPathIntoItsParts) {
  const ObjectPathParts parts = read(R"(root/x:CIM_Fan.Name="a",_n0=7)");
  EXPECT_EQ(parts.nameSpace, "root/x");
  EXPECT_EQ(parts.modelPath, R"(CIM_Fan.Name="a",_n0=7)");
  EXPECT_EQ(parts.className, "CIM_Fan");
  EXPECT_TRUE(parts.isInstance);
  EXPECT_THAT(parts.keys, ElementsAre(ObjectPathKey{"Name", R"("a")"}, ObjectPathKey{"_n0", "7"}));
}

TEST(ObjectPathReader, TellsAnEmptyNamespaceFromNone) {
  EXPECT_EQ(read("C.K=1").nameSpace, std::nullopt);
  EXPECT_EQ(read(":C.K=1").nameSpace, "");
}

TEST(ObjectPathReader, KeepsTheOrderAndTheCaseOfKeys) {
  EXPECT_THAT(
      read("C.b=1,a=2,B=3").keys,
      ElementsAre(ObjectPathKey{"b", "1"}, ObjectPathKey{"a", "2"}, ObjectPathKey{"B", "3"}));
}

TEST(ObjectPathReader, DoesNotSplitInsideQuotes) {
  EXPECT_THAT(read(R"(C.K="a:b.c,d=e\"",L="")").keys,
              ElementsAre(ObjectPathKey{"K", R"("a:b.c,d=e\"")"}, ObjectPathKey{"L", R"("")"}));
}

TEST(ObjectPathReader, ReadsTheNameOfAClassWhereItMay) {
  for (const char* text : {"CIM_Fan", "root/x:CIM_Fan"}) {
    const ObjectPathParts parts = read(text, ObjectPathKind::InstanceOrClass);
    EXPECT_EQ(parts.className, "CIM_Fan");
    EXPECT_FALSE(parts.isInstance);
    EXPECT_THAT(parts.keys, IsEmpty());
    EXPECT_NE(problemOf(text), "none") << text;
  }
  EXPECT_TRUE(read("C.K=1", ObjectPathKind::InstanceOrClass).isInstance);
}

// What the two kinds say alike; tests/core/CimPathTest.cpp has every problem of an instance's path.
TEST(ObjectPathReader, TellsTheFirstProblemAndItsOffender) {
  for (const ObjectPathKind kind : {ObjectPathKind::Instance, ObjectPathKind::InstanceOrClass}) {
    EXPECT_EQ(problemOf("", kind), "empty path");
    EXPECT_EQ(problemOf("a:b:C.K=1", kind), "model path not found: 'a:b:C.K=1'");
    EXPECT_EQ(problemOf("n:C.K=1.5", kind), "too many classname separators: 'n:C.K=1.5'");
    EXPECT_EQ(problemOf("n:.K=1", kind), "empty class name: 'n:.K=1'");
    EXPECT_EQ(problemOf("C D.K=1", kind), "invalid class name: 'C D.K=1'");
    EXPECT_EQ(problemOf("n:C.", kind), "no properties: 'n:C.'");
    EXPECT_EQ(problemOf("C.K=1,L", kind), "only one '=' allowed: 'L'");
    EXPECT_EQ(problemOf("C.9K=1", kind), "invalid property name: '9K=1'");
    EXPECT_EQ(problemOf("C.K=", kind), "property value empty: 'K='");
    EXPECT_EQ(problemOf("C.K=1,K=2,9", kind), "property already exists: 'K=2'");
  }
}

TEST(ObjectPathReader, SaysDifferentThingsOfATextWithoutKeys) {
  EXPECT_EQ(problemOf("n:"), "too many classname separators: 'n:'");
  EXPECT_EQ(problemOf("1C"), "too many classname separators: '1C'");
  EXPECT_EQ(problemOf("n:", ObjectPathKind::InstanceOrClass),
            "too many classname separators: 'n:'");
  EXPECT_EQ(problemOf("1C", ObjectPathKind::InstanceOrClass), "invalid class name: '1C'");
}

TEST(ObjectPathReader, HasReadTheNamespaceOfATextThatItRefuses) {
  ObjectPathParts parts;
  ASSERT_TRUE(core::readObjectPath("root/x:C.", ObjectPathKind::Instance, parts));
  EXPECT_EQ(parts.nameSpace, "root/x");
  ASSERT_TRUE(core::readObjectPath("a:b:C.", ObjectPathKind::Instance, parts));
  EXPECT_EQ(parts.nameSpace, std::nullopt);
}

TEST(ObjectPathReader, IsDoneSoonWithVeryManyKeys) {
  std::string text = "C.K0=0";
  std::size_t count = 1;
  for (; text.size() < 1024U * 1024U; ++count) {
    text += ",K" + std::to_string(count) + "=0";
  }
  EXPECT_EQ(read(text).keys.size(), count);
  EXPECT_EQ(problemOf(text + ",K0=1"), "property already exists: 'K0=1'");
}

}  // namespace
