#include "tests/support/Programs.h"

#include <array>
#include <map>
#include <system_error>
#include <thread>
#include <windows.h>

#include "platform/Texts.h"

namespace test {
namespace {

[[noreturn]] void fail(const char* operation) {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), operation);
}

std::string withPlainLineEnds(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "\r\n") != 0) {
      result += text[i];
    }
  }
  return result;
}

// A pipe whose write end a program inherits.
class OutputPipe {
 public:
  OutputPipe() {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    if (CreatePipe(&m_out, &m_in, &attributes, 0) == FALSE) {
      fail("CreatePipe");
    }
    SetHandleInformation(m_out, HANDLE_FLAG_INHERIT, 0);
  }
  OutputPipe(const OutputPipe&) = delete;
  OutputPipe& operator=(const OutputPipe&) = delete;
  ~OutputPipe() {
    closeIn();
    CloseHandle(m_out);
  }

  [[nodiscard]] HANDLE in() const { return m_in; }
  void closeIn() {
    if (m_in != nullptr) {
      CloseHandle(m_in);
      m_in = nullptr;
    }
  }

  // Reads until every writer has closed its end.
  [[nodiscard]] std::string readAll() const {
    std::string text;
    std::array<char, 4096> buffer{};
    DWORD got = 0;
    while (ReadFile(m_out, buffer.data(), buffer.size(), &got, nullptr) != FALSE && got > 0) {
      text.append(buffer.data(), got);
    }
    return withPlainLineEnds(text);
  }

 private:
  HANDLE m_out = nullptr;
  HANDLE m_in = nullptr;
};

// Quotes an argument such that the C runtime of the program reads it back.
std::string quoteArgument(const std::string& argument) {
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char sign : argument) {
    if (sign == '"') {
      quoted.append(backslashes + 1, '\\');
    }
    backslashes = sign == '\\' ? backslashes + 1 : 0;
    quoted += sign;
  }
  return quoted.append(backslashes, '\\') + "\"";
}

// Returns the variables of this process with the changes, as CreateProcess takes them.
std::string makeEnvironment(const std::vector<EnvironmentChange>& changes) {
  std::map<std::string, std::string> variables;
  char* const block = GetEnvironmentStringsA();
  for (const char* entry = block; *entry != '\0'; entry += std::string(entry).size() + 1) {
    const std::string text(entry);
    const std::size_t equals = text.find('=', 1);
    variables[text.substr(0, equals)] = text.substr(equals + 1);
  }
  FreeEnvironmentStringsA(block);
  for (const EnvironmentChange& change : changes) {
    variables.erase(change.name);
    if (change.value) {
      variables[change.name] = *change.value;
    }
  }
  std::string result;
  for (const auto& [name, value] : variables) {
    result += name + "=" + value + '\0';
  }
  return result + '\0';
}

// Starts the program, whose environment is the block of variables. The caller closes both handles.
PROCESS_INFORMATION start(const std::filesystem::path& program, std::wstring command,
                          std::string& variables, STARTUPINFOW& startup) {
  // An emulation of the system that is under load loses a process now and then before it has begun,
  // and says so by this error; the system itself never does.
  constexpr int kMostStarts = 5;
  PROCESS_INFORMATION process{};
  for (int starts = 1; CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0,
                                      variables.data(), nullptr, &startup, &process) == FALSE;
       ++starts) {
    if (GetLastError() != ERROR_INTERNAL_ERROR || starts == kMostStarts) {
      fail("CreateProcess");
    }
  }
  return process;
}

}  // namespace

ProgramResult runProgram(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments,
                         const std::vector<EnvironmentChange>& environment) {
  OutputPipe output;
  OutputPipe errors;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  startup.hStdOutput = output.in();
  startup.hStdError = errors.in();
  std::string command = quoteArgument(platform::toShownText(program));
  for (const std::string& argument : arguments) {
    command += " " + quoteArgument(argument);
  }
  std::string variables = makeEnvironment(environment);
  const PROCESS_INFORMATION process =
      start(program, platform::toPath(command).native(), variables, startup);
  output.closeIn();
  errors.closeIn();
  ProgramResult result;
  std::thread reader([&errors, &result] { result.errors = errors.readAll(); });
  result.output = output.readAll();
  reader.join();
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process.hProcess, &status);
  result.exitStatus = static_cast<int>(status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return result;
}

}  // namespace test
