#include "Os/Environment.h"

#include <cstdlib>

namespace os {

std::string getComputerName() {
  const char* name = std::getenv("COMPUTERNAME");
  return name != nullptr && name[0] != '\0' ? name : "localhost";
}

}  // namespace os
