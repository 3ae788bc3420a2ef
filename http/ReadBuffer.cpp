#include "http/ReadBuffer.h"

#include <cstring>

namespace http {
namespace {

constexpr std::size_t kSmallBuffer = 4 * 1024;
constexpr std::size_t kLargeBuffer = 64 * 1024;

}  // namespace

boost::asio::mutable_buffer ReadBuffer::space() {
  if (isEmpty()) {
    m_begin = 0;
    m_end = 0;
    if (m_memory.empty()) {
      m_memory.resize(kSmallBuffer);
    } else if (m_wasFull && m_memory.size() < kLargeBuffer) {
      m_memory.resize(m_memory.size() * 2);
    }
  } else if (m_end == m_memory.size()) {
    if (m_begin > 0) {
      std::memmove(m_memory.data(), m_memory.data() + m_begin, m_end - m_begin);
      m_end -= m_begin;
      m_begin = 0;
    } else {
      m_memory.resize(m_memory.size() * 2);
    }
  }
  m_wasFull = false;
  return boost::asio::buffer(m_memory.data() + m_end, m_memory.size() - m_end);
}

void ReadBuffer::add(std::size_t count) {
  m_end += count;
  m_wasFull = m_end == m_memory.size();
}

void ReadBuffer::shrink() {
  if (isEmpty() && m_memory.size() > kSmallBuffer) {
    m_memory = {};
    m_begin = 0;
    m_end = 0;
    m_wasFull = false;
  }
}

}  // namespace http
