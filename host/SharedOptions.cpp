#include "host/SharedOptions.h"

#include <CLI/CLI.hpp>

namespace host {

std::string refuseEmpty(const std::string& text) {
  return text.empty() ? "must not be empty" : "";
}

CLI::Validator notEmpty() {
  return CLI::Validator(refuseEmpty, "");
}

void addAdaptersOption(CLI::App& app, std::string& directory) {
  app.add_option("--adapters", directory, "Directory of the adapters (ORVEX_ADAPTERS)")
      ->type_name("DIR")
      ->check(notEmpty());
}

void addLogLevelOption(CLI::App& app, std::string& level) {
  app.add_option("--log-level", level,
                 "0 nothing, 1 errors to the system log, 2 everything there, 3 also to standard "
                 "error")
      ->type_name("0..3")
      ->check(CLI::Validator(
          [](const std::string& text) {
            return text.size() == 1 && text[0] >= '0' && text[0] <= '3' ? ""
                                                                        : "must be 0, 1, 2 or 3";
          },
          ""));
}

}  // namespace host
