#include "midapi/Kernel/PciFunctions.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>

#include "midapi/Hex.h"

namespace ma {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kNetworkController = 0x02;  // base class, PCI Code and ID Assignment
constexpr unsigned kBaseClassShift = 16;
constexpr std::size_t kLongestAttribute = 256;

using Interfaces = std::map<PortId, std::vector<NetworkInterface>>;

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
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool isThere(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error);
}

// Returns the PCI function of an interface's device: that device, or for virtio the one above it.
std::optional<PortId> functionOf(const fs::path& interface) {
  std::error_code error;
  const fs::path device = fs::canonical(interface / "device", error);
  if (error) {
    return std::nullopt;
  }
  const std::string name = device.filename().string();
  return parseCanonicalPortId(name.starts_with("virtio") ? device.parent_path().filename().string()
                                                         : name);
}

Interfaces findInterfaces(const fs::path& sysfs) {
  Interfaces interfaces;
  const fs::path folder = sysfs / "class" / "net";
  for (const std::string& name : namesIn(folder)) {
    if (const auto function = functionOf(folder / name)) {
      interfaces[*function].push_back(
          {name, readAttribute(folder / name / "address").value_or("")});
    }
  }
  return interfaces;
}

std::string boundDriver(const fs::path& folder) {
  std::error_code error;
  return fs::read_symlink(folder / "driver", error).filename().string();
}

// Returns the driver of the network device: of virtio that is the device below the function.
std::string driverOf(const fs::path& folder) {
  std::string driver = boundDriver(folder);
  if (driver != "virtio-pci") {
    return driver;
  }
  for (const std::string& name : namesIn(folder)) {
    if (name.starts_with("virtio")) {
      return boundDriver(folder / name);
    }
  }
  return driver;
}

fs::path devicesIn(const fs::path& sysfs) {
  return sysfs / "bus" / "pci" / "devices";
}

bool isPhysicalNetworkController(const fs::path& folder) {
  const auto classCode = readNumber(folder / "class");
  return classCode && *classCode >> kBaseClassShift == kNetworkController &&
         !isThere(folder / "physfn");
}

}  // namespace

std::vector<PciFunction> findPciFunctions(const fs::path& sysfs) {
  std::vector<PciFunction> functions;
  Interfaces interfaces = findInterfaces(sysfs);
  const fs::path devices = devicesIn(sysfs);
  for (const std::string& name : namesIn(devices)) {
    const fs::path folder = devices / name;
    const auto id = parseCanonicalPortId(name);
    if (!id || !isPhysicalNetworkController(folder)) {
      continue;
    }
    if (const auto ids = readIds(folder)) {
      functions.push_back({*id, *ids, driverOf(folder), std::move(interfaces[*id]), folder,
                           isThere(folder / "rom"), isThere(folder / "vpd")});
    }
  }
  std::sort(functions.begin(), functions.end(),
            [](const PciFunction& one, const PciFunction& other) { return one.id < other.id; });
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
