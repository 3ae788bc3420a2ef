#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/wbem/ServerFixture.h"

namespace {

using test::className;
using test::deviceName;
using test::fullPath;
using test::given;
using test::IsError;
using test::objectName;
using test::returned;
using test::texts;
using testing::_;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kFirst = "Test_Device.InstanceID=\"a\",Slot=1";
constexpr const char* kLast =
    "<PARAMVALUE NAME=\"EndOfSequence\" PARAMTYPE=\"boolean\"><VALUE>TRUE</VALUE></PARAMVALUE>"
    "<PARAMVALUE NAME=\"EnumerationContext\" PARAMTYPE=\"string\"><VALUE></VALUE></PARAMVALUE>";

struct OpenCase {
  const char* operation;
  cimxml::Parameter object;
  const char* pull;
};

std::vector<OpenCase> openCases() {
  return {
      {"OpenEnumerateInstances", given("ClassName", className("Test_Device")),
       "PullInstancesWithPath"},
      {"OpenEnumerateInstancePaths", given("ClassName", className("Test_Device")),
       "PullInstancePaths"},
      {"OpenReferenceInstances", given("InstanceName", objectName(kFirst)),
       "PullInstancesWithPath"},
      {"OpenReferenceInstancePaths", given("InstanceName", objectName(kFirst)),
       "PullInstancePaths"},
      {"OpenAssociatorInstances", given("InstanceName", objectName(kFirst)),
       "PullInstancesWithPath"},
      {"OpenAssociatorInstancePaths", given("InstanceName", objectName(kFirst)),
       "PullInstancePaths"},
  };
}

class PullOperations : public test::ServerFixture {
 protected:
  std::string open(const OpenCase& one, std::vector<cimxml::Parameter> further = {}) {
    further.push_back(one.object);
    return ask(one.operation, std::move(further));
  }

  // Opens an enumeration of the three devices, with the first of their paths, and returns its
  // context.
  std::string openDevices(std::vector<cimxml::Parameter> further = {}) {
    further.push_back(given("ClassName", className("Test_Device")));
    further.push_back(given("MaxObjectCount", "1"));
    return contextOf(ask("OpenEnumerateInstancePaths", std::move(further)));
  }

  static std::string contextOf(const std::string& answer) {
    const std::string begin = "PARAMTYPE=\"string\"><VALUE>";
    const std::size_t place = answer.find(begin);
    return place != std::string::npos
               ? answer.substr(place + begin.size(),
                               answer.find('<', place + begin.size()) - place - begin.size())
               : "none in " + answer;
  }

  std::string pull(const std::string& context, const std::string& count) {
    return ask("PullInstancePaths",
               {given("EnumerationContext", context), given("MaxObjectCount", count)});
  }

  static std::string more(const std::string& context) {
    return "<PARAMVALUE NAME=\"EndOfSequence\" PARAMTYPE=\"boolean\"><VALUE>FALSE</VALUE>"
           "</PARAMVALUE><PARAMVALUE NAME=\"EnumerationContext\" PARAMTYPE=\"string\"><VALUE>" +
           context + "</VALUE></PARAMVALUE>";
  }

