// Any bytes are an answer or a fault; what is an answer does not depend on the pieces in which it
// comes, and none holds more than it may.

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "http/ResponseReader.h"
#include "http/Status.h"
#include "tests/fuzz/Fuzz.h"

namespace {

using http::ClientResponse;
using http::ResponseReader;

constexpr std::uint64_t kBodyLimit = 1024;
constexpr std::size_t kMostPieces = 1000;

// Hands the bytes over as a connection does: what the reader left comes again, with more behind it.
// Returns how many it has taken.
std::size_t readInPieces(std::string_view bytes, std::size_t piece, ResponseReader& reader) {
  std::size_t taken = 0;
  for (std::size_t end = 0; end < bytes.size() && !reader.isComplete() && !reader.fault();) {
    end = std::min(end + piece, bytes.size());
    taken += reader.take(bytes.substr(taken, end - taken));
    test::require(taken <= end, "no more is taken than there is");
  }
  if (!reader.isComplete() && !reader.fault()) {
    reader.takeEnd();
    test::require(reader.isComplete() || reader.fault(), "behind the end nothing is waited for");
  }
  return taken;
}

void check(std::string_view bytes, bool isHead) {
  ResponseReader whole(isHead, kBodyLimit);
  ResponseReader inPieces(isHead, kBodyLimit);
  const std::size_t once = readInPieces(bytes, std::max<std::size_t>(bytes.size(), 1), whole);
  const std::size_t often = readInPieces(bytes, bytes.size() / kMostPieces + 1, inPieces);
  test::require(whole.isComplete() == inPieces.isComplete(), "an answer is one in pieces, too");
  if (!whole.isComplete()) {
    return;
  }
  const ClientResponse answer = whole.response();
  const ClientResponse same = inPieces.response();
  test::require(once == often, "an answer ends where it ends in pieces");
  test::require(
      answer.status == same.status && answer.fields == same.fields && answer.body == same.body,
      "an answer says the same in pieces");
  test::require(!http::isInterim(answer.status), "an answer is no announcement of one");
  test::require(answer.body.size() <= kBodyLimit, "a body keeps to its limit");
  test::require(!isHead || answer.body.empty(), "the answer to a HEAD has no body");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  check(bytes, false);
  check(bytes, true);
  return 0;
}
