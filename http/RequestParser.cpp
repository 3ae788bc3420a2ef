#include "http/RequestParser.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/beast/http/error.hpp>
#include <limits>
#include <utility>

#include "Utils/Ascii.h"
#include "http/Chunks.h"
#include "http/Status.h"

namespace http {
namespace {

namespace beast = boost::beast;

constexpr const char* kFoldedText = "A header field is folded over several lines; write it in one.";

// Parse faults of which a client is told in words of our own.
struct FaultAnswer {
  beast::http::error fault;
  unsigned status;
  const char* text;
};

constexpr FaultAnswer kFaultAnswers[] = {
    {beast::http::error::bad_version, kStatusVersionNotSupported,
     "The request is not in a version of HTTP that this server speaks: HTTP/1.1 and HTTP/1.0."},
    {beast::http::error::bad_method, kStatusBadRequest,
     "The request does not begin with a method."},
    {beast::http::error::bad_target, kStatusBadRequest, "The request's target is malformed."},
    {beast::http::error::bad_field, kStatusBadRequest, "The name of a header field is malformed."},
    {beast::http::error::bad_value, kStatusBadRequest, "The value of a header field is malformed."},
    {beast::http::error::bad_content_length, kStatusBadRequest, "The Content-Length is malformed."},
    {beast::http::error::multiple_content_length, kStatusBadRequest,
     "There are several Content-Lengths."},
    {beast::http::error::bad_transfer_encoding, kStatusBadRequest,
     "The Transfer-Encoding contradicts other header fields."},
    {beast::http::error::bad_chunk, kStatusBadRequest, "A chunk of the body is malformed."},
    {beast::http::error::bad_chunk_extension, kStatusBadRequest,
     "The extension of a chunk is malformed."},
    {beast::http::error::bad_obs_fold, kStatusBadRequest, kFoldedText},
};

// Fields that say one thing, and of which one reader may take the first and another the last.
constexpr std::string_view kSingleFields[] = {"Host", "Content-Length", "Transfer-Encoding",
                                              "Content-Type", "Authorization"};

std::string_view toStandard(beast::string_view text) {
  return {text.data(), text.size()};
}

// Returns whether a line of a header goes on in the next one, which readers take for a field of its
// own, for a part of the first one, or for nothing (RFC 9112, 5.2).
bool hasFold(std::string_view header) {
  return header.find("\r\n ") != std::string_view::npos ||
         header.find("\r\n\t") != std::string_view::npos;
}

}  // namespace

RequestParser::RequestParser(RequestMessage& message, RequestLimits limits)
    : m_message(message), m_limits(limits) {
  m_message.clear();
  header_limit(static_cast<std::uint32_t>(
      std::min<std::size_t>(limits.headerBytes, std::numeric_limits<std::uint32_t>::max())));
  body_limit(limits.bodyBytes);
}

std::size_t RequestParser::take(std::string_view bytes, Part part) {
  std::size_t taken = 0;
  while (!is_done() && !m_refusal && taken < bytes.size()) {
    if (part == Part::Head && m_isHeaderRead) {
      break;
    }
    const std::string_view rest = bytes.substr(taken);
    if (awaitsShortChunk(rest.size())) {
      break;
    }
    const bool isInHeader = !is_header_done();
    error_code fault;
    const std::size_t count = put(boost::asio::const_buffer(rest.data(), rest.size()), fault);
    taken += count;
    const std::size_t left = rest.size() - count;
    const bool needsMore = fault == beast::http::error::need_more;
    if (isInHeader) {
      m_headerBytes += count;
      if (m_headerBytes > m_limits.headerBytes ||
          (needsMore && m_headerBytes + left >= m_limits.headerBytes)) {
        refuseLongHeader();
        break;
      }
      if (hasFold(rest.substr(0, count))) {
        refuse(kStatusBadRequest, kFoldedText);
        break;
      }
      if (m_isHeaderRead) {
        checkHeader();
      }
    } else if (needsMore && left > m_limits.headerBytes) {
      refuseLongHeader();  // the line before a chunk, or the fields behind the last one
      break;
    }
    if (needsMore) {
      break;
    }
    if (fault) {
      refuse(fault);
    }
  }
  return taken;
}

bool RequestParser::expectsContinue() const {
  return m_isHeaderRead && !is_done() && m_isHttp11 && m_message.hasField("Expect");
}

// The parser wants no call with less where a chunk begins.
bool RequestParser::awaitsShortChunk(std::size_t available) const {
  return is_header_done() && chunked() && m_chunkLeft == 0 && available < kShortestChunk;
}

void RequestParser::refuse(unsigned status, std::string text) {
  if (!m_refusal) {
    m_refusal = Refusal{status, std::move(text)};
  }
}

void RequestParser::refuse(error_code fault) {
  if (fault == beast::http::error::header_limit) {
    refuseLongHeader();
    return;
  }
  if (fault == beast::http::error::body_limit) {
    refuse(kStatusContentTooLarge, "The request's body is larger than this server takes: " +
                                       std::to_string(m_limits.bodyBytes) + " bytes.");
    return;
  }
  for (const FaultAnswer& answer : kFaultAnswers) {
    if (fault == answer.fault) {
      refuse(answer.status, answer.text);
      return;
    }
  }
  refuse(kStatusBadRequest, "The request is malformed: " + fault.message() + ".");
}

void RequestParser::refuseLongHeader() {
  refuse(kStatusHeaderFieldsTooLarge, "The request's header is larger than this server takes: " +
                                          std::to_string(m_limits.headerBytes) + " bytes.");
}

void RequestParser::checkHeader() {
  const std::size_t hosts = m_message.countFields("Host");
  if (m_isHttp11 && hosts != 1) {
    refuse(kStatusBadRequest,
           "A request in HTTP/1.1 has exactly one header field Host; this one has " +
               std::to_string(hosts) + ".");
  }
  for (const std::string_view field : kSingleFields) {
    if (m_message.countFields(field) > 1) {
      refuse(kStatusBadRequest, "The header field " + std::string(field) +
                                    " stands there several times; send it once.");
    }
  }
  checkFraming();
  if (m_isHttp11 && m_message.hasField("Expect") &&
      !utils::isSameIgnoringCase(m_message.field("Expect"), "100-continue")) {
    refuse(kStatusExpectationFailed,
           "The only expectation that this server knows is 100-continue.");
  }
}

// Where a body ends must not be a matter of opinion: what stands between client and server may hold
// another one, and then a second request hides in the first one's body.
void RequestParser::checkFraming() {
  if (m_message.field("Content-Length").find(',') != std::string_view::npos) {
    refuse(kStatusBadRequest, "The Content-Length is a list; send one number.");
  }
  if (!m_message.hasField("Transfer-Encoding")) {
    return;
  }
  if (!m_isHttp11) {
    refuse(kStatusBadRequest,
           "HTTP/1.0 has no Transfer-Encoding; send a Content-Length, or the request in HTTP/1.1.");
  }
  if (!utils::isSameIgnoringCase(m_message.field("Transfer-Encoding"), "chunked")) {
    refuse(kStatusNotImplemented, "The only Transfer-Encoding that this server knows is chunked.");
  }
}

void RequestParser::on_request_impl(beast::http::verb /*verb*/, string_view method,
                                    string_view target, int version, error_code& /*fault*/) {
  m_isHttp11 = version == 11;
  m_message.setRequestLine(toStandard(method), toStandard(target));
}

void RequestParser::on_response_impl(int /*status*/, string_view /*reason*/, int /*version*/,
                                     error_code& /*fault*/) {}

void RequestParser::on_field_impl(beast::http::field /*field*/, string_view name, string_view value,
                                  error_code& /*fault*/) {
  // What stands behind a chunked body cannot change what the request is.
  if (m_isHeaderRead) {
    return;
  }
  m_message.addField(toStandard(name), toStandard(value));
}

void RequestParser::on_header_impl(error_code& /*fault*/) {
  m_isHeaderRead = true;
}

void RequestParser::on_body_init_impl(const boost::optional<std::uint64_t>& /*length*/,
                                      error_code& /*fault*/) {}

std::size_t RequestParser::on_body_impl(string_view bytes, error_code& /*fault*/) {
  m_message.body().append(bytes.data(), bytes.size());
  return bytes.size();
}

void RequestParser::on_chunk_header_impl(std::uint64_t size, string_view /*extension*/,
                                         error_code& /*fault*/) {
  m_chunkLeft = size;
}

std::size_t RequestParser::on_chunk_body_impl(std::uint64_t left, string_view bytes,
                                              error_code& /*fault*/) {
  m_message.body().append(bytes.data(), bytes.size());
  m_chunkLeft = left - bytes.size();
  return bytes.size();
}

void RequestParser::on_finish_impl(error_code& /*fault*/) {}

}  // namespace http
