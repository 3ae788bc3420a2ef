// The connections that exist: who counts them, finds places for new ones, watches their deadlines
// and ends them. Private to this folder. Any thread may call.

#ifndef ORVEX_HTTP_CONNECTIONLIST_H_
#define ORVEX_HTTP_CONNECTIONLIST_H_

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "http/Clock.h"
#include "http/GivingWay.h"
#include "platform/Mutex.h"

namespace http {

// What the list knows of a connection. The calls return at once: what they ask for happens on the
// connection's strand.
class ListedConnection : public std::enable_shared_from_this<ListedConnection> {
 public:
  // May give way from its beginning on. `group` is that of its peer (toPeerGroup).
  explicit ListedConnection(std::string group)
      : m_givingWay(Clock::now()), m_group(std::move(group)) {}
  ListedConnection(const ListedConnection&) = delete;
  ListedConnection& operator=(const ListedConnection&) = delete;
  virtual ~ListedConnection() = default;

  [[nodiscard]] const std::string& group() const { return m_group; }
  [[nodiscard]] GivingWay& givingWay() { return m_givingWay; }
  [[nodiscard]] bool isTakingLargeAnswer() const { return m_isTakingLargeAnswer; }
  void setTakingLargeAnswer(bool isTaking) { m_isTakingLargeAnswer = isTaking; }

  // Ends the phase if its time is over.
  virtual void checkDeadline(Clock::time_point now) = 0;
  // Ends the connection as soon as no request is handled or answered.
  virtual void stop() = 0;
  // Ends it now.
  virtual void cut() = 0;

 private:
  // No virtual functions: the list asks also while the connection is being destroyed.
  GivingWay m_givingWay;
  std::atomic<bool> m_isTakingLargeAnswer{false};
  const std::string m_group;
};

// How many connections may be in service.
struct Places {
  std::size_t all = 0;
  std::size_t perGroup = 0;
};

enum class Room {
  There,
  Made,  // another connection gives way
  NoneAtAll,
  NoneForGroup,
};

class ConnectionList {
 public:
  ConnectionList() = default;
  ConnectionList(const ConnectionList&) = delete;
  ConnectionList& operator=(const ConnectionList&) = delete;

  // Finds a place for a connection of a group, which adds itself then. Where there is none, the one
  // gives way that may since longest: one of the group where the group has too many, any one where
  // all are too many. It is cut, and counts no longer; while as many of those as there are places
  // have not ended, there is no room. Threads that ask at the same time may get the same last
  // place. When the places are full it looks at each connection: thousands of them are few enough
  // for that.
  [[nodiscard]] Room makeRoom(const std::string& group, const Places& places);

  // Cuts the connection that has been taking a large answer for longest, if it may give way.
  void endSlowestAnswer();

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
  using Set = std::unordered_set<ListedConnection*>;

  [[nodiscard]] std::vector<std::shared_ptr<ListedConnection>> getAll() const;
  [[nodiscard]] std::size_t countOf(const std::string& group) const ORVEX_REQUIRES(m_mutex);
  [[nodiscard]] bool isWithoutConnections() const ORVEX_REQUIRES(m_mutex);
  // Tells the one to go that may since longest, of those in service for which `isAsked` is true,
  // and takes it out of service. Returns whether there was one, which the caller cuts and lets go
  // of without the lock: it is null where it is ending already.
  template <class IsAsked>
  [[nodiscard]] bool tellOne(IsAsked isAsked, std::shared_ptr<ListedConnection>& told)
      ORVEX_REQUIRES(m_mutex);
  // Returns whether it was in service.
  bool takeOutOfService(ListedConnection& connection) ORVEX_REQUIRES(m_mutex);

  mutable platform::Mutex m_mutex;
  Set m_served ORVEX_GUARDED_BY(m_mutex);
  Set m_leaving ORVEX_GUARDED_BY(m_mutex);  // gave way, and have not ended yet
  Set m_refused ORVEX_GUARDED_BY(m_mutex);
  // Of those in service; groups without any are left out.
  std::unordered_map<std::string, std::size_t> m_counts ORVEX_GUARDED_BY(m_mutex);
  std::function<void()> m_whenEmpty ORVEX_GUARDED_BY(m_mutex);
};

}  // namespace http

#endif  // ORVEX_HTTP_CONNECTIONLIST_H_
