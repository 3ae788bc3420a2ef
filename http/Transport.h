// The two kinds of connections: plain and encrypted. Private to this folder.

#ifndef ORVEX_HTTP_TRANSPORT_H_
#define ORVEX_HTTP_TRANSPORT_H_

#include <boost/asio/ssl/context.hpp>
#include <memory>

#include "http/Asio.h"
#include "http/Connection.h"
#include "http/Peer.h"

namespace http {

// Return a connection that serves nobody yet (see Connection::serve). `tls` outlives it.
[[nodiscard]] std::shared_ptr<Connection> makeConnection(Service& service, Socket socket,
                                                         Peer peer);
[[nodiscard]] std::shared_ptr<Connection> makeConnection(Service& service, Socket socket, Peer peer,
                                                         asio::ssl::context& tls);

}  // namespace http

#endif  // ORVEX_HTTP_TRANSPORT_H_
