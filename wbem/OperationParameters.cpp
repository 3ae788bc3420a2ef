#include "wbem/OperationParameters.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "core/ClassDeclaration.h"
#include "wbem/Scalars.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

[[noreturn]] void refuse(std::string_view name, std::string_view reason) {
  throw StatusFault(Status::InvalidParameter,
                    "parameter " + std::string(name) + ": " + std::string(reason));
}

void demandPlainNamespace(std::string_view name, const cimxml::Request& request,
                          const cimxml::ObjectName& object) {
  if (!object.nameSpace.empty() && !core::isSameName(object.nameSpace, request.nameSpace)) {
    refuse(name, "the object is in another namespace than the request, " + object.nameSpace);
  }
}

}  // namespace

OperationParameters::OperationParameters(const cimxml::Request& request,
                                         std::span<const std::string_view> known)
    : m_request(request) {
  for (const cimxml::Parameter& parameter : request.parameters) {
    const bool isKnown =
        std::any_of(known.begin(), known.end(), [&parameter](std::string_view candidate) {
          return core::isSameName(candidate, parameter.name);
        });
    if (!isKnown) {
      refuse(parameter.name, request.name + " has none of that name");
    }
    if (request.find(parameter.name) != &parameter) {
      refuse(parameter.name, "is given twice");
    }
  }
}

template <class Kind>
const Kind* OperationParameters::find(std::string_view name, const char* expected) const {
  const cimxml::Parameter* parameter = m_request.find(name);
  if (parameter == nullptr || std::holds_alternative<std::monostate>(parameter->value)) {
    return nullptr;
  }
  const Kind* value = std::get_if<Kind>(&parameter->value);
  if (value == nullptr) {
    refuse(name, expected);
  }
  return value;
}

template <class Kind>
const Kind& OperationParameters::demand(std::string_view name, const char* expected) const {
  const Kind* value = find<Kind>(name, expected);
  if (value == nullptr) {
    refuse(name, "is required");
  }
  return *value;
}

bool OperationParameters::has(std::string_view name) const {
  const cimxml::Parameter* parameter = m_request.find(name);
  return parameter != nullptr && !std::holds_alternative<std::monostate>(parameter->value);
}

bool OperationParameters::getBoolean(std::string_view name, bool whenMissing) const {
  const auto* text = find<std::string>(name, "is no truth value");
  if (text == nullptr) {
    return whenMissing;
  }
  const std::optional<bool> value = toBoolean(*text);
  if (!value) {
    refuse(name, "'" + *text + "' is no truth value");
  }
  return *value;
}

std::optional<std::uint32_t> OperationParameters::getUint32(std::string_view name) const {
  const auto* text = find<std::string>(name, "is no number");
  if (text == nullptr) {
    return std::nullopt;
  }
  const std::optional<std::uint32_t> value = toNumber<std::uint32_t>(*text);
  if (!value) {
    refuse(name, "'" + *text + "' is no uint32");
  }
  return value;
}

std::optional<std::string> OperationParameters::getString(std::string_view name) const {
  const auto* text = find<std::string>(name, "is no text");
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::optional<std::vector<std::string>> OperationParameters::getStrings(
    std::string_view name) const {
  const auto* elements = find<cimxml::StringArray>(name, "is no array of texts");
  if (elements == nullptr) {
    return std::nullopt;
  }
  std::vector<std::string> texts;
  for (const std::optional<std::string>& element : *elements) {
    if (!element) {
      refuse(name, "an element is NULL");
    }
    texts.push_back(*element);
  }
  return texts;
}

std::optional<cimxml::NameSet> OperationParameters::getNames(std::string_view name) const {
  std::optional<std::vector<std::string>> names = getStrings(name);
  return names ? std::optional<cimxml::NameSet>(std::move(*names)) : std::nullopt;
}

std::optional<std::string> OperationParameters::getClassName(std::string_view name) const {
  const auto* object = find<cimxml::ObjectName>(name, "is no name of a class");
  if (object == nullptr) {
    return std::nullopt;
  }
  if (object->isInstance) {
    refuse(name, "is no name of a class");
  }
  demandPlainNamespace(name, m_request, *object);
  return object->className;
}

std::string OperationParameters::demandString(std::string_view name) const {
  return demand<std::string>(name, "is no text");
}

std::string OperationParameters::demandClassName(std::string_view name) const {
  const std::optional<std::string> className = getClassName(name);
  if (!className) {
    refuse(name, "is required");
  }
  return *className;
}

const cimxml::ObjectName& OperationParameters::demandObjectName(std::string_view name) const {
  const auto& object = demand<cimxml::ObjectName>(name, "is no name of an object");
  demandPlainNamespace(name, m_request, object);
  return object;
}

const cimxml::ObjectName& OperationParameters::demandInstanceName(std::string_view name) const {
  const cimxml::ObjectName& object = demandObjectName(name);
  if (!object.isInstance) {
    refuse(name, "is no name of an instance");
  }
  return object;
}

const cimxml::InstanceValue& OperationParameters::demandInstance(std::string_view name) const {
  const auto& instance = demand<cimxml::InstanceValue>(name, "is no instance with its name");
  demandPlainNamespace(name, m_request, instance.name);
  if (!instance.name.isInstance) {
    refuse(name, "the instance has no name");
  }
  return instance;
}

}  // namespace wbem
