#include "client/InstallationService.h"

#include <utility>

#include "cim/InstallCharacteristics.h"
#include "cim/InstallOptions.h"
#include "client/ClassNames.h"
#include "client/Fault.h"
#include "client/ServedClasses.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "core/OwningPropertyList.h"

namespace client {
namespace {

constexpr const char* kCharacteristicsOutput = "InstallCharacteristics";

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

using core::OwningPropertyList;

void addReference(OwningPropertyList& arguments, const char* name, const std::string& path) {
  arguments.add<core::CimPropertyRef>(name).setText(path);
}

// The text of an option stands at the position of the option's number.
void addOptions(OwningPropertyList& arguments, const UpdateOptions& options) {
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
  arguments.add<core::CimPropertyUint16_arr>("InstallOptions").setValue(std::move(numbers));
  arguments.add<core::CimPropertyString_arr>("InstallOptionsValues").setValue(std::move(texts));
}

// Adds what is installed and where; of target and collection the service takes exactly one.
void addSource(OwningPropertyList& arguments, const std::string& identityPath,
               const std::string& targetPath) {
  addReference(arguments, "Source", identityPath);
  addReference(arguments, "Target", targetPath);
  arguments.add<core::CimPropertyRef>("Collection");
}

MethodAnswer callService(Connection& connection, const char* method, OwningPropertyList& in,
                         OwningPropertyList& out, const OnStart& onStart) {
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
  OwningPropertyList in;
  in.add<core::CimPropertyString>("URI").setValue(uri);
  addReference(in, "Target", targetPath);
  addOptions(in, options);
  OwningPropertyList out;
  return callService(connection, "InstallFromURI", in, out, onStart);
}

MethodAnswer installFromIdentity(Connection& connection, const std::string& identityPath,
                                 const std::string& targetPath, const UpdateOptions& options,
                                 const OnStart& onStart) {
  OwningPropertyList in;
  addSource(in, identityPath, targetPath);
  addOptions(in, options);
  OwningPropertyList out;
  return callService(connection, "InstallFromSoftwareIdentity", in, out, onStart);
}

CheckAnswer checkIdentity(Connection& connection, const std::string& identityPath,
                          const std::string& targetPath) {
  OwningPropertyList in;
  addSource(in, identityPath, targetPath);
  OwningPropertyList out;
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
