#include <exception>
#include <iostream>

#include "Os/Environment.h"
#include "Utils/Printable.h"
#include "daemon/Daemon.h"

int main(int argc, char** argv) {
  os::reserveStandardStreams();
  try {
    return static_cast<int>(quorveld::runDaemon(argc, argv, std::cout, std::cerr));
  } catch (const std::exception& exception) {
    std::cerr << "quorveld: " << utils::toPrintableLines(exception.what()) << '\n';
  } catch (...) {
    std::cerr << "quorveld: failed for an unknown reason\n";
  }
  return static_cast<int>(quorveld::ExitStatus::Failed);
}
