// An HTTP/1.1 server with TLS, keep-alive, limits and time limits. It knows nothing of CIM.

#ifndef ORVEX_HTTP_SERVER_H_
#define ORVEX_HTTP_SERVER_H_

#include <memory>
#include <vector>

#include "http/Endpoint.h"
#include "http/Message.h"
#include "http/ServerOptions.h"

namespace http {

class Server {
 public:
  // Listens at once; serves from run() on. The handler is the caller's and outlives the server.
  // Throws SetupFault.
  Server(ServerOptions options, Handler& handler);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  // Returns where it listens, with the ports that the system chose for port 0.
  [[nodiscard]] std::vector<Endpoint> endpoints() const;

  // Serves, on this thread and further ones, until stop() was called and the answers under way are
  // sent, or the closing time is over. A handler that does not return holds it up beyond that.
  // Once.
  void run();

  // Takes no new connection and no new request from now on; answers that wait are sent at once. Any
  // thread, any time, as often as one likes; not in a signal's handler.
  void stop();

 private:
  struct Implementation;
  std::unique_ptr<Implementation> m_implementation;
};

}  // namespace http

#endif  // ORVEX_HTTP_SERVER_H_
