// Reads one request from the bytes of a connection, piece by piece, and says no to what is
// malformed or too large. Private to this folder.

#ifndef ORVEX_HTTP_REQUESTPARSER_H_
#define ORVEX_HTTP_REQUESTPARSER_H_

#include <boost/beast/http/basic_parser.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "http/Refusal.h"
#include "http/RequestMessage.h"

namespace http {

struct RequestLimits {
  std::size_t headerBytes = 0;  // request line and fields, with the empty line behind them
  std::size_t bodyBytes = 0;
};

class RequestParser final : private boost::beast::http::basic_parser<true> {
 public:
  // Fills `message`, the caller's, which outlives the parser.
  RequestParser(RequestMessage& message, RequestLimits limits);

  // Takes what it can of the bytes from their beginning on and returns how many. What it left has
  // to stand at the beginning of the next call's bytes.
  [[nodiscard]] std::size_t take(std::string_view bytes) { return take(bytes, Part::Request); }
  // The same, and leaves what stands behind the head.
  [[nodiscard]] std::size_t takeHead(std::string_view bytes) { return take(bytes, Part::Head); }

  [[nodiscard]] bool isHeadComplete() const { return m_isHeaderRead && !m_refusal; }
  // At the end of a request neither taken nor refused, more bytes are needed.
  [[nodiscard]] bool isComplete() const { return is_done() && !m_refusal; }
  [[nodiscard]] const std::optional<Refusal>& refusal() const { return m_refusal; }

  // Of a request whose head is complete: whether the client holds the body back until it is asked
  // for it.
  [[nodiscard]] bool expectsContinue() const;
  // Of a request whose head is complete: whether the client wants the connection to stay open.
  [[nodiscard]] bool isKeptAlive() const { return keep_alive(); }
  [[nodiscard]] bool isHttp11() const { return m_isHttp11; }

 private:
  using error_code = boost::beast::error_code;
  using string_view = boost::beast::string_view;

  enum class Part { Head, Request };

  [[nodiscard]] std::size_t take(std::string_view bytes, Part part);
  [[nodiscard]] bool awaitsShortChunk(std::size_t available) const;
  void refuse(unsigned status, std::string text);
  void refuse(error_code fault);
  void refuseLongHeader();
  void checkHeader();
  void checkFraming();

  // boost::beast::http::basic_parser
  void on_request_impl(boost::beast::http::verb verb, string_view method, string_view target,
                       int version, error_code& fault) override;
  void on_response_impl(int status, string_view reason, int version, error_code& fault) override;
  void on_field_impl(boost::beast::http::field field, string_view name, string_view value,
                     error_code& fault) override;
  void on_header_impl(error_code& fault) override;
  void on_body_init_impl(const boost::optional<std::uint64_t>& length, error_code& fault) override;
  std::size_t on_body_impl(string_view bytes, error_code& fault) override;
  void on_chunk_header_impl(std::uint64_t size, string_view extension, error_code& fault) override;
  std::size_t on_chunk_body_impl(std::uint64_t left, string_view bytes, error_code& fault) override;
  void on_finish_impl(error_code& fault) override;

  RequestMessage& m_message;
  const RequestLimits m_limits;
  std::optional<Refusal> m_refusal;
  std::size_t m_headerBytes = 0;
  std::uint64_t m_chunkLeft = 0;
  bool m_isHeaderRead = false;
  bool m_isHttp11 = false;
};

}  // namespace http

#endif  // ORVEX_HTTP_REQUESTPARSER_H_
