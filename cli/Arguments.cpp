#include "cli/Arguments.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

#include "Utils/Conversions.h"
#include "client/Fault.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace cli {
namespace {

constexpr char kElementSeparator = ',';
constexpr char kQuote = '"';
constexpr int kDecimal = 10;
constexpr int kHexadecimal = 16;

[[noreturn]] void refuse(const std::string& name, const std::string& reason) {
  throw client::Fault("argument " + name + ": " + reason, client::Fault::Kind::Usage);
}

template <class Number>
Number toNumber(const std::string& name, const std::string& text) {
  std::string_view digits = text;
  const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
  if (isHexadecimal) {
    digits.remove_prefix(2);
  }
  Number number{};
  const char* const end = digits.data() + digits.size();
  const bool isSignedHexadecimal = isHexadecimal && digits.starts_with('-');
  const auto [stop, error] =
      std::from_chars(digits.data(), end, number, isHexadecimal ? kHexadecimal : kDecimal);
  if (error != std::errc() || stop != end || isSignedHexadecimal) {
    refuse(name, "'" + text + "' is no whole number from " +
                     std::to_string(std::numeric_limits<Number>::min()) + " to " +
                     std::to_string(std::numeric_limits<Number>::max()));
  }
  return number;
}

std::uint8_t toBoolean(const std::string& name, const std::string& text) {
  if (text == "true" || text == "1") {
    return 1;
  }
  if (text == "false" || text == "0") {
    return 0;
  }
  refuse(name, "'" + text + "' is no truth value; write true or false");
}

std::vector<std::uint16_t> toNumbers(const std::string& name, const std::string& text) {
  std::vector<std::uint16_t> numbers;
  for (const std::string& piece : utils::split(text, kElementSeparator, kQuote)) {
    numbers.push_back(toNumber<std::uint16_t>(name, utils::trim(piece)));
  }
  return numbers;
}

std::vector<std::string> toStrings(const std::string& text) {
  std::vector<std::string> strings;
  for (const std::string& piece : utils::split(text, kElementSeparator, kQuote)) {
    strings.push_back(utils::unquote(piece));
  }
  return strings;
}

template <class Property, class Read>
std::unique_ptr<core::CimProperty> make(const std::string& name, const std::string& text,
                                        Read read) {
  auto argument = std::make_unique<Property>(name.c_str(), nullptr);
  if (!text.empty()) {
    argument->setValue(read(name, text));
  }
  return argument;
}

std::unique_ptr<core::CimProperty> makeReference(const std::string& name, const std::string& text) {
  auto argument = std::make_unique<core::CimPropertyRef>(name.c_str(), nullptr);
  if (!text.empty()) {
    argument->setText(text);
  }
  return argument;
}

std::string listParameters(const core::MethodDeclaration& signature) {
  std::string names;
  for (const core::ParameterDeclaration& parameter : signature.parameters) {
    if (parameter.direction == core::ParameterDirection::In) {
      names += (names.empty() ? "" : ", ") + parameter.name;
    }
  }
  return names;
}

// Returns the signature of a method of the installation service or of a job, null for another one.
const core::MethodDeclaration* findSignature(const std::string& method) {
  if (const core::MethodDeclaration* signature = cim::findMethod(method)) {
    return signature;
  }
  static const std::vector<core::MethodDeclaration> kJobMethods =
      cim::getMethods("CIM_ConcreteJob");
  for (const core::MethodDeclaration& signature : kJobMethods) {
    if (signature.name == method) {
      return &signature;
    }
  }
  return nullptr;
}

// Returns the name of such a method as its class declares it; any other name as it is.
std::string toDeclaredName(const std::string& method) {
  for (const char* className : {"CIM_SoftwareInstallationService", "CIM_ConcreteJob"}) {
    for (const core::MethodDeclaration& declared : cim::getMethods(className)) {
      if (core::isSameName(declared.name, method)) {
        return declared.name;
      }
    }
  }
  return method;
}

const core::ParameterDeclaration* findInput(const core::MethodDeclaration& signature,
                                            const std::string& name) {
  for (const core::ParameterDeclaration& parameter : signature.parameters) {
    if (parameter.direction == core::ParameterDirection::In && parameter.name == name) {
      return &parameter;
    }
  }
  return nullptr;
}

}  // namespace

std::unique_ptr<core::CimProperty> makeArgument(const std::string& name, core::CimType type,
                                                const std::string& text) {
  switch (type) {
    case core::kCimUint8:
      return make<core::CimPropertyUint8>(name, text, toNumber<std::uint8_t>);
    case core::kCimSint8:
      return make<core::CimPropertySint8>(name, text, toNumber<std::int8_t>);
    case core::kCimUint16:
      return make<core::CimPropertyUint16>(name, text, toNumber<std::uint16_t>);
    case core::kCimUint16Array:
      return make<core::CimPropertyUint16_arr>(name, text, toNumbers);
    case core::kCimUint32:
      return make<core::CimPropertyUint32>(name, text, toNumber<std::uint32_t>);
    case core::kCimUint64:
      return make<core::CimPropertyUint64>(name, text, toNumber<std::uint64_t>);
    case core::kCimString:
      return make<core::CimPropertyString>(
          name, text,
          [](const std::string&, const std::string& value) { return utils::unquote(value); });
    case core::kCimStringArray:
      return make<core::CimPropertyString_arr>(
          name, text,
          [](const std::string&, const std::string& value) { return toStrings(value); });
    case core::kCimBoolean:
      return make<core::CimPropertyBoolean>(name, text, toBoolean);
    case core::kCimReference:
      return makeReference(name, text);
    case core::kCimDatetime:
      break;
  }
  if (text.empty()) {
    return std::make_unique<core::CimPropertyDatetime>(name.c_str(), nullptr);
  }
  refuse(name, "a date-time cannot be given on the command line");
}

Arguments::Arguments(const std::string& method, const std::vector<std::string>& texts,
                     MethodNames names)
    : m_signature(
          findSignature(names == MethodNames::InAnyCase ? toDeclaredName(method) : method)) {
  for (const std::string& text : texts) {
    addInput(method, text);
  }
  if (m_signature == nullptr) {
    return;
  }
  for (const core::ParameterDeclaration& parameter : m_signature->parameters) {
    if (parameter.direction == core::ParameterDirection::Out) {
      m_out.add(makeArgument(parameter.name, parameter.type, ""));
    }
  }
}

void Arguments::addInput(const std::string& method, const std::string& text) {
  const std::size_t sign = text.find('=');
  if (sign == std::string::npos || sign == 0) {
    throw client::Fault("'" + text + "' is no argument; write NAME=VALUE",
                        client::Fault::Kind::Usage);
  }
  const std::string name = text.substr(0, sign);
  if (m_in.list().get(name) != nullptr) {
    refuse(name, "is given twice");
  }
  core::CimType type = core::kCimString;
  if (m_signature != nullptr) {
    const core::ParameterDeclaration* parameter = findInput(*m_signature, name);
    if (parameter == nullptr) {
      throw client::Fault("method " + method + " takes no argument '" + name + "'; it takes " +
                              listParameters(*m_signature),
                          client::Fault::Kind::Usage);
    }
    type = parameter->type;
  }
  m_in.add(makeArgument(name, type, text.substr(sign + 1)));
}

}  // namespace cli
