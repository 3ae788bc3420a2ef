// The connections that exist: who counts them, watches their deadlines and ends them. Private to
// this folder. Any thread may call.

#ifndef ORVEX_HTTP_CONNECTIONLIST_H_
#define ORVEX_HTTP_CONNECTIONLIST_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <unordered_set>
#include <vector>

#include "http/Clock.h"
#include "platform/Mutex.h"

namespace http {

// What the list knows of a connection. The calls return at once: what they ask for happens on the
// connection's strand.
class ListedConnection : public std::enable_shared_from_this<ListedConnection> {
 public:
  ListedConnection() = default;
  ListedConnection(const ListedConnection&) = delete;
  ListedConnection& operator=(const ListedConnection&) = delete;
  virtual ~ListedConnection() = default;

  // Ends the phase if its time is over.
  virtual void checkDeadline(Clock::time_point now) = 0;
  // Ends the connection as soon as no request is handled or answered.
  virtual void stop() = 0;
  // Ends it now.
  virtual void cut() = 0;
};

class ConnectionList {
 public:
  ConnectionList() = default;
  ConnectionList(const ConnectionList&) = delete;
  ConnectionList& operator=(const ConnectionList&) = delete;

  // Connections add and remove themselves.
  void addServed(ListedConnection& connection);
  void addRefused(ListedConnection& connection);
  void remove(ListedConnection& connection);

  // Return how many there are in service, and how many are being refused.
  [[nodiscard]] std::size_t countServed() const;
  [[nodiscard]] std::size_t countRefused() const;
  [[nodiscard]] bool isEmpty() const;

  void checkDeadlines();
  void stopAll();
  void cutAll();

  // Called, on any thread and under the list's lock, when the last one has gone.
  void setWhenEmpty(std::function<void()> call);

 private:
  [[nodiscard]] std::vector<std::shared_ptr<ListedConnection>> getAll() const;

  mutable platform::Mutex m_mutex;
  std::unordered_set<ListedConnection*> m_served ORVEX_GUARDED_BY(m_mutex);
  std::unordered_set<ListedConnection*> m_refused ORVEX_GUARDED_BY(m_mutex);
  std::function<void()> m_whenEmpty ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace http

#endif  // ORVEX_HTTP_CONNECTIONLIST_H_
