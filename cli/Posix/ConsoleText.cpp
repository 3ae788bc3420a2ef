#include "cli/ConsoleText.h"

namespace cli {

ConsoleText::ConsoleText() = default;

ConsoleText::~ConsoleText() = default;

void giveConsoleBack() noexcept {}

void keepConsoleOnInterrupt(bool /*isKept*/) noexcept {}

}  // namespace cli
