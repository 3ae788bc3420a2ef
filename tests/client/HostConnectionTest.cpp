#include <gmock/gmock.h>

#include "cimxml/Request.h"
#include "client/Fault.h"
#include "client/HostConnection.h"
#include "core/CimPropertyRef.h"
#include "core/CimPropertyTypes.h"

namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::Not;
using testing::Pair;
using testing::SizeIs;

constexpr const char* kJobPath = "Orvex_ConcreteJob.InstanceID=\"Orvex:FirmwareUpdate@Job#1\"";
constexpr const char* kJobName =
    "<INSTANCENAME CLASSNAME=\"Orvex_ConcreteJob\"><KEYBINDING NAME=\"InstanceID\"><KEYVALUE "
    "VALUETYPE=\"string\">Orvex:FirmwareUpdate@Job#1</KEYVALUE></KEYBINDING></INSTANCENAME>";
constexpr const char* kJob =
    "<INSTANCE CLASSNAME=\"Orvex_ConcreteJob\"><PROPERTY NAME=\"InstanceID\" "
    "TYPE=\"string\"><VALUE>"
    "Orvex:FirmwareUpdate@Job#1</VALUE></PROPERTY><PROPERTY NAME=\"JobState\" "
    "TYPE=\"uint16\"><VALUE>"
    "4</VALUE></PROPERTY></INSTANCE>";

// A host that answers what the test says and keeps what it was asked.
class HostConnectionTest : public testing::Test {
 protected:
  // The next requests are answered by these, one after the other.
  void answer(const std::string& content) { m_answers.push_back(content); }
  void answerReturned(const std::string& content) {
    answer("<IRETURNVALUE>" + content + "</IRETURNVALUE>");
  }
  void answerError(unsigned code, const std::string& text) {
    answer("<ERROR CODE=\"" + std::to_string(code) + "\" DESCRIPTION=\"" + text + "\"/>");
  }

  http::ClientResponse send(const http::Client::Fields& fields, const std::string& body,
                            const http::SendOptions& options) {
    m_sendOptions = options;
    m_fields = {fields.begin(), fields.end()};
    std::string scratch = body;
    requests.push_back(cimxml::parseRequest(scratch));
    if (m_fault) {
      throw http::ClientFault(*m_fault, http::ClientFault::Kind::Connection, m_isSent);
    }
    http::ClientResponse response;
    response.status = m_status;
    response.fields["content-type"] = "application/xml; charset=\"utf-8\"";
    const std::string element = requests.back().isExtrinsic ? "METHODRESPONSE" : "IMETHODRESPONSE";
    response.body = "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"" + m_idPrefix +
                    requests.back().messageId + "\" PROTOCOLVERSION=\"1.0\"><SIMPLERSP><" +
                    element + " NAME=\"" + requests.back().name + "\">" + takeAnswer() + "</" +
                    element + "></SIMPLERSP></MESSAGE></CIM>";
    return response;
  }

  std::string takeAnswer() {
    if (m_answers.empty()) {
      ADD_FAILURE() << "a request that the test does not expect: " << requests.back().name;
      return "";
    }
    std::string next = m_answers.front();
    m_answers.erase(m_answers.begin());
    return next;
  }

  template <class Call>
  std::string faultOf(Call call) {
    try {
      call();
    } catch (const client::Fault& fault) {
      return fault.what();
    }
    return "";
  }

  // Returns what findInstances throws.
  std::string enumerationFault() {
    return faultOf([this] { static_cast<void>(connection.findInstances("Thing")); });
  }

  // Returns the one key of the name that the last request was about.
  KeyBinding askedKey() {
    return std::get<ObjectName>(requests.back().find("InstanceName")->value).keys.at(0);
  }

  std::vector<cimxml::Request> requests;
  std::map<std::string, std::string> m_fields;
  http::SendOptions m_sendOptions;
  std::optional<std::string> m_fault;
  bool m_isSent = false;  // when the fault comes
  unsigned m_status = 200;
  std::string m_idPrefix;
  client::HostConnection connection{
      {{false, "admin", "127.0.0.1", 5988}, "secret", "root/DCIM/zolan", "quorvel --host x"},
      [this](const http::Client::Fields& fields, const std::string& body,
             const http::SendOptions& options) { return send(fields, body, options); }};

