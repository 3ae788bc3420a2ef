#include <cstdint>
#include <gmock/gmock.h>
#include <string>
#include <utility>
#include <vector>

#include "Utils/Exception.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "core/DeclareClass.h"
#include "tests/support/Throws.h"

namespace {

using core::CimSchema;
using core::ClassDeclaration;
using core::MethodDeclaration;
using core::PropertyDeclaration;
using testing::ElementsAre;
using testing::IsEmpty;

// Classes as a module has them: Test_Device makes the inherited Name a key and declares Caption
// anew; Test_Fan cannot be built without its arguments.

class Test_Element : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "Test_Element";
  using Superclass = core::CimInstance;

  static std::vector<MethodDeclaration> getMethods() {
    return {{"Reset", core::kCimUint32, {}, kClassName},
            {"Check", core::kCimUint32, {}, kClassName}};
  }

  core::CimPropertyString Name{"Name", this};
  core::CimPropertyString Caption{"Caption", this};
  core::CimPropertyUint16_arr Status{"Status", this};
};

class Test_Device : public Test_Element {
 public:
  static constexpr const char* kClassName = "Test_Device";
  using Superclass = Test_Element;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.Name);
  }

  static std::vector<MethodDeclaration> getMethods() {
    return {{"Check",
             core::kCimUint32,
             {{"Depth", core::kCimUint16, core::ParameterDirection::In, ""}},
             kClassName}};
  }

  core::CimPropertyUint64 Speed{"Speed", this};
  core::CimPropertyString Caption{"Caption", this};
};

class Test_Fan : public Test_Device {
 public:
  static constexpr const char* kClassName = "Test_Fan";
  using Superclass = Test_Device;

  explicit Test_Fan(std::uint64_t speed) { Speed.setValue(speed); }
  [[nodiscard]] std::string getClassName() const override { return kClassName; }
};

class Test_Pump : public Test_Device {
 public:
  static constexpr const char* kClassName = "Test_Pump";
  using Superclass = Test_Device;

  [[nodiscard]] virtual int getPressure() const = 0;

  core::CimPropertyUint16 Pressure{"Pressure", this};
};

class AnyPump : public Test_Pump {
 public:
  [[nodiscard]] int getPressure() const override { return 0; }
};

class Test_Cools : public core::CimInstance {
 public:
  static constexpr const char* kClassName = "Test_Cools";
  using Superclass = core::CimInstance;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.Antecedent, self.Dependent);
  }

  core::CimPropertyRefT<Test_Device> Antecedent{"Antecedent", this};
  core::CimPropertyRefT<Test_Element> Dependent{"Dependent", this};
};

std::vector<std::string> namesOf(const CimSchema::Classes& classes) {
  std::vector<std::string> names;
  for (const ClassDeclaration* declaration : classes) {
    names.push_back(declaration->name);
  }
  return names;
}

ClassDeclaration makeClass(const std::string& name, const std::string& superclass = "") {
  ClassDeclaration declaration;
  declaration.name = name;
  declaration.superclass = superclass;
  return declaration;
}

class CimSchemaTest : public testing::Test {
 protected:
  // Adds the classes, each with its superclass.
  void add(const std::vector<std::pair<std::string, std::string>>& classes) {
    for (const auto& [name, superclass] : classes) {
      m_schema.add(makeClass(name, superclass));
    }
  }

  CimSchema m_schema;
};

TEST_F(CimSchemaTest, KnowsNothingAtFirst) {
  EXPECT_EQ(m_schema.find("CIM_Fan"), nullptr);
  EXPECT_THAT(m_schema.getSubclasses(""), IsEmpty());
  EXPECT_THAT(m_schema.getDescendants(""), IsEmpty());
}

TEST_F(CimSchemaTest, FindsAClassWhateverTheCaseUnderTheNameThatWasDeclared) {
  add({{"CIM_Fan", ""}});
  ASSERT_NE(m_schema.find("cim_FAN"), nullptr);
  EXPECT_EQ(m_schema.find("cim_FAN")->name, "CIM_Fan");
  EXPECT_EQ(m_schema.find("CIM_Fan1"), nullptr);
}

