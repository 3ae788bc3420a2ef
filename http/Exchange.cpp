#include "http/Exchange.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace http {
namespace {

// What is above that is left over from a burst.
constexpr std::size_t kMostFree = 32;
// Buffers up to here are kept whatever they hold, so that ordinary messages need no new memory.
constexpr std::size_t kKeptBytes = 1024 * 1024;

void shrink(std::string& text) {
  if (text.capacity() > kKeptBytes && text.size() < text.capacity() / 4) {
    text.clear();
    text.shrink_to_fit();
  }
}

}  // namespace

std::unique_ptr<Exchange> ExchangePool::take() {
  {
    const platform::Lock lock(m_mutex);
    if (!m_free.empty()) {
      std::unique_ptr<Exchange> exchange = std::move(m_free.back());
      m_free.pop_back();
      m_leastFree = std::min(m_leastFree, m_free.size());
      return exchange;
    }
  }
  return std::make_unique<Exchange>();
}

void ExchangePool::give(std::unique_ptr<Exchange> exchange) {
  exchange->memo.reset();
  shrink(exchange->request.body());
  shrink(exchange->response.body);
  const platform::Lock lock(m_mutex);
  if (m_free.size() < kMostFree) {
    m_free.push_back(std::move(exchange));
  }
}

void ExchangePool::trim() {
  std::vector<std::unique_ptr<Exchange>> unused;  // freed without the lock
  const platform::Lock lock(m_mutex);
  const auto end = m_free.begin() + static_cast<std::ptrdiff_t>(m_leastFree);
  unused.assign(std::make_move_iterator(m_free.begin()), std::make_move_iterator(end));
  m_free.erase(m_free.begin(), end);
  m_leastFree = m_free.size();
}

std::size_t ExchangePool::countFree() const {
  const platform::Lock lock(m_mutex);
  return m_free.size();
}

}  // namespace http
