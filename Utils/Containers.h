// The containers of the object model: a locked list of pointers with cursors, a locked map, a map.
//
// Every operation of a locked container, and every single step of a cursor, takes the container's
// own mutex; a walk as a whole does not. Elements may be added between two steps; clear() during
// someone else's walk is the caller's fault. No operation calls another locked one of the same
// container while it holds the lock.

#ifndef ORVEX_UTILS_CONTAINERS_H_
#define ORVEX_UTILS_CONTAINERS_H_

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "Utils/Assert.h"
#include "Utils/Mutex.h"

namespace utils {

inline constexpr LogSource kContainersLog{"Utils/Containers"};

// A list of pointers to polymorphic objects, in insertion order. Owns its elements only when told
// so at construction: then clear() and the destructor delete them, in list order.
template <class T>
class SafeList {
 public:
  class IteratorImplementation;
  class SimpleIteratorImplementation;
  class Iterator;

  explicit SafeList(bool ownsElements) : m_ownsElements(ownsElements) {}
  SafeList(const SafeList&) = delete;
  SafeList& operator=(const SafeList&) = delete;
  virtual ~SafeList() { clear(); }

  // Returns a cursor over all elements.
  virtual Iterator iterator();

  // Appends. Throws std::length_error when the list can grow no more.
  void add(T element) {
    const ScopedLock lock(m_lock);
    append(element);
  }

  // Appends, and calls `complete` before anybody else can come upon the element. What that throws
  // takes the element out again and leaves. It must not call the list.
  template <class Complete>
  void add(T element, Complete complete) {
    const ScopedLock lock(m_lock);
    append(element);
    Addition addition(*this);
    complete();
    addition.keep();
  }

  // Empties the list.
  void clear() {
    const ScopedLock lock(m_lock);
    if (m_ownsElements) {
      for (T element : m_elements) {
        delete element;
      }
    }
    m_elements.clear();
    noteChange();
  }

  // Takes `element` out of the list without deleting it. Returns whether it was there.
  bool remove(T element) {
    const ScopedLock lock(m_lock);
    const bool isRemoved = std::erase(m_elements, element) != 0;
    if (isRemoved) {
      noteChange();
    }
    return isRemoved;
  }

  [[nodiscard]] std::size_t size() const {
    const ScopedLock lock(m_lock);
    return m_elements.size();
  }

 protected:
  // Makes room for one more element, so that adding it does not fail.
  void reserveOne() {
    const ScopedLock lock(m_lock);
    makeRoom();
  }

  // Returns how often an element was added or taken out, or the list cleared.
  [[nodiscard]] std::size_t changes() const {
    const ScopedLock lock(m_lock);
    return m_changes;
  }

  // Makes `elements` those of which isTaken(element), in their order, under one lock.
  template <class IsTaken>
  void copyThose(std::vector<T>& elements, IsTaken isTaken) const {
    const ScopedLock lock(m_lock);
    elements.clear();
    std::copy_if(m_elements.begin(), m_elements.end(), std::back_inserter(elements), isTaken);
  }

 private:
  // Takes the last element out again, unless it is kept. The list is locked throughout.
  class Addition {
   public:
    explicit Addition(SafeList& list) : m_list(&list) {}
    Addition(const Addition&) = delete;
    Addition& operator=(const Addition&) = delete;
    ~Addition() ORVEX_NO_THREAD_SAFETY_ANALYSIS {
      if (m_list != nullptr) {
        m_list->m_elements.pop_back();
        m_list->noteChange();
      }
    }
    void keep() { m_list = nullptr; }

   private:
    SafeList* m_list;
  };

  static constexpr std::size_t kFirstCapacity = 8;

  void makeRoom() ORVEX_REQUIRES(m_lock) {
    if (m_elements.size() == m_elements.max_size()) {
      throw std::length_error("list<T> too long");
    }
    if (m_elements.size() == m_elements.capacity()) {
      m_elements.reserve(std::max(kFirstCapacity, 2 * m_elements.size()));
    }
  }

  void append(T element) ORVEX_REQUIRES(m_lock) {
    makeRoom();
    m_elements.push_back(element);
    noteChange();
  }

  const std::vector<T>& elements() const ORVEX_REQUIRES(m_lock) { return m_elements; }

  void noteChange() ORVEX_REQUIRES(m_lock) {
    ++m_changes;
    m_hasFirst.store(!m_elements.empty(), std::memory_order_relaxed);
  }

