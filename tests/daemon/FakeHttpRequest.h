// A request that no client sent.

#ifndef ORVEX_TESTS_DAEMON_FAKEHTTPREQUEST_H_
#define ORVEX_TESTS_DAEMON_FAKEHTTPREQUEST_H_

#include <any>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "http/Message.h"

namespace test {

class FakeHttpRequest final : public http::Request {
 public:
  // A message that asks for the instances of Orvex_EthernetPort, with the fields that go with it.
  FakeHttpRequest() = default;

  [[nodiscard]] std::string_view method() const override { return httpMethod; }
  [[nodiscard]] std::string_view target() const override { return httpTarget; }
  [[nodiscard]] std::optional<std::string_view> authority() const override { return server; }
  [[nodiscard]] std::string_view field(std::string_view name) const override {
    const auto found = fields.find(std::string(name));
    return found == fields.end() ? std::string_view() : std::string_view(found->second);
  }
  [[nodiscard]] std::size_t countFields(std::string_view name) const override {
    return fields.count(std::string(name)) + repeated.count(std::string(name));
  }
  [[nodiscard]] std::string& body() override { return content; }
  [[nodiscard]] std::any& memo() override { return note; }
  [[nodiscard]] const std::string& peerAddress() const override { return peer; }
  [[nodiscard]] const std::string& peerGroup() const override { return group; }
  [[nodiscard]] bool isLoopback() const override { return isLocal || peer == "127.0.0.1"; }
  [[nodiscard]] std::optional<std::uint32_t> peerUser() const override { return user; }
  [[nodiscard]] bool isEncrypted() const override { return isTls; }

  std::string httpMethod = "POST";
  std::string httpTarget = "/cimom";
  std::optional<std::string> server;  // in front of the target
  std::string peer = "127.0.0.1";
  std::string group = "127.0.0.1";
  std::optional<std::uint32_t> user;
  bool isLocal = false;
  bool isTls = false;
  std::any note;
  std::map<std::string, std::string> fields{
      {"Host", "127.0.0.1:5988"},          {"Content-Type", "application/xml; charset=\"utf-8\""},
      {"CIMOperation", "MethodCall"},      {"CIMProtocolVersion", "1.0"},
      {"CIMMethod", "EnumerateInstances"}, {"CIMObject", "root%2FDCIM%2Fzolan"},
  };
  std::set<std::string> repeated;  // fields that come a second time
  std::string content =
      R"(<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0">)"
      R"(<MESSAGE ID="42" PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME="EnumerateInstances">)"
      R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="DCIM"/>)"
      R"(<NAMESPACE NAME="zolan"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME="ClassName">)"
      R"(<CLASSNAME NAME="Orvex_EthernetPort"/></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE>)"
      R"(</CIM>)";
};

}  // namespace test

#endif  // ORVEX_TESTS_DAEMON_FAKEHTTPREQUEST_H_
