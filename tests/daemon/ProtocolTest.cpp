// Requests byte by byte, sound and broken, against the real program: each gets the answer that
// DSP0200 and HTTP name, and the program serves on.

#include <csignal>
#include <gmock/gmock.h>
#include <string>
#include <string_view>

#include "tests/daemon/Posix/QuorveldFixture.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kNamespacePath =
    R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="DCIM"/>)"
    R"(<NAMESPACE NAME="zolan"/></LOCALNAMESPACEPATH>)";

std::string messageOf(const std::string& request) {
  return R"(<?xml version="1.0" encoding="utf-8"?><CIM CIMVERSION="2.0" DTDVERSION="2.0">)"
         R"(<MESSAGE ID="4711" PROTOCOLVERSION="1.0">)" +
         request + "</MESSAGE></CIM>";
}

std::string operation(const std::string& name, const std::string& parameters,
                      const std::string& nameSpacePath = kNamespacePath) {
  return messageOf("<SIMPLEREQ><IMETHODCALL NAME=\"" + name + "\">" + nameSpacePath + parameters +
                   "</IMETHODCALL></SIMPLEREQ>");
}

std::string className(const std::string& name) {
  return R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME=")" + name + "\"/></IPARAMVALUE>";
}

std::string qualifierName(const std::string& name) {
  return R"(<IPARAMVALUE NAME="QualifierName"><VALUE>)" + name + "</VALUE></IPARAMVALUE>";
}

std::string instanceName(const std::string& keys, const std::string& name = "Orvex_EthernetPort") {
  return R"(<IPARAMVALUE NAME="InstanceName"><INSTANCENAME CLASSNAME=")" + name + "\">" + keys +
         "</INSTANCENAME></IPARAMVALUE>";
}

std::string key(const std::string& name, const std::string& value) {
  return "<KEYBINDING NAME=\"" + name + "\"><KEYVALUE VALUETYPE=\"string\">" + value +
         "</KEYVALUE></KEYBINDING>";
}

// A request of HTTP; the fields that belong to it are left out where a value is empty.
struct HttpRequest {
  std::string requestLine = "POST /cimom HTTP/1.1";
  std::string contentType = "application/xml; charset=utf-8";
  std::string cimOperation = "MethodCall";
  std::string cimMethod = "EnumerateInstanceNames";
  std::string cimObject = "root%2FDCIM%2Fzolan";
  std::string more;  // further fields, each with its end of line
  std::string body = operation("EnumerateInstanceNames", className("Orvex_EthernetPort"));

  [[nodiscard]] std::string head(std::size_t length) const {
    std::string text = requestLine + "\r\nHost: 127.0.0.1\r\nConnection: close\r\n";
    append(text, "Content-Type", contentType);
    append(text, "CIMOperation", cimOperation);
    append(text, "CIMMethod", cimMethod);
    append(text, "CIMObject", cimObject);
    return text + more + "Content-Length: " + std::to_string(length) + "\r\n\r\n";
  }
  [[nodiscard]] std::string text() const { return head(body.size()) + body; }

 private:
  static void append(std::string& text, const char* name, const std::string& value) {
    if (!value.empty()) {
      text += std::string(name) + ": " + value + "\r\n";
    }
  }
};

class ProtocolTest : public test::QuorveldFixture {
 protected:
  void SetUp() override {
    addPxeAdapter("0000:03:00", 2);
    start("max-body = 65536\nrequest-timeout = 1\nmax-connections = 8\n");
  }

  void TearDown() override {
    // Whatever it was sent, it serves on, and ends in order.
    EXPECT_THAT(health(), StartsWith("HTTP/1.1 200 OK\r\n"));
    daemon().signal(SIGTERM);
    EXPECT_EQ(daemon().wait(), 0);
  }

  // Sends a request and expects a status of HTTP, with the field CIMError where one is named.
  void expectStatus(const HttpRequest& request, unsigned status, const std::string& cimError = "") {
    expectStatusOf(request.text(), status, cimError);
  }
  void expectStatusOf(const std::string& bytes, unsigned status, const std::string& cimError = "") {
    const std::string answer = exchange(bytes);
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 " + std::to_string(status) + " "))
        << bytes.substr(0, 500);
    const std::string field =
        cimError.empty() ? std::string("\r\n\r\n") : "\r\nCIMError: " + cimError + "\r\n";
    EXPECT_THAT(answer, HasSubstr(field)) << bytes.substr(0, 500);
    EXPECT_EQ(answer.find("\r\nCIMError: ") != std::string::npos, !cimError.empty()) << answer;
  }