  const bool m_ownsElements;
  std::vector<T> m_elements ORVEX_GUARDED_BY(m_lock);
  std::size_t m_changes ORVEX_GUARDED_BY(m_lock) = 0;
  // Whether there is an element, for a cursor that is made without the lock.
  std::atomic<bool> m_hasFirst{false};
  mutable Mutex m_lock;
};

// What a cursor does. Null is the end, so a null element ends a walk.
template <class T>
class SafeList<T>::IteratorImplementation {
 public:
  virtual T next() = 0;
  virtual T first() = 0;
  virtual std::size_t count() = 0;
  virtual ~IteratorImplementation() = default;
  // Returns a cursor of the same kind on the same list, at its start.
  [[nodiscard]] virtual std::unique_ptr<IteratorImplementation> clone() = 0;
};

// The cursor over all elements. Its position is the element that the next step returns; it is made,
// without the list's lock, at the first one. It does not own its list, which may be null: then
// every answer is the one of an empty list.
template <class T>
class SafeList<T>::SimpleIteratorImplementation : public SafeList<T>::IteratorImplementation {
 public:
  explicit SimpleIteratorImplementation(SafeList<T>* list)
      : m_position(list != nullptr && list->m_hasFirst.load(std::memory_order_relaxed) ? 0 : kEnd),
        m_list(list) {}

  T next() override {
    if (m_list == nullptr) {
      return nullptr;
    }
    const ScopedLock lock(m_list->m_lock);
    return step();
  }

  T first() override {
    if (m_list == nullptr) {
      return nullptr;
    }
    const ScopedLock lock(m_list->m_lock);
    moveTo(0);
    return step();
  }

  std::size_t count() override { return m_list != nullptr ? m_list->size() : 0; }

  std::unique_ptr<IteratorImplementation> clone() override {
    return std::make_unique<SimpleIteratorImplementation>(m_list);
  }

 protected:
  // One step, made by a caller that holds the list's lock.
  virtual T step() ORVEX_REQUIRES(m_list->m_lock) {
    if (m_list != nullptr && m_position != kEnd) {
      followElement();
    }
    if (m_position == kEnd) {
      return nullptr;
    }
    T element = m_element;
    moveTo(m_position + 1);
    return element;
  }

  SafeList<T>* list() const { return m_list; }

 private:
  static constexpr std::size_t kEnd = static_cast<std::size_t>(-1);

  // Makes the element of that number the one that the next step returns. A cursor that has come to
  // the end stays there, whatever is added.
  void moveTo(std::size_t position) ORVEX_REQUIRES(m_list->m_lock) {
    const std::vector<T>& elements = m_list->elements();
    const bool isEnd = position >= elements.size();
    m_position = isEnd ? kEnd : position;
    m_element = isEnd ? nullptr : elements[position];
  }

  // Finds the element that is to be returned again, after others in front of it were taken out; the
  // one in its place when it was taken out itself.
  void followElement() ORVEX_REQUIRES(m_list->m_lock) {
    const std::vector<T>& elements = m_list->elements();
    std::size_t position = std::min(m_position + 1, elements.size());
    while (position > 0 && elements[position - 1] != m_element) {
      --position;
    }
    moveTo(position > 0 ? position - 1 : m_position);
  }

  // Of the element that the next step returns, and that element; null for the first one of a cursor
  // that has made no step.
  std::size_t m_position;
  T m_element = nullptr;
  SafeList<T>* m_list;
};

// A cursor that passes over elements. Derived is the concrete cursor; its static isSkipped(element)
// says which, and it is constructible from the list alone. It is asked without the list's lock,
// which is taken again for each element.
template <class T, class Derived>
class SkippingIteratorImplementation : public SafeList<T>::SimpleIteratorImplementation {
  using Base = typename SafeList<T>::SimpleIteratorImplementation;

 public:
  using Base::Base;

  T next() override {
    T element = Base::next();
    while (element != nullptr && Derived::isSkipped(element)) {
      element = Base::next();
    }
    return element;
  }

  T first() override {
    T element = Base::first();
    return element != nullptr && Derived::isSkipped(element) ? next() : element;
  }

  // Walks the list.
  std::size_t count() override {
    const auto walker = clone();
    std::size_t counted = 0;
    for (T element = walker->first(); element != nullptr; element = walker->next()) {
      ++counted;
    }
    return counted;
  }

