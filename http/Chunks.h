// What both readers of messages know of chunked bodies (RFC 9112, 7.1). Private to this folder.

#ifndef ORVEX_HTTP_CHUNKS_H_
#define ORVEX_HTTP_CHUNKS_H_

#include <cstddef>

namespace http {

// The shortest thing that may stand where a chunk begins: the last chunk, "0\r\n\r\n".
inline constexpr std::size_t kShortestChunk = 5;

}  // namespace http

#endif  // ORVEX_HTTP_CHUNKS_H_
