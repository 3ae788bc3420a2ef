// What to do about an update that was refused or failed, in words.

#ifndef ORVEX_CLI_REFUSAL_H_
#define ORVEX_CLI_REFUSAL_H_

#include <cstdint>
#include <string>

#include "cli/JobWatch.h"

namespace cli {

// What an update asked for, as far as advice depends on it.
struct UpdateRequest {
  std::string imagePath;  // empty when the image was given as a URI
  bool hasTypes = false;
  bool isForced = false;
};

// Returns what to do next about a refusal, empty when nothing is known. `reason` is that of
// MethodAnswer, with its type. Looks at the image file.
[[nodiscard]] std::string adviseOnRefusal(std::uint32_t returnValue, const std::string& reason,
                                          const UpdateRequest& request);

// Returns what to do next about a job that ended without success.
[[nodiscard]] std::string adviseOnFailure(const JobReport& job);

}  // namespace cli

#endif  // ORVEX_CLI_REFUSAL_H_
