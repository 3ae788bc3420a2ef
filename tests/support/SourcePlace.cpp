#include "tests/support/SourcePlace.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string_view>
#include <vector>

namespace test {
namespace {

using Lines = std::vector<std::string>;

struct Source {
  Lines lines;
  std::string code;  // all of them
};

constexpr std::string_view kRoot = QUORVEL_TEST_SOURCE_ROOT;

// The folders whose files are named without them.
constexpr const char* kFolders[] = {"agent/", "cim/",   "core/",       "inventory/",
                                    "Os/",    "Utils/", "tests/agent/"};

// Names that are known to those who read logs, and are not the file's: what such a record begins
// with, "SOURCE:FUNCTION", and where it stands.
struct KnownName {
  const char* beginning;
  const char* file;
};
constexpr KnownName kKnownNames[] = {
    {"Debug:utils::TimeStamp::", "Utils/TimeStamp.cpp"},
    {"Orvex_EthernetPort:Orvex_EthernetPortClass::", "inventory/Orvex_EthernetPortClass.cpp"},
    // What both platforms do alike is logged under the name of the platform's part.
    {"Os/Posix/PosixOSLocker:os::OSLocker::", "Os/OSLocker.cpp"},
    {"Os/Windows/WindowsOSLocker:os::OSLocker::", "Os/OSLocker.cpp"},
    {"Os/Posix/PosixThread:utils::Thread::", "Os/Thread.cpp"},
    {"Os/Windows/WindowsThread:utils::Thread::", "Os/Thread.cpp"},
    {"Os/Posix/PosixQuorvelConfig:utils::QuorvelConfig::", "Os/QuorvelConfig.cpp"},
    {"Os/Windows/WindowsQuorvelConfig:utils::QuorvelConfig::", "Os/QuorvelConfig.cpp"},
    {"Os/Windows/Windows:os::", "Os/Windows/WindowsFiles.cpp"},
    {"Os/Windows/Windows:utils::WindowsRegistry::", "Os/Windows/WindowsRegistry.cpp"},
};

// Returns a file below the root, without lines when there is no such file.
const Source& readSource(const std::string& file) {
  static std::map<std::string, Source> read;
  const auto [entry, isNew] = read.try_emplace(file);
  if (isNew) {
    std::ifstream stream(std::filesystem::path(kRoot) / file);
    for (std::string line; std::getline(stream, line);) {
      if (line.ends_with('\r')) {
        line.pop_back();
      }
      entry->second.lines.push_back(line);
      entry->second.code += line + "\n";
    }
  }
  return entry->second;
}

// Returns the file of a source's records, empty when there is none.
std::string findFile(const std::string& source, const std::string& function) {
  const std::string name = source + ":" + function;
  for (const KnownName& known : kKnownNames) {
    if (name.starts_with(known.beginning)) {
      return known.file;
    }
  }
  for (const char* ending : {".cpp", ".h"}) {
    if (source.find('/') != std::string::npos && !readSource(source + ending).lines.empty()) {
      return source + ending;
    }
    for (const char* folder : kFolders) {
      std::string file = folder + source + ending;
      if (!readSource(file).lines.empty()) {
        return file;
      }
    }
  }
  return {};
}

// Returns the texts of the string literals, with adjacent ones joined.
std::vector<std::string> findLiterals(const std::string& code) {
  std::vector<std::string> literals;
  bool isAdjacent = false;
  for (std::size_t at = 0; at < code.size(); ++at) {
    if (code[at] != '"') {
      isAdjacent = isAdjacent && std::isspace(static_cast<unsigned char>(code[at])) != 0;
      continue;
    }
    std::string text;
    for (++at; at < code.size() && code[at] != '"'; ++at) {
      at += code[at] == '\\' ? 1 : 0;
      text += code[at];
    }
    if (isAdjacent) {
      literals.back() += text;
    } else {
      literals.push_back(text);
    }
    isAdjacent = true;
  }
  return literals;
}

// Returns what stands round the conversions of a printf format.
std::vector<std::string> splitAtConversions(const std::string& format) {
  std::vector<std::string> pieces(1);
  for (std::size_t at = 0; at < format.size(); ++at) {
    if (format[at] == '%') {
      at = format.find_first_of("cdspuxX", at);
      pieces.emplace_back();
      if (at == std::string::npos) {
        break;
      }
    } else {
      pieces.back() += format[at];
    }
  }
  return pieces;
}

// Returns whether the format can have made the message. One of nothing but conversions says nothing
// about that; see isWholeMessage.
bool canMake(const std::string& format, const std::string& message) {
  const std::vector<std::string> pieces = splitAtConversions(format);
  if (pieces.size() == 1) {
    return format == message;
  }
  if (std::all_of(pieces.begin(), pieces.end(),
                  [](const std::string& piece) { return piece.empty(); }) ||
      !message.starts_with(pieces.front())) {
    return false;
  }
  std::size_t at = pieces.front().size();
  for (std::size_t i = 1; i + 1 < pieces.size(); ++i) {
    at = message.find(pieces[i], at);
    if (at == std::string::npos) {
      return false;
    }
    at += pieces[i].size();
  }
  return message.size() >= at + pieces.back().size() && message.ends_with(pieces.back());
}

bool hasFormatOf(const std::string& code, const std::string& message) {
  const std::vector<std::string> literals = findLiterals(code);
  return std::any_of(literals.begin(), literals.end(),
                     [&message](const std::string& literal) { return canMake(literal, message); });
}

// Returns whether the code logs what it was given as it is.
bool isWholeMessage(const std::string& code) {
  const std::vector<std::string> literals = findLiterals(code);
  return !literals.empty() && literals.back() == "%s";
}

bool hasCall(const std::string& code) {
  return code.find("logDebug(") != std::string::npos || code.find("logError(") != std::string::npos;
}

// Returns the code from a line to the end of a statement or the beginning of a block.
std::string statementFrom(const Lines& lines, std::size_t index) {
  std::string code;
  for (; index < lines.size(); ++index) {
    code += lines[index] + "\n";
    if (!lines[index].empty() &&
        std::string(";{}").find(lines[index].back()) != std::string::npos) {
      break;
    }
  }
  return code;
}

bool isNameSign(char sign) {
  return std::isalnum(static_cast<unsigned char>(sign)) != 0 || sign == '_';
}

// Returns whether the text has the name as a word of its own.
bool hasWord(const std::string& text, const std::string& word) {
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
    const std::size_t end = at + word.size();
    if ((at == 0 || !isNameSign(text[at - 1])) && (end == text.size() || !isNameSign(text[end]))) {
      return true;
    }
  }
  return false;
}

// Returns whether the line names the function, by its text or by a constant that has it.
bool namesFunction(const Source& source, std::size_t index, const std::string& function) {
  const std::string& line = source.lines[index];
  const std::string& code = source.code;
  const std::string literal = "\"" + function + "\"";
  if (line.find(literal) != std::string::npos) {
    return true;
  }
  for (std::size_t at = code.find(literal); at != std::string::npos;
       at = code.find(literal, at + 1)) {
    const std::size_t equals = code.find_last_not_of(" \n", at - 1);
    if (equals == std::string::npos || code[equals] != '=') {
      continue;
    }
    const std::size_t end = code.find_last_not_of(' ', equals - 1) + 1;
    std::size_t begin = end;
    while (begin > 0 && isNameSign(code[begin - 1])) {
      --begin;
    }
    if (begin < end && hasWord(line, code.substr(begin, end - begin))) {
      return true;
    }
  }
  return false;
}

// Returns whether every provider logs this, under its own name.
bool isOfEveryProvider(const std::string& message) {
  for (const char* file : {"core/InstanceProvider.cpp", "core/InstanceProvider.h"}) {
    const Lines& lines = readSource(file).lines;
    for (std::size_t index = 0; index < lines.size(); ++index) {
      if (hasCall(lines[index]) && hasFormatOf(statementFrom(lines, index), message)) {
        return true;
      }
    }
  }
  return false;
}

std::string describe(const std::string& file, int line, const std::string& fault) {
  return file + ":" + std::to_string(line) + " " + fault;
}

}  // namespace

