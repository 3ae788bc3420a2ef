// Any bytes are a request or are refused as one; the names in a request can be written and read
// again; a server answers every request with an answer that a client can read, and records every
// change.

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <variant>

#include "cimxml/Buffer.h"
#include "cimxml/NameWriter.h"
#include "cimxml/ObjectName.h"
#include "cimxml/Request.h"
#include "cimxml/Response.h"
#include "core/CimPath.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/wbem/Model.h"
#include "wbem/Server.h"

namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;
using cimxml::Request;

std::string write(const ObjectName& name) {
  cimxml::Buffer message =
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\">"
      "<SIMPLEREQ><IMETHODCALL NAME=\"GetInstance\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"x\"/>"
      "</LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"InstanceName\">";
  cimxml::appendInstanceName(message, name, "");
  message += "</IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
  return message;
}

ObjectName read(std::string message) {
  const Request request = cimxml::parseRequest(message);
  return std::get<ObjectName>(request.parameters.at(0).value);
}

bool isIdentifier(const std::string& text) {
  return !text.empty() && (text[0] < '0' || text[0] > '9') &&
         std::all_of(text.begin(), text.end(), [](char sign) {
           return sign == '_' || (sign >= '0' && sign <= '9') || (sign >= 'A' && sign <= 'Z') ||
                  (sign >= 'a' && sign <= 'z');
         });
}

// Whether the broker can have an instance of that name.
bool isProper(const ObjectName& name) {
  std::set<std::string> names;
  return name.isInstance && !name.keys.empty() && isIdentifier(name.className) &&
         std::all_of(name.keys.begin(), name.keys.end(), [&names](const KeyBinding& key) {
           return isIdentifier(key.name) && names.insert(key.name).second;
         });
}

// A message within this one would be deeper than what is read.
bool isShallow(const ObjectName& name, unsigned depth = 0) {
  return depth < 8 &&
         std::all_of(name.keys.begin(), name.keys.end(), [depth](const KeyBinding& key) {
           return std::all_of(
               key.reference.begin(), key.reference.end(),
               [depth](const ObjectName& target) { return isShallow(target, depth + 1); });
         });
}

void check(const ObjectName& name) {
  const std::string path = cimxml::toObjectPath(name);
  if (isProper(name) && !test::hasBackslash(name)) {
    const core::CimPath read(path);
    for (const KeyBinding& key : name.keys) {
      const auto found = read.find(key.name);
      test::require(found != read.end(), "the broker finds the key");
      test::require(key.kind != KeyBinding::Kind::String || found->second == key.text,
                    "the broker reads the key's text");
    }
  }
  if (name.isInstance && isShallow(name)) {
    const std::string message = write(name);
    test::require(write(read(message)) == message, "a name is written as it was read");
  }
}

struct CheckNames {
  void operator()(const ObjectName& name) const { check(name); }
  void operator()(const std::vector<ObjectName>& names) const {
    std::for_each(names.begin(), names.end(), check);
  }
  void operator()(const cimxml::InstanceValue& instance) const {
    check(instance.name);
    for (const cimxml::PropertyValue& property : instance.properties) {
      std::visit(*this, property.value);
    }
  }
  template <class Other>
  void operator()(const Other&) const {}
};

std::optional<Request> readOrRefuse(std::string body) {
  try {
    return cimxml::parseRequest(body);
  } catch (const cimxml::RequestFault& fault) {
    test::require(!fault.cimError().empty(), "a refusal has a CIMError");
    return std::nullopt;
  }
}

class CountingAudit final : public wbem::Audit {
 public:
  void write(const wbem::AuditRecord& /*record*/) noexcept override { ++count; }
  unsigned count = 0;
};

// A server over the model, which lives as long as the program.
class Host {
 public:
  Host() { m_broker.addAgent(&m_agent); }

  void answer(const Request& request) {
    std::string out;
    m_audit.count = 0;
    m_server.answer(request, {"ann", "192.0.2.7", wbem::Role::Operator}, out);
    test::require(m_audit.count <= 1, "a request is recorded once");
    test::require(m_audit.count == 1 || !request.isExtrinsic, "every method is recorded");
    const cimxml::Response response = cimxml::parseResponse(out);
    test::require(response.messageId == request.messageId, "the answer is that to the request");
    test::require(response.isExtrinsic == request.isExtrinsic, "the answer is of the same kind");
  }

 private:
  core::CimBroker m_broker;
  test::ModelAgent m_agent;
  CountingAudit m_audit;
  wbem::Server m_server{m_broker, m_audit, {}};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::optional<Request> request =
      readOrRefuse(std::string(reinterpret_cast<const char*>(data), size));
  if (request) {
    check(request->target);
    for (const cimxml::Parameter& parameter : request->parameters) {
      std::visit(CheckNames(), parameter.value);
    }
    static Host host;
    host.answer(*request);
  }
  return 0;
}
