#include "http/ResolveFault.h"

#include <boost/asio/error.hpp>

namespace http {

ClientFault describeResolveFault(const std::string& name, const boost::system::error_code& fault) {
  const bool isForNow = fault == boost::asio::error::host_not_found_try_again;
  return ClientFault("The name '" + name + "' cannot be resolved: " + fault.message() +
                         ". Check its spelling, or use an address.",
                     isForNow ? ClientFault::Kind::Connection : ClientFault::Kind::Usage);
}

}  // namespace http
