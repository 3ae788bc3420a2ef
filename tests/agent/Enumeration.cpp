#include "tests/agent/Enumeration.h"

#include <algorithm>
#include <gmock/gmock.h>

#include "core/CimBroker.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "tests/support/Regex.h"

namespace test {
namespace {

std::string join(const std::vector<std::string>& texts) {
  std::string joined = "{";
  for (const std::string& text : texts) {
    joined += (joined.size() > 1 ? ", " : "") + text;
  }
  return joined + "}";
}

std::string toText(core::CimProperty& property) {
  if (auto* texts = dynamic_cast<core::CimPropertyString_arr*>(&property)) {
    return join(texts->getValue());
  }
  if (auto* numbers = dynamic_cast<core::CimPropertyUint16_arr*>(&property)) {
    std::vector<std::string> texts;
    for (const std::uint16_t number : numbers->getValue()) {
      texts.push_back(std::to_string(number));
    }
    return join(texts);
  }
  if (const auto* time = dynamic_cast<core::CimPropertyDatetime*>(&property)) {
    return std::to_string(time->getValue().value) +
           (time->getValue().isTimestamp ? " since the epoch" : " microseconds");
  }
  if (property.getType() == core::kCimBoolean) {
    return property.toString() == "1" ? "true" : "false";
  }
  return property.toString();
}

template <class Visit>
void visitProperties(core::CimInstance& instance, Visit visit) {
  core::CimPropertyList::Iterator cursor = instance.getProperties().iterator();
  for (core::CimProperty* property = cursor.first(); property != nullptr;
       property = cursor.next()) {
    visit(*property);
  }
}

// Returns whether the property is a Property, which then has the value.
template <class Property, class Value>
bool fillA(core::CimProperty& property, const Value& value) {
  auto* const typed = dynamic_cast<Property*>(&property);
  if (typed != nullptr) {
    typed->setValue(value);
  }
  return typed != nullptr;
}

core::CimPropertyRef& reference(core::CimInstance& association, const std::string& name) {
  return dynamic_cast<core::CimPropertyRef&>(*association.getProperty(name));
}

}  // namespace

std::vector<NamedValue> filledProperties(core::CimInstance& instance) {
  std::vector<NamedValue> filled;
  visitProperties(instance, [&filled](core::CimProperty& property) {
    if (!property.isNull()) {
      filled.emplace_back(property.getName(), toText(property));
    }
  });
  return filled;
}

void expectFilled(core::CimInstance& instance, std::vector<NamedValue> expected) {
  std::vector<NamedValue> filled = filledProperties(instance);
  std::sort(filled.begin(), filled.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(filled, expected);
}

void fillEveryProperty(core::CimInstance& instance) {
  visitProperties(instance, [](core::CimProperty& property) {
    const bool isFilled =
        fillA<core::CimPropertyString>(property, "x") ||
        fillA<core::CimPropertyUint8>(property, std::uint8_t{1}) ||
        fillA<core::CimPropertySint8>(property, std::int8_t{1}) ||
        fillA<core::CimPropertyUint16>(property, std::uint16_t{1}) ||
        fillA<core::CimPropertyUint32>(property, 1u) ||
        fillA<core::CimPropertyUint64>(property, 1u) ||
        fillA<core::CimPropertyBoolean>(property, std::uint8_t{1}) ||
        fillA<core::CimPropertyDatetime>(property, utils::Datetime()) ||
        fillA<core::CimPropertyUint16_arr>(property, std::vector<std::uint16_t>{1}) ||
        fillA<core::CimPropertyString_arr>(property, std::vector<std::string>{"x"});
    EXPECT_TRUE(isFilled) << property.getName();
  });
}

std::vector<std::string> keyNames(core::CimInstance& instance) {
  std::vector<std::string> names;
  visitProperties(instance, [&names](const core::CimProperty& property) {
    if (property.isKey()) {
      names.push_back(property.getName());
    }
  });
  return names;
}

std::vector<core::CimInstance*> instancesOf(core::CimClass& provider) {
  std::vector<core::CimInstance*> instances;
  core::InstanceList::Iterator cursor = provider.getInstances();
  for (core::CimInstance* one = cursor.first(); one != nullptr; one = cursor.next()) {
    instances.push_back(one);
  }
  EXPECT_EQ(cursor.count(), instances.size());
  return instances;
}

std::vector<Ends> enumerateEnds(core::CimClass& provider, const std::string& first,
                                const std::string& second) {
  const auto follow = [](core::CimInstance& association, const std::string& name) {
    const core::CimPropertyRef& end = reference(association, name);
    EXPECT_NE(end.getTarget(), nullptr);
    std::string path = end.toString();
    EXPECT_EQ(core::GetCimBroker().getInstanceByPath(core::CimPath(path)), end.getTarget());
    return path;
  };
  std::vector<Ends> ends;
  for (core::CimInstance* association : instancesOf(provider)) {
    ends.emplace_back(follow(*association, first), follow(*association, second));
    const core::CimPath path(association->getPath());
    EXPECT_EQ(path.getClassName(), provider.getName());
    EXPECT_THAT(path, testing::UnorderedElementsAre(testing::Pair(first, ends.back().first),
                                                    testing::Pair(second, ends.back().second)));
  }
  return ends;
}

std::vector<Targets> enumerateTargets(core::CimClass& provider, const std::string& first,
                                      const std::string& second) {
  std::vector<Targets> targets;
  for (core::CimInstance* association : instancesOf(provider)) {
    targets.emplace_back(reference(*association, first).getTarget(),
                         reference(*association, second).getTarget());
  }
  return targets;
}

void expectEnumeration(const LogCapture& log, const EnumerationNames& names,
                       const std::vector<std::string>& messages) {
  const std::string blockSource = "Debug";
  const std::string function = names.source + "Class::getInstances";
  const std::string block = "'" + (names.block.empty() ? function : names.block) + "'";
  std::vector<testing::Matcher<const LogRecord&>> expected;
  for (const std::string& message : messages) {
    expected.push_back(IsRecordOf(names.source, LogLevel::Debug, function, message));
    if (expected.size() == 1) {
      expected.push_back(IsRecordOf(blockSource, LogLevel::Debug, "utils::TimeStamp::Init",
                                    test::MatchesRegex("      ### ..:..:.. Entering " + block)));
    }
  }
  expected.push_back(
      IsRecordOf(blockSource, LogLevel::Debug, "utils::TimeStamp::~TimeStamp",
                 test::MatchesRegex("### ..:..:.. Leaving  " + block + " after [0-9]+ms ")));
  std::vector<LogRecord> own;
  for (const LogRecord& record : log.records()) {
    if (record.source == names.source || record.source == blockSource) {
      own.push_back(record);
    }
  }
  EXPECT_THAT(own, testing::ElementsAreArray(expected));
}

}  // namespace test
