#include <gmock/gmock.h>
#include <ostream>
#include <random>

#include "Utils/Exception.h"
#include "core/CimPath.h"
#include "tests/core/TestInstance.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Throws.h"

namespace {

using core::CimPath;
using test::IsRecordOf;
using test::LogCapture;
using test::LogLevel;
using testing::ElementsAre;
using testing::Pair;

constexpr const char* kFunction = "core::CimPath::CimPath";

TEST(CimPath, ParsesAClassNameAndKeys) {
  const CimPath path(R"(CIM_Fan.Name="x",Number=7)");

  EXPECT_EQ(path.getClassName(), "CIM_Fan");
  EXPECT_EQ(path.getModelPath(), R"(CIM_Fan.Name="x",Number=7)");
  EXPECT_THAT(path, ElementsAre(Pair("Name", "x"), Pair("Number", "7")));
}

TEST(CimPath, OrdersItsKeysByName) {
  EXPECT_THAT(CimPath("C.b=1,a=2,B=3"),
              ElementsAre(Pair("B", "3"), Pair("a", "2"), Pair("b", "1")));
}

TEST(CimPath, DropsANamespace) {
  const CimPath path("root/DCIM/zolan:CIM_Fan.Name=x");

  EXPECT_EQ(path.getClassName(), "CIM_Fan");
  EXPECT_EQ(path.getModelPath(), "CIM_Fan.Name=x");
}

TEST(CimPath, LogsTheTextAndTheNamespaceThatIsDropped) {
  const LogCapture log;
  const CimPath path("root/x:C.K=1");

  EXPECT_THAT(
      log.records(),
      ElementsAre(
          IsRecordOf("CimPath", LogLevel::Debug, kFunction, "Creating path root/x:C.K=1"),
          IsRecordOf("CimPath", LogLevel::Debug, kFunction, "namespace is stripped [root/x]")));
}

TEST(CimPath, LogsNoNamespaceWhereThereIsNone) {
  const LogCapture log;
  const CimPath path("C.K=1");

  EXPECT_THAT(log.messages(kFunction), ElementsAre("Creating path C.K=1"));
}

TEST(CimPath, TakesAnEmptyNamespace) {
  EXPECT_EQ(CimPath(":C.K=1").getModelPath(), "C.K=1");
}

TEST(CimPath, DoesNotSplitInsideAQuotedValue) {
  EXPECT_THAT(CimPath(R"(C.K="a:b.c,d=e")"), ElementsAre(Pair("K", "a:b.c,d=e")));
  EXPECT_THAT(CimPath(R"(n:C.K="\"a:b\"",L="=")"),
              ElementsAre(Pair("K", R"("a:b")"), Pair("L", "=")));
}

TEST(CimPath, KeepsAValueThatIsNotQuotedAsItIs) {
  EXPECT_THAT(CimPath(R"(C.K=a\b,L= x ,M="a"b)"),
              ElementsAre(Pair("K", R"(a\b)"), Pair("L", " x "), Pair("M", R"("a"b)")));
}

TEST(CimPath, TakesAnEmptyQuotedValue) {
  EXPECT_THAT(CimPath(R"(C.K="")"), ElementsAre(Pair("K", "")));
}

TEST(CimPath, TellsKeysApartByCase) {
  EXPECT_THAT(CimPath("C.Name=1,name=2"), ElementsAre(Pair("Name", "1"), Pair("name", "2")));
}

TEST(CimPath, AcceptsNamesOfLettersDigitsAndUnderscores) {
  EXPECT_EQ(CimPath("_C9_z.K=1").getClassName(), "_C9_z");
  EXPECT_THAT(CimPath("C._k9=1"), ElementsAre(Pair("_k9", "1")));
}

TEST(CimPath, IsCopiedWhole) {
  const CimPath path("n:C.K=1");
  CimPath copy(CimPath("D.L=2"));
  copy = path;

  EXPECT_EQ(copy.getClassName(), "C");
  EXPECT_EQ(copy.getModelPath(), "C.K=1");
  EXPECT_THAT(copy, ElementsAre(Pair("K", "1")));
}

struct Malformed {
  const char* path;
  const char* text;
};

void PrintTo(const Malformed& malformed, std::ostream* stream) {
  *stream << '\'' << malformed.path << '\'';
}

class MalformedPath : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedPath, IsRefusedWithTheOffendingText) {
  EXPECT_THAT([] { const CimPath path(GetParam().path); },
              test::ThrowsExactly<utils::ESyntaxError>(std::string("Quorvel: ESyntaxError:") +
                                                       GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Table, MalformedPath,
    testing::Values(
        Malformed{"", "empty path"}, Malformed{"a:b:C.K=1", "model path not found: 'a:b:C.K=1'"},
        Malformed{"a::C.K=1", "model path not found: 'a::C.K=1'"},
        Malformed{R"(a:C.K="x:y":z)", R"(model path not found: 'a:C.K="x:y":z')"},
        Malformed{"C", "too many classname separators: 'C'"},
        Malformed{"n:C", "too many classname separators: 'n:C'"},
        Malformed{"n:", "too many classname separators: 'n:'"},
        Malformed{":", "too many classname separators: ':'"},
        Malformed{"C.K=1.5", "too many classname separators: 'C.K=1.5'"},
        Malformed{R"(C."K=1)"
                  "\".x.y",
                  R"(too many classname separators: 'C."K=1".x.y')"},
        Malformed{".K=1", "empty class name: '.K=1'"},
        Malformed{"n:.K=1", "empty class name: 'n:.K=1'"}, Malformed{".", "empty class name: '.'"},
        Malformed{"9C.K=1", "invalid class name: '9C.K=1'"},
        Malformed{"C-D.K=1", "invalid class name: 'C-D.K=1'"},
        Malformed{" C.K=1", "invalid class name: ' C.K=1'"},
        Malformed{"n:C D.K=1", "invalid class name: 'n:C D.K=1'"},
        Malformed{"\"C\".K=1", "invalid class name: '\"C\".K=1'"},
        Malformed{"F\xc3\xa4n.K=1", "invalid class name: 'F\xc3\xa4n.K=1'"},
        Malformed{"C.", "no properties: 'C.'"}, Malformed{"n:C.", "no properties: 'n:C.'"},
        Malformed{"C.K", "only one '=' allowed: 'K'"},
        Malformed{"C.K=1=2", "only one '=' allowed: 'K=1=2'"},
        Malformed{"C.K=1,", "only one '=' allowed: ''"},
        Malformed{"C.,K=1", "only one '=' allowed: ''"},
        Malformed{"C.K=1,L", "only one '=' allowed: 'L'"},
        Malformed{"C.9K=1", "invalid property name: '9K=1'"},
        Malformed{"C.=1", "invalid property name: '=1'"},
        Malformed{"C.=", "invalid property name: '='"},
        Malformed{"C.A=1, K=2", "invalid property name: ' K=2'"},
        Malformed{"C.\"K\"=1", "invalid property name: '\"K\"=1'"},
        Malformed{"C.K=", "property value empty: 'K='"},
        Malformed{"C.A=1,K=", "property value empty: 'K='"},
        Malformed{"C.K=1,K=2", "property already exists: 'K=2'"},
        Malformed{R"(C.K="1",L=2,K="1")", R"(property already exists: 'K="1"')"},
        Malformed{"C.%s=%d%n", "invalid property name: '%s=%d%n'"}));

TEST(CimPath, ChecksANameBeforeItsValue) {
  EXPECT_THAT([] { const CimPath path("C.9="); },
              test::ThrowsExactly<utils::ESyntaxError>(
                  "Quorvel: ESyntaxError:invalid property name: '9='"));
}

TEST(CimPath, LogsTheTextThatItRefuses) {
  const LogCapture log;
  EXPECT_THROW(CimPath("%s:C."), utils::ESyntaxError);

  EXPECT_THAT(
      log.records(),
      ElementsAre(IsRecordOf("CimPath", LogLevel::Debug, kFunction, "Creating path %s:C."),
                  IsRecordOf("CimPath", LogLevel::Debug, kFunction, "namespace is stripped [%s]"),
                  IsRecordOf("Exception", LogLevel::Error, "utils::Exception::Exception",
                             "ESyntaxError:no properties: '%s:C.'")));
}

// An instance with two text keys.
class Pairing : public core::CimInstance {
 public:
  Pairing(const std::string& first, const std::string& second) {
    First.setKey();
    First.setValue(first);
    Second.setKey();
    Second.setValue(second);
  }
  [[nodiscard]] std::string getClassName() const override { return "Test_Pairing"; }