  // Sends an operation and expects an error of CIM.
  void expectError(const std::string& name, const std::string& parameters, unsigned code) {
    HttpRequest request;
    request.cimMethod = name;
    request.body = operation(name, parameters);
    expectErrorOf(request, code);
  }
  void expectErrorOf(const HttpRequest& request, unsigned code) {
    const std::string answer = exchange(request.text());
    EXPECT_THAT(answer,
                AllOf(StartsWith("HTTP/1.1 200 OK\r\n"), HasSubstr("CIMOperation: MethodResponse"),
                      HasSubstr("<ERROR CODE=\"" + std::to_string(code) + "\"")))
        << request.body;
  }

  // Sends an operation and returns the answer.
  [[nodiscard]] std::string answerTo(const std::string& name, const std::string& parameters) {
    HttpRequest request;
    request.cimMethod = name;
    request.body = operation(name, parameters);
    return exchange(request.text());
  }

  // Returns a call of RequestStateChange, or another method, on the service.
  [[nodiscard]] static HttpRequest methodCall(const std::string& method,
                                              const std::string& parameters) {
    const std::string keys = key("SystemCreationClassName", "CIM_UnitaryComputerSystem") +
                             key("SystemName", "lab") +
                             key("CreationClassName", "Orvex_SoftwareInstallationService") +
                             key("Name", "Orvex:FirmwareUpdate");
    HttpRequest request;
    request.cimMethod = method;
    request.cimObject = std::string(kNamespace) + ":" + service();
    request.body = messageOf(
        "<SIMPLEREQ><METHODCALL NAME=\"" + method + "\"><LOCALINSTANCEPATH>" + kNamespacePath +
        R"(<INSTANCENAME CLASSNAME="Orvex_SoftwareInstallationService">)" + keys +
        "</INSTANCENAME></LOCALINSTANCEPATH>" + parameters + "</METHODCALL></SIMPLEREQ>");
    return request;
  }
};

TEST_F(ProtocolTest, AnswersASoundRequest) {
  const std::string answer = exchange(HttpRequest().text());
  EXPECT_THAT(
      answer,
      AllOf(StartsWith("HTTP/1.1 200 OK\r\n"),
            HasSubstr("\r\nContent-Type: application/xml; charset=utf-8\r\n"),
            HasSubstr("\r\nCIMOperation: MethodResponse\r\n"), HasSubstr("<MESSAGE ID=\"4711\""),
            HasSubstr(">0000:03:00.0</KEYVALUE>"), HasSubstr(">0000:03:00.1</KEYVALUE>")));
}

TEST_F(ProtocolTest, TellsWhatQualifiersAreDeclaredToBe) {
  EXPECT_THAT(answerTo("GetQualifier", qualifierName("ValueMap")),
              HasSubstr("<IRETURNVALUE><QUALIFIER.DECLARATION NAME=\"ValueMap\" TYPE=\"string\" "
                        "ISARRAY=\"true\"><SCOPE PROPERTY=\"true\" METHOD=\"true\" "
                        "PARAMETER=\"true\"/></QUALIFIER.DECLARATION></IRETURNVALUE>"));
  EXPECT_THAT(answerTo("EnumerateQualifiers", ""),
              AllOf(HasSubstr("NAME=\"Abstract\""), HasSubstr("NAME=\"Key\""),
                    HasSubstr("NAME=\"Values\"")));
}

TEST_F(ProtocolTest, RefusesQualifiersThatThereAreNotAndWrites) {
  for (const char* name : {"", "Key ", "&lt;Key/&gt;", "&#x2028;", "*", "..%2FKey", "%n"}) {
    expectError("GetQualifier", qualifierName(name), 6);
  }
  expectError("GetQualifier", qualifierName(std::string(40000, 'K')), 6);
  expectError("GetQualifier", "", 4);
  expectError("GetQualifier", className("Key"), 4);
  expectError("SetQualifier",
              R"(<IPARAMVALUE NAME="QualifierDeclaration"><QUALIFIER.DECLARATION NAME="Key" )"
              R"(TYPE="boolean"><SCOPE PROPERTY="true"/><VALUE>TRUE</VALUE>)"
              R"(</QUALIFIER.DECLARATION></IPARAMVALUE>)",
              7);
  expectError("DeleteQualifier", qualifierName("Key"), 7);
}