TEST_F(CimSchemaTest, TellsWhatIsAboveAndBelow) {
  add({{"Element", ""},
       {"Device", "element"},
       {"Fan", "Device"},
       {"Job", "Element"},
       {"Uses", ""}});
  EXPECT_THAT(namesOf(m_schema.getSuperclasses("fan")), ElementsAre("Device", "Element"));
  EXPECT_THAT(m_schema.getSuperclasses("Element"), IsEmpty());
  EXPECT_THAT(namesOf(m_schema.getSubclasses("ELEMENT")), ElementsAre("Device", "Job"));
  EXPECT_THAT(namesOf(m_schema.getDescendants("Element")), ElementsAre("Device", "Fan", "Job"));
  EXPECT_THAT(m_schema.getSubclasses("Fan"), IsEmpty());
}

TEST_F(CimSchemaTest, HasAllClassesBelowTheEmptyName) {
  add({{"Element", ""}, {"Device", "Element"}, {"Uses", ""}});
  EXPECT_THAT(namesOf(m_schema.getSubclasses("")), ElementsAre("Element", "Uses"));
  EXPECT_THAT(namesOf(m_schema.getDescendants("")), ElementsAre("Element", "Device", "Uses"));
  EXPECT_THAT(m_schema.getSuperclasses(""), IsEmpty());
  EXPECT_TRUE(m_schema.isA("Device", ""));
}

TEST_F(CimSchemaTest, CountsAClassAsOneOfItsOwnKind) {
  add({{"Element", ""}, {"Device", "Element"}, {"Fan", "Device"}});
  EXPECT_TRUE(m_schema.isA("Fan", "fan"));
  EXPECT_TRUE(m_schema.isA("fan", "Element"));
  EXPECT_FALSE(m_schema.isA("Element", "Fan"));
}

TEST_F(CimSchemaTest, RelatesAClassThatIsNotDeclaredToNone) {
  add({{"Element", ""}});
  EXPECT_FALSE(m_schema.isA("Fan", "Fan"));
  EXPECT_FALSE(m_schema.isA("Fan", ""));
  EXPECT_FALSE(m_schema.isA("Element", "Fan"));
  EXPECT_THAT(m_schema.getSuperclasses("Fan"), IsEmpty());
  EXPECT_THAT(m_schema.getSubclasses("Fan"), IsEmpty());
  EXPECT_THAT(m_schema.getDescendants("Fan"), IsEmpty());
}

TEST_F(CimSchemaTest, TakesTheSameDeclarationTwice) {
  add({{"Element", ""}, {"Element", ""}});
  EXPECT_THAT(namesOf(m_schema.getDescendants("")), ElementsAre("Element"));
}

TEST_F(CimSchemaTest, RefusesAnotherDeclarationUnderANameThatIsTaken) {
  add({{"Element", ""}, {"Fan", "Element"}});
  EXPECT_THAT([&] { m_schema.add(makeClass("Fan")); },
              test::ThrowsExactly<utils::Exception>("class Fan is declared in two ways"));
  EXPECT_EQ(m_schema.find("Fan")->superclass, "Element");
}

TEST_F(CimSchemaTest, RefusesAClassWithoutItsSuperclass) {
  EXPECT_THAT(
      [&] { m_schema.add(makeClass("Fan", "Device")); },
      test::ThrowsExactly<utils::Exception>("superclass Device of class Fan is not declared"));
  EXPECT_THAT(
      [&] { m_schema.addPlain("Fan", "Device"); },
      test::ThrowsExactly<utils::Exception>("superclass Device of class Fan is not declared"));
  EXPECT_EQ(m_schema.find("Fan"), nullptr);
}

TEST_F(CimSchemaTest, KeepsDeclarationsWhereTheyAre) {
  add({{"Element", ""}});
  const ClassDeclaration* element = m_schema.find("Element");
  add({{"A", ""}, {"B", "Element"}, {"C", "B"}});
  EXPECT_EQ(m_schema.find("Element"), element);
  EXPECT_EQ(m_schema.getSuperclasses("C").back(), element);
}

class DeclareClass : public testing::Test {
 protected:
  DeclareClass() {
    core::declarePlainClasses<Test_Fan>(m_schema);
    core::declareClass<Test_Pump, AnyPump>(m_schema);
    core::declareClass<Test_Cools>(m_schema);
  }

