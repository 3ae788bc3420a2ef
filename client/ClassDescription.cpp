#include "client/ClassDescription.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <variant>

#include "core/ClassQualifiers.h"
#include "core/ValueNames.h"

namespace client {
namespace {

using core::QualifierName;

std::string textOf(const core::ClassQualifiers::List& list, QualifierName name) {
  const std::vector<std::string_view> texts = core::findTexts(list, name);
  return texts.empty() ? std::string() : std::string(texts.front());
}

NamedValues valuesOf(const core::ClassQualifiers::List& list) {
  NamedValues values;
  for (const core::ValueName& value : core::findValueNames(list)) {
    values.emplace_back(value.value, value.name);
  }
  return values;
}

// A property's or a parameter's.
template <class Element>
ElementDescription describe(const Element& element, const core::ClassQualifiers::List& list) {
  ElementDescription described;
  described.name = element.name;
  described.type = toTypeText(std::string(core::getTypeName(element.type)),
                              core::isArray(element.type), element.referenceClass);
  described.description = textOf(list, QualifierName::Description);
  described.units = textOf(list, QualifierName::Units);
  described.values = valuesOf(list);
  return described;
}

MethodDescription describe(const core::ClassDeclaration& declaration,
                           const core::MethodDeclaration& method,
                           const core::ClassQualifiers& qualifiers) {
  const core::ClassQualifiers::List list = qualifiers.ofMethod(declaration, method);
  MethodDescription described{method.name,
                              std::string(core::getTypeName(method.returnType)),
                              textOf(list, QualifierName::Description),
                              valuesOf(list),
                              {}};
  for (const core::ParameterDeclaration& parameter : method.parameters) {
    described.parameters.push_back(describe(parameter, qualifiers.ofParameter(method, parameter)));
    described.parameters.back().isOutput = parameter.direction != core::ParameterDirection::In;
  }
  return described;
}

}  // namespace

const ElementDescription* ClassDescription::findProperty(std::string_view propertyName) const {
  const auto found = std::find_if(properties.begin(), properties.end(),
                                  [propertyName](const ElementDescription& property) {
                                    return core::isSameName(property.name, propertyName);
                                  });
  return found != properties.end() ? &*found : nullptr;
}

Value findNames(const NamedValues& values, const Value& value) {
  if (const Value::Array* items = value.items()) {
    Value names = Value::array();
    bool isAnyFound = false;
    for (const Value& item : *items) {
      names.push(findNames(values, item));
      isAnyFound |= !names.items()->back().isNull();
    }
    return isAnyFound ? names : Value();
  }
  const std::optional<std::int64_t> number = value.as<std::int64_t>();
  if (!number || std::holds_alternative<bool>(value.variant())) {
    return {};
  }
  std::vector<core::ValueName> rows;
  rows.reserve(values.size());
  for (const auto& [row, name] : values) {
    rows.push_back({row, name});
  }
  const std::string_view name = core::findValueName(rows, *number);
  return name.empty() ? Value() : Value(name);
}

std::string toTypeText(const std::string& type, bool isArray, const std::string& referenceClass) {
  if (!referenceClass.empty()) {
    return referenceClass + " REF";
  }
  return type + (isArray ? "[]" : "");
}

ClassDescription describeClass(const core::CimSchema& schema, const core::ClassTexts& texts,
                               const core::ClassDeclaration& declaration) {
  const core::ClassQualifiers qualifiers(schema, texts);
  const core::ClassQualifiers::List list = qualifiers.ofClass(declaration);
  ClassDescription described;
  described.name = declaration.name;
  described.superclass = declaration.superclass;
  described.isAssociation = declaration.isAssociation;
  const core::ClassText* text = texts.find(declaration.name);
  described.isAbstract = text != nullptr && text->isAbstract;
  described.version = textOf(list, QualifierName::Version);
  described.description = textOf(list, QualifierName::Description);
  for (const core::PropertyDeclaration& property : declaration.properties) {
    described.properties.push_back(
        describe(property, qualifiers.ofProperty(declaration, property)));
    described.properties.back().isKey = property.isKey;
  }
  for (const core::MethodDeclaration& method : declaration.methods) {
    described.methods.push_back(describe(declaration, method, qualifiers));
  }
  return described;
}

}  // namespace client
