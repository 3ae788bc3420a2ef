#include <gmock/gmock.h>
#include <random>
#include <string>

#include "http/RequestParser.h"

namespace {

using http::RequestLimits;
using http::RequestMessage;
using http::RequestParser;
using testing::HasSubstr;

constexpr RequestLimits kLimits{1000, 100};

// Parses what it is given in pieces, and keeps what the parser left.
class Parse {
 public:
  explicit Parse(RequestLimits limits = kLimits) : m_parser(m_message, limits) {}
  explicit Parse(const std::string& text) : Parse() { add(text); }

  void add(const std::string& text) {
    m_left += text;
    m_left.erase(0, m_parser.take(m_left));
  }
  void addByteByByte(const std::string& text) {
    for (const char byte : text) {
      add(std::string(1, byte));
    }
  }

  [[nodiscard]] RequestParser& parser() { return m_parser; }
  [[nodiscard]] RequestMessage& message() { return m_message; }
  [[nodiscard]] const std::string& left() const { return m_left; }
  [[nodiscard]] bool isComplete() const { return m_parser.isComplete(); }
  [[nodiscard]] unsigned status() const {
    return m_parser.refusal() ? m_parser.refusal()->status : 0;
  }
  [[nodiscard]] std::string text() const {
    return m_parser.refusal() ? m_parser.refusal()->text : std::string();
  }

