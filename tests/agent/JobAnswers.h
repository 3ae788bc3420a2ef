// What the methods of the installation service make of the job class's answers.

#ifndef ORVEX_TESTS_AGENT_JOBANSWERS_H_
#define ORVEX_TESTS_AGENT_JOBANSWERS_H_

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace test {

struct JobAnswer {
  std::int32_t result;
  std::uint32_t returnValue;  // 0 for a success, of which each method has its own
  std::string before;         // the record's text round the target's path; empty: none
  std::string after;

  [[nodiscard]] bool isSuccess() const { return returnValue == 0; }

  // Returns the records of a method that begins its record of an answer with `start`.
  [[nodiscard]] std::vector<std::string> records(const std::string& start,
                                                 const std::string& target) const {
    std::vector<std::string> all{start + std::to_string(result)};
    if (!before.empty()) {
      all.push_back(before + target + after);
    }
    return all;
  }
};

inline void PrintTo(const JobAnswer& answer, std::ostream* stream) {
  *stream << answer.result;
}

// The answers that mean the same to every method: all but 1, "invalid parameter", of which each has
// its own record. An answer that is no refusal is a success.
inline const JobAnswer kJobAnswers[] = {
    {2, 4097, "Target is not supported by service for '", "'"},
    {3, 4099, "Downgrade is not supported by service for '", "'. Execute with FORCE INSTALL flag."},
    {4, 2, "Unspecified Error for '", "'"},
    {5, 4106, "Not applicable for target for '", "' "},
    {100, 5, "Invalid URI for '", "'"},
    {101, 5, "URI does not exists for '", "'"},
    {103, 2, "Job cannot read the URI for '", "'"},
    {104, 2, "Other job is in progress '", "'"},
    {105, 6, "Target '", "' is in update state at this moment"},
    {106, 4, "Failed to start job for '", "' "},
    {0, 0, "", ""},
    {6, 0, "", ""},
    {99, 0, "", ""},
    {102, 0, "", ""},
    {107, 0, "", ""},
    {-1, 0, "", ""},
};

// Returns the answers, and that of "invalid parameter" with the text that begins its record.
inline std::vector<JobAnswer> allJobAnswers(const std::string& invalidParameter) {
  std::vector<JobAnswer> answers(std::begin(kJobAnswers), std::end(kJobAnswers));
  answers.push_back({1, 5, invalidParameter + " returned Invalid Parameter for '", "'"});
  return answers;
}

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_JOBANSWERS_H_
