#include "client/HostHttp.h"

#include <memory>
#include <utility>

#include "client/Fault.h"

namespace client {
namespace {

constexpr const char* kTarget = "/cimom";

std::shared_ptr<http::Client> makeClient(const HostAddress& address, const std::string& caFile) {
  http::ClientOptions options;
  options.host = address.host;
  options.port = address.port;
  options.path = address.path;
  options.isTls = address.isTls;
  options.caFile = caFile;
  options.mustBeLoopback = address.isLoginReadable();
  try {
    return std::make_shared<http::Client>(std::move(options));
  } catch (const http::ClientFault& fault) {
    throw Fault(fault.what(), Fault::Kind::Usage);
  }
}

}  // namespace

HostConnection::Send openHttp(const HostAddress& address, const std::string& caFile) {
  return [client = makeClient(address, caFile)](const http::Client::Fields& fields,
                                                const std::string& body,
                                                const http::SendOptions& options) {
    return client->send("POST", kTarget, fields, body, options);
  };
}

}  // namespace client