 private:
  std::vector<std::string> m_answers;
};

TEST_F(HostConnectionTest, SaysInTheHeaderWhatItAsksAndWho) {
  answerReturned("");
  static_cast<void>(connection.findInstances("Thing"));
  EXPECT_THAT(m_fields, AllOf(Contains(Pair("CIMOperation", "MethodCall")),
                              Contains(Pair("CIMMethod", "EnumerateInstances")),
                              Contains(Pair("CIMObject", "root/DCIM/zolan")),
                              Contains(Pair("Content-Type", "application/xml; charset=\"utf-8\"")),
                              Contains(Pair("Authorization", "Basic YWRtaW46c2VjcmV0"))));
}

TEST_F(HostConnectionTest, SendsNoLoginWithoutAUser) {
  client::HostConnection anonymous(
      {{false, "", "127.0.0.1", 5988}, "", "root/DCIM/zolan", ""},
      [this](const http::Client::Fields& fields, const std::string& body,
             const http::SendOptions& options) { return send(fields, body, options); });
  answerReturned("");
  static_cast<void>(anonymous.findInstances("Thing"));
  EXPECT_THAT(m_fields, Not(Contains(Key("Authorization"))));
}

TEST_F(HostConnectionTest, NumbersItsMessages) {
  answerReturned("");
  answerReturned("");
  static_cast<void>(connection.findInstances("Thing"));
  static_cast<void>(connection.findInstances("Thing"));
  ASSERT_THAT(requests, SizeIs(2));
  EXPECT_NE(requests[0].messageId, requests[1].messageId);
}

TEST_F(HostConnectionTest, EnumeratesInstances) {
  answerReturned(std::string("<VALUE.NAMEDINSTANCE>") + kJobName + kJob + "</VALUE.NAMEDINSTANCE>");
  const client::Instances jobs = connection.findInstances("CIM_Job").value();
  EXPECT_EQ(requests[0].nameSpace, "root/DCIM/zolan");
  EXPECT_EQ(std::get<ObjectName>(requests[0].find("ClassName")->value).className, "CIM_Job");
  ASSERT_THAT(jobs, SizeIs(1));
  EXPECT_EQ(jobs[0].className, "Orvex_ConcreteJob");
  EXPECT_EQ(jobs[0].path, kJobPath);
  EXPECT_EQ(jobs[0].value<unsigned>("JobState"), 4U);
}

TEST_F(HostConnectionTest, TellsNoInstancesFromNoClass) {
  answerReturned("");
  answerError(5, "no class");
  EXPECT_THAT(connection.findInstances("Thing").value(), IsEmpty());
  EXPECT_FALSE(connection.findInstances("Thing"));
}

TEST_F(HostConnectionTest, GetsAnInstanceByItsPath) {
  answerReturned(kJob);
  const client::InstanceSnapshot job = connection.findInstance(kJobPath).value();
  EXPECT_EQ(job.path, kJobPath);
  EXPECT_EQ(requests[0].name, "GetInstance");
  EXPECT_EQ(askedKey(),
            (KeyBinding{"InstanceID", KeyBinding::Kind::String, "Orvex:FirmwareUpdate@Job#1", {}}));
}

TEST_F(HostConnectionTest, WaitsLessLongForOneOfManyLooks) {
  answerReturned(kJob);
  answerReturned(kJob);
  EXPECT_EQ(connection.lookAgain(kJobPath).value().path, kJobPath);
  EXPECT_GT(m_sendOptions.timeout.count(), 0);
  EXPECT_LE(m_sendOptions.timeout, std::chrono::seconds(5));
  static_cast<void>(connection.findInstance(kJobPath));
  EXPECT_EQ(m_sendOptions.timeout.count(), 0);
}

TEST_F(HostConnectionTest, FindsNoInstanceWhereThereIsNone) {
  answerError(6, "not found");
  answerError(5, "no class");
  EXPECT_FALSE(connection.findInstance(kJobPath));
  EXPECT_FALSE(connection.findInstance(kJobPath));
}

