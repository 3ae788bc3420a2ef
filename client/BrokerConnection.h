// The broker of this process as a connection. Takes the broker's request for each operation.

#ifndef ORVEX_CLIENT_BROKERCONNECTION_H_
#define ORVEX_CLIENT_BROKERCONNECTION_H_

#include <optional>
#include <string>
#include <vector>

#include "client/Connection.h"
#include "core/CimBroker.h"
#include "core/CimPath.h"

namespace client {

class BrokerConnection final : public Connection {
 public:
  // The broker outlives the connection.
  explicit BrokerConnection(core::CimBroker& broker) : m_broker(broker) {}

  // Connection. Names of classes and keys are compared without regard to case, and the instances of
  // a class are its own, then those of the classes below it: all as a host does it.
  [[nodiscard]] ServingAgents getClasses() override;
  [[nodiscard]] std::optional<ClassDescription> findClass(const std::string& className) override;
  [[nodiscard]] std::optional<Instances> findInstances(const std::string& className) override;
  [[nodiscard]] std::optional<InstanceSnapshot> findInstance(const std::string& path) override;
  [[nodiscard]] std::optional<InstanceSnapshot> lookAgain(const std::string& path) override;
  // Looks at every instance of every served class.
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
  // Returns the served classes that are the class or below it, the class first; nothing for a class
  // that is neither served nor declared.
  [[nodiscard]] std::optional<std::vector<std::string>> findServedBelow(
      const std::string& className) const;
  // Reads an object path and spells its class and its keys as they are served; a path with a key in
  // two spellings stays as it is given.
  [[nodiscard]] core::CimPath toServedPath(const std::string& text) const;

  core::CimBroker& m_broker;
};

}  // namespace client

#endif  // ORVEX_CLIENT_BROKERCONNECTION_H_
