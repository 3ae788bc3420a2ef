#include "midapi/AdapterDescription.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "midapi/BoundedJson.h"
#include "midapi/Hex.h"
#include "platform/Texts.h"

namespace ma {
namespace {

constexpr std::uint64_t kMaxUint32 = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t kMaxPercent = 100;
constexpr auto kMaxBootType = static_cast<std::uint64_t>(BootType::Uefi);

[[noreturn]] void refuse(const std::string& field, const std::string& demand) {
  throw DescriptionFault("field " + field + ": " + demand);
}

// The fields of one JSON object, each checked as it is read; `prefix` is where the object stands.
class FieldReader {
 public:
  FieldReader(const Json& object, std::string prefix)
      : m_object(object), m_prefix(std::move(prefix)) {}

  [[nodiscard]] std::string nameOf(const char* field) const { return m_prefix + field; }

  [[nodiscard]] const Json* find(const char* field) const {
    const auto found = m_object.find(field);
    return found == m_object.end() ? nullptr : &*found;
  }

  [[nodiscard]] const Json& need(const char* field) const {
    const Json* value = find(field);
    if (value == nullptr) {
      refuse(nameOf(field), "is missing");
    }
    return *value;
  }

  [[nodiscard]] std::string text(const char* field) const {
    const Json& value = need(field);
    if (!value.is_string()) {
      refuse(nameOf(field), "must be a text");
    }
    return platform::fromUtf8(value.get<std::string>());
  }

  [[nodiscard]] std::uint64_t number(const char* field, std::uint64_t min,
                                     std::uint64_t max) const {
    const Json& value = need(field);
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() < min ||
        value.get<std::uint64_t>() > max) {
      refuse(nameOf(field),
             "must be a whole number from " + std::to_string(min) + " to " + std::to_string(max));
    }
    return value.get<std::uint64_t>();
  }

  [[nodiscard]] std::uint64_t numberOr(const char* field, std::uint64_t max,
                                       std::uint64_t fallback) const {
    return find(field) == nullptr ? fallback : number(field, 0, max);
  }

  [[nodiscard]] std::uint16_t pciId(const char* field) const {
    const std::string digits = text(field);
    const auto value = digits.size() == 4 ? parseHex(digits) : std::nullopt;
    if (!value) {
      refuse(nameOf(field), "must be four hexadecimal digits, like \"1af4\"");
    }
    return static_cast<std::uint16_t>(*value);
  }

  [[nodiscard]] std::optional<FieldReader> object(const char* field) const {
    const Json* value = find(field);
    if (value == nullptr) {
      return std::nullopt;
    }
    if (!value->is_object()) {
      refuse(nameOf(field), "must be an object");
    }
    return FieldReader(*value, nameOf(field) + ".");
  }

 private:
  const Json& m_object;
  std::string m_prefix;
};

bool isMac(const std::string& text) {
  constexpr std::size_t kLength = 17;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (at % 3 == 2 ? text[at] != ':' : !parseHex(std::string_view(text).substr(at, 1))) {
      return false;
    }
  }
  return text.size() == kLength;
}

PortDescription readPort(const FieldReader& fields) {
  PortDescription port;
  port.function = static_cast<std::uint8_t>(fields.number("function", 0, kMaxPorts - 1));
  port.mac = fields.text("mac");
  if (!isMac(port.mac)) {
    refuse(fields.nameOf("mac"), "must be like \"02:00:00:03:00:00\"");
  }
  port.bootType = static_cast<BootType>(fields.numberOr("bootType", kMaxBootType, 0));
  return port;
}

std::vector<PortDescription> readPorts(const FieldReader& fields) {
  const Json& list = fields.need("ports");
  if (!list.is_array() || list.empty() || list.size() > kMaxPorts) {
    refuse("ports", "must be a list of 1 to " + std::to_string(kMaxPorts) + " ports");
  }
  std::vector<PortDescription> ports;
  for (const Json& entry : list) {
    const std::string name = "ports[" + std::to_string(ports.size()) + "]";
    if (!entry.is_object()) {
      refuse(name, "must be an object");
    }
    const FieldReader portFields(entry, name + ".");
    ports.push_back(readPort(portFields));
    const auto sameFunction = [&](const PortDescription& port) {
      return port.function == ports.back().function;
    };
    if (std::count_if(ports.begin(), ports.end(), sameFunction) > 1) {
      refuse(portFields.nameOf("function"), "must differ from the other ports'");
    }
  }
  std::sort(ports.begin(), ports.end(), [](const PortDescription& a, const PortDescription& b) {
    return a.function < b.function;
  });
  return ports;
}

