#include "client/IdentityCheck.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

#include "cim/MethodSignatures.h"

namespace client {
namespace {

struct Meaning {
  std::string_view state;
  cim::InstallReturn returnValue;
  const char* reason;
};

// What the library that installs answers to a file of each state.
constexpr Meaning kMeanings[] = {
    {"newer", cim::kCompletedWithNoError, ""},
    {"same version", cim::kCompletedWithNoError, ""},
    {"same", cim::kCompletedWithNoError, ""},
    {"older", cim::kDowngradeNotSupported, "Downgrade was detected: what is installed is newer"},
    {"other types", cim::kDowngradeNotSupported,
     "The file does not hold the same image types as the adapter"},
    {"not updatable", cim::kNotApplicableToTarget, "The adapter's firmware cannot be replaced"},
    {kNotForAdapter, cim::kUnsupportedTargetType, "No image of the file is for the adapter"},
};

// The port's or the adapter's own identifier, without the port's number.
std::string adapterOf(Connection& connection, const std::string& targetPath) {
  const std::optional<InstanceSnapshot> target = connection.findInstance(targetPath);
  const std::string identifier = target ? target->value<std::string>("DeviceID") : std::string();
  return identifier.substr(0, identifier.find('.'));
}

MethodAnswer makeAnswer(cim::InstallReturn returnValue, const std::string& reason) {
  MethodAnswer answer;
  answer.returnValue = returnValue;
  answer.returnText = cim::describeReturn("CheckSoftwareIdentity", returnValue);
  answer.reason = reason;
  return answer;
}

}  // namespace

IdentityCheck compareIdentity(Connection& connection, const Identity& identity,
                              const std::string& targetPath) {
  if (!identity.isFile) {
    return {makeAnswer(cim::kInvalidParameter, ""), ""};
  }
  const std::string adapter = adapterOf(connection, targetPath);
  const std::vector<ComparedIdentity> compared = compareFiles(connection, {identity});
  const std::vector<Comparison>& adapters = compared.front().adapters;
  const auto found = std::find_if(
      adapters.begin(), adapters.end(),
      [&adapter](const Comparison& comparison) { return comparison.adapter == adapter; });
  if (found == adapters.end()) {
    return {makeAnswer(cim::kNotApplicableToTarget, "The target is neither a port nor an adapter"),
            ""};
  }
  const auto* const meaning =
      std::find_if(std::begin(kMeanings), std::end(kMeanings),
                   [&found](const Meaning& known) { return known.state == found->state; });
  return {meaning != std::end(kMeanings)
              ? makeAnswer(meaning->returnValue, meaning->reason)
              : makeAnswer(cim::kUnspecifiedError, "The file could not be compared"),
          found->state};
}

}  // namespace client
