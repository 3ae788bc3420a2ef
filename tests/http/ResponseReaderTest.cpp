#include <gmock/gmock.h>
#include <string>

#include "http/ResponseReader.h"

namespace {

using http::ClientResponse;
using http::ResponseReader;
using testing::ElementsAre;
using testing::Pair;

class ResponseReaderTest : public testing::Test {
 protected:
  void add(const std::string& text) {
    m_left += text;
    m_left.erase(0, m_reader.take(m_left));
  }
  void addByteByByte(const std::string& text) {
    for (const char byte : text) {
      add(std::string(1, byte));
    }
  }

  ResponseReader m_reader{false, 100};
  std::string m_left;
};

TEST_F(ResponseReaderTest, ReadsAnAnswerOfGivenLength) {
  EXPECT_FALSE(m_reader.isBegun());
  add("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\nCIMError: x\r\n\r\nbo");
  EXPECT_TRUE(m_reader.isBegun());
  EXPECT_FALSE(m_reader.isComplete());
  add("dy");

  ASSERT_TRUE(m_reader.isComplete());
  EXPECT_TRUE(m_reader.isKeptAlive());
  const ClientResponse response = m_reader.response();
  EXPECT_EQ(response.status, 404U);
  EXPECT_EQ(response.body, "body");
  EXPECT_THAT(response.fields, ElementsAre(Pair("cimerror", "x"), Pair("content-length", "4")));
}

TEST_F(ResponseReaderTest, ReadsAnAnswerByteByByte) {
  addByteByByte("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody");

  ASSERT_TRUE(m_reader.isComplete());
  EXPECT_EQ(m_reader.response().body, "body");
}

TEST_F(ResponseReaderTest, JoinsChunks) {
  addByteByByte(
      "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nbo\r\n2\r\ndy\r\n0\r\n\r\n");

  ASSERT_TRUE(m_reader.isComplete());
  EXPECT_EQ(m_reader.response().body, "body");
}

TEST_F(ResponseReaderTest, ReadsAnEmptyChunkedBody) {
  addByteByByte("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n");

  EXPECT_TRUE(m_reader.isComplete());
}

TEST_F(ResponseReaderTest, ReadsToTheEndOfTheConnection) {
  add("HTTP/1.0 200 OK\r\n\r\nbo");
  add("dy");
  EXPECT_FALSE(m_reader.isComplete());
  m_reader.takeEnd();

  ASSERT_TRUE(m_reader.isComplete());
  EXPECT_FALSE(m_reader.isKeptAlive());
  EXPECT_EQ(m_reader.response().body, "body");
}

TEST_F(ResponseReaderTest, SkipsWhatOnlyAnnouncesTheAnswer) {
  add("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 204 No Content\r\n\r\n");

  ASSERT_TRUE(m_reader.isComplete());
  EXPECT_EQ(m_reader.response().status, 204U);
}

TEST_F(ResponseReaderTest, JoinsFieldsOfOneName) {
  add("HTTP/1.1 401 Unauthorized\r\nA: 1\r\na: 2\r\nContent-Length: 0\r\n\r\n");

  EXPECT_EQ(m_reader.response().fields.at("a"), "1, 2");
}

TEST_F(ResponseReaderTest, TakesABodyOfTheLimitAndNoLarger) {
  add("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n" + std::string(100, 'x'));
  EXPECT_TRUE(m_reader.isComplete());

  ResponseReader reader(false, 100);
  static_cast<void>(reader.take("HTTP/1.1 200 OK\r\nContent-Length: 101\r\n\r\n"));
  EXPECT_TRUE(reader.isTooLarge());
  EXPECT_FALSE(reader.isComplete());
}

TEST_F(ResponseReaderTest, FindsFaultWithACutAnswer) {
  add("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbo");
  m_reader.takeEnd();

  EXPECT_TRUE(m_reader.fault());
  EXPECT_FALSE(m_reader.isComplete());
}

TEST_F(ResponseReaderTest, FindsFaultWithNoAnswer) {
  m_reader.takeEnd();

  EXPECT_TRUE(m_reader.fault());
  EXPECT_FALSE(m_reader.isBegun());
}

TEST_F(ResponseReaderTest, FindsFaultWithWhatIsNotHttp) {
  add("SSH-2.0-server\r\n");

  EXPECT_TRUE(m_reader.fault());
  EXPECT_FALSE(m_reader.isTooLarge());
}

TEST_F(ResponseReaderTest, FindsFaultWithAStatusThatIsNone) {
  add("HTTP/1.1 059 OK\r\nContent-Length: 4\r\n\r\nbody");

  EXPECT_TRUE(m_reader.fault());
  EXPECT_FALSE(m_reader.isComplete());
}

TEST(ResponseReaderOfHead, ExpectsNoBody) {
  ResponseReader reader(true, 100);
  static_cast<void>(reader.take("HTTP/1.1 200 OK\r\nContent-Length: 12\r\n\r\n"));

  ASSERT_TRUE(reader.isComplete());
  EXPECT_EQ(reader.response().body, "");
}

}  // namespace