TEST_F(HostConnectionTest, AsksTheClassWhatAKeyIsThatReadsAsAPath) {
  const std::string declaration =
      "<CLASS NAME=\"Thing\"><PROPERTY NAME=\"Id\" TYPE=\"string\"/></CLASS>";
  answerReturned(declaration);
  answerReturned("<INSTANCE CLASSNAME=\"Thing\"/>");
  const std::string path = R"(Thing.Id="A.b=\"c\"")";
  EXPECT_EQ(connection.findInstance(path).value().path, path);
  EXPECT_EQ(requests[0].name, "GetClass");
  // A key may be one that it inherits.
  EXPECT_EQ(std::get<std::string>(requests[0].find("LocalOnly")->value), "FALSE");
  EXPECT_EQ(askedKey(), (KeyBinding{"Id", KeyBinding::Kind::String, "A.b=\"c\"", {}}));
  // The class is known from now on, and a string may stand without quotes.
  answerReturned("<INSTANCE CLASSNAME=\"Thing\"/>");
  EXPECT_EQ(connection.findInstance("Thing.Id=12").value().path, "Thing.Id=\"12\"");
  EXPECT_EQ(askedKey(), (KeyBinding{"Id", KeyBinding::Kind::String, "12", {}}));
  EXPECT_THAT(requests, SizeIs(3));
}

