#include "http/ResponseReader.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/beast/http/error.hpp>
#include <string>
#include <utility>

#include "Utils/Ascii.h"
#include "http/Chunks.h"
#include "http/Status.h"

namespace http {
namespace {

namespace beast = boost::beast;

constexpr std::uint32_t kHeaderLimit = 64 * 1024;  // of a server that is not ours, too

std::string toLower(beast::string_view text) {
  std::string lower(text.data(), text.size());
  std::transform(lower.begin(), lower.end(), lower.begin(), utils::toLowerAscii);
  return lower;
}

}  // namespace

ResponseReader::ResponseReader(bool isHead, std::uint64_t bodyLimit)
    : m_isHead(isHead),
      m_bodyLimit(bodyLimit),
      m_onChunkHeader([this](std::uint64_t size, string_view /*extension*/, error_code& /*fault*/) {
        m_chunkLeft = size;
      }),
      m_onChunkBody([this](std::uint64_t left, string_view bytes, error_code& /*fault*/) {
        m_parser->get().body().append(bytes.data(), bytes.size());
        m_chunkLeft = left - bytes.size();
        return bytes.size();
      }) {
  begin();
}

std::size_t ResponseReader::take(std::string_view bytes) {
  m_isBegun = m_isBegun || !bytes.empty();
  std::size_t taken = 0;
  while (!m_fault && !m_parser->is_done() && taken < bytes.size()) {
    const std::string_view rest = bytes.substr(taken);
    // The parser wants no call with less where a chunk begins.
    if (m_parser->is_header_done() && m_parser->chunked() && m_chunkLeft == 0 &&
        rest.size() < kShortestChunk) {
      break;
    }
    error_code fault;
    taken += m_parser->put(boost::asio::const_buffer(rest.data(), rest.size()), fault);
    if (fault == beast::http::error::need_more) {
      break;
    }
    m_fault = fault;
    if (!m_fault && m_parser->is_header_done() && m_parser->get().result_int() < kStatusContinue) {
      m_fault = beast::http::error::bad_status;  // "059": of three digits, and none of a status
    }
    // "100 Continue" and its like announce the answer.
    if (!m_fault && m_parser->is_done() && isInterim(m_parser->get().result_int())) {
      begin();
    }
  }
  return taken;
}

void ResponseReader::takeEnd() {
  if (!m_fault && m_parser->got_some() && !m_parser->is_done()) {
    m_parser->put_eof(m_fault);
  } else if (!m_parser->is_done()) {
    m_fault = beast::http::error::end_of_stream;
  }
}

bool ResponseReader::isTooLarge() const {
  return m_fault == beast::http::error::body_limit;
}

ClientResponse ResponseReader::response() {
  ClientResponse response;
  auto& message = m_parser->get();
  response.status = message.result_int();
  for (const auto& field : message) {
    const auto [place, isNew] = response.fields.try_emplace(toLower(field.name_string()));
    if (!isNew) {
      place->second.append(", ");  // one field in several lines (RFC 9110, 5.3)
    }
    place->second.append(field.value().data(), field.value().size());
  }
  response.body = std::move(message.body());
  return response;
}

void ResponseReader::begin() {
  m_parser.emplace();  // Beast's parser reads one message
  m_parser->header_limit(kHeaderLimit);
  m_parser->body_limit(m_bodyLimit);
  m_parser->skip(m_isHead);
  m_parser->on_chunk_header(m_onChunkHeader);
  m_parser->on_chunk_body(m_onChunkBody);
}

}  // namespace http
