// A way to read firmware files that counts, and does not come back from one file until a test lets
// it.

#ifndef ORVEX_TESTS_INVENTORY_HELDREADING_H_
#define ORVEX_TESTS_INVENTORY_HELDREADING_H_

#include <condition_variable>
#include <functional>
#include <memory>
#include <string>

#include "inventory/FirmwareComparisons.h"
#include "platform/Mutex.h"

namespace test {

class HeldReading {
 public:
  HeldReading() = default;
  HeldReading(const HeldReading&) = delete;
  HeldReading& operator=(const HeldReading&) = delete;
  ~HeldReading() { release(); }

  // Outlives this object.
  [[nodiscard]] inventory::FirmwareComparisons::ReadFile reader() const {
    return [state = m_state](const std::string& path) {
      state->enter(path);
      return inventory::readFirmwareFile(path);
    };
  }

  void hold(const std::string& path) { m_state->setHeld(path); }
  void release() { m_state->setHeld({}); }
  // Returns how many files were read, those that are held among them.
  [[nodiscard]] int count() const {
    const platform::Lock lock(m_state->mutex);
    return m_state->count;
  }

 private:
  struct State {
    void enter(const std::string& path) {
      const platform::Lock lock(mutex);
      ++count;
      while (path == held) {
        changed.wait(mutex);
      }
    }
    void setHeld(const std::string& path) {
      const platform::Lock lock(mutex);
      held = path;
      changed.notify_all();
    }

    platform::Mutex mutex;
    std::condition_variable_any changed;
    std::string held ORVEX_GUARDED_BY(mutex);
    int count ORVEX_GUARDED_BY(mutex) = 0;
  };

  const std::shared_ptr<State> m_state = std::make_shared<State>();
};

}  // namespace test

#endif  // ORVEX_TESTS_INVENTORY_HELDREADING_H_
