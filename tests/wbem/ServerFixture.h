// A server over the model, and requests to it.

#ifndef ORVEX_TESTS_WBEM_SERVERFIXTURE_H_
#define ORVEX_TESTS_WBEM_SERVERFIXTURE_H_

#include <chrono>
#include <gmock/gmock.h>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "tests/wbem/Model.h"
#include "wbem/Server.h"

namespace test {

inline constexpr const char* kAgentsNamespace = "root/test";
inline constexpr const char* kInterop = "root/interop";

// Keeps the records.
class RecordingAudit final : public wbem::Audit {
 public:
  void write(const wbem::AuditRecord& record) noexcept override { records.push_back(record); }
  [[nodiscard]] std::string digest(std::span<const std::uint8_t> content) const noexcept override {
    return "digest of " + std::string(content.begin(), content.end());
  }

  std::vector<wbem::AuditRecord> records;
};

// ---- what requests are made of ----

inline cimxml::ObjectName className(const std::string& name) {
  cimxml::ObjectName object;
  object.className = name;
  return object;
}

inline cimxml::ObjectName objectName(const std::string& path) {
  return cimxml::parseObjectPath(path);
}

inline cimxml::Parameter given(const std::string& name, cimxml::Value value,
                               const std::string& type = "") {
  return {name, type, std::move(value)};
}

inline cimxml::StringArray texts(std::vector<std::string> elements) {
  return {elements.begin(), elements.end()};
}

// ---- what answers are made of ----

// Returns the one reference value, an instance path and an instance name in the agents' namespace.
inline std::string deviceName(const std::string& id, int slot,
                              const std::string& className = "Test_Device") {
  return "<INSTANCENAME CLASSNAME=\"" + className +
         "\"><KEYBINDING NAME=\"InstanceID\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">" + id +
         "</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"Slot\"><KEYVALUE VALUETYPE=\"numeric\" "
         "TYPE=\"uint16\">" +
         std::to_string(slot) + "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

inline std::string profileName(const std::string& id = "profile") {
  return "<INSTANCENAME CLASSNAME=\"Test_RegisteredProfile\"><KEYBINDING NAME=\"InstanceID\">"
         "<KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">" +
         id + "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

inline std::string localPath(const std::string& lastPart, const std::string& name) {
  return "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"" + lastPart +
         "\"/></LOCALNAMESPACEPATH>" + name;
}

inline std::string fullPath(const std::string& lastPart, const std::string& name) {
  return "<INSTANCEPATH><NAMESPACEPATH><HOST>server1</HOST><LOCALNAMESPACEPATH><NAMESPACE "
         "NAME=\"root\"/><NAMESPACE NAME=\"" +
         lastPart + "\"/></LOCALNAMESPACEPATH></NAMESPACEPATH>" + name + "</INSTANCEPATH>";
}

inline std::string returned(const std::string& results) {
  return "<IRETURNVALUE>" + results + "</IRETURNVALUE>";
}

// ---- the server ----

class ServerFixture : public testing::Test {
 protected:
  ServerFixture() { m_broker.addAgent(&m_agent); }

  // Returns what stands in the answer to an operation, between the tags of the IMETHODRESPONSE.
  std::string ask(const std::string& operation, std::vector<cimxml::Parameter> parameters = {},
                  const std::string& nameSpace = kAgentsNamespace) {
    cimxml::Request request;
    request.messageId = "77";
    request.name = operation;
    request.nameSpace = nameSpace;
    request.parameters = std::move(parameters);
    return send(request, "IMETHODRESPONSE");
  }

  // Returns what stands in the METHODRESPONSE.
  std::string invoke(const cimxml::ObjectName& target, const std::string& method,
                     std::vector<cimxml::Parameter> arguments = {},
                     const std::string& nameSpace = kAgentsNamespace) {
    cimxml::Request request;
    request.messageId = "77";
    request.isExtrinsic = true;
    request.name = method;
    request.nameSpace = nameSpace;
    request.target = target;
    request.parameters = std::move(arguments);
    return send(request, "METHODRESPONSE");
  }

  std::string send(const cimxml::Request& request, const std::string& element) {
    std::string answer;
    m_server.answer(request, m_caller, answer);
    const std::string begin =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"77\" "
        "PROTOCOLVERSION=\"1.0\"><SIMPLERSP><" +
        element + " NAME=\"" + request.name + "\">";
    const std::string end = "</" + element + "></SIMPLERSP></MESSAGE></CIM>";
    if (!answer.starts_with(begin) || answer.find(end) == std::string::npos) {
      return "no answer: " + answer;
    }
    return answer.substr(begin.size(), answer.rfind(end) - begin.size());
  }

  core::CimBroker m_broker;
  ModelAgent m_agent;
  RecordingAudit m_audit;
  std::chrono::steady_clock::time_point m_now = std::chrono::steady_clock::now();
  wbem::Server m_server{m_broker, m_audit, {kAgentsNamespace, "server1", [this] { return m_now; }}};
  wbem::Caller m_caller{"ann", "192.0.2.7", wbem::Role::Operator};
};

// Matches an error with the code and a description that the matcher takes.
MATCHER_P2(IsError, code, description, "") {
  const std::string begin = "<ERROR CODE=\"" + std::to_string(code) + "\" DESCRIPTION=\"";
  if (!arg.starts_with(begin) || !arg.ends_with("\"/>")) {
    *result_listener << "is no such error";
    return false;
  }
  const std::string text = arg.substr(begin.size(), arg.size() - begin.size() - 3);
  return testing::ExplainMatchResult(description, text, result_listener);
}

}  // namespace test

#endif  // ORVEX_TESTS_WBEM_SERVERFIXTURE_H_
