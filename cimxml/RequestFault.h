// A message that is no request that this server serves: answered by an HTTP status and the header
// field CIMError (DSP0200, 7.3 and 8.1), not by a CIM message.

#ifndef ORVEX_CIMXML_REQUESTFAULT_H_
#define ORVEX_CIMXML_REQUESTFAULT_H_

#include <exception>
#include <string>
#include <utility>

namespace cimxml {

// HTTP statuses of such answers (RFC 9110) and values of CIMError.
inline constexpr unsigned kBadRequest = 400;
inline constexpr unsigned kNotImplemented = 501;
inline constexpr const char* kNotWellFormed = "request-not-well-formed";
inline constexpr const char* kNotValid = "request-not-valid";

class RequestFault final : public std::exception {
 public:
  RequestFault(unsigned httpStatus, std::string cimError, std::string text)
      : m_httpStatus(httpStatus), m_cimError(std::move(cimError)), m_text(std::move(text)) {}

  [[nodiscard]] unsigned httpStatus() const { return m_httpStatus; }
  // "request-not-well-formed", for example.
  [[nodiscard]] const std::string& cimError() const { return m_cimError; }
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  unsigned m_httpStatus;
  std::string m_cimError;
  std::string m_text;
};

}  // namespace cimxml

#endif  // ORVEX_CIMXML_REQUESTFAULT_H_
