// The CIM status codes (DSP0200, table of 5.2.5), and which of them an exception becomes.

#ifndef ORVEX_WBEM_STATUS_H_
#define ORVEX_WBEM_STATUS_H_

#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace wbem {

enum class Status : unsigned {
  Failed = 1,
  AccessDenied = 2,
  InvalidNamespace = 3,
  InvalidParameter = 4,
  InvalidClass = 5,
  NotFound = 6,
  NotSupported = 7,
  NoSuchProperty = 12,
  TypeMismatch = 13,
  MethodNotAvailable = 16,
  MethodNotFound = 17,
  InvalidEnumerationContext = 21,
  InvalidOperationTimeout = 22,
  FilteredEnumerationNotSupported = 25,
  ContinuationOnErrorNotSupported = 26,
  ServerLimitsExceeded = 27,
};

// Returns the name that the standard gives it: "CIM_ERR_FAILED".
[[nodiscard]] std::string_view getStatusName(Status status);

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