std::string findMisplacement(const LogRecord& record) {
  const std::string file = findFile(record.source, record.function);
  const Source& source = readSource(file);
  const Lines& lines = source.lines;
  if (file.empty()) {
    return "there is no source file of the name " + record.source;
  }
  if (record.line < 1 || static_cast<std::size_t>(record.line) > lines.size()) {
    return describe(file, record.line, "is outside of the file");
  }
  const auto index = static_cast<std::size_t>(record.line) - 1;
  const std::string statement = statementFrom(lines, index);
  const bool isNamed = namesFunction(source, index, record.function);
  if (hasFormatOf(statement, record.message) && (isNamed || hasCall(lines[index]))) {
    return {};
  }
  if (isNamed &&
      (hasCall(statement) ? isWholeMessage(statement) : isOfEveryProvider(record.message))) {
    return {};
  }
  return describe(file, record.line,
                  "does not hold the record '" + record.message + "': " + lines[index]);
}

std::string findMisplacement(const std::string& assertion) {
  const std::size_t sourceEnd = assertion.find(':');
  const std::size_t lineEnd = assertion.find(": Assertion failed: '");
  if (sourceEnd == std::string::npos || lineEnd == std::string::npos || lineEnd < sourceEnd) {
    return "no assertion: " + assertion;
  }
  const std::string source = assertion.substr(0, sourceEnd);
  const int line = static_cast<int>(std::strtol(assertion.c_str() + sourceEnd + 1, nullptr, 10));
  const std::size_t begin = assertion.find('\'', lineEnd) + 1;
  const std::string condition = assertion.substr(begin, assertion.size() - 1 - begin);
  const std::string file = findFile(source, {});
  const Lines& lines = readSource(file).lines;
  if (line < 1 || static_cast<std::size_t>(line) > lines.size()) {
    return describe(source, line, "is outside of any file");
  }
  const std::string& text = lines[static_cast<std::size_t>(line) - 1];
  return text.find("ORVEX_ASSERT(") != std::string::npos && text.ends_with(", " + condition + ");")
             ? std::string()
             : describe(file, line, "does not hold the condition '" + condition + "': " + text);
}

PlacedLog::~PlacedLog() {
  expectPlaces();
}

void PlacedLog::clear() {
  expectPlaces();
  LogCapture::clear();
}

void PlacedLog::expectPlaces() const {
  for (const LogRecord& record : records()) {
    EXPECT_EQ(findMisplacement(record), "") << testing::PrintToString(record);
  }
}

}  // namespace test
