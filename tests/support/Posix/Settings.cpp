#include "tests/support/Settings.h"

#include "Utils/Format.h"
#include "tests/support/TempDirectory.h"

namespace test {

struct Settings::Store {
  TempDirectory directory;
};

namespace {

std::string toText(const Settings::Value& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr ? *text : utils::format("0x%X", std::get<std::uint32_t>(value));
}

}  // namespace

Settings::Settings(SettingsScope /*scope*/) : m_store(std::make_unique<Store>()) {}

Settings::~Settings() = default;

std::string Settings::path() const {
  return m_store->directory.path() / "agent.conf";
}

std::vector<std::string> Settings::options() const {
  return {"--config", path()};
}

std::string Settings::place() const {
  return path();
}

void Settings::write(const std::map<std::string, Value>& values) {
  std::string content;
  for (const auto& [name, value] : values) {
    content += name + " = " + toText(value) + "\n";
  }
  // In one step: nobody reads half of it.
  std::filesystem::rename(m_store->directory.write("new.conf", content), path());
}

void Settings::remove() {
  std::filesystem::remove(path());
}

}  // namespace test
