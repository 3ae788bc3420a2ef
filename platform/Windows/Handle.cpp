#include "platform/Windows/Handle.h"

#include <windows.h>

namespace platform {

bool Handle::close() {
  return CloseHandle(std::exchange(m_handle, nullptr)) != FALSE;
}

}  // namespace platform
