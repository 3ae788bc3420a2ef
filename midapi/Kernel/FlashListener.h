// Hears what a driver tells while it writes a flash, on a thread of its own.
//
// Nothing that fails here is the flash's failure: without a socket, a thread or memory nothing is
// heard, and what the kernel loses since it was not taken in time is lost.

#ifndef ORVEX_MIDAPI_KERNEL_FLASHLISTENER_H_
#define ORVEX_MIDAPI_KERNEL_FLASHLISTENER_H_

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "midapi/Kernel/DevlinkMessages.h"
#include "midapi/Kernel/NetlinkSocket.h"

namespace ma {

class FlashListener {
 public:
  using Hear = std::function<void(const DevlinkFlashEvent&)>;

  // Listens until its end. `hear` is called on the thread, with what is told of the device alone.
  FlashListener(const DevlinkFamily& family, const PortId& device, Hear hear);
  FlashListener(const FlashListener&) = delete;
  FlashListener& operator=(const FlashListener&) = delete;
  // What was told until now has been heard when it returns.
  ~FlashListener();

 private:
  void listen();

  const DevlinkFamily m_family;
  const std::string m_device;
  const Hear m_hear;
  std::atomic<bool> m_isOver{false};
  std::optional<NetlinkSocket> m_socket;
  std::thread m_thread;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_KERNEL_FLASHLISTENER_H_
