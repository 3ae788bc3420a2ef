#include <atomic>
#include <cstring>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "Os/FileAhead.h"
#include "Os/Files.h"
#include "core/FirmwareReader.h"
#include "tests/support/TempDirectory.h"
#include "tests/wbem/ServerFixture.h"

namespace {

using test::className;
using test::given;
using test::IsError;
using test::objectName;
using test::texts;
using testing::_;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;
using wbem::AuditRecord;

constexpr const char* kFirst = "Test_Device.InstanceID=\"a\",Slot=1";

class Server : public test::ServerFixture {
 protected:
  std::string modifyName(const std::string& name) {
    return ask(
        "ModifyInstance",
        {given("ModifiedInstance",
               cimxml::InstanceValue{objectName(kFirst), {{"Name", "string", false, name}}})});
  }
};

auto IsRecord(const std::string& action, const std::string& target,
              const testing::Matcher<std::string>& result) {
  return AllOf(
      Field("action", &AuditRecord::action, action), Field("target", &AuditRecord::target, target),
      Field("result", &AuditRecord::result, result),
      Field("caller", &AuditRecord::caller,
            AllOf(Field(&wbem::Caller::user, "ann"), Field(&wbem::Caller::address, "192.0.2.7"))));
}

TEST_F(Server, AnswersBehindWhatIsInTheBuffer) {
  cimxml::Request request;
  request.messageId = "<7>";
  request.name = "GetInstance";
  request.nameSpace = "root/no";
  std::string out = "kept ";
  m_server.answer(request, m_caller, out);
  EXPECT_THAT(out, AllOf(StartsWith("kept <?xml"), HasSubstr("MESSAGE ID=\"&lt;7&gt;\""),
                         HasSubstr("<IMETHODRESPONSE NAME=\"GetInstance\"><ERROR CODE=\"3\"")));
}

TEST_F(Server, DoesNotSupportOtherOperations) {
  for (const char* operation : {"CreateInstance", "DeleteInstance", "ExecQuery", "SetQualifier",
                                "EnumerationCount", "OpenQueryInstances", "SetProperty", "Sing"}) {
    EXPECT_THAT(ask(operation),
                IsError(7, "operation " + std::string(operation) + " is not offered"));
  }
}

TEST_F(Server, TakesOperationsAndNamespacesInAnyCase) {
  EXPECT_THAT(
      ask("enumerateINSTANCENAMES", {given("ClassName", className("Test_Port"))}, "Root/TEST"),
      HasSubstr("<INSTANCENAME CLASSNAME=\"Test_Port\">"));
}

TEST_F(Server, AnswersWhatAProviderThrows) {
  m_agent.ports.onEnumeration = [] { throw utils::EUnspecifiedError("no adapters"); };
  EXPECT_THAT(ask("EnumerateInstances", {given("ClassName", className("Test_Device"))}),
              IsError(1, "Quorvel: EUnspecifiedError:no adapters"));
  m_agent.ports.onEnumeration = [] { throw std::bad_alloc(); };
  EXPECT_THAT(ask("EnumerateInstances", {given("ClassName", className("Test_Device"))}),
              IsError(1, _));
}

TEST_F(Server, ServesAgentsThatAreAddedLater) {
  const auto askForPorts = [this] {
    return ask("EnumerateInstances", {given("ClassName", className("Test_Port")),
                                      given("PropertyList", texts({"Speed"}))});
  };
  const std::string before = askForPorts();
  test::ModelAgent second;
  m_broker.addAgent(&second);
  EXPECT_EQ(askForPorts().size(),
            2 * before.size() - std::string("<IRETURNVALUE></IRETURNVALUE>").size());
}

// -- roles --

TEST_F(Server, LetsAReaderRead) {
  m_caller.role = wbem::Role::Reader;
  EXPECT_THAT(ask("GetInstance", {given("InstanceName", objectName(kFirst))}),
              HasSubstr("<INSTANCE CLASSNAME=\"Test_Device\">"));
  EXPECT_THAT(ask("GetClass", {given("ClassName", className("Test_Device"))}),
              HasSubstr("<CLASS NAME=\"Test_Device\""));
  EXPECT_THAT(m_audit.records, IsEmpty());
}

TEST_F(Server, LetsAReaderChangeNothing) {
  m_caller.role = wbem::Role::Reader;
  m_agent.invocation = [](core::CimPropertyList&, core::CimPropertyList&, core::CimInstance**) {
    ADD_FAILURE() << "was invoked";
    return 0U;
  };
  EXPECT_THAT(modifyName("new"), IsError(2,
                                         "user &apos;ann&apos; may read only; ModifyInstance "
                                         "needs an operator"));
  EXPECT_THAT(invoke(objectName(kFirst), "Try"),
              IsError(2, "user &apos;ann&apos; may read only; Try needs an operator"));
  EXPECT_THAT(ask("GetInstance", {given("InstanceName", objectName(kFirst))}),
              HasSubstr("first &amp; best"));
}

// -- audit --

TEST_F(Server, RecordsEveryAttemptToChange) {
  modifyName("new");
  invoke(objectName(kFirst), "Try");
  EXPECT_THAT(m_audit.records, ElementsAre(IsRecord("ModifyInstance", kFirst, "CIM_ERR_SUCCESS"),
                                           IsRecord("Try", kFirst, "0")));
}

TEST_F(Server, RecordsFailuresAndRefusals) {
  modifyName(std::string(30, 'x'));
  ask("ModifyInstance");
  ask("modifyinstance", {given("Surprise", "1")}, "root/no");
  invoke(objectName(kFirst), "Sing");
  invoke(className("Test_Device"), "Try");
  m_caller.role = wbem::Role::Reader;
  modifyName("new");
  invoke(objectName(kFirst), "Try");
  EXPECT_THAT(
      m_audit.records,
      ElementsAre(
          IsRecord("ModifyInstance", kFirst, StartsWith("CIM_ERR_INVALID_PARAMETER: Quorvel: ")),
          IsRecord("ModifyInstance", "",
                   "CIM_ERR_INVALID_PARAMETER: parameter ModifiedInstance: is required"),
          IsRecord("ModifyInstance", "", StartsWith("CIM_ERR_INVALID_NAMESPACE: ")),
          IsRecord("Sing", kFirst, StartsWith("CIM_ERR_METHOD_NOT_FOUND: ")),
          IsRecord("Try", "Test_Device", StartsWith("CIM_ERR_INVALID_PARAMETER: ")),
          IsRecord("ModifyInstance", kFirst, StartsWith("CIM_ERR_ACCESS_DENIED: ")),
          IsRecord("Try", kFirst, StartsWith("CIM_ERR_ACCESS_DENIED: "))));
}

TEST_F(Server, TellsAndRecordsLongTextsInShort) {
  const std::string text(256U * 1024U, '"');
  cimxml::ObjectName name = objectName("Test_Device.InstanceID=\"a\",Slot=1");
  for (int depth = 0; depth < 50; ++depth) {
    name = {"", "", "Test_Device", true, {{"K", cimxml::KeyBinding::Kind::Reference, "", {name}}}};
    name.keys.push_back({"L", cimxml::KeyBinding::Kind::String, text.substr(0, 5000), {}});
  }
  constexpr std::size_t kShort = 20'000;  // with the escapes of XML
  EXPECT_LT(ask("GetInstance", {given("InstanceName", name)}).size(), kShort);
  EXPECT_LT(ask("Associators", {given("ObjectName", name)}).size(), kShort);
  EXPECT_LT(ask("GetClass", {given("ClassName", className(text))}).size(), kShort);
  EXPECT_LT(
      ask("ModifyInstance", {given("ModifiedInstance", cimxml::InstanceValue{name, {}})}).size(),
      kShort);
  EXPECT_LT(invoke(name, "Try").size(), kShort);
  EXPECT_LT(invoke(className(text), "Try").size(), kShort);
  ASSERT_EQ(m_audit.records.size(), 3U);
  for (const AuditRecord& record : m_audit.records) {
    EXPECT_LT(record.target.size() + record.result.size(), 4000U) << record.action;
    EXPECT_THAT(record.target, testing::EndsWith("..."));
  }
}

TEST_F(Server, RecordsAnAttemptThatEndsInNoAnswer) {
  struct Stranger {};
  m_agent.invocation = [](core::CimPropertyList&, core::CimPropertyList&,
                          core::CimInstance**) -> std::uint32_t { throw Stranger(); };
  EXPECT_THROW(invoke(objectName(kFirst), "Try"), Stranger);
  EXPECT_THAT(m_audit.records, ElementsAre(IsRecord("Try", kFirst, "CIM_ERR_FAILED: no answer")));
}

TEST_F(Server, RecordsALongNameOfAMethodInShort) {
  cimxml::Request request;
  request.isExtrinsic = true;
  request.name = std::string(100'000, 'x');
  request.nameSpace = test::kAgentsNamespace;
  request.target = objectName(kFirst);
  std::string out;
  m_server.answer(request, m_caller, out);
  ASSERT_EQ(m_audit.records.size(), 1U);
  EXPECT_LT(m_audit.records.front().action.size(), 4000U);
}

// Installs firmware: starts the job that the test has set, or refuses.
class Installer : public CIM_ManagedElement {
 public:
  static constexpr const char* kClassName = "Test_Installer";
  using Superclass = CIM_ManagedElement;

  template <class Self>
  static auto getKeys(Self& self) {
    return core::keys(self.InstanceID);
  }
  [[nodiscard]] static std::vector<core::MethodDeclaration> getMethods() {
    using enum core::ParameterDirection;
    return {{"InstallFromURI",
             core::kCimUint32,
             {{"URI", core::kCimString, In, ""},
              {"InstallOptions", core::kCimUint16Array, In, ""},
              {"Job", core::kCimReference, Job, "CIM_ConcreteJob"}},
             kClassName}};
  }

  Installer() {
    InstanceID.setValue("i");
    core::markKeys(*this);
    addMethod("InstallFromURI", &core::CimInstance::InstallFromURI);
  }

  [[nodiscard]] std::string getClassName() const override { return kClassName; }
  std::uint32_t InstallFromURI(core::CimPropertyList* in, core::CimPropertyList* /*out*/,
                               core::CimInstance** job) override {
    constexpr std::uint32_t kStarted = 4096;
    constexpr std::uint32_t kRefused = 5;
    onCall();
    const auto& uri = dynamic_cast<core::CimPropertyString&>(*in->get("URI")).getValue();
    if (next != nullptr) {
      const os::FileContent file = os::readContent(uri.substr(std::strlen("file://")), kMostRead);
      content.assign(file.bytes.get(), file.bytes.get() + file.size);
    }
    *job = next;
    return next != nullptr ? kStarted : kRefused;
  }

  static constexpr std::int32_t kMostRead = 1000;
  core::CimInstance* next = nullptr;
  std::string content;  // of the file, as it was read
  std::function<void()> onCall = [] {};
};

class InstallerAgent : public test::FakeAgent,
                       public core::ClassDeclarer,
                       public core::FirmwareReader {
 public:
  void declareClasses(core::CimSchema& schema) const override {
    onDeclaration();  // at the first request
    core::declareClass<Installer>(schema);
  }
  [[nodiscard]] std::string describeFirmware(std::span<const std::uint8_t> content) const override {
    onDescription();
    return "version of " + std::string(content.begin(), content.end());
  }
  Installer& installer =
      test::ModelAgent::add(serve(Installer::kClassName), std::make_unique<Installer>());
  std::function<void()> onDeclaration = [] {};
  std::function<void()> onDescription = [] {};
};

class InstallingServer : public Server {
 protected:
  InstallingServer() { m_broker.addAgent(&m_installers); }

  void install(const std::string& file) {
    static_cast<void>(
        invoke(objectName("Test_Installer.InstanceID=\"i\""), "InstallFromURI",
               {given("URI", "file://" + file), given("InstallOptions", texts({"5"}))}));
  }
  void install() { install("/new.rom"); }
  // Has the next installation start a job that runs.
  test::Job& startNext() {
    test::Job& job = test::ModelAgent::add(m_agent.jobs, std::make_unique<test::Job>("new", 4));
    m_installers.installer.next = &job;
    return job;
  }

  InstallerAgent m_installers;
  test::TempDirectory m_directory;
};

TEST_F(InstallingServer, RecordsTheVeryBytesThatAreInstalled) {
  startNext();
  const std::string path = m_directory.write("new.rom", std::string("image")).string();
  // Somebody puts another file there while it is installed.
  m_installers.installer.onCall = [this] { m_directory.write("new.rom", std::string("another")); };
  install(path);
  EXPECT_EQ(m_installers.installer.content, "image");
  ASSERT_EQ(m_audit.records.size(), 1U);
  EXPECT_EQ(m_audit.records.front().result, "4096");
  EXPECT_THAT(
      m_audit.records.front().details,
      ElementsAre(Pair("file", path), Pair("sha256", "digest of image"), Pair("options", "5"),
                  Pair("new", "version of image"), Pair("job", "new")));
}

TEST_F(InstallingServer, RecordsThatItDoesNotKnowTheBytesOfAnUnreadFile) {
  startNext();
  install();
  ASSERT_EQ(m_audit.records.size(), 1U);
  EXPECT_THAT(m_audit.records.front().details,
              ElementsAre(Pair("file", "/new.rom"), Pair("sha256", HasSubstr("not known: ")),
                          Pair("options", "5"), Pair("job", "new")));
}

TEST_F(InstallingServer, RecordsTheInstallationAndItsEndWhereNoAgentCanTellTheVersion) {
  test::Job& job = startNext();
  const std::string path = m_directory.write("new.rom", std::string("image")).string();
  m_installers.onDescription = [] { throw std::bad_alloc(); };
  install(path);
  ASSERT_EQ(m_audit.records.size(), 1U);
  EXPECT_THAT(
      m_audit.records.front().details,
      ElementsAre(Pair("file", path), Pair("sha256", "digest of image"), Pair("options", "5"),
                  Pair("new", StartsWith("not known: ")), Pair("job", "new")));
  job.JobState.setValue(7);
  m_server.recordEndedJobs();
  ASSERT_EQ(m_audit.records.size(), 2U);
  EXPECT_EQ(m_audit.records.back().action, "JobEnd");
}

TEST_F(InstallingServer, RecordsWhatIsNotInstalled) {
  const std::string path = m_directory.write("new.rom", std::string("image")).string();
  install(path);
  ASSERT_EQ(m_audit.records.size(), 1U);
  EXPECT_EQ(m_audit.records.front().result, "5");
  EXPECT_THAT(m_audit.records.front().details, ElementsAre(Pair("file", path), Pair("options", "5"),
                                                           Pair("new", "version of image")));
  m_server.recordEndedJobs();
  EXPECT_EQ(m_audit.records.size(), 1U);
}

// The test takes the turn of reading, so that an installation waits for it.
TEST_F(InstallingServer, AnswersOthersWhileAFileIsRead) {
  startNext();
  const std::string path = m_directory.write("new.rom", std::string("image")).string();
  auto turn = std::make_unique<os::FileAhead>(path, Installer::kMostRead);
  std::atomic<bool> isCalled{false};
  m_installers.installer.onCall = [&isCalled] { isCalled = true; };
  std::promise<void> begun;
  m_installers.onDeclaration = [&begun] { begun.set_value(); };
  std::thread installation([this, &path] { install(path); });
  begun.get_future().wait();
  for (int round = 0; round < 100; ++round) {
    EXPECT_THAT(ask("EnumerateInstances", {given("ClassName", className("Test_Port"))}),
                HasSubstr("Test_Port"));
  }
  EXPECT_FALSE(isCalled);
  turn.reset();
  installation.join();
  EXPECT_TRUE(isCalled);
  EXPECT_EQ(m_installers.installer.content, "image");
}

TEST_F(InstallingServer, RecordsTheEndOfTheJobThoughNobodyAsksForIt) {
  test::Job& job = startNext();
  install();
  m_server.recordEndedJobs();
  EXPECT_EQ(m_audit.records.size(), 1U);
  job.JobState.setValue(7);
  m_server.recordEndedJobs();
  m_server.recordEndedJobs();
  ASSERT_EQ(m_audit.records.size(), 2U);
  EXPECT_THAT(m_audit.records.back(),
              IsRecord("JobEnd", "Test_Job.InstanceID=\"new\"", "Completed"));
}

// -- enumerations --

TEST_F(Server, DropsAnOldEnumerationAtTheNextRequestOfAnyKind) {
  const std::string opened =
      ask("OpenEnumerateInstancePaths", {given("ClassName", className("Test_Device"))});
  const std::string begin = "PARAMTYPE=\"string\"><VALUE>";
  const std::string context = opened.substr(opened.find(begin) + begin.size(), 32);
  const auto pull = [this, &context] {
    return ask("PullInstancePaths",
               {given("EnumerationContext", context), given("MaxObjectCount", "0")});
  };
  EXPECT_THAT(pull(), HasSubstr(context));
  m_now += std::chrono::seconds(30);
  ask("GetClass", {given("ClassName", className("Test_Device"))});
  // Its time would not be over yet.
  m_now -= std::chrono::seconds(30);
  EXPECT_THAT(pull(), IsError(21, _));
}

// -- jobs --

TEST_F(Server, CountsTheJobsThatHaveNotEnded) {
  // Of the states from 2 to 12 four are ends.
  EXPECT_EQ(m_server.countRunningJobs(), 7U);
  m_agent.jobs.clear();
  EXPECT_EQ(m_server.countRunningJobs(), 0U);
}

TEST_F(Server, CountsNoJobsWhereThereIsNoSuchClass) {
  core::CimBroker broker;
  wbem::Server server(broker, m_audit, {});
  EXPECT_EQ(server.countRunningJobs(), 0U);
}

// -- many at a time --

class CountingAudit final : public wbem::Audit {
 public:
  void write(const AuditRecord&) noexcept override { ++count; }
  std::atomic<int> count{0};
};

TEST_F(Server, AnswersManyThreadsAtATime) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 25;
  CountingAudit audit;
  wbem::Server server(m_broker, audit, {test::kAgentsNamespace, "server1"});
  // Ports that every enumeration makes anew.
  m_agent.links.clear();
  m_agent.ports.onEnumeration = [this] {
    m_agent.ports.clear();
    test::ModelAgent::add(m_agent.ports, std::make_unique<test::Port>("p", 1));
  };
  const auto requestOf = [](const std::string& name, cimxml::Parameter parameter) {
    cimxml::Request request;
    request.name = name;
    request.nameSpace = test::kAgentsNamespace;
    request.parameters = {std::move(parameter)};
    return request;
  };
  const std::vector<cimxml::Request> reads = {
      requestOf("EnumerateInstances", given("ClassName", className("CIM_ManagedElement"))),
      requestOf("GetInstance", given("InstanceName", objectName(kFirst))),
      requestOf("Associators", given("ObjectName", objectName(kFirst))),
      requestOf("GetClass", given("ClassName", className("Test_Device"))),
      requestOf("OpenEnumerateInstancePaths", given("ClassName", className("Test_Device")))};
  std::atomic<int> errors{0};
  const auto work = [&](int number) {
    const wbem::Caller caller{"user " + std::to_string(number), "", wbem::Role::Operator};
    const auto send = [&](const cimxml::Request& request) {
      std::string out;
      server.answer(request, caller, out);
      errors += out.find("<ERROR") != std::string::npos ? 1 : 0;
      return out;
    };
    for (int round = 0; round < kRounds; ++round) {
      std::string last;
      for (const cimxml::Request& request : reads) {
        last = send(request);
      }
      const std::string begin = "PARAMTYPE=\"string\"><VALUE>";
      const std::string context = last.substr(last.find(begin) + begin.size(), 32);
      send(requestOf("CloseEnumeration", given("EnumerationContext", context)));
      send(requestOf("ModifyInstance",
                     given("ModifiedInstance",
                           cimxml::InstanceValue{objectName(kFirst),
                                                 {{"Name", "string", false, caller.user}}})));
      cimxml::Request method;
      method.isExtrinsic = true;
      method.name = "Try";
      method.nameSpace = test::kAgentsNamespace;
      method.target = objectName(kFirst);
      send(method);
      static_cast<void>(server.countRunningJobs());
    }
  };
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back(work, number);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(errors, 0);
  EXPECT_EQ(audit.count, 2 * kThreads * kRounds);
}

}  // namespace
