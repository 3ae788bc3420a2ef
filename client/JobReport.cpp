#include "client/JobReport.h"

#include <cstdint>

#include "Utils/Exception.h"
#include "Utils/Printable.h"
#include "core/CimPath.h"

namespace client {

std::string JobReport::outcome() const {
  std::string text = cim::toText(state);
  if (!isCompleted()) {
    text += ", error " + std::to_string(errorCode);
    if (!errorText.empty()) {
      text += ": " + utils::toPrintable(errorText);
    }
    if (!flashHolder.empty()) {
      text += " (the flash was held by " + utils::toPrintable(flashHolder) + ")";
    }
    if (!lockFailure.empty()) {
      text += " (the flash lock cannot be had: " + utils::toPrintable(lockFailure) + ")";
    }
  }
  return text;
}

JobReport reportOf(const InstanceSnapshot& job) {
  JobReport report;
  report.path = job.path;
  report.properties = job.properties;
  report.state = static_cast<cim::JobState>(job.value<std::uint16_t>("JobState"));
  report.percent = job.value<unsigned>("PercentComplete");
  report.errorCode = job.value<unsigned>("ErrorCode");
  report.errorText = job.value<std::string>("ErrorDescription");
  return report;
}

std::string jobIdOf(const std::string& path) {
  try {
    const core::CimPath parsed(path);
    const auto key = parsed.find("InstanceID");
    return key != parsed.end() ? key->second : "";
  } catch (const utils::ESyntaxError&) {
    return "";
  }
}

}  // namespace client
