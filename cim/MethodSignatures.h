// What the extrinsic methods of the schema classes take and answer: for the declarations of these
// classes, and for front ends that turn text into arguments and return codes into words. The names
// and numbers are those of the DMTF CIM schema; a reference leads to the nearest superclass there
// of which this system has a declaration. Constant data; any thread may call.

#ifndef ORVEX_CIM_METHODSIGNATURES_H_
#define ORVEX_CIM_METHODSIGNATURES_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "Utils/Export.h"
#include "core/ClassDeclaration.h"

namespace cim {

// The return codes of the installation methods that have a meaning of their own here.
enum InstallReturn : std::uint32_t {
  kCompletedWithNoError = 0,
  kUnspecifiedError = 2,
  kFailed = 4,
  kInvalidParameter = 5,
  kTargetInUse = 6,
  kJobStarted = 4096,
  kUnsupportedTargetType = 4097,
  kDowngradeNotSupported = 4099,
  kNotEnoughMemory = 4100,
  kNotApplicableToTarget = 4106,
  kCollectionNotSupported = 4108,
};

// The return codes of RequestStateChange, as jobs have it; the other classes with this method have
// the same numbers for the same things.
enum StateChangeReturn : std::uint32_t {
  kStateChanged = 0,
  kStateChangeNotSupported = 1,
  kStateChangeUnspecifiedError = 2,
  kStateChangeTimedOut = 3,
  kStateChangeFailed = 4,
  kStateChangeInvalid = 5,
  kStateChangeInUse = 6,
  kStateChangeStarted = 4096,
  kInvalidStateTransition = 4097,
  kStateChangeTimeoutNotSupported = 4098,
  kStateChangeBusy = 4099,
};

// Returns the methods that the class declares itself; none for a class without.
[[nodiscard]] ORVEX_CORE_API std::vector<core::MethodDeclaration> getMethods(
    std::string_view className);

// Returns the signature of an installation method (of CIM_SoftwareInstallationService), null for an
// unknown one. Names are case-sensitive.
[[nodiscard]] ORVEX_CORE_API const core::MethodDeclaration* findMethod(std::string_view name);

// Returns the meaning of a method's return code, for example "Method Parameters Checked - Job
// Started"; "Unknown return code" for one that has none, and nothing for a method that is not known
// here, whose numbers may mean anything. Names are compared as those of a declaration.
[[nodiscard]] ORVEX_CORE_API std::string_view describeReturn(std::string_view method,
                                                             std::uint32_t code);

}  // namespace cim

#endif  // ORVEX_CIM_METHODSIGNATURES_H_
