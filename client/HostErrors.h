// What a host answers when it does not do what it is asked, in words; and the header fields of a
// request. Not on Windows.

#ifndef ORVEX_CLIENT_HOSTERRORS_H_
#define ORVEX_CLIENT_HOSTERRORS_H_

#include <string>
#include <string_view>

#include "cimxml/Response.h"
#include "cimxml/StatusCode.h"
#include "client/HostAddress.h"
#include "http/Client.h"

namespace client {

[[nodiscard]] bool isError(const cimxml::Response& response, cimxml::StatusCode status);

// Throws Fault for the error of a CIM operation: "CIM_ERR_NOT_FOUND: ...".
[[noreturn]] void refuseError(const cimxml::ErrorValue& error, const std::string& nameSpace);

// Throws Fault for an error that is about the text of a query, as where it is read in this process.
void demandQueryTaken(const cimxml::Response& response);

// Throws Fault unless the answer carries a CIM message: for a login that is refused, a request that
// is, and whatever else answers there; PassingFault for a host that has too much to do.
void demandAnswered(const HostAddress& address, const http::ClientResponse& answer);

// Throws Fault for an answer that no CIM-XML host gives.
[[noreturn]] void refuseAnswer(const HostAddress& address, const std::string& reason);

// Returns the text with what no header field may hold as escapes: "%3A" (DSP0200, 6.3).
[[nodiscard]] std::string encodeForField(std::string_view text);

// Returns the value of the header field Authorization for the scheme Basic (RFC 7617).
[[nodiscard]] std::string toBasicLogin(const std::string& user, const std::string& password);

}  // namespace client

#endif  // ORVEX_CLIENT_HOSTERRORS_H_
