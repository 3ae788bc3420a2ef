#include "tests/modules/Windows/SmallHost.h"

#include "core/CimBroker.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"
#include "tests/support/WaitUntil.h"

namespace test {
namespace {

// Values of JobState.
constexpr const char* kCompleted = "7";
constexpr const char* kException = "10";

std::string valueOf(const std::string& job, const char* property) {
  const core::CimBroker::Request request(core::GetCimBroker());
  return core::GetCimBroker()
      .getInstanceByPath(core::CimPath(job))
      ->getProperty(property)
      ->toString();
}

}  // namespace

Installation install(const std::string& uri) {
  core::CimBroker& broker = core::GetCimBroker();
  const core::CimBroker::Request request(broker);
  core::CimPropertyString image("URI", nullptr);
  image.setValue(uri);
  core::CimPropertyRef target("Target", nullptr);
  target.setTarget(broker.getInstances("Orvex_EthernetPort").first());
  core::CimPropertyUint16_arr options("InstallOptions", nullptr);
  options.setValue({5});  // Update
  core::CimPropertyString_arr values("InstallOptionsValues", nullptr);
  values.clear();
  core::CimPropertyList in;
  in.add(&image);
  in.add(&target);
  in.add(&options);
  in.add(&values);
  core::CimPropertyList out;
  core::CimInstance* job = nullptr;
  core::CimInstance* const service =
      broker.getInstances("Orvex_SoftwareInstallationService").first();
  Installation result;
  result.answer = service->invokeMethod("InstallFromURI", &in, &out, &job);
  if (job != nullptr) {
    result.job = job->getPath();
  }
  return result;
}

std::string awaitEnd(const std::string& job) {
  static_cast<void>(waitUntil([&job] {
    const std::string state = valueOf(job, "JobState");
    return state == kCompleted || state == kException;
  }));
  return "state " + valueOf(job, "JobState") + ", error '" + valueOf(job, "ErrorDescription") + "'";
}

}  // namespace test
