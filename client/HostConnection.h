// A host's instances over CIM-XML (DSP0200) as a connection. Not on Windows.

#ifndef ORVEX_CLIENT_HOSTCONNECTION_H_
#define ORVEX_CLIENT_HOSTCONNECTION_H_

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "cimxml/Buffer.h"
#include "cimxml/Response.h"
#include "client/Connection.h"
#include "client/HostAddress.h"
#include "http/Client.h"

namespace client {

class HostConnection final : public Connection {
 public:
  struct Options {
    HostAddress address;
    std::string password;
    std::string nameSpace;  // "root/DCIM/zolan"
    std::string command;    // how a user calls this program for the host: "quorvel --host ..."
  };

  // Sends header fields and a body to the host's CIM-XML target and returns its answer. Throws
  // http::ClientFault.
  using Send = std::function<http::ClientResponse(
      const http::Client::Fields&, const std::string& body, const http::SendOptions& options)>;

  HostConnection(Options options, Send send);

  // Connection. Classes are those below which there is no other, without their agents.
  [[nodiscard]] ServingAgents getClasses() override;
  [[nodiscard]] std::optional<ClassDescription> findClass(const std::string& className) override;
  [[nodiscard]] std::optional<Instances> findInstances(const std::string& className) override;
  [[nodiscard]] std::optional<InstanceSnapshot> findInstance(const std::string& path) override;
  [[nodiscard]] std::optional<InstanceSnapshot> lookAgain(const std::string& path) override;
  [[nodiscard]] Instances findReferencing(const std::string& path) override;
  [[nodiscard]] MethodAnswer invoke(const std::string& path, const std::string& method,
                                    core::CimPropertyList& in, core::CimPropertyList& out,
                                    const OnStart& onStart) override;
  [[nodiscard]] bool isRemote() const override { return true; }
  [[nodiscard]] std::string program() const override { return m_options.command; }
  [[nodiscard]] std::string watchCommand(const std::string& jobId) const override;
  [[nodiscard]] std::chrono::milliseconds pollInterval() const override;
  [[nodiscard]] std::chrono::milliseconds patience() const override;

 private:
  // A request as it is written.
  struct Message {
    std::string name;    // of the operation or the method
    std::string object;  // what it is about, for the header field CIMObject
    bool isExtrinsic = false;
    std::string id;
    cimxml::Buffer body;
    std::chrono::milliseconds timeout{0};  // zero: that of whoever sends it
  };

  [[nodiscard]] std::optional<InstanceSnapshot> getInstance(const std::string& path,
                                                            std::chrono::milliseconds timeout);

  [[nodiscard]] Message beginOperation(const std::string& operation);
  // Sends it and returns the answer, which may be an error of the operation itself. Throws Fault.
  [[nodiscard]] cimxml::Response exchange(Message message);
  [[nodiscard]] http::Client::Fields fieldsFor(const Message& message) const;
  // Throws Fault for an answer that is an error.
  void demandSuccess(const cimxml::Response& response) const;

  // Reads a path and gives its keys the kinds that its class declares.
  [[nodiscard]] cimxml::ObjectName readPath(const std::string& path);
  void correctKinds(cimxml::ObjectName& name);
  // Returns the declaration; one without properties where the host has none.
  const cimxml::ClassValue& getClass(const std::string& className);

  void appendArguments(cimxml::Buffer& out, core::CimPropertyList& arguments);
  void appendReference(cimxml::Buffer& out, const core::CimProperty& argument);

  const Options m_options;
  const Send m_send;
  std::uint64_t m_lastId = 0;
  std::map<std::string, cimxml::ClassValue> m_classes;  // as far as they were asked for
};

}  // namespace client

#endif  // ORVEX_CLIENT_HOSTCONNECTION_H_
