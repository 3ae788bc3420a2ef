// Objects of which a process has one current instance.
//
// Constructing a T makes it the current instance, destroying it makes the one before it current
// again. The template creates nothing; AutoSingleton does, on first use. The current instance is
// not locked: construct and destroy singletons while no other thread asks for them.
//
// T derives from Singleton<T> or AutoSingleton<T> and has a static `kTypeName`, its qualified name.
// A singleton that several modules share gives its slot() an exported explicit specialisation in
// the core library, so that there is one slot on every platform.

#ifndef ORVEX_UTILS_SINGLETON_H_
#define ORVEX_UTILS_SINGLETON_H_

#include <string>
#include <string_view>

#include "Utils/Exception.h"
#include "Utils/Log.h"

namespace utils {

inline constexpr LogSource kSingletonLog{"Utils/Singleton"};

template <class T>
class Singleton {
 public:
  Singleton() : m_previous(slot()) {
    slot() = this;
    static const std::string function = functionName("Singleton");
    logDebug(kSingletonLog, function.c_str(), "New singleton instance for %s", typeName());
  }
  Singleton(const Singleton&) = delete;
  Singleton& operator=(const Singleton&) = delete;
  virtual ~Singleton() { slot() = m_previous; }

  [[nodiscard]] static bool hasInstance() { return slot() != nullptr; }

  // Returns the current instance, which its creator owns. Throws utils::Exception when there is
  // none: "No singleton instance found for %s".
  [[nodiscard]] static T* getInstance() {
    Singleton* current = slot();
    if (current == nullptr) {
      throw Exception("No singleton instance found for %s", typeName());
    }
    auto* instance = static_cast<T*>(current);
    static const std::string function = functionName("getInstance");
    logDebug(kSingletonLog, function.c_str(), "Instance of %s (#%p)", typeName(),
             static_cast<void*>(instance));
    return instance;
  }

 protected:
  // The place of the current instance.
  static Singleton*& slot();

 private:
  // Returns the name without its namespace.
  static const char* typeName() {
    constexpr std::string_view qualified{T::kTypeName};
    constexpr std::size_t colon = qualified.rfind(':');
    return qualified.substr(colon == std::string_view::npos ? 0 : colon + 1).data();
  }

  static std::string functionName(const char* operation) {
    return std::string("utils::Singleton<class ") + T::kTypeName + ">::" + operation;
  }

  Singleton* m_previous;
};

template <class T>
Singleton<T>*& Singleton<T>::slot() {
  static Singleton* current = nullptr;
  return current;
}

// A singleton that is made on first use, with its default construction arguments, and then lives
// until the process ends. The first use must come before the object is shared between threads.
template <class T>
class AutoSingleton : protected Singleton<T> {
 public:
  [[nodiscard]] static T* getInstance() {
    if (Singleton<T>::slot() == nullptr) {
      new T;
    }
    return static_cast<T*>(static_cast<AutoSingleton*>(Singleton<T>::slot()));
  }

 protected:
  using Singleton<T>::slot;
};

}  // namespace utils

#endif  // ORVEX_UTILS_SINGLETON_H_
