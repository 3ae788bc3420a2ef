#include "http/ConnectionList.h"

namespace http {

Room ConnectionList::makeRoom(const std::string& group, const Places& places) {
  std::shared_ptr<ListedConnection> told;
  {
    const platform::Lock lock(m_mutex);
    const bool isGroupFull = countOf(group) >= places.perGroup;
    if (!isGroupFull && m_served.size() < places.all) {
      return Room::There;
    }
    const auto isAsked = [&](const ListedConnection& connection) {
      return !isGroupFull || connection.group() == group;
    };
    if (m_leaving.size() >= places.all || !tellOne(isAsked, told)) {
      return isGroupFull ? Room::NoneForGroup : Room::NoneAtAll;
    }
  }
  if (told) {
    told->cut();
  }
  return Room::Made;
}

void ConnectionList::endSlowestAnswer() {
  std::shared_ptr<ListedConnection> told;
  {
    const platform::Lock lock(m_mutex);
    const auto isAsked = [](const ListedConnection& connection) {
      return connection.isTakingLargeAnswer();
    };
    if (!tellOne(isAsked, told)) {
      return;
    }
  }
  if (told) {
    told->cut();
  }
}

void ConnectionList::addServed(ListedConnection& connection) {
  const platform::Lock lock(m_mutex);
  m_served.insert(&connection);
  ++m_counts[connection.group()];
}

void ConnectionList::addRefused(ListedConnection& connection) {
  const platform::Lock lock(m_mutex);
  m_refused.insert(&connection);
}

void ConnectionList::remove(ListedConnection& connection) {
  const platform::Lock lock(m_mutex);
  if (!takeOutOfService(connection)) {
    m_leaving.erase(&connection);
    m_refused.erase(&connection);
  }
  if (isWithoutConnections() && m_whenEmpty) {
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
  return isWithoutConnections();
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
  all.reserve(m_served.size() + m_leaving.size() + m_refused.size());
  for (const Set* const connections : {&m_served, &m_leaving, &m_refused}) {
    for (ListedConnection* const connection : *connections) {
      if (std::shared_ptr<ListedConnection> owned = connection->weak_from_this().lock()) {
        all.push_back(std::move(owned));
      }
    }
  }
  return all;
}

std::size_t ConnectionList::countOf(const std::string& group) const {
  const auto found = m_counts.find(group);
  return found == m_counts.end() ? 0 : found->second;
}

bool ConnectionList::isWithoutConnections() const {
  return m_served.empty() && m_leaving.empty() && m_refused.empty();
}

template <class IsAsked>
bool ConnectionList::tellOne(IsAsked isAsked, std::shared_ptr<ListedConnection>& told) {
  const Clock::time_point now = Clock::now();
  // Another try for each that begins to serve a request just now.
  for (std::size_t tries = m_served.size(); tries > 0; --tries) {
    ListedConnection* first = nullptr;
    Clock::time_point from = now;
    for (ListedConnection* const connection : m_served) {
      const Clock::time_point its = connection->givingWay().from();
      if (its <= from && isAsked(*connection)) {
        first = connection;
        from = its;
      }
    }
    if (first == nullptr) {
      return false;
    }
    if (first->givingWay().tell(from)) {
      takeOutOfService(*first);
      m_leaving.insert(first);
      told = first->weak_from_this().lock();
      return true;
    }
  }
  return false;
}

bool ConnectionList::takeOutOfService(ListedConnection& connection) {
  if (m_served.erase(&connection) == 0) {
    return false;
  }
  const auto count = m_counts.find(connection.group());
  if (--count->second == 0) {
    m_counts.erase(count);
  }
  return true;
}

}  // namespace http
