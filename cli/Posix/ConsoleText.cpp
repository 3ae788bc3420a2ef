#include "cli/ConsoleText.h"

namespace cli {

ConsoleText::ConsoleText() = default;

ConsoleText::~ConsoleText() = default;

}  // namespace cli
