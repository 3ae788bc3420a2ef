#include "cim/JobState.h"

#include <utility>

namespace cim {

std::string toText(JobState state) {
  static constexpr std::pair<JobState, const char*> kNames[] = {
      {JobState::New, "New"},
      {JobState::Starting, "Starting"},
      {JobState::Running, "Running"},
      {JobState::Suspended, "Suspended"},
      {JobState::ShuttingDown, "Shutting Down"},
      {JobState::Completed, "Completed"},
      {JobState::Terminated, "Terminated"},
      {JobState::Killed, "Killed"},
      {JobState::Exception, "Exception"},
      {JobState::Service, "Service"},
      {JobState::QueryPending, "Query Pending"},
  };
  for (const auto& [named, name] : kNames) {
    if (named == state) {
      return name;
    }
  }
  return std::to_string(static_cast<unsigned>(state));
}

}  // namespace cim
