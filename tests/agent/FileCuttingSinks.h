// A file that becomes shorter between the look at its size and its reading.

#ifndef ORVEX_TESTS_AGENT_FILECUTTINGSINKS_H_
#define ORVEX_TESTS_AGENT_FILECUTTINGSINKS_H_

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "Utils/Log.h"

namespace test {

// Stands in the place of the log's sinks; the record that says that a file will be read has the
// file cut to three bytes.
class FileCuttingSinks : private utils::LogSinks {
 public:
  explicit FileCuttingSinks(std::filesystem::path file)
      : m_file(std::move(file)), m_previous(utils::exchangeLogSinks(this)) {}
  ~FileCuttingSinks() override { utils::exchangeLogSinks(m_previous); }

 private:
  void writeEventLog(const std::string& /*line*/) noexcept override {}
  void writeDebugChannel(const std::string& line) noexcept override {
    if (line.find("os::readFile: debug: Reading") != std::string::npos) {
      std::ofstream(m_file) << "cut";
    }
  }
  void writeStandardError(const std::string& /*text*/) noexcept override {}

  const std::filesystem::path m_file;
  utils::LogSinks* m_previous;
};

}  // namespace test

#endif  // ORVEX_TESTS_AGENT_FILECUTTINGSINKS_H_