InjectedFault readFault(const FieldReader& fields) {
  return {static_cast<std::uint32_t>(fields.number("code", 1, kMaxUint32)), fields.text("text")};
}

std::uint32_t readPercent(const FieldReader& fields) {
  return static_cast<std::uint32_t>(fields.number("atPercent", 0, kMaxPercent));
}

void readFaults(const FieldReader& fields, AdapterDescription& description) {
  if (const auto write = fields.object("write")) {
    description.writeFault = InjectedWriteFault{readPercent(*write), readFault(*write)};
  }
  if (const auto hang = fields.object("hang")) {
    description.hangAtPercent = readPercent(*hang);
  }
  if (const auto word = fields.object("capabilityWord")) {
    description.capabilityWordFault = readFault(*word);
  }
}

Json formatFault(const InjectedFault& fault) {
  return {{"code", fault.code}, {"text", platform::toUtf8(fault.text)}};
}

Json formatFaults(const AdapterDescription& description) {
  Json faults = Json::object();
  if (description.writeFault) {
    faults["write"] = {{"atPercent", description.writeFault->atPercent}};
    faults["write"].update(formatFault(description.writeFault->fault));
  }
  if (description.hangAtPercent) {
    faults["hang"] = {{"atPercent", *description.hangAtPercent}};
  }
  if (description.capabilityWordFault) {
    faults["capabilityWord"] = formatFault(*description.capabilityWordFault);
  }
  return faults;
}

AdapterDescription read(const Json& json) {
  const FieldReader fields(json, "");
  AdapterDescription description;
  description.name = fields.text("name");
  const auto address = parseAdapterAddress(fields.text("pci"));
  if (!address) {
    refuse("pci", "must be like \"0000:03:00\"");
  }
  description.pci = *address;
  description.vendor = fields.pciId("vendorId");
  description.device = fields.pciId("deviceId");
  description.ports = readPorts(fields);
  description.writeRate =
      fields.numberOr("writeRate", std::numeric_limits<std::uint64_t>::max(), 0);
  if (const Json* updatable = fields.find("updatable")) {
    if (!updatable->is_boolean()) {
      refuse("updatable", "must be true or false");
    }
    description.isUpdatable = updatable->get<bool>();
  }
  description.capabilityWord =
      static_cast<std::uint32_t>(fields.numberOr("capabilityWord", kMaxUint32, 0));
  if (const auto faults = fields.object("faults")) {
    readFaults(*faults, description);
  }
  return description;
}

}  // namespace

const PortDescription* AdapterDescription::findPort(std::uint8_t function) const {
  const auto found =
      std::find_if(ports.begin(), ports.end(),
                   [function](const PortDescription& port) { return port.function == function; });
  return found == ports.end() ? nullptr : &*found;
}

AdapterDescription parseDescription(std::string_view text) {
  return read(parseJsonObject(text));
}

std::string formatDescription(const AdapterDescription& description) {
  Json json = {
      {"name", platform::toUtf8(description.name)},
      {"pci", toString(description.pci)},
      {"vendorId", hexText(description.vendor, 4)},
      {"deviceId", hexText(description.device, 4)},
      {"ports", Json::array()},
      {"writeRate", description.writeRate},
      {"updatable", description.isUpdatable},
      {"capabilityWord", description.capabilityWord},
      {"faults", formatFaults(description)},
  };
  for (const PortDescription& port : description.ports) {
    json["ports"].push_back({{"function", port.function},
                             {"mac", port.mac},
                             {"bootType", static_cast<std::uint32_t>(port.bootType)}});
  }
  return formatJson(json);
}

std::string withBootType(std::string_view text, std::uint8_t function, BootType bootType) {
  Json json = parseJsonObject(text);
  static_cast<void>(read(json));
  for (Json& port : json["ports"]) {
    if (port["function"] == function) {
      port["bootType"] = static_cast<std::uint32_t>(bootType);
    }
  }
  return formatJson(json);
}

std::string withCapabilityWord(std::string_view text, std::uint32_t word) {
  Json json = parseJsonObject(text);
  static_cast<void>(read(json));
  json["capabilityWord"] = word;
  return formatJson(json);
}

}  // namespace ma
