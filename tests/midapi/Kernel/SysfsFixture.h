// A folder that imitates sysfs: PCI functions with their attributes, drivers and interfaces, in the
// places where the kernel shows them.

#ifndef ORVEX_TESTS_MIDAPI_KERNEL_SYSFSFIXTURE_H_
#define ORVEX_TESTS_MIDAPI_KERNEL_SYSFSFIXTURE_H_

#include <filesystem>
#include <string>

#include "tests/support/TempDirectory.h"

namespace test {

class SysfsFixture {
 public:
  SysfsFixture();

  [[nodiscard]] const std::filesystem::path& root() const { return m_directory.path(); }
  // Where the kernel keeps the function; /sys/bus/pci/devices has a link to it.
  [[nodiscard]] std::filesystem::path folder(const std::string& pci) const;

  // An Ethernet controller 8086:10d3 of subsystem 1af4:1100 without a driver.
  void addFunction(const std::string& pci) const;
  void setAttribute(const std::string& pci, const std::string& name, const std::string& text) const;
  void bindDriver(const std::string& pci, const std::string& driver) const;
  // `below` is what stands between the function and its interfaces: "virtio2", or nothing.
  void addInterface(const std::string& pci, const std::string& name, const std::string& mac,
                    const std::string& below = "") const;
  // An attribute of an interface: "mtu".
  void setLink(const std::string& name, const std::string& attribute,
               const std::string& text) const;
  // An interface of no PCI function, such as a bridge.
  void addVirtualInterface(const std::string& name) const;

 private:
  TempDirectory m_directory;
};

}  // namespace test

#endif  // ORVEX_TESTS_MIDAPI_KERNEL_SYSFSFIXTURE_H_