TEST_F(HostConnectionTest, KeepsKeysThatAreReferences) {
  answerReturned(
      "<CLASS NAME=\"Link\"><PROPERTY.REFERENCE NAME=\"Job\" REFERENCECLASS=\"CIM_Job\"/></CLASS>");
  answerReturned("<INSTANCE CLASSNAME=\"Link\"/>");
  static_cast<void>(connection.findInstance(
      R"(Link.Job="Orvex_ConcreteJob.InstanceID=\"Orvex:FirmwareUpdate@Job#1\"")"));
  ASSERT_THAT(askedKey().reference, SizeIs(1));
  EXPECT_EQ(askedKey().reference[0].className, "Orvex_ConcreteJob");
  EXPECT_EQ(askedKey().reference[0].nameSpace, "root/DCIM/zolan");
}

TEST_F(HostConnectionTest, ListsTheClassesBelowWhichThereIsNoOther) {
  answerReturned(
      "<CLASS NAME=\"CIM_Job\"/><CLASS NAME=\"CIM_ConcreteJob\" SUPERCLASS=\"CIM_JOB\"/>"
      "<CLASS NAME=\"Orvex_ConcreteJob\" SUPERCLASS=\"CIM_ConcreteJob\"/><CLASS NAME=\"Alone\"/>");
  EXPECT_THAT(connection.getClasses(),
              ElementsAre(Pair("Alone", IsEmpty()), Pair("Orvex_ConcreteJob", IsEmpty())));
}

TEST_F(HostConnectionTest, FindsWhatRefersToAnInstanceByClass) {
  const auto link = [](const std::string& className) {
    return "<VALUE.OBJECTWITHPATH><INSTANCEPATH><NAMESPACEPATH><HOST>lab</HOST>"
           "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/></LOCALNAMESPACEPATH></NAMESPACEPATH>"
           "<INSTANCENAME CLASSNAME=\"" +
           className + "\"/></INSTANCEPATH><INSTANCE CLASSNAME=\"" + className +
           "\"><PROPERTY.REFERENCE NAME=\"Element\"><VALUE.REFERENCE>" + kJobName +
           "</VALUE.REFERENCE></PROPERTY.REFERENCE></INSTANCE></VALUE.OBJECTWITHPATH>";
  };
  answerReturned(link("Owning") + link("Affected"));
  const client::Instances links = connection.findReferencing(kJobPath);
  EXPECT_EQ(requests[0].name, "References");
  ASSERT_THAT(links, SizeIs(2));
  EXPECT_EQ(links[0].className, "Affected");
  EXPECT_EQ(links[0].properties[0].kind, client::PropertySnapshot::Kind::Reference);
  EXPECT_EQ(links[0].value<std::string>("Element"), kJobPath);
}

TEST_F(HostConnectionTest, CallsAMethodWithTypedArguments) {
  answer(std::string("<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>4096</VALUE></RETURNVALUE>"
                     "<PARAMVALUE NAME=\"Job\" PARAMTYPE=\"reference\"><VALUE.REFERENCE>") +
         kJobName + "</VALUE.REFERENCE></PARAMVALUE>");
  core::CimPropertyString uri("URI", nullptr);
  uri.setValue("file:///a & b");
  core::CimPropertyUint16_arr options("InstallOptions", nullptr);
  options.setValue({3, 5});
  core::CimPropertyString_arr optionsValues("InstallOptionsValues", nullptr);
  core::CimPropertyRef target("Target", nullptr);
  target.setText("Port.Id=\"1\"");
  core::CimPropertyList in;
  for (core::CimProperty* argument :
       std::initializer_list<core::CimProperty*>{&uri, &options, &optionsValues, &target}) {
    in.add(argument);
  }
  core::CimPropertyList out;
  const client::MethodAnswer answer =
      connection.invoke("Service.Name=\"s\"", "InstallFromURI", in, out, {});
  EXPECT_EQ(answer.returnValue, 4096U);
  EXPECT_EQ(answer.returnText, "Method Parameters Checked - Job Started");
  EXPECT_EQ(answer.jobPath, kJobPath);
  EXPECT_EQ(answer.reason, "");
  EXPECT_THAT(answer.outputs, IsEmpty());
  const cimxml::Request& request = requests.at(0);
  EXPECT_EQ(request.target.className, "Service");
  EXPECT_EQ(m_fields["CIMObject"], "root/DCIM/zolan%3AService.Name%3D%22s%22");
  EXPECT_EQ(std::get<std::string>(request.find("URI")->value), "file:///a & b");
  EXPECT_EQ(request.find("InstallOptions")->type, "uint16");
  EXPECT_THAT(std::get<cimxml::StringArray>(request.find("InstallOptions")->value),
              ElementsAre("3", "5"));
  EXPECT_TRUE(std::holds_alternative<std::monostate>(request.find("InstallOptionsValues")->value));
  EXPECT_EQ(std::get<ObjectName>(request.find("Target")->value).className, "Port");
  EXPECT_EQ(request.find("Job"), nullptr);
}

TEST_F(HostConnectionTest, TellsWhatANumberMeansForTheMethod) {
  answer("<RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>4097</VALUE></RETURNVALUE>");
  core::CimPropertyList none;
  EXPECT_EQ(connection.invoke(kJobPath, "RequestStateChange", none, none, {}).returnText,
            "Invalid State Transition");
}

TEST_F(HostConnectionTest, RefusesAnArgumentThatIsNoPath) {
  core::CimPropertyRef target("Target", nullptr);
  target.setText("rubbish");
  core::CimPropertyList in;
  in.add(&target);
  core::CimPropertyList out;
  EXPECT_THAT(faultOf([&] {
                static_cast<void>(connection.invoke(kJobPath, "InstallFromURI", in, out, {}));
              }),
              HasSubstr("'rubbish' is no object path"));
  EXPECT_THAT(requests, IsEmpty());
}

TEST_F(HostConnectionTest, SaysWhereToLookWhereThereIsNoInstanceToCall) {
  core::CimPropertyList none;
  answerError(6, "not found");
  answerReturned("<CLASS NAME=\"Thing\"/>");
  EXPECT_EQ(
      faultOf(
          [&] { static_cast<void>(connection.invoke("Thing.Id=\"1\"", "Dance", none, none, {})); }),
      "there is no instance Thing.Id=\"1\"; 'quorvel --host x instances Thing' shows what there "
      "is");
}

TEST_F(HostConnectionTest, RefusesAMethodsAnswerWithoutReturnValue) {
  core::CimPropertyList none;
  answer("");
  answer("<RETURNVALUE><VALUE>x</VALUE></RETURNVALUE>");
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT(faultOf([&] {
                  static_cast<void>(connection.invoke("Thing.Id=\"1\"", "Dance", none, none, {}));
                }),
                HasSubstr("has no return value"));
  }
}

TEST_F(HostConnectionTest, NamesTheErrorOfTheHost) {
  answerError(2, "readers may look only");
  EXPECT_EQ(enumerationFault(), "CIM_ERR_ACCESS_DENIED: readers may look only");
}

TEST_F(HostConnectionTest, SaysWhyTheHostCannotBeReached) {
  m_fault = "the server lab:5988 refused the connection";
  EXPECT_EQ(enumerationFault(), *m_fault);
}

