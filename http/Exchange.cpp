#include "http/Exchange.h"

namespace http {
namespace {

// What is above that is left over from a burst.
constexpr std::size_t kMostFree = 32;
// A request's body of up to here keeps its memory. An exchange may be lent for as long as the head
// of a request is waited for, so this is small.
constexpr std::size_t kKeptRequestBytes = 64 * 1024;
// Ordinary answers, which need no new memory while so much is free of it.
constexpr std::size_t kKeptAnswerBytes = 1024 * 1024;
constexpr std::size_t kMostAnswerBytes = 8 * 1024 * 1024;

}  // namespace

std::unique_ptr<Exchange> ExchangePool::take() {
  {
    const platform::Lock lock(m_mutex);
    if (!m_free.items.empty()) {
      return m_free.take();
    }
  }
  return std::make_unique<Exchange>();
}

void ExchangePool::give(std::unique_ptr<Exchange> exchange) {
  exchange->memo.reset();
  if (exchange->request.body().capacity() > kKeptRequestBytes) {
    std::string().swap(exchange->request.body());
  }
  giveBody(std::move(exchange->response.body));
  exchange->response.body.clear();
  const platform::Lock lock(m_mutex);
  if (m_free.items.size() < kMostFree) {
    m_free.items.push_back(std::move(exchange));
  }
}

std::string ExchangePool::takeBody() {
  const platform::Lock lock(m_mutex);
  if (m_bodies.items.empty()) {
    return {};
  }
  std::string body = m_bodies.take();
  m_bodyBytes -= body.capacity();
  return body;
}

void ExchangePool::giveBody(std::string body) {
  body.clear();
  const std::size_t bytes = body.capacity();
  if (bytes <= std::string().capacity() || bytes > kKeptAnswerBytes) {
    return;
  }
  const platform::Lock lock(m_mutex);
  if (m_bodies.items.size() < kMostFree && m_bodyBytes + bytes <= kMostAnswerBytes) {
    m_bodyBytes += bytes;
    m_bodies.items.push_back(std::move(body));
  }
}

void ExchangePool::trim() {
  std::vector<std::unique_ptr<Exchange>> exchanges;  // freed without the lock
  std::vector<std::string> bodies;
  const platform::Lock lock(m_mutex);
  exchanges = m_free.trim();
  bodies = m_bodies.trim();
  for (const std::string& body : bodies) {
    m_bodyBytes -= body.capacity();
  }
}

std::size_t ExchangePool::countFree() const {
  const platform::Lock lock(m_mutex);
  return m_free.items.size();
}

std::size_t ExchangePool::countFreeBytes() const {
  const platform::Lock lock(m_mutex);
  return m_bodyBytes;
}

}  // namespace http
