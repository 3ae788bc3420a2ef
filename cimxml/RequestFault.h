// A message that is no request that this server serves: answered by a status of what carries the
// messages and the header field CIMError (DSP0200, 7.3 and 8.1), not by a CIM message.

#ifndef ORVEX_CIMXML_REQUESTFAULT_H_
#define ORVEX_CIMXML_REQUESTFAULT_H_

#include <exception>
#include <string>
#include <utility>

namespace cimxml {

// Values of CIMError.
inline constexpr const char* kNotWellFormed = "request-not-well-formed";
inline constexpr const char* kNotValid = "request-not-valid";

class RequestFault final : public std::exception {
 public:
  enum class Kind {
    Malformed,    // by its sender's fault
    Unsupported,  // a request that other servers may serve
  };

  RequestFault(Kind kind, std::string cimError, std::string text)
      : m_kind(kind), m_cimError(std::move(cimError)), m_text(std::move(text)) {}

  [[nodiscard]] Kind kind() const { return m_kind; }
  // "request-not-well-formed", for example.
  [[nodiscard]] const std::string& cimError() const { return m_cimError; }
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  Kind m_kind;
  std::string m_cimError;
  std::string m_text;
};

}  // namespace cimxml

#endif  // ORVEX_CIMXML_REQUESTFAULT_H_
