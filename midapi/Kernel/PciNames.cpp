#include "midapi/Kernel/PciNames.h"

#include <array>
#include <csetjmp>
#include <cstring>
#include <span>

#include "midapi/ByteText.h"

extern "C" {
#include <pci/pci.h>
}

namespace ma {
namespace {

constexpr int kLongestName = 1024;

// Where to go on when the library gives up, which would end the process: at the first defect of the
// list. There is nothing but its own C on the way.
thread_local std::jmp_buf s_giveUp;

// Of the library's own type, which [[noreturn]] is not.
__attribute__((noreturn)) void giveUp(char* /*format*/, ...) {
  std::longjmp(s_giveUp, 1);  // NOLINT(cert-err52-cpp)
}

void keepSilent(char* /*format*/, ...) {}

// Looks a name up. Returns false where the library gave up, and must not be asked again.
bool lookUp(pci_access* access, std::span<char> name, unsigned vendor, unsigned device) {
  if (setjmp(s_giveUp) != 0) {  // NOLINT(cert-err52-cpp)
    return false;
  }
  constexpr int kFromListAlone = PCI_LOOKUP_NO_NUMBERS | PCI_LOOKUP_NO_HWDB;
  const char* const found =
      pci_lookup_name(access, name.data(), static_cast<int>(name.size()),
                      PCI_LOOKUP_VENDOR | PCI_LOOKUP_DEVICE | kFromListAlone, vendor, device);
  if (found == nullptr) {
    name[0] = '\0';
  }
  return true;
}

}  // namespace

void PciNames::Closer::operator()(pci_access* access) const {
  pci_cleanup(access);
}

PciNames::PciNames(const std::filesystem::path& list) : m_access(pci_alloc()) {
  m_access->error = giveUp;
  m_access->warning = keepSilent;
  m_access->debug = keepSilent;
  m_access->id_lookup_mode = 0;  // no file of the user's, and nobody on the network
  if (!list.empty()) {
    constexpr int kTakesItOver = 1;
    pci_set_name_list_path(m_access.get(), ::strdup(list.c_str()), kTakesItOver);
  }
}

std::string PciNames::nameOf(std::uint16_t vendor, std::uint16_t device) {
  std::array<char, kLongestName> name{};
  const platform::Lock lock(m_mutex);
  m_isUsable = m_isUsable && lookUp(m_access.get(), name, vendor, device);
  if (!m_isUsable) {
    return {};
  }
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(name.data());
  return decodeText({bytes, std::strlen(name.data())}, TextEncoding::Utf8);
}

// Never destroyed: threads may still ask while the process exits.
PciNames& systemPciNames() {
  static PciNames& names = *new PciNames;
  return names;
}

}  // namespace ma
