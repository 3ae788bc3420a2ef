// Requests and their answers, and the pool that lends them to connections: a connection that waits
// for its next request holds no memory for one. Private to this folder.

#ifndef ORVEX_HTTP_EXCHANGE_H_
#define ORVEX_HTTP_EXCHANGE_H_

#include <algorithm>
#include <any>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
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

// Any thread may call. What it keeps for the next ones is bounded, a few megabytes, and so is what
// an exchange holds that is lent: its sender may take his time.
class ExchangePool {
 public:
  ExchangePool() = default;
  ExchangePool(const ExchangePool&) = delete;
  ExchangePool& operator=(const ExchangePool&) = delete;

  // The one that was used last comes first, with what it held, but without memory for the answer's
  // body.
  [[nodiscard]] std::unique_ptr<Exchange> take();
  // Takes an exchange back. Memory that only large requests need is given up.
  void give(std::unique_ptr<Exchange> exchange);

  // The same for the body of an answer, which only a request needs that is handled. It is empty
  // when it is taken; one of a large answer is freed when it is given back.
  [[nodiscard]] std::string takeBody();
  void giveBody(std::string body);

  // Frees what nobody has taken since the last call.
  void trim();

  [[nodiscard]] std::size_t countFree() const;
  // Returns the memory of the bodies that are free.
  [[nodiscard]] std::size_t countFreeBytes() const;

 private:
  // What is free, the last one given at its end.
  template <class Item>
  struct Stock {
    std::vector<Item> items;
    std::size_t least = 0;  // since the last trim

    [[nodiscard]] Item take() {
      Item item = std::move(items.back());
      items.pop_back();
      least = std::min(least, items.size());
      return item;
    }
    // Returns those that nobody has taken.
    [[nodiscard]] std::vector<Item> trim() {
      const auto end = items.begin() + static_cast<std::ptrdiff_t>(least);
      std::vector<Item> unused(std::make_move_iterator(items.begin()),
                               std::make_move_iterator(end));
      items.erase(items.begin(), end);
      least = items.size();
      return unused;
    }
  };

  mutable platform::Mutex m_mutex;
  Stock<std::unique_ptr<Exchange>> m_free ORVEX_GUARDED_BY(m_mutex);
  Stock<std::string> m_bodies ORVEX_GUARDED_BY(m_mutex);
  std::size_t m_bodyBytes ORVEX_GUARDED_BY(m_mutex) = 0;
};

}  // namespace http

#endif  // ORVEX_HTTP_EXCHANGE_H_