  core::CimPropertyString First{"First", this};
  core::CimPropertyString Second{"Second", this};
};

std::string nastyText(std::mt19937& random) {
  constexpr std::string_view kCharacters = "\"\\:.,= a%'\n\xc3";
  std::string text;
  for (std::size_t length = random() % 10; length > 0; --length) {
    text.push_back(kCharacters[random() % kCharacters.size()]);
  }
  return text;
}

TEST(CimPath, GivesEveryKeyOfAPrintedPathBack) {
  std::mt19937 random(42);  // NOLINT(cert-msc51-cpp): the texts are to be the same
  int checked = 0;
  while (checked < 2000) {
    const std::string first = nastyText(random);
    const std::string second = nastyText(random);
    if (first.ends_with('\\')) {
      continue;  // see below
    }
    Pairing instance(first, second);
    EXPECT_THAT(CimPath(instance.getPath()),
                ElementsAre(Pair("First", first), Pair("Second", second)))
        << instance.getPath();
    ++checked;
  }
}

// A backslash stays single in a printed path, so one at the end of a value hides its closing quote.
TEST(CimPath, RunsPastAKeyThatEndsInABackslashIntoTheNext) {
  EXPECT_THAT(CimPath(test::Instance("C:\\").getPath()), ElementsAre(Pair("Name", "C:\\")));
  EXPECT_THAT(CimPath(Pairing("C:\\", "x").getPath()),
              ElementsAre(Pair("First", R"(C:",Second="x)")));
}

TEST(CimPath, ParsesAPathWithinAPath) {
  test::Instance inner(R"(a"b\"c)");
  test::Instance outer(inner.getPath());
  const CimPath outerPath(outer.getPath());

  EXPECT_THAT(CimPath(outerPath.at("Name")), ElementsAre(Pair("Name", R"(a"b\"c)")));
}

}  // namespace
