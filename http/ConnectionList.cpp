#include "http/ConnectionList.h"

#include <utility>

namespace http {

void ConnectionList::addServed(ListedConnection& connection) {
  const platform::Lock lock(m_mutex);
  m_served.insert(&connection);
}

void ConnectionList::addRefused(ListedConnection& connection) {
  const platform::Lock lock(m_mutex);
  m_refused.insert(&connection);
}

void ConnectionList::remove(ListedConnection& connection) {
  const platform::Lock lock(m_mutex);
  m_served.erase(&connection);
  m_refused.erase(&connection);
  if (m_served.empty() && m_refused.empty() && m_whenEmpty) {
    m_whenEmpty();
  }
}

std::size_t ConnectionList::countServed() const {
  const platform::Lock lock(m_mutex);
  return m_served.size();
}

std::size_t ConnectionList::countRefused() const {
  const platform::Lock lock(m_mutex);
  return m_refused.size();
}

bool ConnectionList::isEmpty() const {
  const platform::Lock lock(m_mutex);
  return m_served.empty() && m_refused.empty();
}

void ConnectionList::checkDeadlines() {
  const Clock::time_point now = Clock::now();
  for (const std::shared_ptr<ListedConnection>& connection : getAll()) {
    connection->checkDeadline(now);
  }
}

void ConnectionList::stopAll() {
  for (const std::shared_ptr<ListedConnection>& connection : getAll()) {
    connection->stop();
  }
}

void ConnectionList::cutAll() {
  for (const std::shared_ptr<ListedConnection>& connection : getAll()) {
    connection->cut();
  }
}

void ConnectionList::setWhenEmpty(std::function<void()> call) {
  const platform::Lock lock(m_mutex);
  m_whenEmpty = std::move(call);
}

// A connection whose destructor waits for the lock is in the sets still, and has no owner any more.
std::vector<std::shared_ptr<ListedConnection>> ConnectionList::getAll() const {
  std::vector<std::shared_ptr<ListedConnection>> all;
  const platform::Lock lock(m_mutex);
  all.reserve(m_served.size() + m_refused.size());
  for (const auto* const connections : {&m_served, &m_refused}) {
    for (ListedConnection* const connection : *connections) {
      if (std::shared_ptr<ListedConnection> owned = connection->weak_from_this().lock()) {
        all.push_back(std::move(owned));
      }
    }
  }
  return all;
}

}  // namespace http
