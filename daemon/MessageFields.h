// The header fields of a CIM message in HTTP (DSP0200, 7): what they must say, alone and beside the
// message.

#ifndef ORVEX_DAEMON_MESSAGEFIELDS_H_
#define ORVEX_DAEMON_MESSAGEFIELDS_H_

#include <string>

#include "cimxml/Request.h"
#include "http/Server.h"

namespace quorveld {

// Throws cimxml::RequestFault for a message that is no CIM message in XML and UTF-8, by its
// Content-Type, Content-Encoding, CIMOperation and CIMProtocolVersion; its cimError() is empty
// where HTTP's status says it all.
void demandCimMessage(const http::Request& request);

// Throws cimxml::RequestFault when CIMMethod or CIMObject is missing or does not say what the
// message says: what stands between client and server judges a request by these fields.
void demandSameFields(const http::Request& request, const cimxml::Request& message);

// Returns the text with its %XX sequences decoded; a damaged one stays.
[[nodiscard]] std::string decodePercent(std::string_view text);

}  // namespace quorveld

#endif  // ORVEX_DAEMON_MESSAGEFIELDS_H_
