#include "midapi/Virtual/AdapterDescription.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <utility>

#include "midapi/BoundedJson.h"
#include "midapi/FieldReader.h"
#include "midapi/Hex.h"
#include "platform/Texts.h"

namespace ma {
namespace {

constexpr std::uint64_t kMaxPercent = 100;
constexpr std::uint64_t kMaxUint64 = std::numeric_limits<std::uint64_t>::max();

struct StateName {
  PortState state;
  std::string_view name;
};
constexpr StateName kStateNames[] = {
    {PortState::Enabled, "up"}, {PortState::Offline, "down"}, {PortState::Disabled, "disabled"}};

bool isMac(const std::string& text) {
  constexpr std::size_t kLength = 17;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (at % 3 == 2 ? text[at] != ':' : !parseHex(std::string_view(text).substr(at, 1))) {
      return false;
    }
  }
  return text.size() == kLength;
}

PortState readState(const FieldReader& fields) {
  if (fields.find("link") == nullptr) {
    return PortState::Unknown;
  }
  const auto found = std::ranges::find(kStateNames, fields.text("link"), &StateName::name);
  if (found == std::end(kStateNames)) {
    refuseField(fields.nameOf("link"), "must be \"up\", \"down\" or \"disabled\"");
  }
  return found->state;
}

std::optional<std::uint64_t> readIfThere(const FieldReader& fields, const char* field,
                                         std::uint64_t max) {
  return fields.find(field) != nullptr ? std::optional(fields.number(field, 1, max)) : std::nullopt;
}

PortDescription readPort(const FieldReader& fields) {
  PortDescription port;
  port.function = static_cast<std::uint8_t>(fields.number("function", 0, kMaxPorts - 1));
  port.mac = fields.text("mac");
  if (!isMac(port.mac)) {
    refuseField(fields.nameOf("mac"), "must be like \"02:00:00:03:00:00\"");
  }
  port.bootType = static_cast<BootType>(fields.numberOr("bootType", kMaxBootType, 0));
  port.state = readState(fields);
  port.speed = readIfThere(fields, "speed", kMaxUint64);
  port.maxSpeed = readIfThere(fields, "maxSpeed", kMaxUint64);
  port.mtu = readIfThere(fields, "mtu", kMaxUint32);
  return port;
}

std::vector<PortDescription> readPorts(const FieldReader& fields) {
  const Json& list = fields.need("ports");
  if (!list.is_array() || list.empty() || list.size() > kMaxPorts) {
    refuseField("ports", "must be a list of 1 to " + std::to_string(kMaxPorts) + " ports");
  }
  std::vector<PortDescription> ports;
  for (const Json& entry : list) {
    const std::string name = "ports[" + std::to_string(ports.size()) + "]";
    if (!entry.is_object()) {
      refuseField(name, "must be an object");
    }
    const FieldReader portFields(entry, name + ".");
    ports.push_back(readPort(portFields));
    const auto sameFunction = [&](const PortDescription& port) {
      return port.function == ports.back().function;
    };
    if (std::count_if(ports.begin(), ports.end(), sameFunction) > 1) {
      refuseField(portFields.nameOf("function"), "must differ from the other ports'");
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

Json formatPort(const PortDescription& port) {
  Json json = {{"function", port.function},
               {"mac", port.mac},
               {"bootType", static_cast<std::uint32_t>(port.bootType)}};
  const auto state = std::ranges::find(kStateNames, port.state, &StateName::state);
  if (state != std::end(kStateNames)) {
    json["link"] = state->name;
  }
  const auto setIfKnown = [&json](const char* field, const std::optional<std::uint64_t>& value) {
    if (value) {
      json[field] = *value;
    }
  };
  setIfKnown("speed", port.speed);
  setIfKnown("maxSpeed", port.maxSpeed);
  setIfKnown("mtu", port.mtu);
  return json;
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
    refuseField("pci", "must be like \"0000:03:00\"");
  }
  description.pci = *address;
  description.vendor = fields.pciId("vendorId");
  description.device = fields.pciId("deviceId");
  description.ports = readPorts(fields);
  description.writeRate = fields.numberOr("writeRate", kMaxUint64, 0);
  if (const Json* updatable = fields.find("updatable")) {
    if (!updatable->is_boolean()) {
      refuseField("updatable", "must be true or false");
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
    json["ports"].push_back(formatPort(port));
  }
  return formatJson(json);
}

std::string withChange(std::string_view text, const DescriptionChange& change) {
  Json json = parseJsonObject(text);
  const AdapterDescription before = read(json);
  bool isOther = false;
  const auto set = [&isOther](Json& object, const char* field, std::uint32_t was,
                              std::uint32_t value) {
    if (was != value) {
      object[field] = value;
      isOther = true;
    }
  };
  for (Json& port : json["ports"]) {
    const auto function = port["function"].get<std::uint8_t>();
    if (const auto found = change.bootTypes.find(function); found != change.bootTypes.end()) {
      set(port, "bootType", static_cast<std::uint32_t>(before.findPort(function)->bootType),
          static_cast<std::uint32_t>(found->second));
    }
  }
  if (change.capabilityWord) {
    set(json, "capabilityWord", before.capabilityWord, *change.capabilityWord);
  }
  return isOther ? formatJson(json) : std::string(text);
}

}  // namespace ma
