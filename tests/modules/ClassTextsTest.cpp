// What the agents say of their classes: nothing is left out, nothing is said of what is not there,
// and every value that an instance shows has its name.

#include <cstdint>
#include <gmock/gmock.h>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/CimBroker.h"
#include "core/ClassQualifiers.h"
#include "core/ClassTexts.h"
#include "core/ValueNames.h"
#include "tests/modules/Client.h"
#include "tests/modules/Firmware.h"
#include "tests/modules/ModuleHost.h"
#include "tests/support/Regex.h"

namespace {

using core::ClassDeclaration;
using core::ClassText;
using core::ElementText;
using core::PropertyDeclaration;
using core::QualifierName;
using test::firmware;

// A sentence; it may have parts.
constexpr const char* kSentence = "^[A-Z][^.]*[^ ]\\.$";
constexpr const char* kNumberOrRange =
    "^(-?[0-9]+|(-?[0-9]+|0x[0-9A-F]+)?\\.\\.([0-9]+|0x[0-9A-F]+)?)$";

std::string descriptionIn(const core::ClassQualifiers::List& list) {
  const std::vector<std::string_view> texts = core::findTexts(list, QualifierName::Description);
  return texts.empty() ? std::string() : std::string(texts.front());
}

class ServedTexts : public testing::Test {
 protected:
  ServedTexts() {
    m_host.makeAdapter(test::kAdapter, firmware(2));
    static_cast<void>(m_host.offer("a.rom", firmware(3)));
    m_host.load();
    m_schema = core::GetCimBroker().getSchema();
    m_texts = core::getClassTexts(core::GetCimBroker());
  }

  [[nodiscard]] core::ClassQualifiers qualifiers() const { return {*m_schema, m_texts}; }

  // Calls use(place, list) for each element of each class.
  template <class Use>
  void visitElements(Use use) const {
    const core::ClassQualifiers all = qualifiers();
    for (const ClassDeclaration* declaration : m_schema->getDescendants("")) {
      const std::string place = declaration->name + ".";
      for (const PropertyDeclaration& property : declaration->properties) {
        use(place + property.name, all.ofProperty(*declaration, property), property.type);
      }
      for (const core::MethodDeclaration& method : declaration->methods) {
        use(place + method.name, all.ofMethod(*declaration, method), method.returnType);
        for (const core::ParameterDeclaration& parameter : method.parameters) {
          use(place + method.name + "." + parameter.name, all.ofParameter(method, parameter),
              parameter.type);
        }
      }
    }
  }

