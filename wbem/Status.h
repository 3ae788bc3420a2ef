// The CIM status that an exception becomes.

#ifndef ORVEX_WBEM_STATUS_H_
#define ORVEX_WBEM_STATUS_H_

#include <exception>
#include <string>
#include <utility>

#include "cimxml/StatusCode.h"

namespace wbem {

using Status = cimxml::StatusCode;

// A request that is refused: the server's own judgement, with the reason in words.
class StatusFault final : public std::exception {
 public:
  StatusFault(Status status, std::string text) : m_status(status), m_text(std::move(text)) {}

  [[nodiscard]] Status status() const { return m_status; }
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  Status m_status;
  std::string m_text;
};

// Returns the status that an exception is answered with; its text is the description.
[[nodiscard]] Status toStatus(const std::exception& error);

}  // namespace wbem

#endif  // ORVEX_WBEM_STATUS_H_
