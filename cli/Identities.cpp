#include "cli/Identities.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <system_error>
#include <utility>

#include "Os/Texts.h"
#include "Utils/Exception.h"
#include "cli/Context.h"
#include "cli/ErrorRecords.h"
#include "cli/Output.h"
#include "cli/ServedClasses.h"
#include "core/CimPath.h"

namespace cli {
namespace {

constexpr const char* kIdentityClass = "Orvex_SoftwareIdentity";
constexpr const char* kAdapterClass = "Orvex_PortController";
constexpr const char* kComparisonClass = "Orvex_ElementSoftwareIdentity";
constexpr const char* kDeviceInfo = "Orvex:PCIDevice";

// The values of ImageKind.
constexpr unsigned kFirmwareFile = 4;

using Texts = std::vector<std::string>;

Json propertiesOf(core::CimInstance& instance) {
  return propertiesToJson(instance.getProperties(), NullProperties::Left);
}

Texts findDevices(const Json& properties) {
  const Texts kinds = properties.value("IdentityInfoType", Texts());
  const Texts values = properties.value("IdentityInfoValue", Texts());
  Texts devices;
  for (std::size_t i = 0; i < std::min(kinds.size(), values.size()); ++i) {
    if (kinds[i] == kDeviceInfo) {
      devices.push_back(values[i]);
    }
  }
  return devices;
}

Identity readIdentity(core::CimInstance& instance) {
  const Json properties = propertiesOf(instance);
  Identity identity;
  identity.path = instance.getPath();
  identity.instanceId = properties.value("InstanceID", std::string());
  identity.name = properties.value("Name", std::string());
  identity.version = properties.value("VersionString", std::string());
  identity.types = properties.value("TargetTypes", Texts());
  identity.devices = findDevices(properties);
  identity.isFile = properties.value("ImageKind", 0U) == kFirmwareFile;
  return identity;
}

std::optional<core::CimPath> tryParsePath(const std::string& text) {
  try {
    return core::CimPath(text);
  } catch (const utils::ESyntaxError&) {
    return std::nullopt;
  }
}

// ---- what a text may be to an identity

bool isItsObjectPath(const Identity& identity, const std::string& text) {
  const std::optional<core::CimPath> wanted = tryParsePath(text);
  const core::CimPath own(identity.path);
  return wanted && wanted->getClassName() == own.getClassName() &&
         std::equal(wanted->begin(), wanted->end(), own.begin(), own.end());
}

bool isItsName(const Identity& identity, const std::string& text) {
  return identity.instanceId == text || (identity.isFile && identity.name == text);
}

bool isItsFile(const Identity& identity, const std::string& text) {
  std::error_code error;
  return identity.isFile &&
         std::filesystem::equivalent(os::toPath(identity.name), os::toPath(text), error);
}

bool isItsFileName(const Identity& identity, const std::string& text) {
  return identity.isFile && os::toPath(identity.name).filename() == os::toPath(text);
}

// The first that holds for any identity decides.
constexpr bool (*kMeanings[])(const Identity&, const std::string&) = {
    isItsObjectPath,
    isItsName,
    isItsFile,
    isItsFileName,
};

void appendLines(std::string& text, const char* heading, const Texts& lines) {
  for (const std::string& line : lines) {
    text += "\n  " + std::string(heading) + line;
  }
}

[[noreturn]] void refuseUnknown(const IdentityList& list, const std::string& text) {
  Texts files;
  for (const Identity& identity : list.identities) {
    if (identity.isFile) {
      files.push_back(identity.name);
    }
  }
  std::string message = "there is no software identity '" + text + "'; ";
  message += files.empty() ? "no firmware file was found ('quorvel identities' says where it looks)"
                           : "the firmware files are:";
  appendLines(message, "", files);
  appendLines(message, "skipped: ", list.skipped);
  throw Fault(message);
}

[[noreturn]] void refuseAmbiguous(const std::vector<const Identity*>& found,
                                  const std::string& text) {
  std::string message = "'" + text + "' names several software identities; name one of:";
  for (const Identity* identity : found) {
    appendLines(message, "", {identity->label()});
  }
  throw Fault(message);
}

// ---- comparisons

struct Adapter {
  std::string path;
  std::string identifier;
};

std::vector<Adapter> readAdapters(core::CimBroker& broker) {
  std::vector<Adapter> adapters;
  for (core::CimInstance* instance : broker.getInstances(kAdapterClass)) {
    adapters.push_back(
        {instance->getPath(), propertiesOf(*instance).value("DeviceID", std::string())});
  }
  return adapters;
}

// States by the object paths of identity and adapter.
using States = std::map<std::pair<std::string, std::string>, std::string>;

States readStates(core::CimBroker& broker) {
  States states;
  for (core::CimInstance* instance : broker.getInstances(kComparisonClass)) {
    const Json properties = propertiesOf(*instance);
    states[{properties.value("Antecedent", std::string()),
            properties.value("Dependent", std::string())}] =
        properties.value("Comparison", std::string());
  }
  return states;
}

}  // namespace

IdentityList readIdentities(core::CimBroker& broker) {
  demandServed(broker, kIdentityClass);
  IdentityList list;
  ErrorRecords& records = ErrorRecords::instance();
  records.start();
  for (core::CimInstance* instance : broker.getInstances(kIdentityClass)) {
    list.identities.push_back(readIdentity(*instance));
  }
  for (const std::string& message : records.take()) {
    if (std::find(list.skipped.begin(), list.skipped.end(), message) == list.skipped.end()) {
      list.skipped.push_back(message);
    }
  }
  return list;
}

const Identity& findIdentity(const IdentityList& list, const std::string& text) {
  for (const auto isMeant : kMeanings) {
    std::vector<const Identity*> found;
    for (const Identity& identity : list.identities) {
      if (isMeant(identity, text)) {
        found.push_back(&identity);
      }
    }
    if (found.size() > 1) {
      refuseAmbiguous(found, text);
    }
    if (!found.empty()) {
      return *found.front();
    }
  }
  refuseUnknown(list, text);
}

std::vector<ComparedIdentity> compareFiles(core::CimBroker& broker,
                                           const std::vector<Identity>& identities) {
  const std::vector<Adapter> adapters = readAdapters(broker);
  const States states = readStates(broker);
  std::vector<ComparedIdentity> compared;
  for (const Identity& identity : identities) {
    if (!identity.isFile) {
      continue;
    }
    compared.push_back({identity, {}});
    for (const Adapter& adapter : adapters) {
      const auto state = states.find({identity.path, adapter.path});
      compared.back().adapters.push_back(
          {adapter.identifier, state != states.end() ? state->second : kNotForAdapter});
    }
  }
  return compared;
}

}  // namespace cli
