#include "tests/midapi/Kernel/SysfsFixture.h"

#include <fstream>

namespace test {
namespace {

namespace fs = std::filesystem;

void write(const fs::path& path, const std::string& text) {
  std::ofstream(path) << text << '\n';
}

}  // namespace

SysfsFixture::SysfsFixture() {
  for (const char* folder : {"bus/pci/devices", "bus/pci/drivers", "class/net", "devices"}) {
    fs::create_directories(root() / folder);
  }
}

fs::path SysfsFixture::folder(const std::string& pci) const {
  return root() / "devices" / "pci0000:00" / pci;
}

void SysfsFixture::addFunction(const std::string& pci) const {
  fs::create_directories(folder(pci));
  fs::create_directory_symlink(folder(pci), root() / "bus/pci/devices" / pci);
  setAttribute(pci, "class", "0x020000");
  setAttribute(pci, "vendor", "0x8086");
  setAttribute(pci, "device", "0x10d3");
  setAttribute(pci, "subsystem_vendor", "0x1af4");
  setAttribute(pci, "subsystem_device", "0x1100");
}

void SysfsFixture::setAttribute(const std::string& pci, const std::string& name,
                                const std::string& text) const {
  write(folder(pci) / name, text);
}

void SysfsFixture::bindDriver(const std::string& pci, const std::string& driver) const {
  const fs::path target = root() / "bus/pci/drivers" / driver;
  fs::create_directories(target);
  fs::create_directory_symlink(target, folder(pci) / "driver");
}

void SysfsFixture::addInterface(const std::string& pci, const std::string& name,
                                const std::string& mac, const std::string& below) const {
  const fs::path device = folder(pci) / below;
  const fs::path interface = device / "net" / name;
  fs::create_directories(interface);
  fs::create_directory_symlink(device, interface / "device");
  write(interface / "address", mac);
  fs::create_directory_symlink(interface, root() / "class/net" / name);
}

void SysfsFixture::setLink(const std::string& name, const std::string& attribute,
                           const std::string& text) const {
  write(root() / "class/net" / name / attribute, text);
}

void SysfsFixture::addVirtualInterface(const std::string& name) const {
  const fs::path interface = root() / "devices/virtual/net" / name;
  fs::create_directories(interface);
  write(interface / "address", "02:00:00:00:00:09");
  fs::create_directory_symlink(interface, root() / "class/net" / name);
}

}  // namespace test
