// The broker of this process as a connection. Takes the broker's request for each operation.

#ifndef ORVEX_CLIENT_BROKERCONNECTION_H_
#define ORVEX_CLIENT_BROKERCONNECTION_H_

#include <string>

#include "client/Connection.h"
#include "core/CimBroker.h"

namespace client {

class BrokerConnection final : public Connection {
 public:
  // The broker outlives the connection.
  explicit BrokerConnection(core::CimBroker& broker) : m_broker(broker) {}

  // Connection
  [[nodiscard]] ServingAgents getClasses() override;
  [[nodiscard]] std::optional<Instances> findInstances(const std::string& className) override;
  [[nodiscard]] std::optional<InstanceSnapshot> findInstance(const std::string& path) override;
  // Looks at every instance of every served class.
  [[nodiscard]] std::optional<InstanceSnapshot> lookAgain(const std::string& path) override;
  [[nodiscard]] Instances findReferencing(const std::string& path) override;
  [[nodiscard]] MethodAnswer invoke(const std::string& path, const std::string& method,
                                    core::CimPropertyList& in, core::CimPropertyList& out,
                                    const OnStart& onStart) override;
  [[nodiscard]] bool isRemote() const override { return false; }
  [[nodiscard]] std::string program() const override { return "quorvel"; }
  [[nodiscard]] std::string watchCommand(const std::string& jobId) const override;
  [[nodiscard]] std::chrono::milliseconds pollInterval() const override;
  [[nodiscard]] std::chrono::milliseconds patience() const override { return {}; }

 private:
  core::CimBroker& m_broker;
};

}  // namespace client

#endif  // ORVEX_CLIENT_BROKERCONNECTION_H_
