#include <gmock/gmock.h>

#include "client/Fault.h"
#include "client/HostErrors.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

http::ClientResponse answer(unsigned status, const std::string& type = "application/xml") {
  return {status, {{"content-type", type}}, ""};
}

template <class Call>
std::string faultOf(Call call) {
  try {
    call();
  } catch (const client::Fault& fault) {
    EXPECT_EQ(fault.kind(), client::Fault::Kind::Refused);
    return fault.what();
  }
  return "";
}

std::string faultOf(const http::ClientResponse& response, const std::string& user = "") {
  const client::HostAddress address{true, user, "lab", 5989};
  return faultOf([&] { client::demandAnswered(address, response); });
}

TEST(HostErrors, TakeAnAnswerWithXml) {
  EXPECT_EQ(faultOf(answer(200)), "");
  EXPECT_EQ(faultOf(answer(200, "text/xml; charset=utf-8")), "");
  EXPECT_EQ(faultOf(answer(200, "Application/XML")), "");
}

TEST(HostErrors, SayWhoseLoginWasRefused) {
  EXPECT_EQ(faultOf(answer(401), "admin"),
            "https://lab:5989 refused the login of admin; check the name and the password");
  EXPECT_EQ(faultOf(answer(401)),
            "https://lab:5989 wants a login; name the user: --host https://USER@...");
  EXPECT_EQ(faultOf(answer(403), "admin"), "https://lab:5989 does not allow this to admin");
  EXPECT_EQ(faultOf(answer(403)), "https://lab:5989 does not allow this without a login");
}

TEST(HostErrors, SayTheReasonThatTheHostGives) {
  http::ClientResponse refused{403, {{"content-type", "Text/Plain"}}, "Not \x1bhere.\nRead on."};
  EXPECT_EQ(faultOf(refused), "https://lab:5989 does not allow this: Not \\x1bhere.");
  EXPECT_EQ(faultOf(refused, "admin"),
            "https://lab:5989 does not allow this to admin: Not \\x1bhere.");
  refused.status = 400;
  EXPECT_EQ(
      faultOf(refused),
      "https://lab:5989 refused the request with the HTTP status 400, and says: Not \\x1bhere.");
  refused.body = std::string(1000, 'x');
  EXPECT_THAT(faultOf(refused), testing::EndsWith(" says: " + std::string(300, 'x') + "..."));
  refused.fields["content-type"] = "text/html";
  EXPECT_THAT(faultOf(refused), testing::EndsWith("; its log may tell more"));
}

TEST(HostErrors, SayItWithoutTheEndOfItsLine) {
  const http::ClientResponse refused{
      403, {{"content-type", "text/plain"}}, "Not here.\r\nRead on.\r\n"};
  EXPECT_EQ(faultOf(refused), "https://lab:5989 does not allow this: Not here.");
}

TEST(HostErrors, CutALongReasonBehindAWholeCharacter) {
  const std::string kept(299, 'x');
  const http::ClientResponse refused{
      403, {{"content-type", "text/plain"}}, kept + "\xc3\xa9" + "yyy"};
  EXPECT_THAT(faultOf(refused), testing::EndsWith(": " + kept + "..."));
}

TEST(HostErrors, SayWhatAnswersThere) {
  EXPECT_THAT(faultOf(answer(404)), HasSubstr("serves no CIM-XML"));
  EXPECT_THAT(faultOf(answer(503)), HasSubstr("too busy"));
  EXPECT_THAT(faultOf(answer(200, "text/html")), HasSubstr("of the type text/html"));
  EXPECT_THAT(faultOf({200, {}, ""}), HasSubstr("no content type"));
  http::ClientResponse refused = answer(400);
  refused.fields["cimerror"] = "request-not-\x1bvalid";
  EXPECT_EQ(
      faultOf(refused),
      "https://lab:5989 refused the request with the HTTP status 400, request-not-\\x1bvalid; "
      "its log may tell more");
}

TEST(HostErrors, NameTheStatusOfAnOperation) {
  const auto textOf = [](unsigned code, const std::string& description) {
    return faultOf([&] { client::refuseError({code, description}, "root/x"); });
  };
  EXPECT_EQ(textOf(6, "no such thing"), "CIM_ERR_NOT_FOUND: no such thing");
  EXPECT_EQ(textOf(2, ""), "CIM_ERR_ACCESS_DENIED");
  EXPECT_EQ(textOf(99, "odd\n"), "CIM status 99: odd\\n");
  EXPECT_THAT(textOf(3, "none"), AllOf(HasSubstr("CIM_ERR_INVALID_NAMESPACE: none"),
                                       HasSubstr("--namespace names another than root/x")));
}

TEST(HostErrors, AreThoseOfAQueryAsInThisProcess) {
  const auto refusalOf = [](unsigned code, const std::string& description) {
    cimxml::Response response;
    response.error = cimxml::ErrorValue{code, description};
    try {
      client::demandQueryTaken(response);
    } catch (const client::Fault& fault) {
      return std::string(fault.what()) +
             (fault.kind() == client::Fault::Kind::Usage ? " (usage)" : "");
    }
    return std::string();
  };
  EXPECT_EQ(refusalOf(15, "col\x1bumn 7"), "the query is refused: col\\x1bumn 7 (usage)");
  EXPECT_EQ(refusalOf(14, "no SQL"), "the query is refused: no SQL (usage)");
  EXPECT_EQ(refusalOf(29, ""), "the query is refused: CIM_ERR_QUERY_FEATURE_NOT_SUPPORTED (usage)");
  EXPECT_EQ(refusalOf(5, "no class"), "the query is refused: no class");
  EXPECT_EQ(refusalOf(2, "denied"), "");
  EXPECT_NO_THROW(client::demandQueryTaken(cimxml::Response()));
}

TEST(HostErrors, KnowTheErrorOfAnAnswer) {
  cimxml::Response response;
  EXPECT_FALSE(client::isError(response, cimxml::StatusCode::NotFound));
  response.error = cimxml::ErrorValue{6, ""};
  EXPECT_TRUE(client::isError(response, cimxml::StatusCode::NotFound));
  EXPECT_FALSE(client::isError(response, cimxml::StatusCode::InvalidClass));
}

TEST(HostHeaderField, HasNothingThatItMayNotHold) {
  EXPECT_EQ(client::encodeForField("root/DCIM:A.B=\"c\r\n\""), "root/DCIM%3AA.B%3D%22c%0D%0A%22");
  EXPECT_EQ(client::encodeForField("\xc3\xa9"), "%C3%A9");
}

TEST(HostHeaderField, CarriesALogin) {
  EXPECT_EQ(client::toBasicLogin("Aladdin", "open sesame"), "Basic QWxhZGRpbjpvcGVuIHNlc2FtZQ==");
  EXPECT_EQ(client::toBasicLogin("a", "b"), "Basic YTpi");
  EXPECT_EQ(client::toBasicLogin("a", "bc"), "Basic YTpiYw==");
  EXPECT_EQ(client::toBasicLogin("test", "123\xc2\xa3"), "Basic dGVzdDoxMjPCow==");
}

}  // namespace
