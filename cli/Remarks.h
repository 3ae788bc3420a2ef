// Sentences about adapters, below a table that has no room for them.

#ifndef ORVEX_CLI_REMARKS_H_
#define ORVEX_CLI_REMARKS_H_

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace cli {

// What is said of several adapters is said once.
class Remarks {
 public:
  explicit Remarks(const char* heading) : m_heading(heading) {}

  void add(const std::string& adapter, const std::string& text);

  // Prints an empty line, the heading and the remarks; nothing where there are none.
  void print(std::ostream& out) const;

 private:
  const char* const m_heading;
  std::vector<std::pair<std::string, std::vector<std::string>>> m_remarks;
};

}  // namespace cli

#endif  // ORVEX_CLI_REMARKS_H_
