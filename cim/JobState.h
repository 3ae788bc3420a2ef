// The states of a job (DMTF CIM_ConcreteJob.JobState). Constant data; any thread may call.

#ifndef ORVEX_CIM_JOBSTATE_H_
#define ORVEX_CIM_JOBSTATE_H_

#include <cstdint>
#include <string>

#include "Utils/Export.h"

namespace cim {

// A job of another system may be in a state that has no name here.
enum class JobState : std::uint16_t {
  New = 2,
  Starting = 3,
  Running = 4,
  Suspended = 5,
  ShuttingDown = 6,
  Completed = 7,
  Terminated = 8,
  Killed = 9,
  Exception = 10,
  Service = 11,
  QueryPending = 12,
};

// Returns whether nothing will change any more.
[[nodiscard]] constexpr bool hasEnded(JobState state) {
  return state == JobState::Completed || state == JobState::Terminated ||
         state == JobState::Killed || state == JobState::Exception;
}

// Returns the name of a state, "Shutting Down" for example; its number where it has none.
[[nodiscard]] ORVEX_CORE_API std::string toText(JobState state);

}  // namespace cim

#endif  // ORVEX_CIM_JOBSTATE_H_
