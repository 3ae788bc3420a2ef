#include "cli/LocalWords.h"

namespace cli {

std::string toLocalWords(std::string text) {
  return text;
}

std::string toLocalHelp(const std::string& text) {
  return text;
}

bool hasHosts() {
  return true;
}

}  // namespace cli
