// Many clients at once beside a running update. What a sanitizer finds in the host ends it with
// another status than 0.

#include <atomic>
#include <csignal>
#include <functional>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

#include "Utils/Format.h"
#include "cimxml/RequestWriter.h"
#include "cimxml/Response.h"
#include "core/CimPropertyTypes.h"
#include "http/Client.h"
#include "tests/daemon/Posix/QuorveldFixture.h"

namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;
using testing::HasSubstr;
using testing::Not;

constexpr unsigned kClients = 16;
constexpr seconds kDuration{QUORVEL_TEST_LOAD_SECONDS};
constexpr seconds kMargin{6};  // by which the update outlasts the clients
constexpr unsigned kUnit = 512;
constexpr unsigned kRomUnits = 250;
constexpr const char* kNameSpace = "root/DCIM/zolan";

// The result codes of the installation methods and of RequestStateChange (DMTF CIM schema).
constexpr const char* kTargetInUse = "6";
constexpr const char* kInvalidParameter = "5";
constexpr const char* kInvalidStateTransition = "4097";

std::string operation(const std::string& name,
                      const std::function<void(std::string&)>& parameters) {
  std::string message;
  cimxml::beginOperationRequest(message, "1", kNameSpace, name);
  parameters(message);
  cimxml::endOperationRequest(message);
  return message;
}

std::string askClass(const std::string& name, const std::string& className) {
  return operation(name, [&](std::string& out) {
    cimxml::appendClassNameParameter(out, "ClassName", className);
  });
}

std::string askInstance(const std::string& name, const std::string& parameter,
                        const std::string& path) {
  return operation(name, [&](std::string& out) {
    cimxml::appendInstanceNameParameter(out, parameter, cimxml::parseObjectPath(path), kNameSpace);
  });
}

const cimxml::PropertyValue* findProperty(const cimxml::InstanceValue& instance,
                                          const std::string& name) {
  for (const cimxml::PropertyValue& property : instance.properties) {
    if (property.name == name) {
      return &property;
    }
  }
  return nullptr;
}

// One client with a kept connection, which goes through everything that a host is asked.
class Client {
 public:
  Client(std::uint16_t port, std::string job, std::string service, std::string target,
         std::string uri)
      : m_client({.host = "127.0.0.1", .port = port}),
        m_job(std::move(job)),
        m_service(std::move(service)),
        m_target(std::move(target)),
        m_uri(std::move(uri)) {}

  void goRound() {
    EXPECT_EQ(ask("EnumerateInstances", askClass("EnumerateInstances", "Orvex_EthernetPort"))
                  .instances.size(),
              2U);
    EXPECT_GT(
        ask("EnumerateInstanceNames", askClass("EnumerateInstanceNames", "CIM_ManagedElement"))
            .names.size(),
        2U);
    followJob();
    EXPECT_FALSE(ask("AssociatorNames", askInstance("AssociatorNames", "ObjectName", m_service))
                     .names.empty());
    EXPECT_FALSE(
        ask("References", askInstance("References", "ObjectName", m_target)).instances.empty());
    EXPECT_EQ(ask("GetClass", askClass("GetClass", "Orvex_ConcreteJob")).classes.size(), 1U);
    EXPECT_EQ(ask("EnumerateInstances", askClass("EnumerateInstances", "Orvex_Nothing"))
                  .error.value_or(cimxml::ErrorValue())
                  .code,
              5U);
    pull();
    tryToUpdate();
    tryToStart();
    talkNonsense();
  }

 private:
  std::string send(const std::string& method, const std::string& object, const std::string& body,
                   unsigned status) {
    http::ClientResponse answer = m_client.send("POST", "/cimom",
                                                {{"Content-Type", "application/xml; charset=utf-8"},
                                                 {"CIMOperation", "MethodCall"},
                                                 {"CIMMethod", method},
                                                 {"CIMObject", object}},
                                                body);
    EXPECT_EQ(answer.status, status) << answer.body;
    return answer.body;
  }

  cimxml::Response ask(const std::string& method, const std::string& body) {
    std::string answer = send(method, kNameSpace, body, 200);
    return cimxml::parseResponse(answer);
  }

  cimxml::Response invoke(const std::string& path, const std::string& method,
                          const std::function<void(std::string&)>& arguments) {
    std::string message;
    cimxml::beginMethodRequest(message, "1", kNameSpace, method, cimxml::parseObjectPath(path));
    arguments(message);
    cimxml::endMethodRequest(message);
    std::string object;
    for (const char sign : kNameSpace + (":" + path)) {
      object += sign == '%' || sign == '#' ? utils::format("%%%02X", sign) : std::string(1, sign);
    }
    std::string answer = send(method, object, message, 200);
    return cimxml::parseResponse(answer);
  }

