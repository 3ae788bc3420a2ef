#include "Os/Windows/Handle.h"

#include <windows.h>

namespace os {

bool Handle::close() {
  return CloseHandle(std::exchange(m_handle, nullptr)) != FALSE;
}

}  // namespace os