TEST_F(ProtocolTest, TellsWhatValuesStandFor) {
  const std::string job = answerTo(
      "GetClass", className("Orvex_ConcreteJob") +
                      R"(<IPARAMVALUE NAME="LocalOnly"><VALUE>FALSE</VALUE></IPARAMVALUE>)"
                      R"(<IPARAMVALUE NAME="PropertyList"><VALUE.ARRAY><VALUE>JobState</VALUE>)"
                      R"(</VALUE.ARRAY></IPARAMVALUE>)");
  EXPECT_THAT(job, AllOf(HasSubstr("<VALUE>An update that was started; it stays listed"),
                         HasSubstr("<QUALIFIER NAME=\"ValueMap\" TYPE=\"string\" "
                                   "PROPAGATED=\"true\"><VALUE.ARRAY><VALUE>2</VALUE>"),
                         HasSubstr("<VALUE>Starting</VALUE><VALUE>Running</VALUE>"),
                         HasSubstr("<VALUE>What the job shall do.</VALUE>")));
}

TEST_F(ProtocolTest, AnswersSeveralRequestsOfOneConnection) {
  HttpRequest last;
  std::string first = last.text();
  const std::string close = "Connection: close\r\n";
  first.erase(first.find(close), close.size());
  const std::string answers = exchange(first + first + last.text());
  std::size_t count = 0;
  for (std::size_t at = answers.find("HTTP/1.1 200 OK\r\n"); at != std::string::npos;
       at = answers.find("HTTP/1.1 200 OK\r\n", at + 1)) {
    ++count;
  }
  EXPECT_EQ(count, 3u);
}

TEST_F(ProtocolTest, AnswersARequestInChunks) {
  const HttpRequest request;
  std::string head = request.head(0);
  const std::string length = "Content-Length: 0\r\n";
  head.replace(head.find(length), length.size(), "Transfer-Encoding: chunked\r\n");
  std::string chunks;
  constexpr std::size_t kChunk = 100;
  for (std::size_t at = 0; at < request.body.size(); at += kChunk) {
    const std::string chunk = request.body.substr(at, kChunk);
    chunks +=
        (chunk.size() == kChunk ? "64"
                                : "0" + std::string(1, "0123456789ABCDEF"[chunk.size() / 16]) +
                                      "0123456789ABCDEF"[chunk.size() % 16]);
    chunks += "\r\n" + chunk + "\r\n";
  }
  EXPECT_THAT(exchange(head + chunks + "0\r\n\r\n"),
              AllOf(StartsWith("HTTP/1.1 200 OK\r\n"), HasSubstr(">0000:03:00.0</KEYVALUE>")));
}

TEST_F(ProtocolTest, RefusesBrokenXml) {
  HttpRequest request;
  for (const std::string& body :
       {std::string(), std::string("no xml"), std::string("<CIM"), std::string("<CIM></MIC>"),
        std::string("<CIM>\xC3</CIM>"), std::string("<CIM>&nothing;</CIM>"),
        std::string("<CIM>\0</CIM>", 12), HttpRequest().body.substr(0, 200),
        HttpRequest().body + "<CIM/>"}) {
    request.body = body;
    expectStatus(request, 400, "request-not-well-formed");
  }
}

TEST_F(ProtocolTest, RefusesXmlThatIsNoMessage) {
  HttpRequest request;
  for (
      const char* const body :
      {"<CIM/>", "<HTML></HTML>", R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"></CIM>)",
       R"(<CIM CIMVERSION="2.0" DTDVERSION="2.0"><MESSAGE ID="1" PROTOCOLVERSION="1.0"/></CIM>)"}) {
    request.body = body;
    expectStatus(request, 400, "request-not-valid");
  }
}

TEST_F(ProtocolTest, RefusesOtherVersions) {
  HttpRequest request;
  const auto replaced = [](const std::string& from, const std::string& to) {
    std::string body = HttpRequest().body;
    return body.replace(body.find(from), from.size(), to);
  };
  request.body = replaced("CIMVERSION=\"2.0\"", "CIMVERSION=\"3.0\"");
  expectStatus(request, 501, "unsupported-cim-version");
  request.body = replaced("DTDVERSION=\"2.0\"", "DTDVERSION=\"3.0\"");
  expectStatus(request, 501, "unsupported-dtd-version");
  request.body = replaced("PROTOCOLVERSION=\"1.0\"", "PROTOCOLVERSION=\"2.0\"");
  expectStatus(request, 501, "unsupported-protocol-version");
  request.body = messageOf("<MULTIREQ></MULTIREQ>");
  expectStatus(request, 501, "multiple-requests-unsupported");
}