  // The job runs on, and its progress never falls.
  void followJob() {
    const cimxml::Response answer =
        ask("GetInstance", askInstance("GetInstance", "InstanceName", m_job));
    ASSERT_EQ(answer.instances.size(), 1U);
    const cimxml::PropertyValue* percent =
        findProperty(answer.instances.front(), "PercentComplete");
    ASSERT_NE(percent, nullptr);
    const int progress = std::stoi(std::get<std::string>(percent->value));
    EXPECT_GE(progress, m_progress);
    EXPECT_LE(progress, 100);
    m_progress = progress;
  }

  void pull() {
    const std::string opened =
        send("OpenEnumerateInstancePaths", kNameSpace,
             operation("OpenEnumerateInstancePaths",
                       [](std::string& out) {
                         cimxml::appendClassNameParameter(out, "ClassName", "CIM_LogicalDevice");
                         out +=
                             "<IPARAMVALUE NAME=\"MaxObjectCount\"><VALUE>1</VALUE>"
                             "</IPARAMVALUE>";
                       }),
             200);
    const std::string mark = "NAME=\"EnumerationContext\"";
    const std::size_t context = opened.find(mark);
    ASSERT_NE(context, std::string::npos) << opened;
    const std::size_t begin = opened.find("<VALUE>", context) + 7;
    const std::string value = opened.substr(begin, opened.find("</VALUE>", begin) - begin);
    const auto appendContext = [&value](std::string& out) {
      out += "<IPARAMVALUE NAME=\"EnumerationContext\"><VALUE>" + value + "</VALUE></IPARAMVALUE>";
    };
    EXPECT_EQ(ask("PullInstancePaths", operation("PullInstancePaths",
                                                 [&](std::string& out) {
                                                   appendContext(out);
                                                   out +=
                                                       "<IPARAMVALUE NAME=\"MaxObjectCount\">"
                                                       "<VALUE>1</VALUE></IPARAMVALUE>";
                                                 }))
                  .names.size(),
              1U);
    EXPECT_THAT(
        send("CloseEnumeration", kNameSpace, operation("CloseEnumeration", appendContext), 200),
        Not(HasSubstr("<ERROR")));
  }

  void tryToUpdate() {
    core::CimPropertyString uri("URI", nullptr);
    uri.setValue(m_uri);
    core::CimPropertyUint16_arr options("InstallOptions", nullptr);
    options.setValue({5});
    const core::CimPropertyString_arr values("InstallOptionsValues", nullptr);
    const cimxml::ObjectName target = cimxml::parseObjectPath(m_target);
    EXPECT_EQ(invoke(m_service, "InstallFromURI",
                     [&](std::string& out) {
                       cimxml::appendArgument(out, uri);
                       cimxml::appendReferenceArgument(out, "Target", &target, kNameSpace);
                       cimxml::appendArgument(out, options);
                       cimxml::appendArgument(out, values);
                     })
                  .returnValue,
              kTargetInUse);
  }

  cimxml::Response requestState(const core::CimProperty& state) {
    return invoke(m_job, "RequestStateChange",
                  [&](std::string& out) { cimxml::appendArgument(out, state); });
  }

  void tryToStart() {
    core::CimPropertyUint16 state("RequestedState", nullptr);
    state.setValue(2);
    EXPECT_EQ(requestState(state).returnValue, kInvalidStateTransition);
    state.setValue(3);
    EXPECT_EQ(requestState(state).returnValue, kInvalidParameter);
    core::CimPropertyString text("RequestedState", nullptr);
    text.setValue("2");
    EXPECT_EQ(requestState(text).error.value_or(cimxml::ErrorValue()).code, 4U);
  }

  void talkNonsense() { send("GetInstance", kNameSpace, "<CIM><MESSAGE>", 400); }

  http::Client m_client;
  const std::string m_job;
  const std::string m_service;
  const std::string m_target;
  const std::string m_uri;
  int m_progress = 0;
};

using ClientsTest = test::QuorveldFixture;

TEST_F(ClientsTest, AreServedAllAtOnceBesideAnUpdate) {
  const auto image = [](std::uint8_t version) { return pxe(version).units(kRomUnits); };
  const std::string rom = writeRom("new.rom", {image(3)});
  addAdapter("0000:03:00", writeRom("installed.rom", {image(2)}), 2,
             static_cast<unsigned>(kRomUnits * kUnit / (kDuration + kMargin).count()));
  start();
  const std::string job = startUpdate(rom);

  std::atomic<unsigned> rounds{0};
  const auto end = steady_clock::now() + kDuration;
  std::vector<std::thread> clients;
  for (unsigned index = 0; index < kClients; ++index) {
    clients.emplace_back([&] {
      try {
        Client client(daemon().port(), job, service(), port(), "file://" + rom);
        do {
          client.goRound();
          ++rounds;
        } while (steady_clock::now() < end && !HasFailure());
      } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
      }
    });
  }
  for (std::thread& client : clients) {
    client.join();
  }
  EXPECT_GE(rounds, kClients);
  EXPECT_THAT(health(), HasSubstr("\"runningJobs\": 1"));

  daemon().signal(SIGTERM);
  EXPECT_EQ(daemon().wait(), 0);
  EXPECT_EQ(flash(), test::readBytes(rom));
}

}  // namespace
