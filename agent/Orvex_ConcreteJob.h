// One firmware update of one adapter, as clients see it.
//
// Life cycle, by DMTF JobState: New (constructed: the image is checked and prepared, the target in
// progress is set) → Starting (requestStateChange) → Running (its thread) → Completed or Exception.
// Reaching an end state frees the image and clears the target in progress. The job stays in its
// class's list for the life of the process.
//
// Every change of state goes through setJobState(). The job's thread and requests meet in the
// atomic and guarded members alone; the published properties are filled by a request.

#ifndef ORVEX_AGENT_ORVEX_CONCRETEJOB_H_
#define ORVEX_AGENT_ORVEX_CONCRETEJOB_H_

#include <atomic>
#include <cstdint>
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
  [[nodiscard]] cim::JobState getJobState() const { return m_state.load(); }
  [[nodiscard]] bool isFinished() const { return m_isFinished.load(); }
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
  void setError(std::uint32_t code, const std::string& text) override;
  void setJobState(cim::JobState newState) override;

 private:
  const std::string m_target;
  const std::uint32_t m_number;
  const utils::Datetime m_submitted;
  platform::Clock& m_clock;
  agent::VerifiedImage m_image;

  std::atomic<cim::JobState> m_state{cim::JobState::New};
  std::atomic<bool> m_isFinished{false};
  std::atomic<std::int32_t> m_percentComplete{0};

  utils::Mutex m_reportMutex;  // a leaf: nothing is called while it is held
  utils::Datetime m_elapsed ORVEX_GUARDED_BY(m_reportMutex){0};
  utils::Datetime m_lastStateChange ORVEX_GUARDED_BY(m_reportMutex){0};
  std::uint16_t m_errorCode ORVEX_GUARDED_BY(m_reportMutex) = 0;
  std::string m_errorText ORVEX_GUARDED_BY(m_reportMutex);

  utils::Mutex m_threadMutex;
  std::unique_ptr<JobThread> m_myThread ORVEX_GUARDED_BY(m_threadMutex);
};

#endif  // ORVEX_AGENT_ORVEX_CONCRETEJOB_H_
