#include "client/HostValues.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <utility>
#include <variant>

#include "client/Snapshot.h"
#include "core/ClassDeclaration.h"

namespace client {
namespace {

constexpr std::string_view kJob = "Job";

template <class Number>
Value toNumber(const std::string& text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end && !text.empty() ? Value(number) : Value(text);
}

Value toTruth(const std::string& text) {
  const bool isTrue = core::isSameName(text, "TRUE");
  return isTrue || core::isSameName(text, "FALSE") ? Value(isTrue) : Value(text);
}

Value toPlainText(const std::string& text) {
  return Value(text);
}

struct Type {
  std::string_view name;
  PropertySnapshot::Kind kind;
  Value (*read)(const std::string& text);
};

constexpr Type kText = {"string", PropertySnapshot::Kind::Value, toPlainText};

constexpr Type kTypes[] = {
    kText,
    {"uint8", PropertySnapshot::Kind::Value, toNumber<std::uint64_t>},
    {"uint16", PropertySnapshot::Kind::Value, toNumber<std::uint64_t>},
    {"uint32", PropertySnapshot::Kind::Value, toNumber<std::uint64_t>},
    {"uint64", PropertySnapshot::Kind::Value, toNumber<std::uint64_t>},
    {"sint8", PropertySnapshot::Kind::Value, toNumber<std::int64_t>},
    {"sint16", PropertySnapshot::Kind::Value, toNumber<std::int64_t>},
    {"sint32", PropertySnapshot::Kind::Value, toNumber<std::int64_t>},
    {"sint64", PropertySnapshot::Kind::Value, toNumber<std::int64_t>},
    {"real32", PropertySnapshot::Kind::Value, toNumber<double>},
    {"real64", PropertySnapshot::Kind::Value, toNumber<double>},
    {"boolean", PropertySnapshot::Kind::Value, toTruth},
    {"datetime", PropertySnapshot::Kind::Datetime, toPlainText},
    {"reference", PropertySnapshot::Kind::Reference, toPlainText},
};

const Type& findType(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                         [name](const Type& type) { return type.name == name; });
  return found != std::end(kTypes) ? *found : kText;
}

// Reads whatever a value holds.
class Reader {
 public:
  explicit Reader(const Type& type) : m_type(type) {}

  Value operator()(std::monostate) const { return {}; }
  Value operator()(const std::string& text) const { return m_type.read(text); }
  Value operator()(const cimxml::StringArray& texts) const {
    Value items = Value::array();
    for (const std::optional<std::string>& text : texts) {
      items.push(text ? m_type.read(*text) : Value());
    }
    return items;
  }
  Value operator()(const cimxml::ObjectName& name) const {
    return Value(cimxml::toObjectPath(name));
  }
  Value operator()(const std::vector<cimxml::ObjectName>& names) const {
    Value items = Value::array();
    for (const cimxml::ObjectName& name : names) {
      items.push(Value(cimxml::toObjectPath(name)));
    }
    return items;
  }
  Value operator()(const cimxml::InstanceValue& instance) const {
    return toValue(snapshotOf(instance), NullProperties::Left);
  }

 private:
  const Type& m_type;
};

// Where a value is not what its kind promises, printing takes it as it is.
PropertySnapshot::Kind kindOf(const Type& type, const Value& value) {
  return value.isNull() || value.text() != nullptr ? type.kind : PropertySnapshot::Kind::Value;
}

std::size_t positionOf(const std::vector<cimxml::PropertyValue>& properties,
                       const std::string& name) {
  const auto found = std::find_if(properties.begin(), properties.end(),
                                  [&name](const cimxml::PropertyValue& property) {
                                    return core::isSameName(property.name, name);
                                  });
  return static_cast<std::size_t>(found - properties.begin());
}

const cimxml::Parameter* findOutput(const std::vector<cimxml::Parameter>& outputs,
                                    std::string_view name) {
  const auto found = std::find_if(
      outputs.begin(), outputs.end(),
      [name](const cimxml::Parameter& output) { return core::isSameName(output.name, name); });
  return found != outputs.end() ? &*found : nullptr;
}

}  // namespace

PropertySnapshot snapshotOf(const std::string& name, const std::string& type,
                            const cimxml::Value& value) {
  const Type& known = findType(type);
  Value read = std::visit(Reader(known), value);
  const PropertySnapshot::Kind kind = kindOf(known, read);
  return {name, kind, std::move(read)};
}

InstanceSnapshot snapshotOf(const cimxml::InstanceValue& instance) {
  InstanceSnapshot snapshot;
  snapshot.className = instance.name.className;
  snapshot.path = cimxml::toObjectPath(instance.name);
  for (const cimxml::PropertyValue& property : instance.properties) {
    snapshot.properties.push_back(snapshotOf(property.name, property.type, property.value));
  }
  return snapshot;
}

InstanceSnapshot snapshotOf(const cimxml::InstanceValue& instance, cimxml::ObjectName name) {
  InstanceSnapshot snapshot = snapshotOf(instance);
  name.className = instance.name.className;
  std::stable_sort(name.keys.begin(), name.keys.end(),
                   [&instance](const cimxml::KeyBinding& left, const cimxml::KeyBinding& right) {
                     return positionOf(instance.properties, left.name) <
                            positionOf(instance.properties, right.name);
                   });
  for (cimxml::KeyBinding& key : name.keys) {
    const std::size_t position = positionOf(instance.properties, key.name);
    if (position < instance.properties.size()) {
      key.name = instance.properties[position].name;
    }
  }
  snapshot.path = cimxml::toObjectPath(name);
  return snapshot;
}

Properties outputsOf(const std::vector<cimxml::Parameter>& outputs,
                     core::CimPropertyList& declared) {
  Properties result = snapshotOf(declared);
  std::vector<const cimxml::Parameter*> taken = {findOutput(outputs, kJob)};
  for (PropertySnapshot& output : result) {
    if (const cimxml::Parameter* given = findOutput(outputs, output.name)) {
      output = snapshotOf(output.name, given->type, given->value);
      taken.push_back(given);
    }
  }
  for (const cimxml::Parameter& output : outputs) {
    if (std::find(taken.begin(), taken.end(), &output) == taken.end()) {
      result.push_back(snapshotOf(output.name, output.type, output.value));
    }
  }
  return result;
}

std::string jobPathOf(const std::vector<cimxml::Parameter>& outputs) {
  const cimxml::Parameter* const job = findOutput(outputs, kJob);
  const auto* const name = job != nullptr ? std::get_if<cimxml::ObjectName>(&job->value) : nullptr;
  return name != nullptr ? cimxml::toObjectPath(*name) : "";
}

}  // namespace client
