// A host of the real modules, with virtual adapters and a configuration of the test's own.
//
// The modules are loaded once for a process and stay; everything else belongs to the object. Files
// may be made before the modules are loaded, so that a child process can load its own.

#ifndef ORVEX_TESTS_MODULES_MODULEHOST_H_
#define ORVEX_TESTS_MODULES_MODULEHOST_H_

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "Os/QuorvelConfig.h"
#include "core/CimBroker.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "tests/support/RomBuilder.h"
#include "tests/support/Settings.h"
#include "tests/support/TempDirectory.h"

namespace test {

inline constexpr const char* kAdapter = "0000:03:00";
inline constexpr const char* kFirstPort = "0000:03:00.0";
inline constexpr const char* kSecondPort = "0000:03:00.1";
inline constexpr const char* kOtherAdapter = "0000:04:00";
inline constexpr const char* kOtherPort = "0000:04:00.0";

// What a client sees of a job.
struct JobReport {
  int state = 0;
  int percent = 0;
  int errorCode = 0;
  std::string errorText;

  friend bool operator==(const JobReport&, const JobReport&) = default;
};

std::ostream& operator<<(std::ostream& stream, const JobReport& report);

inline const JobReport kCompleted{7, 100, 0, ""};

// The arguments of InstallFromURI.
struct InstallArguments {
  core::CimPropertyString uri{"URI", nullptr};
  core::CimPropertyRef target{"Target", nullptr};
  core::CimPropertyUint16_arr options{"InstallOptions", nullptr};
  core::CimPropertyString_arr values{"InstallOptionsValues", nullptr};

  [[nodiscard]] std::vector<core::CimProperty*> all() { return {&uri, &target, &options, &values}; }
};

// The arguments of InstallFromSoftwareIdentity and, but for the options, of CheckSoftwareIdentity.
struct IdentityArguments {
  core::CimPropertyUint16_arr options{"InstallOptions", nullptr};
  core::CimPropertyString_arr values{"InstallOptionsValues", nullptr};
  core::CimPropertyRef source{"Source", nullptr};
  core::CimPropertyRef target{"Target", nullptr};
  core::CimPropertyRef collection{"Collection", nullptr};

  [[nodiscard]] std::vector<core::CimProperty*> all() {
    return {&options, &values, &source, &target, &collection};
  }
};

class ModuleHost {
 public:
  // Sets up empty directories and an empty configuration.
  ModuleHost();
  ModuleHost(const ModuleHost&) = delete;
  ModuleHost& operator=(const ModuleHost&) = delete;
  ~ModuleHost();

  void load();

  // Replaces all settings of the agent.
  void configure(const std::map<std::string, Settings::Value>& values);
  // Makes an adapter of 1af4:1041 with two ports, which boot by PXE. `fields` are further JSON
  // fields of its description ("\"writeRate\": 1000").
  void makeAdapter(const std::string& pci, const Bytes& flash,
                   const std::string& fields = "") const;
  // Replaces the description of an adapter, in one step.
  void describe(const std::string& pci, const std::string& fields) const;
  [[nodiscard]] std::string description(const std::string& pci) const;
  // Makes an image file. Returns its URI.
  [[nodiscard]] std::string makeImage(const Bytes& content) const;
  // Makes a file in the firmware directory, which the configuration then names. Returns the object
  // path of its identity.
  [[nodiscard]] std::string offer(const std::string& name, const Bytes& content);
  [[nodiscard]] std::filesystem::path firmwarePath(const std::string& name) const;

  [[nodiscard]] std::filesystem::path flashPath(const std::string& pci) const;
  [[nodiscard]] Bytes flash(const std::string& pci) const;
  [[nodiscard]] const std::filesystem::path& directory() const { return m_directory.path(); }

  // Returns the object path of the instance with that DeviceID.
  [[nodiscard]] std::string pathOf(const std::string& className, const std::string& id) const;
  [[nodiscard]] std::string portPath(const std::string& port) const {
    return pathOf("Orvex_EthernetPort", port);
  }
  // Returns the object path of the one instance of a class.
  [[nodiscard]] std::string onlyPathOf(const std::string& className) const;

  // Calls a method of the service.
  std::uint32_t call(const std::string& method, const std::vector<core::CimProperty*>& in,
                     const std::vector<core::CimProperty*>& out = {});
  // Calls InstallFromURI with these arguments.
  std::uint32_t invoke(const std::vector<core::CimProperty*>& arguments) {
    return call("InstallFromURI", arguments);
  }
  // Calls it with a port or an object path, the option Update and the others.
  std::uint32_t install(const std::string& target, const std::string& uri,
                        const std::vector<std::uint16_t>& furtherOptions = {},
                        const std::vector<std::string>& values = {});
  // Calls InstallFromSoftwareIdentity with the option Update.
  std::uint32_t installIdentity(const std::string& target, const std::string& source);
  // Returns what CheckSoftwareIdentity returns, and fills what it says of the installation.
  std::uint32_t checkIdentity(const std::string& target, const std::string& source,
                              std::vector<std::uint16_t>& characteristics);
  // Returns whether the last call handed out a job.
  [[nodiscard]] bool hasNewJob() const { return m_hasNewJob; }
  // Returns the object path of the job that was handed out last.
  [[nodiscard]] const std::string& jobPath() const { return m_jobPath; }
  // Returns what is to be seen of the job that was handed out last.
  [[nodiscard]] JobReport job() const;
  // Waits for that job's end. Returns what is to be seen of it then.
  [[nodiscard]] JobReport awaitEnd() const;

 private:
  [[nodiscard]] std::filesystem::path folder(const std::string& pci) const;

  TempDirectory m_directory;
  Settings m_settings;
  utils::QuorvelConfig m_config{m_settings.path()};
  std::string m_jobPath;
  bool m_hasNewJob = false;
};

}  // namespace test

#endif  // ORVEX_TESTS_MODULES_MODULEHOST_H_
