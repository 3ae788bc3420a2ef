#include "tests/modules/ModuleHost.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "Os/Environment.h"
#include "host/ModuleLoader.h"
#include "tests/support/WaitUntil.h"

namespace test {
namespace {

namespace fs = std::filesystem;

constexpr const char* kService = "Orvex_SoftwareInstallationService";
constexpr std::uint16_t kUpdate = 5;
constexpr int kStateCompleted = 7;
constexpr int kStateException = 10;

core::CimBroker& broker() {
  return core::GetCimBroker();
}

std::string valueOf(core::CimInstance& instance, const std::string& property) {
  return instance.getProperty(property)->toString();
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const JobReport& report) {
  return stream << "state " << report.state << ", " << report.percent << " %, error "
                << report.errorCode << " '" << report.errorText << "'";
}

ModuleHost::ModuleHost() {
  const fs::path adapters = m_directory.path() / "adapters";
  fs::create_directory(adapters);
  os::setEnvironment("ORVEX_ADAPTERS", adapters.string());
}

ModuleHost::~ModuleHost() = default;

void ModuleHost::load() {
  static bool isLoaded = false;
  if (!isLoaded) {
    host::loadModules(fs::absolute(QUORVEL_TEST_MODULE_DIR));
    isLoaded = true;
  }
}

void ModuleHost::configure(const std::map<std::string, Settings::Value>& values) {
  m_settings.write(values);
}

void ModuleHost::makeAdapter(const std::string& pci, const Bytes& flash,
                             const std::string& fields) const {
  fs::create_directories(folder(pci));
  m_directory.write(fs::relative(flashPath(pci), m_directory.path()), flash);
  describe(pci, fields);
}

void ModuleHost::describe(const std::string& pci, const std::string& fields) const {
  const std::string text = "{\"name\": \"Test adapter\", \"pci\": \"" + pci +
                           "\", \"vendorId\": \"1af4\", \"deviceId\": \"1041\", \"ports\": ["
                           "{\"function\": 0, \"mac\": \"02:00:00:00:00:00\", \"bootType\": 1}, "
                           "{\"function\": 1, \"mac\": \"02:00:00:00:00:01\", \"bootType\": 1}]" +
                           (fields.empty() ? "" : ", " + fields) + "}";
  fs::rename(m_directory.write("description", text), folder(pci) / "adapter.json");
}

std::string ModuleHost::description(const std::string& pci) const {
  return readText(folder(pci) / "adapter.json");
}

std::string ModuleHost::makeImage(const Bytes& content) const {
  return "file://" + m_directory.write("image.rom", content).string();
}

std::string ModuleHost::offer(const std::string& name, const Bytes& content) {
  const fs::path path = m_directory.write(firmwarePath(name), content);
  configure({{"FWFilePath", path.parent_path().string()}});
  return "Orvex_SoftwareIdentity.InstanceID=\"Orvex:FirmwareFile:" + path.generic_string() + "\"";
}

fs::path ModuleHost::firmwarePath(const std::string& name) const {
  return m_directory.path() / "firmware" / name;
}

fs::path ModuleHost::flashPath(const std::string& pci) const {
  return folder(pci) / "flash.rom";
}

Bytes ModuleHost::flash(const std::string& pci) const {
  return readBytes(flashPath(pci));
}

std::string ModuleHost::pathOf(const std::string& className, const std::string& id) const {
  const core::CimBroker::Request request(broker());
  for (core::CimInstance* instance : broker().getInstances(className)) {
    if (valueOf(*instance, "DeviceID") == id) {
      return instance->getPath();
    }
  }
  throw std::runtime_error("no " + className + " with the DeviceID " + id);
}

std::string ModuleHost::onlyPathOf(const std::string& className) const {
  const core::CimBroker::Request request(broker());
  return broker().getInstances(className).first()->getPath();
}

std::uint32_t ModuleHost::call(const std::string& method,
                               const std::vector<core::CimProperty*>& inputs,
                               const std::vector<core::CimProperty*>& outputs) {
  const core::CimBroker::Request request(broker());
  core::CimInstance* const service = broker().getInstances(kService).first();
  core::CimPropertyList in;
  for (core::CimProperty* argument : inputs) {
    in.add(argument);
  }
  core::CimPropertyList out;
  for (core::CimProperty* argument : outputs) {
    out.add(argument);
  }
  core::CimInstance* job = nullptr;
  m_hasNewJob = false;
  const std::uint32_t returned = service->invokeMethod(method, &in, &out, &job);
  m_hasNewJob = job != nullptr;
  if (m_hasNewJob) {
    m_jobPath = job->getPath();
  }
  return returned;
}

std::uint32_t ModuleHost::install(const std::string& target, const std::string& uri,
                                  const std::vector<std::uint16_t>& furtherOptions,
                                  const std::vector<std::string>& values) {
  InstallArguments arguments;
  arguments.uri.setValue(uri);
  arguments.target.setText(target.starts_with("Orvex_") ? target : portPath(target));
  std::vector<std::uint16_t> options{kUpdate};
  options.insert(options.end(), furtherOptions.begin(), furtherOptions.end());
  arguments.options.setValue(options);
  arguments.values.setValue(values);
  return invoke(arguments.all());
}

std::uint32_t ModuleHost::installIdentity(const std::string& target, const std::string& source) {
  IdentityArguments arguments;
  arguments.options.setValue({kUpdate});
  arguments.source.setText(source);
  arguments.target.setText(portPath(target));
  return call("InstallFromSoftwareIdentity", arguments.all());
}

std::uint32_t ModuleHost::checkIdentity(const std::string& target, const std::string& source,
                                        std::vector<std::uint16_t>& characteristics) {
  IdentityArguments arguments;
  arguments.source.setText(source);
  arguments.target.setText(portPath(target));
  core::CimPropertyUint16_arr answer{"InstallCharacteristics", nullptr};
  const std::uint32_t returned =
      call("CheckSoftwareIdentity", {&arguments.source, &arguments.target, &arguments.collection},
           {&answer});
  characteristics = answer.getValue();
  return returned;
}

JobReport ModuleHost::job() const {
  const core::CimBroker::Request request(broker());
  core::CimInstance* const job = broker().getInstanceByPath(core::CimPath(m_jobPath));
  if (job == nullptr) {
    throw std::runtime_error("no job " + m_jobPath);
  }
  return {std::stoi(valueOf(*job, "JobState")), std::stoi(valueOf(*job, "PercentComplete")),
          std::stoi(valueOf(*job, "ErrorCode")), valueOf(*job, "ErrorDescription")};
}

JobReport ModuleHost::awaitEnd() const {
  JobReport report;
  static_cast<void>(waitUntil([this, &report] {
    report = job();
    return report.state == kStateCompleted || report.state == kStateException;
  }));
  return report;
}

fs::path ModuleHost::folder(const std::string& pci) const {
  std::string name = pci;
  std::replace(name.begin(), name.end(), ':', '-');
  return m_directory.path() / "adapters" / name;
}

}  // namespace test
