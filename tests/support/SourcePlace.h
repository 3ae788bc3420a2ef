// Whether records and assertions stand where they say: they name a source file and a line of it.
//
// The sources are read as they are when the test runs, so they have to be those that it was built
// of.

#ifndef ORVEX_TESTS_SUPPORT_SOURCEPLACE_H_
#define ORVEX_TESTS_SUPPORT_SOURCEPLACE_H_

#include <string>

#include "tests/support/LogCapture.h"

namespace test {

// Returns what is wrong with the place that the record names, nothing when its line holds the
// record: the call of the log with the record's text. What every provider logs stands where the
// provider names the function under which it logs.
[[nodiscard]] std::string findMisplacement(const LogRecord& record);

// The same for an assertion's text, "SOURCE:LINE: Assertion failed: 'CONDITION'", whose line holds
// the condition.
[[nodiscard]] std::string findMisplacement(const std::string& assertion);

// Expects of every record that it was logged in its place, when they go.
class PlacedLog : public LogCapture {
 public:
  PlacedLog() = default;
  ~PlacedLog() override;

  void clear();

 private:
  void expectPlaces() const;
};

}  // namespace test

#endif  // ORVEX_TESTS_SUPPORT_SOURCEPLACE_H_