  test::ModuleHost m_host;
  std::shared_ptr<const core::CimSchema> m_schema;
  core::ClassTexts m_texts;
};

TEST_F(ServedTexts, DescribeEveryClassInASentence) {
  for (const ClassDeclaration* declaration : m_schema->getDescendants("")) {
    EXPECT_THAT(descriptionIn(qualifiers().ofClass(*declaration)), test::ContainsRegex(kSentence))
        << declaration->name << ": a row is missing in the texts of its agent or of cim/";
  }
}

TEST_F(ServedTexts, DescribeEveryPropertyMethodAndParameterInASentence) {
  visitElements([](const std::string& place, const core::ClassQualifiers::List& list, auto) {
    EXPECT_THAT(descriptionIn(list), test::ContainsRegex(kSentence)) << place;
  });
}

TEST_F(ServedTexts, CallOnlyClassesAbstractThatHaveNoInstances) {
  for (const ClassDeclaration* declaration : m_schema->getDescendants("")) {
    const bool isAbstract = m_texts.find(declaration->name)->isAbstract;
    if (isAbstract) {
      EXPECT_THAT(m_schema->getSubclasses(declaration->name), testing::Not(testing::IsEmpty()))
          << declaration->name;
      EXPECT_THAT(test::servedClasses(), testing::Not(testing::Contains(declaration->name)));
    }
    const ClassText* above = m_texts.find(declaration->superclass);
    EXPECT_TRUE(!isAbstract || above == nullptr || above->isAbstract)
        << declaration->name << " is abstract, and derives from a class that is not";
  }
}

TEST_F(ServedTexts, TellWhichSchemaEachClassIsOf) {
  for (const ClassDeclaration* declaration : m_schema->getDescendants("")) {
    EXPECT_THAT(std::string(m_texts.find(declaration->name)->version),
                test::ContainsRegex("^[0-9]+\\.[0-9]+\\.[0-9]+$"))
        << declaration->name;
  }
}

TEST_F(ServedTexts, SayNothingOfWhatTheirClassDoesNotDeclare) {
  for (const ClassDeclaration* declaration : m_schema->getDescendants("")) {
    const ClassText* text = m_texts.find(declaration->name);
    ASSERT_NE(text, nullptr) << declaration->name;
    for (const ElementText& row : text->properties) {
      const PropertyDeclaration* property = declaration->findProperty(row.name);
      ASSERT_NE(property, nullptr) << declaration->name << "." << row.name;
      EXPECT_EQ(property->origin, declaration->name) << row.name;
    }
    for (const core::MethodText& row : text->methods) {
      const core::MethodDeclaration* method = declaration->findMethod(row.name);
      ASSERT_NE(method, nullptr) << declaration->name << "." << row.name;
      EXPECT_EQ(method->origin, declaration->name) << row.name;
      EXPECT_EQ(row.parameters.size(), method->parameters.size()) << row.name;
    }
  }
}

TEST_F(ServedTexts, GiveEachValueOneName) {
  std::size_t tables = 0;
  visitElements([&tables](const std::string& place, const core::ClassQualifiers::List& list,
                          core::CimType type) {
    const bool isText = type == core::kCimString || type == core::kCimStringArray;
    std::set<std::string_view> seen;
    for (const core::ValueName& value : core::findValueNames(list)) {
      EXPECT_TRUE(seen.insert(value.value).second) << place << " has " << value.value << " twice";
      EXPECT_FALSE(value.name.empty()) << place << " " << value.value;
      if (!isText) {
        EXPECT_THAT(std::string(value.value), test::ContainsRegex(kNumberOrRange)) << place;
      }
    }
    tables += seen.empty() ? 0 : 1;
  });
  EXPECT_GT(tables, 50u);
}

TEST_F(ServedTexts, HaveAnArrayOfNamesAsLongAsThatOfValues) {
  visitElements([](const std::string& place, const core::ClassQualifiers::List& list, auto) {
    EXPECT_EQ(core::findTexts(list, QualifierName::ValueMap).size(),
              core::findTexts(list, QualifierName::Values).size())
        << place;
  });
}

TEST_F(ServedTexts, NameEveryValueThatAnInstanceShows) {
  ASSERT_EQ(m_host.install(test::kFirstPort, m_host.makeImage(firmware(3))), 4096u);
  ASSERT_EQ(m_host.awaitEnd(), test::kCompleted);
  std::size_t named = 0;
  for (const std::string& className : test::servedClasses()) {
    const ClassDeclaration& declaration = *m_schema->find(className);
    for (const test::InstanceReport& instance : test::enumerate(className)) {
      for (const test::PropertyReport& property : instance.properties) {
        const std::vector<core::ValueName> values = core::findValueNames(
            qualifiers().ofProperty(declaration, *declaration.findProperty(property.name)));
        if (values.empty() || property.isNull) {
          continue;
        }
        if (property.type == core::kCimString) {
          EXPECT_NE(core::findValueName(values, std::string_view(property.value)), "")
              << instance.path << " " << property.name << " = " << property.value;
          ++named;
          continue;
        }
        for (const std::int64_t number : test::numbersIn(property.value)) {
          EXPECT_NE(core::findValueName(values, number), "")
              << instance.path << " " << property.name << " = " << number;
          ++named;
        }
      }
    }
  }
  EXPECT_GT(named, 20u);
}

TEST_F(ServedTexts, NameTheStateOfARunningJob) {
  const ClassDeclaration& job = *m_schema->find("orvex_concretejob");
  const std::vector<core::ValueName> values =
      core::findValueNames(qualifiers().ofProperty(job, *job.findProperty("JobState")));
  EXPECT_EQ(core::findValueName(values, 4), "Running");
}

}  // namespace
