// What the thread of a firmware update needs of its job.

#ifndef ORVEX_AGENT_FLASHJOB_H_
#define ORVEX_AGENT_FLASHJOB_H_

#include <cstdint>
#include <string>
#include <vector>

#include "Utils/FirmwareTypes.h"
#include "cim/JobState.h"

namespace agent {

// Called from the job's thread, which does not own it.
class FlashJob {
 public:
  FlashJob() = default;
  FlashJob(const FlashJob&) = delete;
  FlashJob& operator=(const FlashJob&) = delete;

  // Returns the adapter to update.
  [[nodiscard]] virtual std::string getTarget() const = 0;
  // Returns the image types to install, as the request named them.
  [[nodiscard]] virtual std::vector<utils::FirmwareType> getTargetTypes() const = 0;
  // Returns the image to write; valid until the job has reached an end state.
  [[nodiscard]] virtual const std::vector<std::uint8_t>& getImage() const = 0;

  // Neither throws, so that every job has an end and its own error.
  virtual void setError(std::uint32_t code, const std::string& text) noexcept = 0;
  virtual void setJobState(cim::JobState newState) noexcept = 0;

 protected:
  ~FlashJob() = default;
};

}  // namespace agent

#endif  // ORVEX_AGENT_FLASHJOB_H_
