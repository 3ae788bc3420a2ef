// The users of this machine, as the program knows them without a login. Needs root to become
// others.

#include <functional>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

#include "platform/Posix/Descriptor.h"
#include "tests/daemon/Posix/QuorveldFixture.h"
#include "tests/support/Posix/ChildProcess.h"

namespace {

using test::ChildProcess;
using testing::HasSubstr;

constexpr uid_t kUser = 64242;

std::string post(const std::string& operation, const std::string& object, const std::string& call) {
  const std::string body =
      R"(<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0">)"
      R"(<MESSAGE ID="1" PROTOCOLVERSION="1.0"><SIMPLEREQ>)" +
      call + "</SIMPLEREQ></MESSAGE></CIM>";
  return "POST /cimom HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n"
         "Content-Type: application/xml; charset=utf-8\r\nCIMOperation: MethodCall\r\nCIMMethod: " +
         operation + "\r\nCIMObject: " + object +
         "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

const std::string kEnumerate =
    post("EnumerateInstances", "root%2FDCIM%2Fzolan",
         R"(<IMETHODCALL NAME="EnumerateInstances"><LOCALNAMESPACEPATH><NAMESPACE NAME="root"/>)"
         R"(<NAMESPACE NAME="DCIM"/><NAMESPACE NAME="zolan"/></LOCALNAMESPACEPATH>)"
         R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME="Orvex_EthernetPort"/></IPARAMVALUE>)"
         R"(</IMETHODCALL>)");

const std::string kInvoke = post(
    "InstallFromURI",
    "root%2FDCIM%2Fzolan%3AOrvex_SoftwareInstallationService.Name%3D%22Orvex%3AFirmwareUpdate%22",
    R"(<METHODCALL NAME="InstallFromURI"><LOCALINSTANCEPATH><LOCALNAMESPACEPATH>)"
    R"(<NAMESPACE NAME="root"/><NAMESPACE NAME="DCIM"/><NAMESPACE NAME="zolan"/>)"
    R"(</LOCALNAMESPACEPATH><INSTANCENAME CLASSNAME="Orvex_SoftwareInstallationService">)"
    R"(<KEYBINDING NAME="Name"><KEYVALUE VALUETYPE="string">Orvex:FirmwareUpdate</KEYVALUE>)"
    R"(</KEYBINDING></INSTANCENAME></LOCALINSTANCEPATH></METHODCALL>)");

class LocalUsersTest : public test::QuorveldFixture {
 protected:
  void SetUp() override {
    addPxeAdapter("0000:03:00", 2);
    start();
  }

  // Sends a request but its body, and returns when the server has said something: that it waits for
  // the rest, or that there is no place.
  [[nodiscard]] platform::Descriptor beginRequest() {
    platform::Descriptor connection(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(daemon().port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(
        connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    std::string head = kEnumerate.substr(0, kEnumerate.find("\r\n\r\n"));
    head += "\r\nExpect: 100-continue\r\n\r\n";
    static_cast<void>(::send(connection.get(), head.data(), head.size(), MSG_NOSIGNAL));
    char byte = 0;
    static_cast<void>(::recv(connection.get(), &byte, 1, 0));
    return connection;
  }
  // Returns whether another user gets an answer with that in it.
  [[nodiscard]] bool isAnswered(const std::string& request, const std::string& text) const {
    ChildProcess child([&](ChildProcess::Link&) {
      return seteuid(kUser) == 0 && exchange(request).find(text) != std::string::npos ? 0 : 1;
    });
    return child.wait() == 0;
  }
};

TEST_F(LocalUsersTest, OfTheServiceDoEverything) {
  EXPECT_THAT(exchange(kEnumerate), HasSubstr("0000:03:00.0"));
  // Refused for what it lacks, not for who asks.
  EXPECT_THAT(exchange(kInvoke), testing::Not(HasSubstr("ERROR CODE=\"2\"")));
}

TEST_F(LocalUsersTest, OfOtherNumbersRead) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can become another user";
  }
  EXPECT_TRUE(isAnswered(kEnumerate, "0000:03:00.0"));
  EXPECT_TRUE(isAnswered(kInvoke, "ERROR CODE=\"2\""));
}

// One of them who begins as many requests as there are places.
TEST_F(LocalUsersTest, OfOtherNumbersLeaveAPlaceToRoot) {
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can become another user";
  }
  constexpr int kPlaces = 16;
  start("max-connections = " + std::to_string(kPlaces) + "\n");
  ChildProcess child([&](ChildProcess::Link& parent) {
    if (seteuid(kUser) != 0) {
      return 2;
    }
    std::vector<platform::Descriptor> begun;
    for (int i = 0; i < kPlaces; ++i) {
      begun.push_back(beginRequest());
    }
    parent.tell('b');
    return parent.await('e') ? 0 : 3;
  });
  ASSERT_TRUE(child.link().await('b'));
  EXPECT_THAT(health(), HasSubstr("HTTP/1.1 200 OK"));
  child.link().tell('e');
  EXPECT_EQ(child.wait(), 0);
}

TEST_F(LocalUsersTest, AreServedByALocalNameAlone) {
  std::string request = kEnumerate;
  request.replace(request.find("127.0.0.1"), 9, "evil.test");
  EXPECT_THAT(exchange(request), HasSubstr("HTTP/1.1 403 "));
}

}  // namespace