TEST_F(ProtocolTest, ResolvesNoEntities) {
  HttpRequest request;
  std::string laughs = "<!DOCTYPE CIM [<!ENTITY a0 \"ha\">";
  for (int i = 1; i < 10; ++i) {
    const std::string before = "&a" + std::to_string(i - 1) + ";";
    laughs += "<!ENTITY a" + std::to_string(i) + " \"";
    for (int copies = 0; copies < 10; ++copies) {
      laughs += before;
    }
    laughs += "\">";
  }
  for (const std::string& doctype :
       {laughs + "]>", std::string("<!DOCTYPE CIM [<!ENTITY x SYSTEM \"file:///etc/passwd\">]>"),
        std::string("<!DOCTYPE CIM [<!ENTITY % x SYSTEM \"http://127.0.0.1/x\"> %x;]>")}) {
    request.body = operation("EnumerateInstanceNames", className("&a9;&x;"));
    request.body.insert(request.body.find("<CIM"), doctype);
    expectStatus(request, 400, "request-not-valid");
  }
}

TEST_F(ProtocolTest, RefusesElementsThatAreTooDeep) {
  HttpRequest request;
  std::string deep;
  while (deep.size() < 60'000) {
    deep += "<A>";
  }
  request.body = deep;
  expectStatus(request, 400, "request-not-valid");
}

TEST_F(ProtocolTest, RefusesWrongFields) {
  HttpRequest request;
  for (const char* const type :
       {"", "text/plain", "application/json", "text/xml; charset=utf-16"}) {
    request.contentType = type;
    expectStatus(request, 415);
  }
  request = {};
  request.cimOperation = "";
  expectStatus(request, 400, "unsupported-operation");
  request = {};
  request.cimMethod = "GetClass";
  expectStatus(request, 400, "header-mismatch");
  request = {};
  request.cimObject = "root/interop";
  expectStatus(request, 400, "header-mismatch");
  request = {};
  request.more = "Host: evil.example\r\n";
  expectStatus(request, 400);
}

TEST_F(ProtocolTest, RefusesFieldsThatComeTwice) {
  HttpRequest request;
  request.more = "cimmethod: EnumerateInstanceNames\r\n";
  expectStatus(request, 400, "header-mismatch");
  request.more = "CIMObject: root/interop\r\n";
  expectStatus(request, 400, "header-mismatch");
  request.more = "Content-Length: " + std::to_string(request.body.size()) + "\r\n";
  expectStatus(request, 400);
}

TEST_F(ProtocolTest, AnswersByALoopbackNameAlone) {
  for (const char* const target : {"/health", "/cimom"}) {
    const std::string method = std::string(target) == "/health" ? "GET " : "POST ";
    const auto expectRefused = [&](const std::string& server, const std::string& host) {
      expectStatusOf(method + server + target + " HTTP/1.1\r\nHost: " + host +
                         "\r\nConnection: close\r\nContent-Length: 0\r\n\r\n",
                     403);
    };
    expectRefused("", "evil.example");
    expectRefused("", "");
    expectRefused("http://evil.example", "127.0.0.1");
    expectRefused("http://127.0.0.1", "evil.example");
  }
}

