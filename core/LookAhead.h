// Looks at files that are made before the broker's request is taken.
//
// Who holds the request must not wait for a file system, since all others wait for him. So a front
// end that serves several clients has a LookAhead on its thread before it takes the request: the
// agents then look for what enumerations of those classes list. While it lives, no provider looks
// for anything on this thread (see isInForce()): it lists what was last found. Without one, a
// provider looks when it is asked for its instances.

#ifndef ORVEX_CORE_LOOKAHEAD_H_
#define ORVEX_CORE_LOOKAHEAD_H_

#include <set>
#include <string>

#include "Utils/Export.h"
#include "core/CimBroker.h"

namespace core {

// What an agent may offer beside its three operations, where its instances stand for files.
class ORVEX_CORE_API FileLooker {
 public:
  FileLooker() = default;
  FileLooker(const FileLooker&) = delete;
  FileLooker& operator=(const FileLooker&) = delete;

  // Looks for the files that enumerations of any of the classes list or ask for; the names may be
  // those of others' classes. May wait for a file system. Any thread calls, without the request.
  virtual void lookAhead(const std::set<std::string>& classNames) = 0;

 protected:
  ~FileLooker() = default;
};

// On the stack of the thread that takes the request next; may be nested.
class ORVEX_CORE_API LookAhead {
 public:
  // Without a class, nothing is looked for. Throws what an agent throws.
  LookAhead(const CimBroker& broker, const std::set<std::string>& classNames);
  LookAhead(const LookAhead&) = delete;
  LookAhead& operator=(const LookAhead&) = delete;
  ~LookAhead();

  // Returns whether there is one on this thread.
  [[nodiscard]] static bool isInForce();

 private:
  const bool m_before;
};

}  // namespace core

#endif  // ORVEX_CORE_LOOKAHEAD_H_