 private:
  RequestMessage m_message;
  RequestParser m_parser;
  std::string m_left;
};

std::string withFields(const std::string& fields) {
  return "POST /cimom HTTP/1.1\r\nHost: a\r\n" + fields + "\r\n";
}

TEST(RequestParser, ReadsARequestInOnePiece) {
  Parse parse("M-POST /cimom HTTP/1.1\r\nHost: a\r\nContent-Length: 4\r\n\r\nbody");

  ASSERT_TRUE(parse.isComplete());
  EXPECT_EQ(parse.message().method(), "M-POST");
  EXPECT_EQ(parse.message().target(), "/cimom");
  EXPECT_EQ(parse.message().body(), "body");
  EXPECT_EQ(parse.left(), "");
}

TEST(RequestParser, ReadsARequestByteByByte) {
  Parse parse;
  parse.addByteByByte("POST /x HTTP/1.1\r\nHost: a\r\nContent-Length: 4\r\n\r\nbod");
  EXPECT_FALSE(parse.isComplete());
  parse.add("y");

  ASSERT_TRUE(parse.isComplete());
  EXPECT_EQ(parse.message().body(), "body");
}

TEST(RequestParser, LeavesTheNextRequest) {
  Parse parse("GET /1 HTTP/1.1\r\nHost: a\r\n\r\nGET /2 HTTP/1.1\r\n");

  ASSERT_TRUE(parse.isComplete());
  EXPECT_EQ(parse.message().target(), "/1");
  EXPECT_EQ(parse.left(), "GET /2 HTTP/1.1\r\n");
}

TEST(RequestParser, LeavesWhatStandsBehindTheHeadWhereOnlyThatIsTaken) {
  RequestMessage message;
  RequestParser parser(message, kLimits);
  const std::string head = withFields("Content-Length: 4\r\n");
  EXPECT_EQ(parser.takeHead(head.substr(0, head.size() - 1)), head.size() - 2);
  EXPECT_FALSE(parser.isHeadComplete());
  EXPECT_EQ(parser.takeHead("\r\nbody"), 2U);
  EXPECT_TRUE(parser.isHeadComplete());
  EXPECT_EQ(parser.takeHead("body"), 0U);
  EXPECT_EQ(message.body(), "");
  EXPECT_EQ(parser.take("body"), 4U);

  EXPECT_TRUE(parser.isComplete());
  EXPECT_EQ(message.body(), "body");
}

TEST(RequestParser, HasNoHeadWhereItIsRefused) {
  RequestMessage message;
  RequestParser parser(message, kLimits);
  static_cast<void>(parser.takeHead(withFields("Transfer-Encoding: gzip\r\n")));

  EXPECT_FALSE(parser.isHeadComplete());
}

TEST(RequestParser, FindsFieldsWithoutRegardToCase) {
  Parse parse(withFields("CIMOperation: MethodCall\r\nEmpty:\r\nTwice: 1\r\nTwice: 2\r\n"));

  EXPECT_EQ(parse.message().field("cimoperation"), "MethodCall");
  EXPECT_EQ(parse.message().field("Empty"), "");
  EXPECT_TRUE(parse.message().hasField("empty"));
  EXPECT_EQ(parse.message().field("Twice"), "1");
  EXPECT_FALSE(parse.message().hasField("CIMOperatio"));
}

TEST(RequestParser, TakesTheServerOutOfTheTarget) {
  EXPECT_EQ(Parse("GET http://a:5988/cimom HTTP/1.1\r\nHost: a\r\n\r\n").message().target(),
            "/cimom");
  EXPECT_EQ(Parse("GET HTTPS://a HTTP/1.1\r\nHost: a\r\n\r\n").message().target(), "/");
  EXPECT_EQ(Parse("OPTIONS * HTTP/1.1\r\nHost: a\r\n\r\n").message().target(), "*");
}

TEST(RequestParser, JoinsTheChunksOfABody) {
  Parse parse(withFields("Transfer-Encoding: Chunked\r\n") +
              "3\r\nabc\r\nA;name=value\r\n0123456789\r\n0\r\n\r\nnext");

  ASSERT_TRUE(parse.isComplete());
  EXPECT_EQ(parse.message().body(), "abc0123456789");
  EXPECT_EQ(parse.left(), "next");
}

TEST(RequestParser, JoinsChunksThatComeByteByByte) {
  Parse parse;
  parse.addByteByByte(withFields("Transfer-Encoding: chunked\r\n") +
                      "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n");

  ASSERT_TRUE(parse.isComplete());
  EXPECT_EQ(parse.message().body(), "abcde");
}

TEST(RequestParser, ReadsAnEmptyChunkedBodyByteByByte) {
  Parse parse;
  parse.addByteByByte(withFields("Transfer-Encoding: chunked\r\n") + "0\r\n\r\n");

  ASSERT_TRUE(parse.isComplete());
  EXPECT_EQ(parse.message().body(), "");
}

TEST(RequestParser, LeavesFieldsBehindTheBodyOut) {
  Parse parse(withFields("Transfer-Encoding: chunked\r\n") +
              "1\r\na\r\n0\r\nAuthorization: Basic eDp5\r\nHost: b\r\n\r\n");

  ASSERT_TRUE(parse.isComplete());
  EXPECT_FALSE(parse.message().hasField("Authorization"));
  EXPECT_EQ(parse.message().field("Host"), "a");
}

TEST(RequestParser, ForgetsTheRequestBefore) {
  RequestMessage message;
  const std::string first = withFields("A: b\r\nContent-Length: 1\r\n") + "x";
  const std::string second = "GET / HTTP/1.1\r\nHost: c\r\n\r\n";
  EXPECT_EQ(RequestParser(message, kLimits).take(first), first.size());
  EXPECT_EQ(RequestParser(message, kLimits).take(second), second.size());

  EXPECT_EQ(message.method(), "GET");
  EXPECT_EQ(message.field("Host"), "c");
  EXPECT_FALSE(message.hasField("A"));
  EXPECT_EQ(message.body(), "");
}

// A header of so many bytes.
std::string headerOf(std::size_t size) {
  const std::string frame = "GET / HTTP/1.1\r\nHost: a\r\nA: \r\n\r\n";
  return "GET / HTTP/1.1\r\nHost: a\r\nA: " + std::string(size - frame.size(), 'x') + "\r\n\r\n";
}

TEST(RequestParser, TakesAHeaderOfExactlyTheLimit) {
  EXPECT_TRUE(Parse(headerOf(1000)).isComplete());
}

TEST(RequestParser, RefusesAHeaderOneByteLarger) {
  Parse parse(headerOf(1001));

  EXPECT_EQ(parse.status(), 431U);
  EXPECT_THAT(parse.text(), HasSubstr("1000 bytes"));
}

TEST(RequestParser, CountsAHeaderThatComesByteByByte) {
  Parse fits;
  fits.addByteByByte(headerOf(1000));
  EXPECT_TRUE(fits.isComplete());

  Parse larger;
  larger.addByteByByte(headerOf(1001));
  EXPECT_EQ(larger.status(), 431U);
}

TEST(RequestParser, CountsAHeaderWithABodyBehindIt) {
  const std::string fields = "Content-Length: 10\r\nA: ";
  const auto header = [&](std::size_t size) {
    return withFields(fields + std::string(size - withFields(fields + "\r\n").size(), 'x') +
                      "\r\n");
  };
  ASSERT_EQ(header(1000).size(), 1000U);

  EXPECT_TRUE(Parse(header(1000) + "0123456789").isComplete());
  EXPECT_EQ(Parse(header(1001) + "0123456789").status(), 431U);
}

TEST(RequestParser, RefusesAHeaderWithoutEndAtTheLimit) {
  Parse parse("GET /" + std::string(994, 'x'));
  EXPECT_EQ(parse.status(), 0U);
  parse.add("x");

  EXPECT_EQ(parse.status(), 431U);
}

TEST(RequestParser, TakesABodyOfExactlyTheLimit) {
  Parse parse(withFields("Content-Length: 100\r\n") + std::string(100, 'x'));

  EXPECT_TRUE(parse.isComplete());
}

TEST(RequestParser, RefusesALargerBodyBeforeItComes) {
  Parse parse(withFields("Content-Length: 101\r\n"));

  EXPECT_EQ(parse.status(), 413U);
  EXPECT_THAT(parse.text(), HasSubstr("100 bytes"));
}

TEST(RequestParser, TakesChunksOfExactlyTheLimit) {
  Parse parse(withFields("Transfer-Encoding: chunked\r\n") + "32\r\n" + std::string(50, 'x') +
              "\r\n32\r\n" + std::string(50, 'x') + "\r\n0\r\n\r\n");

  EXPECT_TRUE(parse.isComplete());
}

TEST(RequestParser, RefusesTheChunkThatExceedsTheLimit) {
  Parse parse(withFields("Transfer-Encoding: chunked\r\n") + "32\r\n" + std::string(50, 'x') +
              "\r\n33\r\n");

  EXPECT_EQ(parse.status(), 413U);
}

TEST(RequestParser, BoundsWhatStandsBetweenChunks) {
  Parse extension(withFields("Transfer-Encoding: chunked\r\n") + "1;a=" + std::string(2000, 'x'));
  Parse trailer(withFields("Transfer-Encoding: chunked\r\n") + "0\r\nA: " + std::string(2000, 'x'));

  EXPECT_EQ(extension.status(), 431U);
  EXPECT_EQ(trailer.status(), 431U);
}

struct RefusedCase {
  const char* name;
  std::string request;
  unsigned status;
  const char* text;
};

void PrintTo(const RefusedCase& refused, std::ostream* stream) {
  *stream << refused.name;
}

class RefusedRequest : public testing::TestWithParam<RefusedCase> {};

TEST_P(RefusedRequest, IsRefusedInOnePieceAndInMany) {
  Parse whole(GetParam().request);
  Parse pieces;
  pieces.addByteByByte(GetParam().request);

  EXPECT_EQ(whole.status(), GetParam().status);
  EXPECT_THAT(whole.text(), HasSubstr(GetParam().text));
  EXPECT_FALSE(whole.isComplete());
  EXPECT_EQ(pieces.status(), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    , RefusedRequest,
    testing::Values(
        RefusedCase{"Garbage", "\x16\x03\x01\x02\r\n\r\n", 400, "method"},
        RefusedCase{"NoTarget", "GET HTTP/1.1\r\n\r\n", 400, "target"},
        RefusedCase{"LaterVersion", "GET / HTTP/2.0\r\nHost: a\r\n\r\n", 505, "HTTP/1.1"},
        RefusedCase{"LaterVersionsPreface", "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", 505, "HTTP/1.1"},
        RefusedCase{"EarlierVersion", "GET / HTTP/0.9\r\n\r\n", 505, "HTTP/1.1"},
        RefusedCase{"NoHost", "GET / HTTP/1.1\r\n\r\n", 400, "Host"},
        RefusedCase{"TwoHosts", "GET / HTTP/1.1\r\nHost: a\r\nHost: b\r\n\r\n", 400, "Host"},
        RefusedCase{"TwoHostsInHttp10", "GET / HTTP/1.0\r\nHost: a\r\nHost: b\r\n\r\n", 400,
                    "Host"},
        RefusedCase{"TwoLogins",
                    withFields("Authorization: Basic eDp5\r\nauthorization: Basic eA==\r\n"), 400,
                    "Authorization"},
        RefusedCase{"TwoContentTypes",
                    withFields("Content-Type: text/xml\r\nContent-Type: text/plain\r\n"), 400,
                    "Content-Type"},
        RefusedCase{"FoldedField", withFields("A: b\r\n c\r\n"), 400, "folded"},
        RefusedCase{"FieldFoldedAtItsBeginning", withFields("A:\r\n\tb\r\n"), 400, "folded"},
        RefusedCase{"LineFeedAlone", "GET / HTTP/1.1\nHost: a\n\n\r\n\r\n", 505, ""},
        RefusedCase{"FieldWithLineFeedAlone", withFields("A: b\nHost: c\r\n"), 400, "header field"},
        RefusedCase{"FieldWithoutColon", withFields("no field\r\n"), 400, "header field"},
        RefusedCase{"SpaceBeforeColon", withFields("A : b\r\n"), 400, "header field"},
        RefusedCase{"ControlInValue", withFields("A: b\x01\r\n"), 400, "header field"},
        RefusedCase{"BadLength", withFields("Content-Length: ten\r\n"), 400, "Content-Length"},
        RefusedCase{"NegativeLength", withFields("Content-Length: -1\r\n"), 400, "Content-Length"},
        RefusedCase{"HugeLength", withFields("Content-Length: 99999999999999999999\r\n"), 400,
                    "Content-Length"},
        RefusedCase{"TwoLengths", withFields("Content-Length: 1\r\nContent-Length: 2\r\n"), 400,
                    "Content-Length"},
        RefusedCase{"SameLengthTwice", withFields("Content-Length: 1\r\nContent-Length: 1\r\n"),
                    400, "Content-Length"},
        RefusedCase{"ListOfLengths", withFields("Content-Length: 1, 1\r\n"), 400, "Content-Length"},
        RefusedCase{"SignedLength", withFields("Content-Length: +1\r\n"), 400, "Content-Length"},
        RefusedCase{"HexadecimalLength", withFields("Content-Length: 0x1\r\n"), 400,
                    "Content-Length"},
        RefusedCase{"EmptyLength", withFields("Content-Length:\r\n"), 400, "Content-Length"},
        RefusedCase{"FoldedLength", withFields("Content-Length:\r\n 1\r\n"), 400, "folded"},
        RefusedCase{"LengthAndChunks",
                    withFields("Content-Length: 1\r\nTransfer-Encoding: chunked\r\n"), 400,
                    "Transfer-Encoding"},
        RefusedCase{"ChunksAndLength",
                    withFields("Transfer-Encoding: chunked\r\nContent-Length: 1\r\n"), 400,
                    "Content-Length"},
        RefusedCase{"OtherEncoding", withFields("Transfer-Encoding: gzip\r\n"), 501, "chunked"},
        RefusedCase{"TwoEncodings", withFields("Transfer-Encoding: gzip, chunked\r\n"), 501,
                    "chunked"},
        RefusedCase{"SameEncodingTwice",
                    withFields("Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n"), 400,
                    "Transfer-Encoding"},
        RefusedCase{"TwoEncodingFields",
                    withFields("Transfer-Encoding: gzip\r\nTransfer-Encoding: chunked\r\n"), 400,
                    "Transfer-Encoding"},
        RefusedCase{"ListOfChunked", withFields("Transfer-Encoding: chunked, chunked\r\n"), 501,
                    "chunked"},
        RefusedCase{"NoEncoding", withFields("Transfer-Encoding:\r\n"), 501, "chunked"},
        RefusedCase{"FoldedEncoding", withFields("Transfer-Encoding:\r\n chunked\r\n"), 400,
                    "folded"},
        RefusedCase{"EncodingFoldedInItsMiddle", withFields("Transfer-Encoding: chun\r\n\tked\r\n"),
                    400, "folded"},
        RefusedCase{"EncodingFoldedAtItsEnd",
                    withFields("Transfer-Encoding: chunked\r\n \r\nA: b\r\n"), 400, "folded"},
        RefusedCase{"ChunksInHttp10",
                    "POST / HTTP/1.0\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 400,
                    "HTTP/1.0"},
        RefusedCase{"OtherEncodingInHttp10", "POST / HTTP/1.0\r\nTransfer-Encoding: gzip\r\n\r\n",
                    400, "HTTP/1.0"},
        RefusedCase{"OtherExpectation", withFields("Expect: miracles\r\n"), 417, "100-continue"},
        RefusedCase{"BadChunk", withFields("Transfer-Encoding: chunked\r\n") + "x\r\nabc\r\n", 400,
                    "chunk"},
        RefusedCase{
            "ChunkOfTooManyDigits",
            withFields("Transfer-Encoding: chunked\r\n") + "10000000000000001\r\nabcdefgh\r\n", 400,
            "chunk"},
        RefusedCase{"ChunkWithASign",
                    withFields("Transfer-Encoding: chunked\r\n") + "+1\r\nabcdefgh\r\n", 400,
                    "chunk"},
        RefusedCase{"ChunkLongerThanSaid",
                    withFields("Transfer-Encoding: chunked\r\n") + "1\r\nabcdefgh\r\n", 400,
                    "chunk"}),
    [](const auto& tested) { return tested.param.name; });

TEST(RequestParser, KnowsWhenTheConnectionStays) {
  EXPECT_TRUE(Parse("GET / HTTP/1.1\r\nHost: a\r\n\r\n").parser().isKeptAlive());
  EXPECT_FALSE(
      Parse("GET / HTTP/1.1\r\nHost: a\r\nConnection: Close\r\n\r\n").parser().isKeptAlive());
  EXPECT_FALSE(Parse("GET / HTTP/1.0\r\n\r\n").parser().isKeptAlive());
  EXPECT_TRUE(Parse("GET / HTTP/1.0\r\nConnection: keep-alive\r\n\r\n").parser().isKeptAlive());
}

TEST(RequestParser, KnowsWhoWaitsToBeAskedForTheBody) {
  const std::string expecting = withFields("Expect: 100-Continue\r\nContent-Length: 1\r\n");
  Parse waits(expecting);
  EXPECT_TRUE(waits.parser().expectsContinue());
  waits.add("x");
  EXPECT_FALSE(waits.parser().expectsContinue());

  EXPECT_FALSE(Parse(withFields("Content-Length: 1\r\n")).parser().expectsContinue());
  EXPECT_FALSE(Parse("POST / HTTP/1.0\r\nExpect: 100-continue\r\nContent-Length: 1\r\n\r\n")
                   .parser()
                   .expectsContinue());
}

// Whatever comes, the parser ends, asks for more or refuses, and never keeps more than its limits.
TEST(RequestParser, WithstandsDamagedRequests) {
  const std::string whole = withFields("Transfer-Encoding: chunked\r\nExpect: 100-continue\r\n") +
                            "3\r\nabc\r\n2;x=\"y\"\r\nde\r\n0\r\nT: u\r\n\r\n";
  std::mt19937 random(20210);  // NOLINT(cert-msc51-cpp): the same every time
  const auto upTo = [&](std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
  };
  const std::string bytes("\r\n:;,\" \t0aF\0\x7f\xff", 14);
  for (int round = 0; round < 20000; ++round) {
    std::string damaged = whole;
    for (std::size_t count = upTo(4) + 1; count > 0; --count) {
      const std::size_t place = upTo(damaged.size());
      switch (upTo(3)) {
        case 0:
          damaged[place] = bytes[upTo(bytes.size())];
          break;
        case 1:
          damaged.erase(place, upTo(8) + 1);
          break;
        default:
          damaged.insert(place, damaged.substr(upTo(damaged.size()), upTo(16)));
          break;
      }
      if (damaged.empty()) {
        damaged = "x";
      }
    }
    Parse inPieces;
    for (std::size_t place = 0; place < damaged.size();) {
      const std::size_t size = upTo(12) + 1;
      inPieces.add(damaged.substr(place, size));
      place += size;
      if (inPieces.isComplete() || inPieces.status() != 0) {
        break;
      }
    }
    const bool isEnded = inPieces.isComplete() || inPieces.status() != 0;
    ASSERT_TRUE(isEnded || inPieces.left().size() <= kLimits.headerBytes + 16) << damaged;
    ASSERT_LE(inPieces.message().body().size(), kLimits.bodyBytes) << damaged;
  }
}

}  // namespace
