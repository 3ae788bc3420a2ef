// Why the name of a server has no address. Private to this folder.

#ifndef ORVEX_HTTP_RESOLVEFAULT_H_
#define ORVEX_HTTP_RESOLVEFAULT_H_

#include <boost/system/error_code.hpp>
#include <string>

#include "http/ClientFault.h"

namespace http {

// Returns what is to be said: a name that cannot be resolved for now may be another time.
[[nodiscard]] ClientFault describeResolveFault(const std::string& name,
                                               const boost::system::error_code& fault);

}  // namespace http

#endif  // ORVEX_HTTP_RESOLVEFAULT_H_
