// The CIM server: answers the requests of CIM clients from the broker (DSP0200 operations,
// extrinsic methods).
//
// The agents' classes are in the configured namespace; in root/interop are the server's own
// instances and the registered profiles (see wbem/Namespaces.h).
//
// Any thread may call. Requests that use instances hold the broker's request, so they take turns.

#ifndef ORVEX_WBEM_SERVER_H_
#define ORVEX_WBEM_SERVER_H_

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "Os/QuorvelConfig.h"
#include "cimxml/Request.h"
#include "core/CimBroker.h"
#include "wbem/Audit.h"
#include "wbem/Caller.h"

namespace wbem {

class Server {
 public:
  struct Options {
    // Of the agents' classes; root/interop is beside it.
    std::string nameSpace = utils::QuorvelConfig::kDefaultNamespace;
    std::string host = "localhost";  // in paths that name the host
    // Tells how long an enumeration has not been pulled.
    std::function<std::chrono::steady_clock::time_point()> clock = std::chrono::steady_clock::now;
  };

  // The broker and the audit are the caller's and outlive the server.
  Server(core::CimBroker& broker, Audit& audit, Options options);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  // Appends the whole answer, an error included, to `out`. A long text of an error is cut. Throws
  // std::bad_alloc alone.
  void answer(const cimxml::Request& request, const Caller& caller, std::string& out);

  // Has the audit tell of each installation that was started here and has come to its end since the
  // last call. To be called once in a while, and at the end. Throws what a provider throws.
  void recordEndedJobs();

  // Returns how many jobs (instances of CIM_ConcreteJob) have not come to their end. Throws what a
  // provider throws.
  [[nodiscard]] unsigned countRunningJobs();

 private:
  struct Implementation;
  std::unique_ptr<Implementation> m_implementation;
};

}  // namespace wbem

#endif  // ORVEX_WBEM_SERVER_H_
