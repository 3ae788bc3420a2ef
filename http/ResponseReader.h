// Reads one answer from the bytes of a connection, piece by piece. Private to this folder.

#ifndef ORVEX_HTTP_RESPONSEREADER_H_
#define ORVEX_HTTP_RESPONSEREADER_H_

#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "http/ClientResponse.h"

namespace http {

class ResponseReader {
 public:
  // The answer to a HEAD has no body, whatever its fields say.
  ResponseReader(bool isHead, std::uint64_t bodyLimit);
  ResponseReader(const ResponseReader&) = delete;
  ResponseReader& operator=(const ResponseReader&) = delete;

  // Takes what it can of the bytes from their beginning on and returns how many. What it left has
  // to stand at the beginning of the next call's bytes.
  [[nodiscard]] std::size_t take(std::string_view bytes);
  // Tells that the connection has ended.
  void takeEnd();

  [[nodiscard]] bool isBegun() const { return m_isBegun; }
  [[nodiscard]] bool isComplete() const { return m_parser->is_done() && !m_fault; }
  // Why the answer cannot be read.
  [[nodiscard]] const boost::beast::error_code& fault() const { return m_fault; }
  [[nodiscard]] bool isTooLarge() const;

  // Of a complete answer.
  [[nodiscard]] bool isKeptAlive() const { return m_parser->keep_alive(); }
  [[nodiscard]] ClientResponse response();

 private:
  using Parser = boost::beast::http::response_parser<boost::beast::http::string_body>;
  using string_view = boost::beast::string_view;
  using error_code = boost::beast::error_code;

  void begin();

  const bool m_isHead;
  const std::uint64_t m_bodyLimit;
  std::uint64_t m_chunkLeft = 0;
  bool m_isBegun = false;
  error_code m_fault;
  std::function<void(std::uint64_t, string_view, error_code&)> m_onChunkHeader;
  std::function<std::size_t(std::uint64_t, string_view, error_code&)> m_onChunkBody;
  std::optional<Parser> m_parser;
};

}  // namespace http

#endif  // ORVEX_HTTP_RESPONSEREADER_H_
