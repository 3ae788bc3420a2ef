#include "wbem/StartedJobs.h"

#include <cstdint>

#include "cim/JobState.h"
#include "cimxml/Characters.h"
#include "core/CimPath.h"
#include "core/CimPropertyTypes.h"
#include "core/LookAhead.h"

namespace wbem {
namespace {

constexpr std::size_t kMostBytesTold = 2048;

std::uint16_t numberOf(core::CimInstance& instance, const char* name) {
  const core::CimProperty* property = instance.getProperty(name);
  return property != nullptr && !property->isNull() && property->getType() == core::kCimUint16
             ? static_cast<const core::CimPropertyUint16*>(property)->getValue()
             : std::uint16_t{0};
}

std::string textOf(core::CimInstance& instance, const char* name) {
  const core::CimProperty* property = instance.getProperty(name);
  return property != nullptr && !property->isNull() && property->getType() == core::kCimString
             ? static_cast<const core::CimPropertyString*>(property)->getValue()
             : std::string();
}

}  // namespace

void StartedJobs::add(const Caller& caller, const std::string& path,
                      const Installation& installation) {
  const utils::ScopedLock lock(m_mutex);
  m_jobs.push_back({caller, path, installation});
}

void StartedJobs::recordEnds() {
  const utils::ScopedLock lock(m_recordMutex);
  for (Job& job : getJobs()) {
    std::string end;
    {
      // Of the software, what is installed is of interest alone.
      const core::LookAhead none(m_broker, {});
      const core::CimBroker::Request request(m_broker);
      end = findEnd(job);
      if (end.empty()) {
        continue;
      }
      job.installation.newVersions = describeInstalled(m_broker, job.installation.adapter);
    }
    forget(job.path);
    m_audit.write({job.caller, "JobEnd", end, job.path, toDetails(job.installation)});
  }
}

std::string StartedJobs::findEnd(const Job& job) {
  core::CimInstance* const instance = m_broker.getInstanceByPath(core::CimPath(job.path));
  if (instance == nullptr) {
    return "not known: the job is gone";
  }
  const auto state = static_cast<cim::JobState>(numberOf(*instance, "JobState"));
  if (!cim::hasEnded(state)) {
    return "";
  }
  std::string end = cim::toText(state);
  if (state != cim::JobState::Completed) {
    end += ", error " + std::to_string(numberOf(*instance, "ErrorCode"));
    const std::string text = textOf(*instance, "ErrorDescription");
    end += text.empty() ? "" : ": " + cimxml::shorten(text, kMostBytesTold);
  }
  return end;
}

std::vector<StartedJobs::Job> StartedJobs::getJobs() {
  const utils::ScopedLock lock(m_mutex);
  return m_jobs;
}

void StartedJobs::forget(const std::string& path) {
  const utils::ScopedLock lock(m_mutex);
  std::erase_if(m_jobs, [&path](const Job& job) { return job.path == path; });
}

}  // namespace wbem
