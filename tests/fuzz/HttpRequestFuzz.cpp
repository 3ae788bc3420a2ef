// Any bytes are requests or are refused as such; what is a request does not depend on the pieces in
// which it comes, and none holds more than it may.

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "http/RequestParser.h"
#include "tests/fuzz/Fuzz.h"

namespace {

using http::RequestMessage;
using http::RequestParser;

constexpr http::RequestLimits kLimits{4096, 1024};
constexpr std::size_t kMostPieces = 1000;

struct Outcome {
  bool isComplete = false;
  std::size_t taken = 0;
};

// Hands the bytes over as a connection does: what the parser left comes again, with more behind it.
Outcome readInPieces(std::string_view bytes, std::size_t piece, RequestMessage& message) {
  RequestParser parser(message, kLimits);
  Outcome outcome;
  for (std::size_t end = 0; end < bytes.size() && !parser.isComplete() && !parser.refusal();) {
    end = std::min(end + piece, bytes.size());
    if (!parser.isHeadComplete()) {
      outcome.taken += parser.takeHead(bytes.substr(outcome.taken, end - outcome.taken));
      test::require(parser.isHeadComplete() || message.body().empty(), "a head brings no body");
    }
    if (parser.isHeadComplete()) {
      outcome.taken += parser.take(bytes.substr(outcome.taken, end - outcome.taken));
    }
    test::require(outcome.taken <= end, "no more is taken than there is");
    test::require(message.body().size() <= kLimits.bodyBytes, "a body keeps to its limit");
    test::require(parser.isComplete() || parser.refusal() ||
                      end - outcome.taken <= kLimits.headerBytes + piece,
                  "no more is left than a header may have");
  }
  if (parser.refusal()) {
    test::require(parser.refusal()->status >= 400 && parser.refusal()->status < 600,
                  "a refusal is one");
    test::require(!parser.refusal()->text.empty(), "a refusal says why");
  }
  outcome.isComplete = parser.isComplete();
  return outcome;
}

void checkRequest(const RequestMessage& message) {
  test::require(!message.method().empty() && !message.target().empty(),
                "a request has a method and a target");
  for (const char* const name : {"Host", "Content-Length", "Transfer-Encoding", "Authorization"}) {
    test::require(message.countFields(name) <= 1, "a request says once what it may say once");
  }
  test::require(!message.hasField("Content-Length") || !message.hasField("Transfer-Encoding"),
                "a body has one length");
  test::require(message.hasField("Content-Length") || message.hasField("Transfer-Encoding") ||
                    message.body().empty(),
                "a body has a length");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  RequestMessage whole;
  RequestMessage inPieces;
  const Outcome once = readInPieces(bytes, std::max<std::size_t>(size, 1), whole);
  const Outcome often = readInPieces(bytes, size / kMostPieces + 1, inPieces);
  test::require(once.isComplete == often.isComplete, "a request is one in pieces, too");
  if (once.isComplete) {
    checkRequest(whole);
    test::require(once.taken == often.taken, "a request ends where it ends in pieces");
    test::require(whole.target() == inPieces.target() &&
                      whole.authority() == inPieces.authority() && whole.body() == inPieces.body(),
                  "a request says the same in pieces");
  }
  return 0;
}
