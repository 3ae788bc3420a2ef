#include <gmock/gmock.h>
#include <string>

#include "tests/wbem/ServerFixture.h"

namespace {

using test::given;
using test::IsError;
using test::returned;
using testing::_;
using testing::AllOf;
using testing::HasSubstr;

class QualifierOperations : public test::ServerFixture {};

TEST_F(QualifierOperations, GetADeclarationInAnyCase) {
  EXPECT_EQ(ask("GetQualifier", {given("QualifierName", "KEY")}),
            returned("<QUALIFIER.DECLARATION NAME=\"Key\" TYPE=\"boolean\" ISARRAY=\"false\" "
                     "OVERRIDABLE=\"false\"><SCOPE REFERENCE=\"true\" PROPERTY=\"true\"/>"
                     "<VALUE>FALSE</VALUE></QUALIFIER.DECLARATION>"));
}

TEST_F(QualifierOperations, AreTheSameInEveryNamespace) {
  const std::string all = ask("EnumerateQualifiers");
  EXPECT_THAT(all, AllOf(HasSubstr("NAME=\"Association\""), HasSubstr("NAME=\"ValueMap\""),
                         HasSubstr("NAME=\"Write\"")));
  EXPECT_EQ(ask("EnumerateQualifiers", {}, test::kInterop), all);
  EXPECT_THAT(ask("EnumerateQualifiers", {}, "root/none"), IsError(3, _));
}

TEST_F(QualifierOperations, AreForWhoMayReadOnly) {
  m_caller.role = wbem::Role::Reader;
  EXPECT_THAT(ask("EnumerateQualifiers"), HasSubstr("QUALIFIER.DECLARATION"));
  EXPECT_THAT(ask("GetQualifier", {given("QualifierName", "Values")}),
              HasSubstr("QUALIFIER.DECLARATION"));
}

TEST_F(QualifierOperations, TellOfAQualifierThatThereIsNot) {
  EXPECT_THAT(ask("GetQualifier", {given("QualifierName", "Colour")}),
              IsError(6,
                      "there is no qualifier &apos;Colour&apos; in namespace root/test; "
                      "EnumerateQualifiers tells those that there are"));
}

TEST_F(QualifierOperations, AnswerHostileNames) {
  for (const std::string& name : {std::string(), std::string("Key\0x", 5), std::string("Key "),
                                  std::string("*"), std::string("\xff\xfe"), std::string("<Key/>"),
                                  std::string("%s%n"), std::string("../Key")}) {
    EXPECT_THAT(ask("GetQualifier", {given("QualifierName", name)}), IsError(6, _)) << name;
  }
  const std::string answer =
      ask("GetQualifier", {given("QualifierName", std::string(1U << 20, 'K'))});
  EXPECT_THAT(answer, IsError(6, _));
  EXPECT_LT(answer.size(), 8192u);
}

TEST_F(QualifierOperations, RefuseWrongParameters) {
  EXPECT_THAT(ask("GetQualifier"), IsError(4, "parameter QualifierName: is required"));
  EXPECT_THAT(ask("GetQualifier", {given("QualifierName", test::className("Key"))}), IsError(4, _));
  EXPECT_THAT(ask("GetQualifier", {given("QualifierName", test::texts({"Key"}))}), IsError(4, _));
  EXPECT_THAT(ask("GetQualifier", {given("QualifierName", "Key"), given("QualifierName", "In")}),
              IsError(4, _));
  EXPECT_THAT(ask("EnumerateQualifiers", {given("QualifierName", "Key")}), IsError(4, _));
}

TEST_F(QualifierOperations, AreNotThereForWrites) {
  EXPECT_THAT(ask("SetQualifier", {given("QualifierDeclaration", cimxml::Value())}),
              IsError(7, "operation SetQualifier is not offered"));
  EXPECT_THAT(ask("DeleteQualifier", {given("QualifierName", "Key")}),
              IsError(7, "operation DeleteQualifier is not offered"));
}

}  // namespace