TEST_F(HostConnectionTest, LetsQuestionsBeRepeatedAndNoCalls) {
  core::CimPropertyList none;
  answerReturned("");
  static_cast<void>(connection.findInstances("Thing"));
  EXPECT_TRUE(m_sendOptions.isRepeatable);
  answer("<RETURNVALUE><VALUE>0</VALUE></RETURNVALUE>");
  static_cast<void>(connection.invoke("Thing.Id=\"1\"", "Dance", none, none, {}));
  EXPECT_FALSE(m_sendOptions.isRepeatable);
}

TEST_F(HostConnectionTest, SaysThatACallMayHaveBeenCarriedOut) {
  core::CimPropertyList none;
  const auto call = [&] {
    static_cast<void>(connection.invoke("Thing.Id=\"1\"", "Dance", none, none, {}));
  };
  m_fault = "Nobody answers.";
  EXPECT_EQ(faultOf(call), "Nobody answers.");
  m_isSent = true;
  EXPECT_EQ(faultOf(call),
            "Nobody answers. The host may have carried out Dance all the same: before you try "
            "again, look at its jobs:\n  quorvel --host x jobs");
  EXPECT_EQ(enumerationFault(), "Nobody answers.");
}

TEST_F(HostConnectionTest, TellsWhatMayPass) {
  answer("");
  m_status = 503;
  EXPECT_THROW(static_cast<void>(connection.findInstances("Thing")), client::PassingFault);
  m_fault = "nobody answers";
  EXPECT_THROW(static_cast<void>(connection.findInstances("Thing")), client::PassingFault);
}

TEST_F(HostConnectionTest, SaysThatTheLoginWasRefused) {
  m_status = 401;
  answer("");
  EXPECT_EQ(enumerationFault(),
            "http://127.0.0.1:5988 refused the login of admin; check the name and the password");
}

TEST_F(HostConnectionTest, RefusesTheAnswerToAnotherRequest) {
  m_idPrefix = "x";
  answerReturned("");
  EXPECT_THAT(enumerationFault(), HasSubstr("belongs to another request"));
}

TEST_F(HostConnectionTest, RefusesAnAnswerThatIsNoCimXml) {
  answer("<unclosed>");
  EXPECT_THAT(enumerationFault(), HasSubstr("what http://127.0.0.1:5988 answers is no CIM-XML"));
}

TEST_F(HostConnectionTest, TellsHowToWatchAJob) {
  EXPECT_TRUE(connection.isRemote());
  EXPECT_EQ(connection.program(), "quorvel --host x");
  EXPECT_EQ(connection.watchCommand("Orvex:FirmwareUpdate@Job#1"),
            "quorvel --host x watch 'Orvex:FirmwareUpdate@Job#1'");
  EXPECT_EQ(connection.watchCommand("it's"), "quorvel --host x watch 'it'\\''s'");
}

TEST_F(HostConnectionTest, AsksForAClassWithAllThatThereIsToSay) {
  answerReturned(
      "<CLASS NAME=\"Fan\"><QUALIFIER NAME=\"Description\" TYPE=\"string\">"
      "<VALUE>Moves air.</VALUE></QUALIFIER></CLASS>");
  const std::optional<client::ClassDescription> fan = connection.findClass("fan");
  ASSERT_TRUE(fan);
  EXPECT_EQ(fan->name, "Fan");
  EXPECT_EQ(fan->description, "Moves air.");
  EXPECT_EQ(requests[0].name, "GetClass");
  EXPECT_EQ(std::get<std::string>(requests[0].find("IncludeQualifiers")->value), "TRUE");
  EXPECT_EQ(std::get<std::string>(requests[0].find("LocalOnly")->value), "FALSE");
}

TEST_F(HostConnectionTest, HasNothingToSayOfAClassThatTheHostHasNot) {
  answerError(6, "none");
  EXPECT_FALSE(connection.findClass("Fan"));
  answerError(5, "none");
  EXPECT_FALSE(connection.findClass("Fan"));
  answerReturned("");
  EXPECT_FALSE(connection.findClass("Fan"));
  answerError(2, "not for you");
  EXPECT_THAT(faultOf([this] { static_cast<void>(connection.findClass("Fan")); }),
              HasSubstr("not for you"));
}

}  // namespace
