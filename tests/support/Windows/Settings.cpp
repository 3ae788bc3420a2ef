#include "tests/support/Settings.h"

#include <optional>

#include "tests/support/Windows/MachineRegistry.h"

namespace test {
namespace {

constexpr const char* kRoot = "SOFTWARE\\ZOLAN\\Network_Services";

struct Place {
  const char* key;  // under the root
  const char* name;
};
constexpr Place kPlaces[] = {{"Quorvel", "Timeout"},          {"Quorvel", "Namespace"},
                             {"RAVL", "OEMCustomizeable"},    {"Quorvel", "FWFilePath"},
                             {"Quorvel", "MaxImageSize"},     {"Quorvel", "Adapters"},
                             {"Quorvel", "TrustDriverCheck"}, {"Quorvel", "FirmwareFolder"}};

}  // namespace

struct Settings::Store {
  MachineRegistry registry;
  std::optional<OwnMachineRegistry> own;
};

Settings::Settings(SettingsScope scope) : m_store(std::make_unique<Store>()) {
  if (scope == SettingsScope::Process) {
    m_store->own.emplace();
  }
  remove();
}

Settings::~Settings() {
  remove();
}

std::string Settings::path() const {
  return {};
}

std::vector<std::string> Settings::options() const {
  return {};
}

std::string Settings::place() const {
  return std::string("HKEY_LOCAL_MACHINE\\") + kRoot + "\\Quorvel";
}

void Settings::write(const std::map<std::string, Value>& values) {
  const MachineRegistry& registry = m_store->registry;
  for (const Place& place : kPlaces) {
    const std::string key = std::string(kRoot) + "\\" + place.key;
    const auto found = values.find(place.name);
    if (found == values.end()) {
      registry.removeValue(key, place.name);
    } else if (const auto* text = std::get_if<std::string>(&found->second)) {
      registry.writeText(key, place.name, *text);
    } else {
      registry.writeNumber(key, place.name, std::get<std::uint32_t>(found->second));
    }
  }
}

void Settings::remove() {
  m_store->registry.removeTree(kRoot);
}

}  // namespace test
