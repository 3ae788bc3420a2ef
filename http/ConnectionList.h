// The connections that exist: who counts them, watches their deadlines and ends them. Private to
// this folder. Any thread may call.

#ifndef ORVEX_HTTP_CONNECTIONLIST_H_
#define ORVEX_HTTP_CONNECTIONLIST_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <vector>

#include "http/Asio.h"

namespace http {

class Connection;

class ConnectionList {
 public:
  ConnectionList() = default;
  ConnectionList(const ConnectionList&) = delete;
  ConnectionList& operator=(const ConnectionList&) = delete;

  // Connections add and remove themselves.
  void addServed(Connection& connection);
  void addRefused(Connection& connection);
  void remove(Connection& connection);

  // Return how many there are in service, and how many are being refused.
  [[nodiscard]] std::size_t countServed() const;
  [[nodiscard]] std::size_t countRefused() const;
  [[nodiscard]] bool isEmpty() const;

  void checkDeadlines();
  void stopAll();
  void cutAll();

  // Called, on any thread, when the last one has gone.
  void setWhenEmpty(std::function<void()> call);

 private:
  [[nodiscard]] std::vector<std::shared_ptr<Connection>> getAll() const;

  mutable std::mutex m_mutex;
  std::unordered_set<Connection*> m_served;
  std::unordered_set<Connection*> m_refused;
  std::function<void()> m_whenEmpty;
};

}  // namespace http

#endif  // ORVEX_HTTP_CONNECTIONLIST_H_
