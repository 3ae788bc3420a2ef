// The sockets that a server listens on. Private to this folder.

#ifndef ORVEX_HTTP_ACCEPTORS_H_
#define ORVEX_HTTP_ACCEPTORS_H_

#include <memory>
#include <vector>

#include "http/Asio.h"
#include "http/Endpoint.h"
#include "http/Posix/SocketFile.h"

namespace http {

struct Listener {
  Acceptor acceptor;
  Endpoint endpoint;                 // with the port that the system chose
  std::unique_ptr<SocketFile> file;  // of a local socket
};

// Listens on all of the endpoints. An address that this machine does not have is logged and left
// out, as long as another one is there. Throws SetupFault.
[[nodiscard]] std::vector<Listener> openListeners(asio::io_context& context,
                                                  const std::vector<Endpoint>& endpoints);

}  // namespace http

#endif  // ORVEX_HTTP_ACCEPTORS_H_
