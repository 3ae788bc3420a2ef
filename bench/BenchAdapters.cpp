#include "bench/BenchAdapters.h"

#include "Os/Environment.h"
#include "agent/SoftwareUpdateAgent.h"
#include "core/CimBroker.h"
#include "inventory/SoftwareInventoryAgent.h"
#include "midapi/Virtual/VirtualAdapters.h"
#include "tests/support/RomBuilder.h"

namespace bench {
namespace {

constexpr std::size_t kUnit = 512;  // in which a ROM image states its size
constexpr std::uint16_t kVendor = 0x1AF4;
constexpr std::uint16_t kDevice = 0x1041;
constexpr unsigned kPorts = 2;
constexpr std::size_t kDevicesPerBus = 32;  // as on a PCI bus
constexpr const char* kRomName = "image.rom";
constexpr const char* kSlowRomName = "slow.rom";
constexpr std::uint8_t kSlowBus = 0xFF;  // the last: the others fill theirs from 0
constexpr const char* kAdaptersName = "adapters";

}  // namespace

void registerAgents() {
  static const bool isRegistered = [] {
    static core::SoftwareUpdateAgent agent;
    // In the order in which a host loads the modules.
    inventory::addSoftwareInventoryAgent();
    core::GetCimBroker().addAgent(&agent);
    return true;
  }();
  static_cast<void>(isRegistered);
}

std::vector<std::uint8_t> makeRom(std::size_t bytes) {
  return test::RomBuilder()
      .add(test::RomImage::efi()
               .device(kVendor, kDevice)
               .units(static_cast<std::uint16_t>(bytes / kUnit)))
      .build();
}

Adapters::Adapters(std::size_t count, std::size_t romBytes) {
  const std::filesystem::path rom = m_directory.write(kRomName, makeRom(romBytes));
  const ma::VirtualAdapters store(m_directory.path() / kAdaptersName);
  for (std::size_t index = 0; index < count; ++index) {
    ma::AdapterSpec spec;
    spec.pci.bus = static_cast<std::uint8_t>(index / kDevicesPerBus);
    spec.pci.device = static_cast<std::uint8_t>(index % kDevicesPerBus);
    spec.name = "Benchmark adapter";
    spec.vendor = kVendor;
    spec.device = kDevice;
    spec.ports = kPorts;
    spec.rom = rom;
    spec.writeRate = 0;
    store.add(spec);
  }
  select();
}

Adapters::~Adapters() = default;

void Adapters::select() const {
  os::setEnvironment("ORVEX_ADAPTERS", (m_directory.path() / kAdaptersName).string());
}

std::string Adapters::addSlow(std::size_t romBytes, std::uint64_t rate) const {
  ma::AdapterSpec spec;
  spec.pci.bus = kSlowBus;
  spec.name = "Slow benchmark adapter";
  spec.vendor = kVendor;
  spec.device = kDevice;
  spec.rom = m_directory.write(kSlowRomName, makeRom(romBytes));
  spec.writeRate = rate;
  ma::VirtualAdapters(m_directory.path() / kAdaptersName).add(spec);
  return "0000:ff:00.0";
}

std::string Adapters::slowRomUri() const {
  return "file://" + (m_directory.path() / kSlowRomName).string();
}

std::string Adapters::romUri() const {
  return "file://" + (m_directory.path() / kRomName).string();
}

}  // namespace bench
