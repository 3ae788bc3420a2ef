#include <exception>
#include <iostream>

#include "Os/Environment.h"
#include "Utils/Printable.h"
#include "cli/ConsoleText.h"
#include "cli/Program.h"

int main(int argc, char** argv) {
  os::reserveStandardStreams();
  const cli::ConsoleText consoleText;
  try {
    os::demandExactArguments();
    return cli::runProgram(argc, argv, std::cout, std::cerr);
  } catch (const std::exception& exception) {
    std::cerr << "quorvel: " << utils::toPrintableLines(exception.what()) << '\n';
  } catch (...) {
    std::cerr << "quorvel: failed for an unknown reason\n";
  }
  return 1;
}
