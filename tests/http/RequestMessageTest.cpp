#include <gmock/gmock.h>
#include <string>

#include "http/RequestMessage.h"

namespace {

using http::RequestMessage;

std::string targetOf(const std::string& requested) {
  RequestMessage message;
  message.setRequestLine("GET", requested);
  return std::string(message.target());
}

TEST(RequestMessage, FindsTheFirstFieldOfANameWithoutRegardToCase) {
  RequestMessage message;
  message.addField("Twice", "1");
  message.addField("TWICE", "2");
  message.addField("Empty", "");

  EXPECT_EQ(message.field("twice"), "1");
  EXPECT_TRUE(message.hasField("empty"));
  EXPECT_EQ(message.field("Empty"), "");
  EXPECT_FALSE(message.hasField("Twic"));
  EXPECT_EQ(message.field("Twic"), "");
}

TEST(RequestMessage, CountsTheFieldsOfANameWithoutRegardToCase) {
  RequestMessage message;
  message.addField("Twice", "1");
  message.addField("Once", "");
  message.addField("TWICE", "2");

  EXPECT_EQ(message.countFields("twice"), 2U);
  EXPECT_EQ(message.countFields("once"), 1U);
  EXPECT_EQ(message.countFields("Twic"), 0U);
}

TEST(RequestMessage, TakesTheServerOutOfTheTarget) {
  EXPECT_EQ(targetOf("http://a:5988/cimom"), "/cimom");
  EXPECT_EQ(targetOf("HTTPS://a"), "/");
  EXPECT_EQ(targetOf("/cimom"), "/cimom");
  EXPECT_EQ(targetOf("*"), "*");
  EXPECT_EQ(targetOf("http://a?b=/c"), "/?b=/c");
  EXPECT_EQ(targetOf("http:///cimom"), "/cimom");
}

TEST(RequestMessage, TellsTheServerOfTheTarget) {
  const auto authorityOf = [](const std::string& requested) {
    RequestMessage message;
    message.setRequestLine("GET", "http://before/");
    message.setRequestLine("GET", requested);
    return std::string(message.authority().value_or("none"));
  };
  EXPECT_EQ(authorityOf("http://a:5988/cimom"), "a:5988");
  EXPECT_EQ(authorityOf("HTTPS://[::1]"), "[::1]");
  EXPECT_EQ(authorityOf("http://a?b=/c"), "a");
  EXPECT_EQ(authorityOf("http:///cimom"), "");
  EXPECT_EQ(authorityOf("/cimom"), "none");
  EXPECT_EQ(authorityOf("/http://a/"), "none");
  EXPECT_EQ(authorityOf("*"), "none");
}

TEST(RequestMessage, IsEmptyWhenItHasBeenCleared) {
  RequestMessage message;
  message.setRequestLine("POST", "http://a/cimom");
  message.addField("A", "b");
  message.body() = "body";
  message.clear();

  EXPECT_EQ(message.method(), "");
  EXPECT_EQ(message.target(), "");
  EXPECT_FALSE(message.authority());
  EXPECT_FALSE(message.hasField("A"));
  EXPECT_EQ(message.body(), "");
}

}  // namespace