TEST_F(ProtocolTest, RefusesWhatIsTooLarge) {
  HttpRequest request;
  request.body.append(65'536, ' ');
  expectStatus(request, 413);
  expectStatusOf(HttpRequest().head(1ULL << 40), 413);
  request = {};
  request.more = "X: " + std::string(20'000, 'x') + "\r\n";
  expectStatus(request, 431);
}

TEST_F(ProtocolTest, RefusesWhatComesTooSlowlyOrNotWhole) {
  const HttpRequest request;
  expectStatusOf("POST /cimom HTTP/1.1\r\nHost: 127", 408);
  expectStatusOf(request.head(request.body.size()) + request.body.substr(0, 50), 408);
}

TEST_F(ProtocolTest, RefusesWhatIsNoHttp) {
  expectStatusOf("hello\r\n\r\n", 400);
  expectStatusOf("POST /cimom HTTP/1.1\r\nHost: x\r\nContent-Length: -1\r\n\r\n", 400);
}

TEST_F(ProtocolTest, KnowsTheMethodsOfHttp) {
  HttpRequest request;
  request.requestLine = "M-POST /cimom HTTP/1.1";
  expectStatus(request, 501);
  request.requestLine = "DELETE /cimom HTTP/1.1";
  expectStatus(request, 405);
  const std::string answer =
      exchange("OPTIONS * HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n");
  EXPECT_THAT(answer, AllOf(StartsWith("HTTP/1.1 200 OK\r\n"), HasSubstr("Allow: OPTIONS, POST")));
}

TEST_F(ProtocolTest, AnswersErrorsOfCim) {
  expectError("EnumerateInstances", className("Orvex_Nothing"), 5);
  expectError("EnumerateInstances", "", 4);
  expectError("EnumerateInstances", className("Orvex_EthernetPort") + className("CIM_Job"), 4);
  expectError("GetInstance", instanceName(key("DeviceID", "0000:09:00.0")), 6);
  expectError("GetInstance", "", 4);
  expectError("DeleteInstance", instanceName(key("DeviceID", "0000:03:00.0")), 7);
  expectError("ExecQuery", "", 7);
  expectError("MakeCoffee", "", 7);
  // A value of a wrong type.
  expectError("EnumerateInstances",
              className("Orvex_EthernetPort") +
                  R"(<IPARAMVALUE NAME="LocalOnly"><VALUE>perhaps</VALUE></IPARAMVALUE>)",
              4);
  expectError("EnumerateInstances",
              R"(<IPARAMVALUE NAME="ClassName"><VALUE>Orvex_EthernetPort</VALUE></IPARAMVALUE>)",
              4);
}

TEST_F(ProtocolTest, KnowsItsNamespacesAlone) {
  HttpRequest request;
  request.cimObject = "root/cimv2";
  request.body =
      operation("EnumerateInstanceNames", className("Orvex_EthernetPort"),
                R"(<LOCALNAMESPACEPATH><NAMESPACE NAME="root"/><NAMESPACE NAME="cimv2"/>)"
                "</LOCALNAMESPACEPATH>");
  expectErrorOf(request, 3);
}

TEST_F(ProtocolTest, AnswersErrorsOfMethods) {
  expectErrorOf(methodCall("MakeCoffee", ""), 17);
  // The schema declares it, and the service does not support it.
  expectErrorOf(methodCall("RequestStateChange", ""), 7);
  // Missing arguments.
  expectErrorOf(methodCall("InstallFromURI", ""), 1);
  // An argument of a wrong type, and one that the method does not know.
  expectErrorOf(methodCall("InstallFromURI",
                           R"(<PARAMVALUE NAME="InstallOptions"><VALUE.ARRAY><VALUE>x</VALUE>)"
                           "</VALUE.ARRAY></PARAMVALUE>"),
                4);
  expectErrorOf(
      methodCall("InstallFromURI", R"(<PARAMVALUE NAME="Sugar"><VALUE>2</VALUE></PARAMVALUE>)"), 4);
}

TEST_F(ProtocolTest, ReadsReferencesWithinReferences) {
  const std::string port = R"(<INSTANCENAME CLASSNAME="Orvex_EthernetPort">)" +
                           key("DeviceID", "0000:03:00.0") + "</INSTANCENAME>";
  const auto reference = [](const std::string& name, const std::string& target) {
    return "<KEYBINDING NAME=\"" + name + "\"><VALUE.REFERENCE>" + target +
           "</VALUE.REFERENCE></KEYBINDING>";
  };
  std::string nested = port;
  for (int depth = 0; depth < 3; ++depth) {
    nested = R"(<INSTANCENAME CLASSNAME="Orvex_ServiceAffectsElement">)" +
             reference("AffectedElement", nested) + "</INSTANCENAME>";
  }
  expectError("GetInstance",
              instanceName(reference("AffectedElement", nested), "Orvex_ServiceAffectsElement"), 6);

  for (int depth = 0; depth < 300; ++depth) {
    nested = R"(<INSTANCENAME CLASSNAME="A">)" + reference("B", nested) + "</INSTANCENAME>";
  }
  HttpRequest request;
  request.cimMethod = "GetInstance";
  request.body = operation("GetInstance", instanceName(reference("C", nested)));
  expectStatus(request, 400, "request-not-valid");
}

}  // namespace
