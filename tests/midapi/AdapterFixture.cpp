#include "tests/midapi/AdapterFixture.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <system_error>

#include "tests/support/WaitUntil.h"

namespace test {
namespace {

using nlohmann::json;

constexpr const char* kDescription = R"({
  "name": "Lab adapter", "pci": "", "vendorId": "1af4", "deviceId": "1041",
  "ports": [{"function": 0, "mac": "02:00:00:03:00:00", "bootType": 1},
            {"function": 1, "mac": "02:00:00:03:00:01", "bootType": 1}]
})";

}  // namespace

std::filesystem::path AdapterFixture::folder(const std::string& pci) const {
  std::string name = pci;
  std::replace(name.begin(), name.end(), ':', '-');
  return directory() / name;
}

void AdapterFixture::makeAdapter(const std::string& pci,
                                 const std::vector<std::uint8_t>& flash) const {
  if (!std::filesystem::exists(folder(pci) / "adapter.json")) {
    describe(pci, kDescription);
    set(pci, "/pci", "\"" + pci + "\"");
  }
  m_directory.write(folder(pci) / "flash.rom", flash);
}

void AdapterFixture::describe(const std::string& pci, const std::string& text) const {
  const auto draft = m_directory.write(folder(pci) / "adapter.json.draft", text);
  // Some platforms refuse this for as long as a reader has the file open.
  std::error_code error;
  const auto rename = [&] {
    std::filesystem::rename(draft, folder(pci) / "adapter.json", error);
    return !error;
  };
  if (!waitUntil(rename)) {
    throw std::system_error(error, "cannot replace the description of " + pci);
  }
}

std::string AdapterFixture::description(const std::string& pci) const {
  return readText(folder(pci) / "adapter.json");
}

void AdapterFixture::set(const std::string& pci, const char* pointer,
                         const std::string& value) const {
  json changed = json::parse(description(pci));
  changed[json::json_pointer(pointer)] = json::parse(value);
  describe(pci, changed.dump(2));
}

std::string AdapterFixture::get(const std::string& pci, const char* pointer) const {
  const json whole = json::parse(description(pci));
  const json::json_pointer at(pointer);
  return whole.contains(at) ? whole.at(at).dump() : std::string();
}

std::vector<std::uint8_t> AdapterFixture::flash(const std::string& pci) const {
  return readBytes(folder(pci) / "flash.rom");
}

std::vector<std::string> AdapterFixture::filesOf(const std::string& pci) const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder(pci))) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace test
