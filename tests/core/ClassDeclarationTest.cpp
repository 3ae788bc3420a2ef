#include <gmock/gmock.h>
#include <set>
#include <string>

#include "core/ClassDeclaration.h"

namespace {

TEST(ClassDeclaration, FindsItsPartsWhateverTheCase) {
  core::ClassDeclaration fan;
  fan.properties = {{"Name", core::kCimString, true, "", "CIM_Fan"},
                    {"Speed", core::kCimUint64, false, "", "CIM_Fan"}};
  fan.methods = {{"SetSpeed", core::kCimUint32, {}, "CIM_Fan"}};

  EXPECT_EQ(fan.findProperty("Speed"), &fan.properties[1]);
  EXPECT_EQ(fan.findProperty("NAME"), &fan.properties[0]);
  EXPECT_EQ(fan.findProperty("Nam"), nullptr);
  EXPECT_EQ(fan.findMethod("setspeed"), &fan.methods[0]);
  EXPECT_EQ(fan.findMethod("Name"), nullptr);
}

TEST(Names, AreTheSameWhateverTheCaseOfTheirAsciiLetters) {
  EXPECT_TRUE(core::isSameName("CIM_Fan1", "cim_fAN1"));
  EXPECT_TRUE(core::isSameName("", ""));
  EXPECT_FALSE(core::isSameName("CIM_Fan", "CIM_Fans"));
  EXPECT_FALSE(core::isSameName("CIM@Fan", "CIM`Fan"));
  EXPECT_FALSE(core::isSameName("\xC4", "\xE4"));
}

TEST(Names, AreOrderedWithoutRegardToCase) {
  const std::set<std::string, core::NameLess> names{"b", "C", "A", "a"};
  EXPECT_THAT(names, testing::ElementsAre("A", "b", "C"));
  EXPECT_TRUE(names.contains("c"));
}

TEST(Types, HaveTheNamesOfTheirElements) {
  EXPECT_EQ(core::getTypeName(core::kCimUint8), "uint8");
  EXPECT_EQ(core::getTypeName(core::kCimSint8), "sint8");
  EXPECT_EQ(core::getTypeName(core::kCimUint16), "uint16");
  EXPECT_EQ(core::getTypeName(core::kCimUint16Array), "uint16");
  EXPECT_EQ(core::getTypeName(core::kCimUint32), "uint32");
  EXPECT_EQ(core::getTypeName(core::kCimUint64), "uint64");
  EXPECT_EQ(core::getTypeName(core::kCimString), "string");
  EXPECT_EQ(core::getTypeName(core::kCimStringArray), "string");
  EXPECT_EQ(core::getTypeName(core::kCimBoolean), "boolean");
  EXPECT_EQ(core::getTypeName(core::kCimDatetime), "datetime");
  EXPECT_EQ(core::getTypeName(core::kCimReference), "reference");
}

TEST(Types, AreArraysWhereTheirCodeIsOdd) {
  EXPECT_TRUE(core::isArray(core::kCimUint16Array));
  EXPECT_TRUE(core::isArray(core::kCimStringArray));
  EXPECT_FALSE(core::isArray(core::kCimUint16));
  EXPECT_FALSE(core::isArray(core::kCimReference));
}

}  // namespace
