#include <gmock/gmock.h>

#include "http/Answer.h"

namespace {

using http::clear;
using http::Ending;
using http::kStatusNoContent;
using http::kStatusNotFound;
using http::kStatusOk;
using http::kStatusServiceUnavailable;
using http::kStatusUnauthorized;
using http::Refusal;
using http::Response;
using http::setRefusal;
using http::writeHead;

TEST(WriteHead, SaysStatusTypeAndLength) {
  Response response;
  response.contentType = "text/plain";
  response.body = "twelve bytes";
  std::string head = "what was there before";

  writeHead(response, Ending::KeepAlive, head);

  EXPECT_EQ(head, "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 12\r\n\r\n");
}

TEST(WriteHead, SaysThatAnEmptyBodyIsEmpty) {
  std::string head;

  writeHead(Response(), Ending::KeepAlive, head);

  EXPECT_EQ(head, "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
}

TEST(WriteHead, PutsTheHandlersFieldsBehindItsOwn) {
  Response response;
  response.status = kStatusUnauthorized;
  response.fields = "WWW-Authenticate: Basic realm=\"x\"\r\nCIMError: no\r\n";
  std::string head;

  writeHead(response, Ending::Close, head);

  EXPECT_EQ(head,
            "HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n"
            "WWW-Authenticate: Basic realm=\"x\"\r\nCIMError: no\r\nConnection: close\r\n\r\n");
}

TEST(WriteHead, SaysKeepAliveWhereTheClientDoesNotExpectIt) {
  std::string head;

  writeHead(Response(), Ending::SpokenKeepAlive, head);

  EXPECT_THAT(head, testing::HasSubstr("\r\nConnection: keep-alive\r\n"));
}

TEST(WriteHead, GivesNoLengthWhereAStatusHasNoBody) {
  Response response;
  response.status = kStatusNoContent;
  std::string head;

  writeHead(response, Ending::KeepAlive, head);

  EXPECT_EQ(head, "HTTP/1.1 204 No Content\r\n\r\n");
}

TEST(ClearResponse, LeavesWhatAHandlerStartsWith) {
  Response response;
  response.status = kStatusNotFound;
  response.fields = "A: b\r\n";
  response.contentType = "text/plain";
  response.body = std::string(1000, 'x');
  response.delay = std::chrono::milliseconds(5);
  response.isLast = true;
  const std::size_t capacity = response.body.capacity();

  clear(response);

  EXPECT_EQ(response.status, kStatusOk);
  EXPECT_EQ(response.fields + response.contentType + response.body, "");
  EXPECT_EQ(response.delay.count(), 0);
  EXPECT_FALSE(response.isLast);
  EXPECT_EQ(response.body.capacity(), capacity);
}

TEST(SetRefusal, IsShortPlainTextAndTheEnd) {
  Response response;
  response.fields = "A: b\r\n";

  setRefusal(Refusal{kStatusServiceUnavailable, "Too many."}, response);

  EXPECT_EQ(response.status, kStatusServiceUnavailable);
  EXPECT_EQ(response.body, "Too many.\n");
  EXPECT_EQ(response.contentType, "text/plain; charset=utf-8");
  EXPECT_TRUE(response.isLast);
}

}  // namespace
