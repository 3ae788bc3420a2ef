#include "client/InstallationService.h"

#include <memory>
#include <utility>

#include "cim/InstallCharacteristics.h"
#include "cim/InstallOptions.h"
#include "client/Fault.h"
#include "client/ServedClasses.h"
#include "core/CimPropertyList.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace client {
namespace {

constexpr const char* kCharacteristicsOutput = "InstallCharacteristics";
constexpr const char* kServiceClass = "Orvex_SoftwareInstallationService";

constexpr std::pair<std::uint16_t, const char*> kCharacteristics[] = {
    {cim::kTargetAutomaticReset, "the target resets itself"},
    {cim::kSystemAutomaticReset, "the system resets itself"},
    {cim::kSeparateTargetResetRequired, "a reset of the target is required"},
    {cim::kSeparateSystemResetRequired, "a reset of the system is required"},
    {cim::kManualRebootRequired, "a manual reboot is required"},
    {cim::kNoRebootRequired, "no reboot required"},
    {cim::kUserInterventionRecommended, "attention of the user is recommended"},
    {cim::kMayBeAddedToCollection, "it may be added to a collection"},
};

// The arguments of one call, in one direction.
class ArgumentList {
 public:
  // Adds an argument, which is NULL until it is given a value.
  template <class Property>
  Property& add(const char* name) {
    auto argument = std::make_unique<Property>(name, nullptr);
    Property& added = *argument;
    m_list.add(&added);
    m_arguments.push_back(std::move(argument));
    return added;
  }
  void addReference(const char* name, const std::string& path) {
    add<core::CimPropertyRef>(name).setText(path);
  }
  void addOptions(const UpdateOptions& options);
  // Adds what is installed and where; of target and collection the service takes exactly one.
  void addSource(const std::string& identityPath, const std::string& targetPath);

  [[nodiscard]] core::CimPropertyList& list() { return m_list; }

 private:
  std::vector<std::unique_ptr<core::CimProperty>> m_arguments;
  core::CimPropertyList m_list;
};

// The text of an option stands at the position of the option's number.
void ArgumentList::addOptions(const UpdateOptions& options) {
  std::vector<std::uint16_t> numbers{cim::kUpdate};
  std::vector<std::string> texts{""};
  if (options.isForced) {
    numbers.push_back(cim::kForceInstallation);
    texts.emplace_back();
  }
  if (!options.types.empty()) {
    numbers.push_back(cim::kTargetTypes);
    texts.push_back(options.types);
  }
  add<core::CimPropertyUint16_arr>("InstallOptions").setValue(std::move(numbers));
  add<core::CimPropertyString_arr>("InstallOptionsValues").setValue(std::move(texts));
}

void ArgumentList::addSource(const std::string& identityPath, const std::string& targetPath) {
  addReference("Source", identityPath);
  addReference("Target", targetPath);
  add<core::CimPropertyRef>("Collection");
}

MethodAnswer callService(Connection& connection, const char* method, ArgumentList& in,
                         ArgumentList& out, const OnStart& onStart) {
  const Instances services = getInstances(connection, kServiceClass);
  if (services.empty()) {
    throw Fault(std::string("no ") + kServiceClass +
                " is there; the log tells what became of the update agent (--log-level 3)");
  }
  return connection.invoke(services.front().path, method, in.list(), out.list(), onStart);
}

}  // namespace

MethodAnswer installFromUri(Connection& connection, const std::string& uri,
                            const std::string& targetPath, const UpdateOptions& options,
                            const OnStart& onStart) {
  ArgumentList in;
  in.add<core::CimPropertyString>("URI").setValue(uri);
  in.addReference("Target", targetPath);
  in.addOptions(options);
  ArgumentList out;
  return callService(connection, "InstallFromURI", in, out, onStart);
}

MethodAnswer installFromIdentity(Connection& connection, const std::string& identityPath,
                                 const std::string& targetPath, const UpdateOptions& options,
                                 const OnStart& onStart) {
  ArgumentList in;
  in.addSource(identityPath, targetPath);
  in.addOptions(options);
  ArgumentList out;
  return callService(connection, "InstallFromSoftwareIdentity", in, out, onStart);
}

CheckAnswer checkIdentity(Connection& connection, const std::string& identityPath,
                          const std::string& targetPath) {
  ArgumentList in;
  in.addSource(identityPath, targetPath);
  ArgumentList out;
  out.add<core::CimPropertyUint16_arr>(kCharacteristicsOutput);
  MethodAnswer answer = callService(connection, "CheckSoftwareIdentity", in, out, {});
  const InstanceSnapshot outputs{"", "", answer.outputs};
  auto characteristics = outputs.value<std::vector<std::uint16_t>>(kCharacteristicsOutput);
  return {std::move(answer), std::move(characteristics)};
}

std::string describeCharacteristic(std::uint16_t number) {
  for (const auto& [known, meaning] : kCharacteristics) {
    if (known == number) {
      return meaning;
    }
  }
  return "characteristic " + std::to_string(number);
}

}  // namespace client
