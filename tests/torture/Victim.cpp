#include "tests/torture/Victim.h"

#include <fstream>
#include <sched.h>
#include <stdexcept>
#include <sys/mount.h>
#include <unistd.h>

#include "midapi/MidApi.h"
#include "midapi/Virtual/VirtualAdapters.h"
#include "tests/torture/SystemCalls.h"

namespace test {
namespace {

constexpr const char* kPci = "0000:03:00";
constexpr std::array<const char*, 2> kPorts = {"0000:03:00.0", "0000:03:00.1"};

// Large enough for some blocks of a write.
Bytes iscsiImage() {
  return RomBuilder().add(RomImage::legacy().product("Maker iSCSI").units(230).seed(1)).build();
}
Bytes uefiImage() {
  return RomBuilder().add(RomImage::efi().units(300).seed(2)).build();
}

// Returns the name of a call that makes things lasting; null for others.
const char* nameOfLasting(Change::Kind kind) {
  switch (kind) {
    case Change::Kind::SyncFile:
    case Change::Kind::SyncFolder:
      return "fsync ";
    case Change::Kind::Rename:
      return "rename ";
    case Change::Kind::Make:
    case Change::Kind::Write:
    case Change::Kind::Remove:
      return nullptr;
  }
  return nullptr;
}

bool writeLine(const char* path, const std::string& line) {
  return static_cast<bool>(std::ofstream(path) << line << std::flush);
}

// Gives this process mounts of its own; who is not the superuser becomes one of its own for that.
bool ownMounts() {
  if (::unshare(CLONE_NEWNS) == 0) {
    return true;
  }
  const std::string user = std::to_string(::geteuid());
  const std::string group = std::to_string(::getegid());
  return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 &&
         writeLine("/proc/self/uid_map", "0 " + user + " 1") &&
         writeLine("/proc/self/setgroups", "deny") &&
         writeLine("/proc/self/gid_map", "0 " + group + " 1");
}

}  // namespace

Victim::Victim()
    : m_firmwares{{{"iSCSI", iscsiImage(), ma::BootType::Iscsi, 1U << 2},
                   {"UEFI", uefiImage(), ma::BootType::None, 1U << 4}}} {
  m_adapters.makeAdapter(kPci, m_firmwares[0].image);
  m_adapters.set(kPci, "/capabilityWord", std::to_string(m_firmwares[0].capabilityWord));
  for (const char* port : {"/ports/0/bootType", "/ports/1/bootType"}) {
    m_adapters.set(kPci, port, std::to_string(static_cast<int>(m_firmwares[0].bootType)));
  }
}

std::filesystem::path Victim::folder() const {
  return m_adapters.folder(kPci);
}

const Victim::Firmware& Victim::other(const Firmware& firmware) const {
  return m_firmwares[&firmware == &m_firmwares[0] ? 1 : 0];
}

bool Victim::update(const Firmware& firmware) {
  std::uint32_t code = 0;
  const ma::FlashUpdate update(kPorts[0]);
  for (const char* port : kPorts) {
    if (!ma::setBootType(port, firmware.bootType)) {
      m_error = std::string("cannot set the boot type of ") + port;
      return false;
    }
  }
  return ma::writeFlashImage(kPorts[0], firmware.image.data(),
                             static_cast<std::uint32_t>(firmware.image.size()), code, m_error) &&
         ma::updateCapabilityWord(kPorts[0], {}, code, m_error);
}

void Victim::updateInPeace() {
  const Firmware& wanted = other(look());
  if (!update(wanted)) {
    throw std::runtime_error("an update in peace fails: " + m_error);
  }
  if (&look() != &wanted) {
    throw std::runtime_error("an update in peace changes nothing");
  }
  demandTidiness();
}

const Victim::Firmware& Victim::look() const {
  const ma::AdapterList list = ma::VirtualAdapters(m_adapters.directory()).list();
  if (list.adapters.size() != 1 || !list.problems.empty()) {
    throw std::runtime_error("the adapter cannot be read" + (list.problems.empty()
                                                                 ? std::string()
                                                                 : ": " + list.problems[0].text));
  }
  const ma::AdapterListing& adapter = list.adapters[0];
  const Bytes flash = m_adapters.flash(kPci);
  for (const Firmware& firmware : m_firmwares) {
    if (flash == firmware.image) {
      if (adapter.capabilityWord != firmware.capabilityWord) {
        throw std::runtime_error(std::string("the flash is that of ") + firmware.name +
                                 ", the capability word is " +
                                 std::to_string(adapter.capabilityWord));
      }
      for (const ma::AdapterPort& port : adapter.ports) {
        if (port.bootType != firmware.bootType) {
          throw std::runtime_error(std::string("the flash is that of ") + firmware.name + ", " +
                                   port.identifier + " has boot type " +
                                   std::to_string(static_cast<int>(port.bootType)));
        }
      }
      return firmware;
    }
  }
  throw std::runtime_error("the flash holds neither firmware as a whole: " +
                           std::to_string(flash.size()) + " bytes, " + adapter.flashDefect);
}

std::map<std::string, std::string> Victim::files() const {
  std::map<std::string, std::string> files;
  for (const std::string& name : m_adapters.filesOf(kPci)) {
    const std::string path = (folder() / name).string();
    files[path] = readText(path);
  }
  return files;
}

void Victim::replaceFiles(const std::map<std::string, std::string>& files) const {
  for (const auto& [path, content] : this->files()) {
    std::filesystem::remove(path);
  }
  for (const auto& [path, content] : files) {
    if (!(std::ofstream(path, std::ios::binary) << content << std::flush)) {
      throw std::runtime_error("cannot write " + path);
    }
  }
}

bool Victim::moveToSmallDisk(std::uint64_t room) const {
  const std::string description = m_adapters.description(kPci);
  const Bytes flash = m_adapters.flash(kPci);
  // A page for each of: the root, the folder, and the end of each file.
  const std::uint64_t size = description.size() + flash.size() + 4 * 4096 + room;
  if (!ownMounts() || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      ::mount("torture", m_adapters.directory().c_str(), "tmpfs", MS_NOSUID | MS_NODEV,
              ("size=" + std::to_string(size)).c_str()) != 0) {
    return false;
  }
  m_adapters.describe(kPci, description);
  m_adapters.makeAdapter(kPci, flash);
  return true;
}

void Victim::makeAnother() const {
  ma::AdapterSpec spec;
  spec.pci = {0, 4, 0};
  spec.name = "Another";
  spec.vendor = 0x1AF4;
  spec.device = 0x1041;
  spec.rom = folder() / "flash.rom";
  const std::filesystem::path home = m_adapters.directory() / "nested";
  const std::filesystem::path made = home / "0000-04-00";
  watchSystemCalls(m_adapters.directory().string(), {});
  ma::VirtualAdapters(home).add(spec);
  ignoreSystemCalls();
  std::filesystem::remove_all(home);
  std::string order;
  for (const Change& change : watchedChanges()) {
    if (const char* const call = nameOfLasting(change.kind)) {
      std::string path = change.path;
      // With the random part of the name cut off.
      if (const std::size_t mark = path.find(".new-"); mark != std::string::npos) {
        path.erase(mark + 4, std::string("-0123456789abcdef").size());
      }
      order += std::string(call) + path + "\n";
    }
  }
  const std::string draft = (home / ".0000-04-00.new").string();
  const std::string expected = "fsync " + m_adapters.directory().string() + "\nfsync " + draft +
                               "/adapter.json\nfsync " + draft + "/flash.rom\nfsync " + draft +
                               "\nrename " + made.string() + "\nfsync " + home.string() + "\n";
  if (order != expected) {
    throw std::runtime_error("a new adapter reaches the disk in another order:\n" + order);
  }
}

void Victim::demandTidiness() const {
  std::string strangers;
  for (const std::string& name : m_adapters.filesOf(kPci)) {
    if (name != "adapter.json" && name != "flash.rom") {
      strangers += " " + name;
    }
  }
  if (!strangers.empty()) {
    throw std::runtime_error("files are left behind an update:" + strangers);
  }
}

}  // namespace test