  const std::string m_paths[3] = {fullPath("test", deviceName("a", 1)),
                                  fullPath("test", deviceName("b", 2)),
                                  fullPath("test", deviceName("p", 1, "Test_Port"))};
};

TEST_F(PullOperations, GiveAllAtOnceWhenThereIsRoom) {
  EXPECT_EQ(ask("OpenEnumerateInstancePaths",
                {given("ClassName", className("test_device")), given("MaxObjectCount", "3")}),
            returned(m_paths[0] + m_paths[1] + m_paths[2]) + kLast);
  EXPECT_EQ(ask("OpenEnumerateInstances",
                {given("ClassName", className("Test_Port")), given("MaxObjectCount", "9"),
                 given("PropertyList", texts({"Speed"}))}),
            returned("<VALUE.INSTANCEWITHPATH>" + m_paths[2] +
                     "<INSTANCE CLASSNAME=\"Test_Port\"><PROPERTY NAME=\"Speed\" TYPE=\"uint64\">"
                     "<VALUE>25000000000</VALUE></PROPERTY></INSTANCE></VALUE.INSTANCEWITHPATH>") +
                kLast);
}

TEST_F(PullOperations, GiveOneAfterTheOther) {
  const std::string opened =
      ask("OpenEnumerateInstancePaths", {given("ClassName", className("Test_Device"))});
  const std::string context = contextOf(opened);
  EXPECT_EQ(opened, returned("") + more(context));
  EXPECT_EQ(pull(context, "1"), returned(m_paths[0]) + more(context));
  EXPECT_EQ(pull(context, "0"), returned("") + more(context));
  EXPECT_EQ(pull(context, "1"), returned(m_paths[1]) + more(context));
  EXPECT_EQ(pull(context, "100"), returned(m_paths[2]) + kLast);
  EXPECT_THAT(pull(context, "1"), IsError(21, _));
}

TEST_F(PullOperations, NeedNoInstancesToPull) {
  const std::string context = openDevices();
  m_agent.devices.onEnumeration = [] { FAIL() << "was enumerated"; };
  m_agent.devices.clear();
  EXPECT_EQ(pull(context, "2"), returned(m_paths[1] + m_paths[2]) + kLast);
}

TEST_F(PullOperations, FollowAssociations) {
  const std::string port = fullPath("test", deviceName("p", 1, "Test_Port"));
  EXPECT_EQ(ask("OpenAssociatorInstancePaths",
                {given("InstanceName", objectName(kFirst)), given("MaxObjectCount", "5"),
                 given("ResultClass", className("Test_Port"))}),
            returned(port) + kLast);
  EXPECT_THAT(ask("OpenAssociatorInstances",
                  {given("InstanceName", objectName(kFirst)), given("MaxObjectCount", "5"),
                   given("AssocClass", className("Test_Link")), given("Role", "Antecedent"),
                   given("ResultRole", "Dependent"), given("IncludeClassOrigin", "TRUE")}),
              AllOf(StartsWith("<IRETURNVALUE><VALUE.INSTANCEWITHPATH>" + port +
                               "<INSTANCE CLASSNAME=\"Test_Port\">"),
                    HasSubstr("CLASSORIGIN=\"Test_Port\"")));
  EXPECT_THAT(ask("OpenReferenceInstancePaths",
                  {given("InstanceName", objectName(kFirst)), given("MaxObjectCount", "5"),
                   given("ResultClass", className("Test_Link"))}),
              StartsWith("<IRETURNVALUE><INSTANCEPATH>"));
  EXPECT_THAT(
      ask("OpenReferenceInstances",
          {given("InstanceName", objectName(kFirst)), given("MaxObjectCount", "5"),
           given("Role", "ManagedElement")}),
      AllOf(HasSubstr("<INSTANCE CLASSNAME=\"Test_ElementConformsToProfile\">"), HasSubstr(kLast)));
}

TEST_F(PullOperations, PullInstancesOfEachOpening) {
  for (const OpenCase& one : openCases()) {
    const std::string context = contextOf(open(one));
    const std::string answer =
        ask(one.pull, {given("EnumerationContext", context), given("MaxObjectCount", "99")});
    EXPECT_THAT(answer, HasSubstr(kLast)) << one.operation;
    EXPECT_THAT(answer, StartsWith("<IRETURNVALUE><")) << one.operation;
  }
}

TEST_F(PullOperations, GiveWhatAQueryFindsPieceByPiece) {
  const auto instance = [](const std::string& className, const std::string& id) {
    return "<INSTANCE CLASSNAME=\"" + className +
           "\"><PROPERTY NAME=\"InstanceID\" TYPE=\"string\"><VALUE>" + id +
           "</VALUE></PROPERTY></INSTANCE>";
  };
  const std::string opened =
      ask("OpenQueryInstances",
          {given("FilterQueryLanguage", "DMTF:CQL"),
           given("FilterQuery", "SELECT InstanceID FROM Test_Device WHERE Slot = 1"),
           given("MaxObjectCount", "1"), given("OperationTimeout", "20")});
  const std::string context = contextOf(opened);
  EXPECT_EQ(opened, returned(instance("Test_Device", "a")) + more(context));
  for (const char* other : {"PullInstancesWithPath", "PullInstancePaths"}) {
    EXPECT_THAT(ask(other, {given("EnumerationContext", context), given("MaxObjectCount", "1")}),
                IsError(21, _));
  }
  EXPECT_EQ(
      ask("PullInstances", {given("EnumerationContext", context), given("MaxObjectCount", "9")}),
      returned(instance("Test_Port", "p")) + kLast);
}

TEST_F(PullOperations, GiveTheClassOfWhatAQueryFindsWhenAsked) {
  const std::string answer = ask(
      "OpenQueryInstances", {given("FilterQueryLanguage", "WQL"),
                             given("FilterQuery", "SELECT Speed FROM Test_Port WHERE Speed < 0"),
                             given("ReturnQueryResultClass", "TRUE")});
  EXPECT_THAT(answer,
              StartsWith(returned("") + kLast +
                         "<PARAMVALUE NAME=\"QueryResultClass\"><CLASS NAME=\"Test_Port\""));
  EXPECT_THAT(answer, HasSubstr("<PROPERTY NAME=\"Speed\""));
  EXPECT_THAT(answer, Not(HasSubstr("\"Slot\"")));
  EXPECT_THAT(answer, Not(HasSubstr("METHOD")));
}

TEST_F(PullOperations, RefuseWrongQueries) {
  const auto openQuery = [this](const std::string& language, const std::string& text,
                                std::vector<cimxml::Parameter> further = {}) {
    further.push_back(given("FilterQueryLanguage", language));
    further.push_back(given("FilterQuery", text));
    return ask("OpenQueryInstances", std::move(further));
  };
  EXPECT_THAT(openQuery("DMTF:FQL", "Slot = 1"), IsError(14, _));
  EXPECT_THAT(openQuery("WQL", "SELECT"), IsError(15, _));
  EXPECT_THAT(openQuery("WQL", "SELECT COUNT(*) FROM Test_Port"), IsError(29, _));
  EXPECT_THAT(openQuery("WQL", "SELECT * FROM Test_No"), IsError(5, _));
  const std::string good = "SELECT * FROM Test_Port";
  EXPECT_THAT(openQuery("WQL", good, {given("OperationTimeout", "0")}), IsError(22, _));
  EXPECT_THAT(openQuery("WQL", good, {given("ContinueOnError", "TRUE")}), IsError(26, _));
  EXPECT_THAT(openQuery("WQL", good, {given("PropertyList", texts({"Slot"}))}), IsError(4, _));
  EXPECT_THAT(ask("OpenQueryInstances"), IsError(4, _));
}

TEST_F(PullOperations, AreForTheKindThatWasOpened) {
  const std::string context = openDevices();
  EXPECT_THAT(ask("PullInstancesWithPath",
                  {given("EnumerationContext", context), given("MaxObjectCount", "1")}),
              IsError(21, _));
}

TEST_F(PullOperations, AreForTheUserThatOpened) {
  const std::string context = openDevices();
  m_caller.user = "bob";
  EXPECT_THAT(pull(context, "1"), IsError(21, _));
  EXPECT_THAT(ask("CloseEnumeration", {given("EnumerationContext", context)}), IsError(21, _));
  m_caller.user = "ann";
  m_caller.role = wbem::Role::Reader;
  EXPECT_EQ(pull(context, "2"), returned(m_paths[1] + m_paths[2]) + kLast);
}

TEST_F(PullOperations, CloseAnEnumeration) {
  const std::string context = openDevices();
  EXPECT_EQ(ask("CloseEnumeration", {given("EnumerationContext", context)}), "");
  EXPECT_THAT(pull(context, "1"), IsError(21, _));
  EXPECT_THAT(ask("CloseEnumeration", {given("EnumerationContext", context)}), IsError(21, _));
}

TEST_F(PullOperations, EndWithTheirTime) {
  const std::string context = openDevices({given("OperationTimeout", "10")});
  m_now += std::chrono::seconds(9);
  EXPECT_THAT(pull(context, "0"), HasSubstr(context));
  m_now += std::chrono::seconds(10);
  EXPECT_THAT(pull(context, "1"), IsError(21, _));

  const std::string byDefault = openDevices();
  m_now += std::chrono::seconds(30);
  EXPECT_THAT(pull(byDefault, "1"), IsError(21, _));
}

TEST_F(PullOperations, AreBoundedForAUserAndInAll) {
  const auto openOneMore = [this] {
    return ask("OpenEnumerateInstancePaths", {given("ClassName", className("Test_Device"))});
  };
  for (const char* user : {"ann", "bob", "eve", "joe"}) {
    m_caller.user = user;
    for (int i = 0; i < 16; ++i) {
      ASSERT_EQ(openDevices().size(), 32U);
    }
    EXPECT_THAT(openOneMore(), IsError(27, _));
  }
  m_caller.user = "sue";
  EXPECT_THAT(openOneMore(), IsError(27, _));
}

TEST_F(PullOperations, RefuseWhatIsNotOffered) {
  for (const OpenCase& one : openCases()) {
    EXPECT_THAT(open(one, {given("FilterQuery", "x"), given("FilterQueryLanguage", "Test:QL")}),
                IsError(14, _))
        << one.operation;
    EXPECT_THAT(open(one, {given("ContinueOnError", "TRUE")}), IsError(26, _)) << one.operation;
    EXPECT_THAT(open(one, {given("OperationTimeout", "0")}), IsError(22, _)) << one.operation;
    EXPECT_THAT(open(one, {given("OperationTimeout", "301")}), IsError(22, _)) << one.operation;
    EXPECT_THAT(open(one, {given("ContinueOnError", "FALSE"), given("MaxObjectCount", "99")}),
                HasSubstr(kLast))
        << one.operation;
  }
}

TEST_F(PullOperations, RefuseWrongRequests) {
  for (const OpenCase& one : openCases()) {
    const std::string name = one.object.name;
    EXPECT_THAT(ask(one.operation), IsError(4, "parameter " + name + ": is required"));
    EXPECT_THAT(ask(one.operation, {given(name, "x")}), IsError(4, _)) << one.operation;
    EXPECT_THAT(open(one, {given("MaxObjectCount", "-1")}), IsError(4, _)) << one.operation;
    EXPECT_THAT(open(one, {given("OperationTimeout", "soon")}), IsError(4, _)) << one.operation;
    EXPECT_THAT(open(one, {given("LocalOnly", "TRUE")}), IsError(4, _)) << one.operation;
    EXPECT_THAT(ask(one.operation, {one.object}, "root/no"), IsError(3, _)) << one.operation;
    EXPECT_THAT(ask(one.operation, {one.object}, test::kInterop), IsError(5, _)) << one.operation;
  }
  EXPECT_THAT(ask("OpenReferenceInstancePaths", {given("InstanceName", className("Test_Device"))}),
              IsError(4, _));
  EXPECT_THAT(ask("OpenAssociatorInstances",
                  {given("InstanceName", objectName("Test_Device.InstanceID=\"z\",Slot=1"))}),
              IsError(6, _));
  EXPECT_THAT(ask("OpenAssociatorInstances", {given("InstanceName", objectName(kFirst)),
                                              given("ResultClass", className("Test_No"))}),
              IsError(4, _));
  EXPECT_THAT(ask("OpenEnumerateInstances", {given("ClassName", className("Test_No"))}),
              IsError(5, _));
  const std::string context = openDevices();
  EXPECT_THAT(ask("PullInstancePaths", {given("EnumerationContext", context)}),
              IsError(4, "parameter MaxObjectCount: is required"));
  EXPECT_THAT(ask("PullInstancePaths", {given("MaxObjectCount", "1")}),
              IsError(4, "parameter EnumerationContext: is required"));
  EXPECT_THAT(ask("CloseEnumeration"), IsError(4, _));
  EXPECT_THAT(pull("guessed", "1"), IsError(21, _));
}

}  // namespace
