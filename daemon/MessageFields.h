// The header fields of a CIM message in HTTP (DSP0200, 7): what they must say, alone and beside the
// message.

#ifndef ORVEX_DAEMON_MESSAGEFIELDS_H_
#define ORVEX_DAEMON_MESSAGEFIELDS_H_

#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "cimxml/Request.h"
#include "http/Message.h"

namespace quorveld {

// Header fields that make a request one that is not served.
class FieldsFault final : public std::exception {
 public:
  FieldsFault(unsigned status, std::string cimError, std::string text)
      : m_status(status), m_cimError(std::move(cimError)), m_text(std::move(text)) {}

  [[nodiscard]] unsigned status() const { return m_status; }  // of HTTP
  // The header field CIMError of the answer; empty where the status says it all.
  [[nodiscard]] const std::string& cimError() const { return m_cimError; }
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  unsigned m_status;
  std::string m_cimError;
  std::string m_text;
};

// Throws FieldsFault for a message that is no CIM message in XML and UTF-8, by its Content-Type,
// Content-Encoding, CIMOperation and CIMProtocolVersion, or that has one of the fields of a CIM
// message twice.
void demandCimMessage(const http::Request& request);

// Throws FieldsFault when CIMMethod or CIMObject is missing or does not say what the
// message says: what stands between client and server judges a request by these fields.
void demandSameFields(const http::Request& request, const cimxml::Request& message);

// Returns the text with its %XX sequences decoded; a damaged one stays.
[[nodiscard]] std::string decodePercent(std::string_view text);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_MESSAGEFIELDS_H_
