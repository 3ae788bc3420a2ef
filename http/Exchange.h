// Requests and their answers, and the pool that lends them to connections: a connection that waits
// for its next request holds no memory for one. Private to this folder.

#ifndef ORVEX_HTTP_EXCHANGE_H_
#define ORVEX_HTTP_EXCHANGE_H_

#include <any>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "http/Message.h"
#include "http/RequestMessage.h"
#include "platform/Mutex.h"

namespace http {

struct Exchange {
  RequestMessage request;
  std::any memo;  // the handler's, until the exchange is given back
  Response response;
  std::string head;  // of the answer
};

// Any thread may call.
class ExchangePool {
 public:
  ExchangePool() = default;
  ExchangePool(const ExchangePool&) = delete;
  ExchangePool& operator=(const ExchangePool&) = delete;

  // The one that was used last comes first, with what it held.
  [[nodiscard]] std::unique_ptr<Exchange> take();
  // Takes an exchange back. Memory far above what it was just used for is given up.
  void give(std::unique_ptr<Exchange> exchange);
  // Frees those that nobody has taken since the last call.
  void trim();

  [[nodiscard]] std::size_t countFree() const;

 private:
  mutable platform::Mutex m_mutex;
  std::vector<std::unique_ptr<Exchange>> m_free ORVEX_GUARDED_BY(m_mutex);
  std::size_t m_leastFree ORVEX_GUARDED_BY(m_mutex) = 0;  // since the last trim
};

}  // namespace http

#endif  // ORVEX_HTTP_EXCHANGE_H_
