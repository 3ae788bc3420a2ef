#include "cim/MethodSignatures.h"

#include <algorithm>
#include <utility>

namespace cim {

const MethodSignature* findMethod(std::string_view name) {
  using enum Direction;
  static const std::vector<MethodSignature> kMethods = {
      {"InstallFromSoftwareIdentity",
       {{"InstallOptions", core::kCimUint16Array, In},
        {"InstallOptionsValues", core::kCimStringArray, In},
        {"Source", core::kCimReference, In},
        {"Target", core::kCimReference, In},
        {"Collection", core::kCimReference, In}}},
      {"InstallFromURI",
       {{"URI", core::kCimString, In},
        {"Target", core::kCimReference, In},
        {"InstallOptions", core::kCimUint16Array, In},
        {"InstallOptionsValues", core::kCimStringArray, In}}},
      {"CheckSoftwareIdentity",
       {{"Source", core::kCimReference, In},
        {"Target", core::kCimReference, In},
        {"Collection", core::kCimReference, In},
        {"InstallCharacteristics", core::kCimUint16Array, Out}}},
  };
  const auto found =
      std::find_if(kMethods.begin(), kMethods.end(),
                   [name](const MethodSignature& method) { return method.name == name; });
  return found != kMethods.end() ? &*found : nullptr;
}

std::string_view describeInstallReturn(std::uint32_t code) {
  static constexpr std::pair<std::uint32_t, std::string_view> kMeanings[] = {
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
  for (const auto& [meaningCode, meaning] : kMeanings) {
    if (meaningCode == code) {
      return meaning;
    }
  }
  return "Unknown return code";
}

}  // namespace cim
