#include "cim/MethodSignatures.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string>

#include "cim/ValueTables.h"
#include "core/ValueNames.h"

namespace cim {

namespace {

constexpr std::string_view kInstallationService = "CIM_SoftwareInstallationService";

const std::vector<core::MethodDeclaration>& allMethods() {
  using enum core::ParameterDirection;
  using core::kCimDatetime;
  using core::kCimReference;
  using core::kCimString;
  using core::kCimStringArray;
  using core::kCimUint16;
  using core::kCimUint16Array;
  using core::kCimUint32;
  using core::MethodDeclaration;
  using core::ParameterDeclaration;
  static const std::string kService(kInstallationService);
  static const ParameterDeclaration kJob{"Job", kCimReference, Job, "CIM_ConcreteJob"};
  static const ParameterDeclaration kInstallOptions{"InstallOptions", kCimUint16Array, In, ""};
  static const ParameterDeclaration kInstallOptionsValues{"InstallOptionsValues", kCimStringArray,
                                                          In, ""};
  static const ParameterDeclaration kSource{"Source", kCimReference, In, "CIM_LogicalElement"};
  static const ParameterDeclaration kTarget{"Target", kCimReference, In, "CIM_ManagedElement"};
  static const ParameterDeclaration kCollection{"Collection", kCimReference, In,
                                                "CIM_ManagedElement"};
  static const ParameterDeclaration kRequestedState{"RequestedState", kCimUint16, In, ""};
  static const ParameterDeclaration kTimeoutPeriod{"TimeoutPeriod", kCimDatetime, In, ""};
  static const std::vector<MethodDeclaration> kMethods = {
      {"InstallFromSoftwareIdentity",
       kCimUint32,
       {kJob, kInstallOptions, kInstallOptionsValues, kSource, kTarget, kCollection},
       kService},
      {"InstallFromURI",
       kCimUint32,
       {kJob, {"URI", kCimString, In, ""}, kTarget, kInstallOptions, kInstallOptionsValues},
       kService},
      {"CheckSoftwareIdentity",
       kCimUint32,
       {kSource, kTarget, kCollection, {"InstallCharacteristics", kCimUint16Array, Out, ""}},
       kService},
      {"RequestStateChange", kCimUint32, {kRequestedState, kTimeoutPeriod}, "CIM_ConcreteJob"},
      {"RequestStateChange",
       kCimUint32,
       {kRequestedState, kJob, kTimeoutPeriod},
       "CIM_EnabledLogicalElement"},
  };
  return kMethods;
}

struct MethodReturns {
  std::string_view method;
  std::span<const core::ValueName> values;
};

constexpr MethodReturns kMethodReturns[] = {
    {"InstallFromSoftwareIdentity", kInstallReturns},
    {"InstallFromURI", kInstallReturns},
    {"CheckSoftwareIdentity", kCheckReturns},
    {"RequestStateChange", kStateChangeReturns},
};

}  // namespace

std::vector<core::MethodDeclaration> getMethods(std::string_view className) {
  std::vector<core::MethodDeclaration> methods;
  std::copy_if(
      allMethods().begin(), allMethods().end(), std::back_inserter(methods),
      [className](const core::MethodDeclaration& method) { return method.origin == className; });
  return methods;
}

const core::MethodDeclaration* findMethod(std::string_view name) {
  const auto found = std::find_if(
      allMethods().begin(), allMethods().end(), [name](const core::MethodDeclaration& method) {
        return method.name == name && method.origin == kInstallationService;
      });
  return found != allMethods().end() ? &*found : nullptr;
}

std::string_view describeReturn(std::string_view method, std::uint32_t code) {
  const auto* const returns = std::find_if(std::begin(kMethodReturns), std::end(kMethodReturns),
                                           [method](const MethodReturns& candidate) {
                                             return core::isSameName(candidate.method, method);
                                           });
  if (returns == std::end(kMethodReturns)) {
    return {};
  }
  const std::string_view text = core::findValueName(returns->values, std::int64_t{code});
  return text.empty() ? "Unknown return code" : text;
}

}  // namespace cim
