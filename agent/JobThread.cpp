#include "agent/JobThread.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include "Os/OSLocker.h"
#include "Utils/Assert.h"
#include "Utils/RefusalTexts.h"
#include "midapi/MidApi.h"
#include "platform/StayAwake.h"

namespace {

constexpr utils::LogSource kLog{"JobThread"};
constexpr const char* kExecute = "JobThread::execute";

constexpr std::chrono::milliseconds kStartDelay{10};
constexpr int kPollStep = 50;             // milliseconds
constexpr int kTerminationBudget = 3000;  // milliseconds
constexpr std::uint32_t kTimeoutErrorCode = 4;

// For a debugger: how many updates have begun.
std::atomic<std::int32_t> s_begunUpdates{0};

// Looks a type up by bisection, over the list as it stands: a list that is not ascending can hide
// its iSCSI entry, and clients rely on what that does.
bool findsByBisection(const std::vector<utils::FirmwareType>& types, utils::FirmwareType wanted) {
  std::size_t first = 0;
  std::size_t count = types.size();
  while (count > 0) {
    const std::size_t half = count / 2;
    if (types[first + half] < wanted) {
      first += half + 1;
      count -= half + 1;
    } else {
      count = half;
    }
  }
  return first < types.size() && types[first] == wanted;
}

}  // namespace

int agent::waitForFlag(const LockedFlag& flag, int milliseconds, platform::Clock& clock) {
  while (!flag.isSet() && milliseconds >= 1) {
    clock.sleepFor(std::chrono::milliseconds(kPollStep));
    milliseconds -= kPollStep;
  }
  return milliseconds;
}

JobThread::JobThread(agent::FlashJob* myJob, platform::Clock& clock)
    : m_job(myJob), m_clock(clock) {
  utils::logDebug(kLog, "JobThread::JobThread", "Creating JobThread %p", static_cast<void*>(this));
  ORVEX_ASSERT(kLog, NULL != myJob);
}

JobThread::~JobThread() {
  constexpr const char* kFunction = "JobThread::~JobThread";
  void* const self = this;
  utils::logDebug(kLog, kFunction, "Destroying JobThread %p", self);
  if (!m_started.isSet()) {
    return;
  }
  utils::logDebug(kLog, kFunction, "Destroying JobThread %p, waiting for terminate", self);
  JobThread::requestStop();
  if (!hasEnded()) {
    agent::waitForFlag(m_done, findTerminationBudget(), m_clock);
  }
  if (m_done.isSet()) {
    utils::logDebug(kLog, kFunction, "JobThread %p, terminated", self);
  } else {
    utils::logError(kLog, kFunction, "JobThread %p, terminating timeout error", self);
  }
  // The body uses the members, which must not go before it has ended.
  while (m_launched.isSet() && !m_done.isSet() && !hasEnded()) {
    agent::waitForFlag(m_done, kTerminationBudget, m_clock);
  }
}

// A thread that never came to exist has used its time up since then.
int JobThread::findTerminationBudget() const {
  if (m_launched.isSet()) {
    return kTerminationBudget;
  }
  const auto passed =
      std::chrono::duration_cast<std::chrono::milliseconds>(m_clock.now() - m_launchTime);
  return static_cast<int>(
      std::max<std::chrono::milliseconds::rep>(kTerminationBudget - passed.count(), 0));
}

void JobThread::launch() {
  m_launchTime = m_clock.now();
  m_started.set();
  start();
  m_launched.set();
}

void JobThread::requestStop() {
  m_stopRequested.set();
}

void JobThread::run() {
  void* const self = this;
  utils::logDebug(kLog, kExecute, "Thread %p starting", self);
  bool isFlashed = false;
  try {
    m_clock.sleepFor(kStartDelay);
    s_begunUpdates.fetch_add(1, std::memory_order_relaxed);
    m_job->setJobState(cim::JobState::Running);
    isFlashed = flash();
  } catch (...) {
    // Whatever it was, a client gets the one answer that it knows.
    m_job->setError(kTimeoutErrorCode, utils::refusal::kTimeout);
    utils::logError(kLog, kExecute, "Access to the FK is disabled at this moment.");
  }
  // Nothing from here on throws: a job without an end would keep its adapter for ever.
  m_job->setJobState(isFlashed ? cim::JobState::Completed : cim::JobState::Exception);
  m_done.set();
  utils::logDebug(kLog, kExecute, "Thread %p finishing", self);
}

bool JobThread::flash() {
  const os::OSLocker::AutoOSLocker flashLock;
  // Between the writes, too: a machine that was kept awake for long falls asleep at once.
  const platform::StayAwake awake;
  const std::string target = m_job->getTarget();
  const std::vector<utils::FirmwareType> types = m_job->getTargetTypes();
  // Boot types that are taken away before a write that fails are put back with its end.
  const ma::FlashUpdate update(target);
  if (!findsByBisection(types, utils::FirmwareType::Iscsi)) {
    disableIscsiBoot();
  }
  std::uint32_t errorCode = 0;
  std::string errorText;
  utils::logDebug(kLog, kExecute, "Writing FLASH Image");
  const std::vector<std::uint8_t>& image = m_job->getImage();
  bool isDone = ma::writeFlashImage(target, image.data(), static_cast<std::uint32_t>(image.size()),
                                    errorCode, errorText);
  m_job->setError(errorCode, errorText);
  if (isDone) {
    const std::string remark = ma::getFlashImageUpdateRemark(target);
    if (!remark.empty()) {
      utils::logError(kLog, kExecute, "The flash was not compared: %s", remark.c_str());
    }
    utils::logDebug(kLog, kExecute, "Updating CapabilityWord");
    isDone = ma::updateCapabilityWord(target, types, errorCode, errorText);
    m_job->setError(errorCode, errorText);
  }
  return isDone;
}

// An image without iSCSI must not leave ports behind that boot from it: all ports of the adapter
// share the flash. A PCI location has no segment, by which ports of two adapters may differ alone.
void JobThread::disableIscsiBoot() {
  const std::string target = m_job->getTarget();
  std::vector<utils::FirmwareVersionInfo> installed;
  ma::getAdapterFirmwareVersion(target, installed);
  utils::logDebug(kLog, kExecute, "MidApi returns %d firmwares",
                  static_cast<int>(installed.size()));
  const bool hasIscsi = std::any_of(installed.begin(), installed.end(), [](const auto& component) {
    return component.type == utils::FirmwareType::Iscsi;
  });
  if (!hasIscsi) {
    return;
  }
  const utils::PCIAddr address = ma::getPCIAddress(target);
  std::string whyNot;  // of the first port that keeps its boot type: the others say the same
  for (const std::string& port : ma::enumerateAdapters()) {
    const utils::PCIAddr other = ma::getPCIAddress(port);
    if (other.bus == address.bus && other.device == address.device &&
        ma::isSameAdapter(port, target)) {
      std::string text;
      if (!ma::setBootType(port, ma::BootType::None, text) && whyNot.empty()) {
        whyNot = text;
      }
    }
  }
  // The update goes on, but somebody has to know of ports that try to boot from iSCSI still.
  if (!whyNot.empty()) {
    utils::logError(kLog, kExecute, "The boot type stays: %s", whyNot.c_str());
  }
}
