#include "cim/JobState.h"

#include "cim/ValueTables.h"
#include "core/ValueNames.h"

namespace cim {

std::string toText(JobState state) {
  const std::string_view name = core::findValueName(kJobStates, static_cast<int>(state));
  if (!name.empty()) {
    return std::string(name);
  }
  return std::to_string(static_cast<unsigned>(state));
}

}  // namespace cim
