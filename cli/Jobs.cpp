#include "cli/Jobs.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "cli/ServedClasses.h"

namespace cli {
namespace {

constexpr const char* kJobClass = "Orvex_ConcreteJob";
constexpr const char* kIdProperty = "InstanceID";

std::optional<std::int64_t> parseDigits(std::string_view digits) {
  std::uint32_t number = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc() && stop == digits.data() + digits.size()
             ? std::optional<std::int64_t>(number)
             : std::nullopt;
}

bool isMeant(const Job& job, const std::string& text) {
  const std::size_t sign = job.id.rfind('#');
  return !text.empty() && (job.id == text || job.report.path == text || job.id == jobIdOf(text) ||
                           (sign != std::string::npos && job.id.substr(sign + 1) == text));
}

}  // namespace

std::vector<Job> readJobs(Connection& connection) {
  std::vector<Job> jobs;
  for (const InstanceSnapshot& instance : demandInstances(connection, kJobClass)) {
    jobs.push_back({instance.value<std::string>(kIdProperty),
                    parseInterval(instance.value<std::string>("ElapsedTime")), reportOf(instance)});
  }
  return jobs;
}

Job findJob(Connection& connection, const std::string& text) {
  std::vector<Job> jobs = readJobs(connection);
  const auto found = std::find_if(jobs.begin(), jobs.end(),
                                  [&text](const Job& job) { return isMeant(job, text); });
  if (found != jobs.end()) {
    return std::move(*found);
  }
  std::string message = "there is no job '" + text + "'";
  if (jobs.empty()) {
    message += connection.isRemote()
                   ? "; the host has had no job since it was started"
                   : "; jobs of this program end with it: --host names a host whose jobs go on";
    throw Fault(message);
  }
  message += "; the jobs are:";
  for (const Job& job : jobs) {
    message += "\n  " + job.id + " (" + jobStateName(job.report.state) + ")";
  }
  throw Fault(message);
}

// ddddddddhhmmss.mmmmmm:000
std::optional<std::chrono::seconds> parseInterval(const std::string& text) {
  constexpr std::size_t kLength = 25;
  constexpr std::size_t kMark = 21;
  constexpr std::size_t kDays = 8;
  if (text.size() != kLength || text[kMark] != ':') {
    return std::nullopt;
  }
  const std::string_view view = text;
  const auto days = parseDigits(view.substr(0, kDays));
  const auto hours = parseDigits(view.substr(kDays, 2));
  const auto minutes = parseDigits(view.substr(kDays + 2, 2));
  const auto seconds = parseDigits(view.substr(kDays + 4, 2));
  if (!days || !hours || !minutes || !seconds) {
    return std::nullopt;
  }
  return std::chrono::hours(*days * 24 + *hours) + std::chrono::minutes(*minutes) +
         std::chrono::seconds(*seconds);
}

}  // namespace cli
