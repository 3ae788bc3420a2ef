#include "cim/MethodSignatures.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string>

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

struct Meaning {
  std::uint32_t code;
  std::string_view text;
};

constexpr Meaning kInstallMeanings[] = {
    {kCompletedWithNoError, "Job Completed with No Error"},
    {kUnspecifiedError, "Unspecified Error"},
    {kFailed, "Failed"},
    {kInvalidParameter, "Invalid Parameter"},
    {kTargetInUse, "Target In Use"},
    {kJobStarted, "Method Parameters Checked - Job Started"},
    {kUnsupportedTargetType, "Unsupported TargetType"},
    {kDowngradeNotSupported, "Downgrade/reinstall not supported"},
    {kNotEnoughMemory, "Not enough memory"},
    {kNotApplicableToTarget, "Unsupported target (not applicable for target)"},
    {kCollectionNotSupported, "Installation to a collection is not supported"},
};

// A check has no job that could be completed.
constexpr Meaning kCheckMeanings[] = {{kCompletedWithNoError, "Completed with No Error"}};

constexpr Meaning kStateChangeMeanings[] = {
    {kStateChanged, "Completed with No Error"},
    {kStateChangeNotSupported, "Not Supported"},
    {kStateChangeUnspecifiedError, "Unknown/Unspecified Error"},
    {kStateChangeTimedOut, "Can NOT complete within Timeout Period"},
    {kStateChangeFailed, "Failed"},
    {kStateChangeInvalid, "Invalid Parameter"},
    {kStateChangeInUse, "In Use"},
    {kStateChangeStarted, "Method Parameters Checked - Transition Started"},
    {kInvalidStateTransition, "Invalid State Transition"},
    {kStateChangeTimeoutNotSupported, "Use of Timeout Parameter Not Supported"},
    {kStateChangeBusy, "Busy"},
};

struct MethodMeanings {
  std::string_view method;
  std::span<const Meaning> own;     // counts first
  std::span<const Meaning> shared;  // with other methods
};

constexpr MethodMeanings kMethodMeanings[] = {
    {"InstallFromSoftwareIdentity", {}, kInstallMeanings},
    {"InstallFromURI", {}, kInstallMeanings},
    {"CheckSoftwareIdentity", kCheckMeanings, kInstallMeanings},
    {"RequestStateChange", kStateChangeMeanings, {}},
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
  const auto* const meanings = std::find_if(std::begin(kMethodMeanings), std::end(kMethodMeanings),
                                            [method](const MethodMeanings& candidate) {
                                              return core::isSameName(candidate.method, method);
                                            });
  if (meanings == std::end(kMethodMeanings)) {
    return {};
  }
  for (const std::span<const Meaning> table : {meanings->own, meanings->shared}) {
    for (const Meaning& meaning : table) {
      if (meaning.code == code) {
        return meaning.text;
      }
    }
  }
  return "Unknown return code";
}

}  // namespace cim
