#include "wbem/Installation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iterator>
#include <string_view>

#include "Utils/Ascii.h"
#include "Utils/Exception.h"
#include "cimxml/Characters.h"
#include "core/CimPath.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "core/FirmwareReader.h"

namespace wbem {
namespace {

constexpr std::string_view kMethods[] = {"InstallFromURI", "InstallFromSoftwareIdentity"};
constexpr std::string_view kCheck = "CheckSoftwareIdentity";

constexpr const char* kSoftwareClass = "Orvex_SoftwareIdentity";
// Values of ImageKind.
constexpr std::uint32_t kInstalledComponent = 2;
constexpr std::uint32_t kFirmwareFile = 4;

constexpr const char* kNotKnown = "not known: ";

// Each is the client's and may be long.
constexpr std::size_t kMostBytesTold = 2048;

template <class Property>
const Property* find(core::CimPropertyList& list, const char* name, core::CimType type) {
  const core::CimProperty* property = list.get(name);
  return property != nullptr && !property->isNull() && property->getType() == type
             ? static_cast<const Property*>(property)
             : nullptr;
}

std::string textOf(core::CimPropertyList& list, const char* name) {
  const auto* text = find<core::CimPropertyString>(list, name, core::kCimString);
  return text != nullptr ? text->getValue() : "";
}

// Returns a key of the object that an argument refers to.
std::string keyOf(core::CimPropertyList& arguments, const char* name, const char* key) {
  const auto* reference = find<core::CimPropertyRef>(arguments, name, core::kCimReference);
  if (reference == nullptr) {
    return "";
  }
  try {
    const core::CimPath path(reference->toString());
    const auto found = path.find(key);
    return found != path.end() ? found->second : "";
  } catch (const utils::ESyntaxError&) {
    return "";  // which the method refuses
  }
}

// Returns the path that a text stands for; a text without the prefix as it is.
std::string withoutPrefix(const std::string& text, std::string_view prefix) {
  const std::string_view begin = std::string_view(text).substr(0, prefix.size());
  return utils::isSameIgnoringCase(begin, prefix) ? text.substr(prefix.size()) : text;
}

std::string fileOf(core::CimPropertyList& arguments) {
  if (const std::string uri = textOf(arguments, "URI"); !uri.empty()) {
    return withoutPrefix(uri, "file://");
  }
  return withoutPrefix(keyOf(arguments, "Source", "InstanceID"), "Orvex:FirmwareFile:");
}

std::string optionsOf(core::CimPropertyList& arguments) {
  const auto* numbers =
      find<core::CimPropertyUint16_arr>(arguments, "InstallOptions", core::kCimUint16Array);
  const auto* values =
      find<core::CimPropertyString_arr>(arguments, "InstallOptionsValues", core::kCimStringArray);
  std::string text;
  for (std::size_t i = 0; numbers != nullptr && i < numbers->getValue().size(); ++i) {
    text += (i == 0 ? "" : ", ") + std::to_string(numbers->getValue()[i]);
    if (values != nullptr && i < values->getValue().size() && !values->getValue()[i].empty()) {
      text += "=" + values->getValue()[i];
    }
    if (text.size() > kMostBytesTold) {
      break;
    }
  }
  return text;
}

// Returns whether the component, whose name is that of its adapter and its place there, is on the
// adapter, or on the adapter of that port.
bool isOn(const std::string& component, const std::string& adapter) {
  const std::string owner = component.substr(0, component.rfind('/'));
  return !owner.empty() && (adapter == owner || adapter.starts_with(owner + "."));
}

std::string join(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) {
    joined += (joined.empty() ? "" : "+") + text;
  }
  return joined;
}

// Appends the types and the version of a piece of software.
void appendVersion(std::string& text, core::CimPropertyList& software) {
  const auto* types =
      find<core::CimPropertyString_arr>(software, "TargetTypes", core::kCimStringArray);
  text += (text.empty() ? "" : ", ") + (types != nullptr ? join(types->getValue()) + " " : "") +
          textOf(software, "VersionString");
}

struct Versions {
  std::string installed;  // on the adapter
  std::string offered;    // by the file
};

Versions listVersions(core::CimBroker& broker, const std::string& adapter,
                      const std::string& file) {
  Versions versions;
  for (core::CimInstance* const software : broker.getInstances(kSoftwareClass)) {
    core::CimPropertyList& properties = software->getProperties();
    const auto* kind = find<core::CimPropertyUint32>(properties, "ImageKind", core::kCimUint32);
    const std::string name = textOf(properties, "Name");
    if (kind != nullptr && kind->getValue() == kInstalledComponent && isOn(name, adapter)) {
      appendVersion(versions.installed, properties);
    } else if (kind != nullptr && kind->getValue() == kFirmwareFile && name == file) {
      appendVersion(versions.offered, properties);
    }
  }
  return versions;
}

Versions tellVersions(core::CimBroker& broker, const std::string& adapter,
                      const std::string& file) {
  try {
    return listVersions(broker, adapter, file);
  } catch (const std::exception& exception) {
    return {std::string(kNotKnown) + exception.what(), ""};
  }
}

bool installs(const std::string& method) {
  return std::find(std::begin(kMethods), std::end(kMethods), method) != std::end(kMethods);
}

}  // namespace

std::string findFile(const std::string& method, core::CimPropertyList& arguments) {
  return installs(method) || method == kCheck ? fileOf(arguments) : "";
}

std::optional<Installation> describeInstallation(const std::string& method,
                                                 core::CimPropertyList& arguments) {
  if (!installs(method)) {
    return std::nullopt;
  }
  Installation installation;
  installation.adapter = cimxml::shorten(keyOf(arguments, "Target", "DeviceID"), kMostBytesTold);
  installation.file = fileOf(arguments);
  installation.options = cimxml::shorten(optionsOf(arguments), kMostBytesTold);
  return installation;
}

void fillInVersions(core::CimBroker& broker, Installation& installation) {
  Versions versions = tellVersions(broker, installation.adapter, installation.file);
  installation.oldVersions = std::move(versions.installed);
  installation.newVersions = std::move(versions.offered);
}

void fillInContent(core::CimBroker& broker, std::span<const std::uint8_t> content,
                   Installation& installation) {
  for (const core::CimAgent* agent : broker.getAgents()) {
    const auto* reader = dynamic_cast<const core::FirmwareReader*>(agent);
    try {
      const std::string versions = reader != nullptr ? reader->describeFirmware(content) : "";
      if (!versions.empty()) {
        installation.newVersions = versions;
        return;
      }
    } catch (const std::exception& exception) {
      installation.newVersions = std::string(kNotKnown) + exception.what();
    }
  }
}

std::string describeInstalled(core::CimBroker& broker, const std::string& adapter) {
  return tellVersions(broker, adapter, "").installed;
}

std::vector<std::pair<std::string, std::string>> toDetails(const Installation& installation) {
  const std::pair<const char*, const std::string&> all[] = {
      {"adapter", installation.adapter}, {"file", installation.file},
      {"sha256", installation.sha256},   {"options", installation.options},
      {"old", installation.oldVersions}, {"new", installation.newVersions},
      {"job", installation.job},
  };
  std::vector<std::pair<std::string, std::string>> details;
  for (const auto& [name, value] : all) {
    if (!value.empty()) {
      details.emplace_back(name, cimxml::shorten(value, kMostBytesTold));
    }
  }
  return details;
}

}  // namespace wbem
