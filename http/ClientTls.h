// How a client of this folder trusts a server. Private to this folder.

#ifndef ORVEX_HTTP_CLIENTTLS_H_
#define ORVEX_HTTP_CLIENTTLS_H_

#include <boost/asio/ssl/context.hpp>
#include <boost/system/error_code.hpp>
#include <openssl/ssl.h>
#include <string>

#include "http/ClientFault.h"

namespace http {

// Returns the settings for TLS 1.2 and later that trust the authorities in a file (PEM), those of
// the system for an empty name. Throws ClientFault.
[[nodiscard]] boost::asio::ssl::context makeClientTls(const std::string& caFile);

// Makes a session verify that the certificate is this host's: a name or an address.
void setExpectedHost(SSL* session, const std::string& host);

// Returns what went wrong in a handshake. `server` is "host:port".
[[nodiscard]] ClientFault describeHandshakeFault(SSL* session,
                                                 const boost::system::error_code& fault,
                                                 const std::string& server);

}  // namespace http

#endif  // ORVEX_HTTP_CLIENTTLS_H_