  std::unique_ptr<typename SafeList<T>::IteratorImplementation> clone() override {
    return std::make_unique<Derived>(this->list());
  }
};

// A cursor as callers hold it: a value that owns its implementation. A copy begins at the start.
//
//   for (T element = cursor.first(); element != nullptr; element = cursor.next())
//   for (T element : cursor)    the same walk
template <class T>
class SafeList<T>::Iterator {
 public:
  // A step of a walk with this cursor.
  class Step {
   public:
    Step(Iterator& cursor, T element) : m_cursor(&cursor), m_element(element) {}
    [[nodiscard]] T operator*() const { return m_element; }
    Step& operator++() {
      m_element = m_cursor->next();
      return *this;
    }
    [[nodiscard]] bool operator==(std::default_sentinel_t /*end*/) const {
      return m_element == nullptr;
    }

   private:
    Iterator* m_cursor;
    T m_element;
  };

  // Without an implementation, every operation throws utils::Exception.
  explicit Iterator(std::unique_ptr<IteratorImplementation> cursor)
      : implementation(std::move(cursor)) {}
  Iterator(const Iterator& other)
      : implementation(other.implementation != nullptr ? other.implementation->clone() : nullptr) {}
  Iterator& operator=(const Iterator& other) {
    Iterator copy(other);
    std::swap(implementation, copy.implementation);
    return *this;
  }
  Iterator(Iterator&&) noexcept = default;
  Iterator& operator=(Iterator&&) noexcept = default;

  // Rewinds and returns the first element, null when there is none.
  virtual T first() {
    ORVEX_ASSERT(kContainersLog, implementation != NULL);
    return implementation->first();
  }

  virtual ~Iterator() = default;

  // Returns the next element, null at the end.
  T next() {
    ORVEX_ASSERT(kContainersLog, implementation != NULL);
    return implementation->next();
  }

  // Returns the number of elements that a walk visits.
  std::size_t count() {
    ORVEX_ASSERT(kContainersLog, implementation != NULL);
    return implementation->count();
  }

  // Begins a walk from the first element on.
  [[nodiscard]] Step begin() { return Step(*this, first()); }
  [[nodiscard]] std::default_sentinel_t end() const { return {}; }

 private:
  std::unique_ptr<IteratorImplementation> implementation;
};

template <class T>
typename SafeList<T>::Iterator SafeList<T>::iterator() {
  const ScopedLock lock(m_lock);
  return Iterator(std::make_unique<SimpleIteratorImplementation>(this));
}

// A locked map, ordered by key. It never deletes its values; a derived map may.
template <class K, class V>
class SafeMap {
 public:
  SafeMap() = default;
  SafeMap(const SafeMap&) = delete;
  SafeMap& operator=(const SafeMap&) = delete;
  virtual ~SafeMap() = default;

  [[nodiscard]] bool contains(const K& key) const {
    const ScopedLock lock(m_lock);
    return m_entries.find(key) != m_entries.end();
  }

  // Returns the value under the key; an absent key is entered with a null value first. The
  // reference is used after the lock is released: it stays valid, but not guarded.
  [[nodiscard]] V& get(const K& key) {
    const ScopedLock lock(m_lock);
    return m_entries[key];
  }

  // Stores, replacing an earlier value.
  void set(K key, V value) {
    const ScopedLock lock(m_lock);
    m_entries.insert_or_assign(std::move(key), std::move(value));
  }

  // Returns all values as they stand, in key order.
  [[nodiscard]] std::vector<V> values() const {
    const ScopedLock lock(m_lock);
    std::vector<V> all;
    all.reserve(m_entries.size());
    for (const auto& entry : m_entries) {
      all.push_back(entry.second);
    }
    return all;
  }

 private:
  mutable Mutex m_lock;
  std::map<K, V> m_entries ORVEX_GUARDED_BY(m_lock);
};

// An ordered map without a lock.
template <class K, class V>
class Map : public std::map<K, V> {
 public:
  using std::map<K, V>::map;
  Map() = default;
  Map(const Map&) = default;
  Map& operator=(const Map&) = default;
  Map(Map&&) noexcept = default;
  Map& operator=(Map&&) noexcept = default;
  virtual ~Map() = default;
};

}  // namespace utils

#endif  // ORVEX_UTILS_CONTAINERS_H_
