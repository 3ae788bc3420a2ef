#include "midapi/Kernel/PciFunctions.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "midapi/Hex.h"
#include "midapi/Posix/FolderNames.h"

namespace ma {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kNetworkController = 0x02;  // base class, PCI Code and ID Assignment
constexpr unsigned kBaseClassShift = 16;
constexpr std::size_t kLongestAttribute = 256;

// Returns an attribute without the line's end; nothing where it cannot be read, or not any more.
std::optional<std::string> readAttribute(const fs::path& path) {
  std::ifstream file(path);
  std::array<char, kLongestAttribute> buffer{};
  file.read(buffer.data(), buffer.size());
  if (file.bad() || file.gcount() == 0) {
    return std::nullopt;
  }
  const std::string_view text(buffer.data(), static_cast<std::size_t>(file.gcount()));
  return std::string(text.substr(0, text.find('\n')));
}

// Reads a number like "0x8086".
std::optional<std::uint32_t> readNumber(const fs::path& path) {
  const auto text = readAttribute(path);
  return text && text->starts_with("0x") ? parseHex(std::string_view(*text).substr(2))
                                         : std::nullopt;
}

std::optional<std::uint16_t> readId(const fs::path& path) {
  const auto number = readNumber(path);
  return number && *number <= UINT16_MAX ? std::optional(static_cast<std::uint16_t>(*number))
                                         : std::nullopt;
}

std::optional<PciIds> readIds(const fs::path& folder) {
  const auto vendor = readId(folder / "vendor");
  const auto device = readId(folder / "device");
  const auto subsystemVendor = readId(folder / "subsystem_vendor");
  const auto subsystemDevice = readId(folder / "subsystem_device");
  if (!vendor || !device || !subsystemVendor || !subsystemDevice) {
    return std::nullopt;
  }
  return PciIds{*vendor, *device, *subsystemVendor, *subsystemDevice};
}

// Returns the names in a folder; none where it is not there.
std::vector<std::string> namesIn(const fs::path& folder) {
  std::error_code error;
  std::vector<std::string> names = readFolderNames(folder, error);
  std::sort(names.begin(), names.end());
  return names;
}

bool isThere(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

std::string boundDriver(const fs::path& folder) {
  std::error_code error;
  return fs::read_symlink(folder / "driver", error).filename().string();
}

// Returns the folder of the network device: of virtio that is the device below the function.
fs::path networkDeviceOf(const fs::path& folder) {
  if (boundDriver(folder) == "virtio-pci") {
    for (const std::string& name : namesIn(folder)) {
      if (name.starts_with("virtio")) {
        return folder / name;
      }
    }
  }
  return folder;
}

std::vector<NetworkInterface> interfacesOf(const fs::path& device) {
  std::vector<NetworkInterface> interfaces;
  for (const std::string& name : namesIn(device / "net")) {
    interfaces.push_back({name, readAttribute(device / "net" / name / "address").value_or("")});
  }
  return interfaces;
}

fs::path devicesIn(const fs::path& sysfs) {
  return sysfs / "bus" / "pci" / "devices";
}

bool isPhysicalNetworkController(const fs::path& folder) {
  const auto classCode = readNumber(folder / "class");
  return classCode && *classCode >> kBaseClassShift == kNetworkController &&
         !isThere(folder / "physfn");
}

// Returns nothing where that is no such function, or not any more.
std::optional<PciFunction> readFunction(const fs::path& sysfs, const PortId& id) {
  const fs::path folder = devicesIn(sysfs) / toString(id);
  if (!isPhysicalNetworkController(folder)) {
    return std::nullopt;
  }
  const auto ids = readIds(folder);
  if (!ids) {
    return std::nullopt;
  }
  const fs::path device = networkDeviceOf(folder);
  return PciFunction{id,
                     *ids,
                     boundDriver(device),
                     interfacesOf(device),
                     folder,
                     isThere(folder / "rom"),
                     isThere(folder / "vpd")};
}

}  // namespace

std::vector<PciFunction> findPciFunctions(const fs::path& sysfs) {
  std::vector<PciFunction> functions;
  for (const std::string& name : namesIn(devicesIn(sysfs))) {
    const auto id = parseCanonicalPortId(name);
    if (auto function = id ? readFunction(sysfs, *id) : std::nullopt) {
      functions.push_back(std::move(*function));
    }
  }
  std::sort(functions.begin(), functions.end(),
            [](const PciFunction& one, const PciFunction& other) { return one.id < other.id; });
  return functions;
}

std::vector<PciFunction> findPciFunctions(const fs::path& sysfs, const AdapterAddress& adapter) {
  std::vector<PciFunction> functions;
  for (std::uint8_t number = 0; number < kMaxPorts; ++number) {
    if (auto function = readFunction(sysfs, {adapter, number})) {
      functions.push_back(std::move(*function));
    }
  }
  return functions;
}

bool hasPciFunctions(const fs::path& sysfs, const AdapterAddress& adapter) {
  for (std::uint8_t function = 0; function < kMaxPorts; ++function) {
    const fs::path folder = devicesIn(sysfs) / toString(PortId{adapter, function});
    if (isPhysicalNetworkController(folder) && readIds(folder)) {
      return true;
    }
  }
  return false;
}

}  // namespace ma
