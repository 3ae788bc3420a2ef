// The bytes of a connection that have been read and not been taken yet. Private to this folder.

#ifndef ORVEX_HTTP_READBUFFER_H_
#define ORVEX_HTTP_READBUFFER_H_

#include <boost/asio/buffer.hpp>
#include <cstddef>
#include <string_view>
#include <vector>

namespace http {

// Grows with what comes at once, so that many idle connections need little memory and a large body
// few calls.
class ReadBuffer {
 public:
  [[nodiscard]] std::string_view bytes() const {
    return {m_memory.data() + m_begin, m_end - m_begin};
  }
  [[nodiscard]] bool isEmpty() const { return m_begin == m_end; }
  // Returns where to read to: never nothing.
  [[nodiscard]] boost::asio::mutable_buffer space();
  void add(std::size_t count);
  void remove(std::size_t count) { m_begin += count; }
  void clear() { m_begin = m_end; }
  // Gives up what a large request needed.
  void shrink();

 private:
  std::vector<char> m_memory;
  std::size_t m_begin = 0;
  std::size_t m_end = 0;
  bool m_wasFull = false;  // by the last read
};

}  // namespace http

#endif  // ORVEX_HTTP_READBUFFER_H_