  CimSchema m_schema;
};

TEST_F(DeclareClass, DeclaresTheSuperclassesFirst) {
  EXPECT_THAT(namesOf(m_schema.getDescendants("")),
              ElementsAre("Test_Element", "Test_Device", "Test_Fan", "Test_Pump", "Test_Cools"));
  EXPECT_EQ(m_schema.find("Test_Element")->superclass, "");
  EXPECT_EQ(m_schema.find("Test_Fan")->superclass, "Test_Device");
}

TEST_F(DeclareClass, ListsThePropertiesInTheOrderOfTheInstances) {
  EXPECT_THAT(
      m_schema.find("Test_Element")->properties,
      ElementsAre(PropertyDeclaration{"Name", core::kCimString, false, "", "Test_Element"},
                  PropertyDeclaration{"Caption", core::kCimString, false, "", "Test_Element"},
                  PropertyDeclaration{"Status", core::kCimUint16Array, false, "", "Test_Element"}));
}

TEST_F(DeclareClass, GivesEachPropertyTheClassThatDeclaredItLast) {
  EXPECT_THAT(
      m_schema.find("Test_Device")->properties,
      ElementsAre(PropertyDeclaration{"Name", core::kCimString, true, "", "Test_Device"},
                  PropertyDeclaration{"Status", core::kCimUint16Array, false, "", "Test_Element"},
                  PropertyDeclaration{"Speed", core::kCimUint64, false, "", "Test_Device"},
                  PropertyDeclaration{"Caption", core::kCimString, false, "", "Test_Device"}));
}

TEST_F(DeclareClass, GivesAPlainClassWhatItsSuperclassHas) {
  const ClassDeclaration& fan = *m_schema.find("Test_Fan");
  EXPECT_EQ(fan.properties, m_schema.find("Test_Device")->properties);
  EXPECT_EQ(fan.methods, m_schema.find("Test_Device")->methods);
  EXPECT_FALSE(fan.isAssociation);
}

TEST_F(DeclareClass, SeesThePropertiesOfAClassThatOnlyDerivedOnesCanBuild) {
  const ClassDeclaration& pump = *m_schema.find("Test_Pump");
  EXPECT_EQ(pump.properties.size(), 5u);
  EXPECT_EQ(pump.properties.back(),
            (PropertyDeclaration{"Pressure", core::kCimUint16, false, "", "Test_Pump"}));
  EXPECT_EQ(pump.findProperty("Speed")->origin, "Test_Device");
}

TEST_F(DeclareClass, GivesReferencesTheirClassAndMakesTheirClassAnAssociation) {
  EXPECT_THAT(m_schema.find("Test_Cools")->properties,
              ElementsAre(PropertyDeclaration{"Antecedent", core::kCimReference, true,
                                              "Test_Device", "Test_Cools"},
                          PropertyDeclaration{"Dependent", core::kCimReference, true,
                                              "Test_Element", "Test_Cools"}));
  EXPECT_TRUE(m_schema.find("Test_Cools")->isAssociation);
  EXPECT_FALSE(m_schema.find("Test_Fan")->isAssociation);
}

TEST_F(DeclareClass, PutsAMethodThatIsDeclaredAnewInThePlaceOfTheInheritedOne) {
  const std::vector<MethodDeclaration>& methods = m_schema.find("Test_Pump")->methods;
  ASSERT_EQ(methods.size(), 2u);
  EXPECT_EQ(methods[0].name, "Reset");
  EXPECT_EQ(methods[0].origin, "Test_Element");
  EXPECT_EQ(methods[1].name, "Check");
  EXPECT_EQ(methods[1].origin, "Test_Device");
  EXPECT_EQ(methods[1].parameters.size(), 1u);
}

TEST_F(DeclareClass, MayBeDoneTwice) {
  core::declarePlainClasses<Test_Fan>(m_schema);
  EXPECT_EQ(m_schema.getDescendants("").size(), 5u);
}

TEST(MarkKeys, MarksThePropertyThatIsInForce) {
  Test_Fan fan(1);
  core::markKeys(fan);
  fan.Name.setValue("x");
  EXPECT_EQ(fan.getPath(), "Test_Fan.Name=\"x\"");
}

}  // namespace
