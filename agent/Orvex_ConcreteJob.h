// One firmware update of one adapter, as clients see it.
//
// Life cycle, by DMTF JobState: New (constructed: the image is checked and prepared, the target in
// progress is set) → Starting (requestStateChange) → Running (its thread) → Completed or Exception.
// Reaching an end state frees the image and clears the target in progress. The job stays in its
// class's list for the life of the process.
//
// Every change of state goes through setJobState(). The job's thread and requests meet in the
// atomic and guarded members alone; the published properties are filled by a request. What belongs
// to an end of the job is under one lock, so that whoever sees the end may ask for the next update
// at once.

#ifndef ORVEX_AGENT_ORVEX_CONCRETEJOB_H_
#define ORVEX_AGENT_ORVEX_CONCRETEJOB_H_

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Utils/Datetime.h"
#include "Utils/Mutex.h"
#include "agent/FlashJob.h"
#include "agent/ImageVerification.h"
#include "agent/JobThread.h"
#include "cim/CIM_ConcreteJob.h"
#include "platform/Clock.h"

class Orvex_ConcreteJob : public CIM_ConcreteJob, public agent::FlashJob {
 public:
  static constexpr const char* kClassName = "Orvex_ConcreteJob";
  using Superclass = CIM_ConcreteJob;

  // What requestStateChange() understands (DMTF CIM_ConcreteJob.RequestStateChange).
  static constexpr std::uint16_t kRequestStart = 2;

  enum ThreadCommand : std::int32_t { kStartThread = 1, kWaitForThread = 2, kDeleteThread = 3 };

  // Checks and prepares the image; throws what checkAndVerifyImage throws, and then there is no
  // job. The job and its thread wait by `clock`, which outlives them.
  Orvex_ConcreteJob(const std::string& target, std::uint32_t number, const std::string& uri,
                    const std::vector<std::uint16_t>& installOptions,
                    const std::vector<std::string>& installOptionsValues,
                    platform::Clock& clock = platform::steadyClock());
  // The same for an image that has been checked.
  Orvex_ConcreteJob(const std::string& target, std::uint32_t number, agent::VerifiedImage image,
                    platform::Clock& clock = platform::steadyClock());
  // Waits for the thread; see JobThread.
  ~Orvex_ConcreteJob() override;

  // Fills the published properties.
  virtual void setPropertyValues();
  // Starts the thread; or asks it to stop and waits for it, `timeout` milliseconds at the most; or
  // deletes it when it is done. Returns whether that was done. Throws utils::Exception when there
  // is no thread to start or to wait for. Holds the job's mutex throughout.
  virtual bool threadControl(std::int32_t command, std::int32_t timeout);

  // The method RequestStateChange as clients invoke it, with the arguments RequestedState and
  // TimeoutPeriod. Returns a cim::StateChangeReturn, kStateChangeInvalid without a RequestedState.
  // An argument of another type counts as missing.
  std::uint32_t invokeRequestStateChange(core::CimPropertyList* in, core::CimPropertyList* out,
                                         core::CimInstance** job);

  // Starts a new job. Returns a cim::StateChangeReturn. `timeout` is not used.
  [[nodiscard]] std::uint32_t requestStateChange(std::uint16_t requestedState,
                                                 const utils::Datetime& timeout);

  // Returns "FirmwareUpdate@Job#" and the number.
  [[nodiscard]] std::string getInstanceId() const;
  [[nodiscard]] cim::JobState getJobState() const;
  [[nodiscard]] bool isFinished() const;
  // Returns the progress in percent.
  [[nodiscard]] std::int32_t getPercentComplete();

  // CimInstance
  [[nodiscard]] std::string getClassName() const override { return kClassName; }

  // FlashJob
  [[nodiscard]] std::string getTarget() const override { return m_target; }
  [[nodiscard]] std::vector<utils::FirmwareType> getTargetTypes() const override {
    return m_image.targetTypes;
  }
  [[nodiscard]] const std::vector<std::uint8_t>& getImage() const override { return m_image.bytes; }
  // A code beyond the 16 bits of ErrorCode becomes the largest one and goes into the text.
  void setError(std::uint32_t code, const std::string& text) noexcept override;
  void setJobState(cim::JobState newState) noexcept override;

 private:
  // What clients see of a job that moves on.
  struct Report {
    cim::JobState state = cim::JobState::New;
    utils::Datetime elapsed{0};
    utils::Datetime lastStateChange{0};
    std::uint16_t errorCode = 0;
    std::string errorText;
  };

  using ImageSource = std::function<agent::VerifiedImage()>;

  // The time in which `image` makes the image is the job's, too.
  Orvex_ConcreteJob(const std::string& target, std::uint32_t number, platform::Clock& clock,
                    const ImageSource& image);

  [[nodiscard]] Report getReport() const;

  const std::string m_target;
  const std::uint32_t m_number;
  const utils::Datetime m_submitted;
  platform::Clock& m_clock;
  agent::VerifiedImage m_image;

  std::atomic<std::int32_t> m_percentComplete{0};

  mutable utils::Mutex m_reportMutex;  // nothing but the target in progress is locked under it
  Report m_report ORVEX_GUARDED_BY(m_reportMutex);
  bool m_isFinished ORVEX_GUARDED_BY(m_reportMutex) = false;

  utils::Mutex m_threadMutex;
  std::unique_ptr<JobThread> m_myThread ORVEX_GUARDED_BY(m_threadMutex);
};

#endif  // ORVEX_AGENT_ORVEX_CONCRETEJOB_H_
