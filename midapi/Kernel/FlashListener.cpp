#include "midapi/Kernel/FlashListener.h"

#include <chrono>
#include <exception>
#include <utility>

namespace ma {
namespace {

// Somebody ends the wait.
constexpr std::chrono::hours kLong{1};

}  // namespace

FlashListener::FlashListener(const DevlinkFamily& family, const PortId& device, Hear hear)
    : m_family(family), m_device(toString(device)), m_hear(std::move(hear)) {
  if (m_family.configGroup == 0) {
    return;
  }
  try {
    m_socket.emplace().join(m_family.configGroup);
    m_thread = std::thread([this] { listen(); });
  } catch (const std::exception&) {
    return;  // nothing is heard
  }
}

FlashListener::~FlashListener() {
  if (m_thread.joinable()) {
    m_isOver = true;
    m_socket->endWaiting();
    m_thread.join();
  }
}

void FlashListener::listen() {
  try {
    for (;;) {
      const auto datagram = m_socket->receive(kLong);
      if (!datagram && m_isOver) {
        return;
      }
      for (const DevlinkFlashEvent& event :
           findFlashEvents(datagram ? NetlinkBytes(*datagram) : NetlinkBytes(), m_family)) {
        if (event.device == m_device) {
          m_hear(event);
        }
      }
    }
  } catch (const std::exception&) {
    return;  // nothing more is heard
  }
}

}  // namespace ma
