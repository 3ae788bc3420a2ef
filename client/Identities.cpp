#include "client/Identities.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>

#include "Utils/Exception.h"
#include "Utils/Printable.h"
#include "client/ClassNames.h"
#include "client/ErrorRecords.h"
#include "client/Fault.h"
#include "client/IdentityInfo.h"
#include "client/ServedClasses.h"
#include "core/CimPath.h"
#include "platform/FileLook.h"
#include "platform/Texts.h"

namespace client {
namespace {

// The values of ImageKind.
constexpr unsigned kFirmwareFile = 4;

using Texts = std::vector<std::string>;

Identity readIdentity(const InstanceSnapshot& instance) {
  Identity identity;
  identity.path = instance.path;
  identity.instanceId = instance.value<std::string>("InstanceID");
  identity.name = instance.value<std::string>("Name");
  identity.version = instance.value<std::string>("VersionString");
  identity.types = instance.value<Texts>("TargetTypes");
  identity.devices = findIdentityInfo(instance, kDeviceInfo);
  identity.isFile = instance.value<unsigned>("ImageKind") == kFirmwareFile;
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
  return identity.isFile &&
         platform::areOneFile(platform::toPath(identity.name), platform::toPath(text));
}

bool isItsFileName(const Identity& identity, const std::string& text) {
  return identity.isFile && platform::toPath(identity.name).filename() == platform::toPath(text);
}

struct Meaning {
  bool (*isMeant)(const Identity&, const std::string&);
  bool looksAtFiles;
};

// The first that holds for any identity decides.
constexpr Meaning kMeanings[] = {
    {isItsObjectPath, false},
    {isItsName, false},
    {isItsFile, true},
    {isItsFileName, false},
};

void appendLines(std::string& text, const char* heading, const Texts& lines) {
  for (const std::string& line : lines) {
    text += "\n  " + std::string(heading) + utils::toPrintable(line);
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

std::vector<Adapter> readAdapters(Connection& connection) {
  std::vector<Adapter> adapters;
  for (const InstanceSnapshot& instance : getInstances(connection, kAdapterClass)) {
    adapters.push_back({instance.path, instance.value<std::string>("DeviceID")});
  }
  return adapters;
}

// States by the object paths of identity and adapter.
using States = std::map<std::pair<std::string, std::string>, std::string>;

States readStates(Connection& connection) {
  States states;
  for (const InstanceSnapshot& instance : getInstances(connection, kComparisonClass)) {
    states[{instance.value<std::string>("Antecedent"), instance.value<std::string>("Dependent")}] =
        instance.value<std::string>("Comparison");
  }
  return states;
}

}  // namespace

IdentityList readIdentities(Connection& connection) {
  IdentityList list;
  list.isRemote = connection.isRemote();
  ErrorRecords& records = ErrorRecords::instance();
  records.start();
  for (const InstanceSnapshot& instance : demandInstances(connection, kIdentityClass)) {
    list.identities.push_back(readIdentity(instance));
  }
  for (const std::string& message : records.take()) {
    if (std::find(list.skipped.begin(), list.skipped.end(), message) == list.skipped.end()) {
      list.skipped.push_back(message);
    }
  }
  return list;
}

const Identity& findIdentity(const IdentityList& list, const std::string& text) {
  for (const auto& [isMeant, looksAtFiles] : kMeanings) {
    if (looksAtFiles && list.isRemote) {
      continue;
    }
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

std::vector<ComparedIdentity> compareFiles(Connection& connection,
                                           const std::vector<Identity>& identities) {
  const std::vector<Adapter> adapters = readAdapters(connection);
  const States states = readStates(connection);
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

}  // namespace client
