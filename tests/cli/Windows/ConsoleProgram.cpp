#include "tests/cli/Windows/ConsoleProgram.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <windows.h>

#include "tests/support/WaitUntil.h"

namespace test {
namespace {

void demand(BOOL result, const char* what) {
  if (result == FALSE) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
  }
}

// The arguments have no quotes in them.
std::string commandLine(const std::vector<std::string>& arguments) {
  std::string command = "quorvel";
  for (const std::string& argument : arguments) {
    command += " \"" + argument + "\"";
  }
  return command;
}

void change(const std::vector<EnvironmentChange>& environment) {
  for (const EnvironmentChange& change : environment) {
    SetEnvironmentVariableA(change.name.c_str(), change.value ? change.value->c_str() : nullptr);
  }
}

}  // namespace

void ConsoleProgram::End::operator()(void* process) const {
  TerminateProcess(process, 1);  // which one that has ended takes no notice of
  WaitForSingleObject(process, INFINITE);
  CloseHandle(process);
}

ConsoleProgram::ConsoleProgram(const std::vector<std::string>& arguments,
                               const std::vector<EnvironmentChange>& environment)
    : m_output(makePipe()), m_errors(makePipe()) {
  change(environment);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  startup.hStdOutput = m_output.in.get();
  startup.hStdError = m_errors.in.get();
  std::string command = commandLine(arguments);
  PROCESS_INFORMATION process{};
  demand(CreateProcessA(programBeside("quorvel").string().c_str(), command.data(), nullptr, nullptr,
                        TRUE, CREATE_NO_WINDOW, nullptr, nullptr, &startup, &process),
         "CreateProcess");
  CloseHandle(process.hThread);
  m_process.reset(process.hProcess);
  m_output.in = platform::Handle();
  m_errors.in = platform::Handle();
  FreeConsole();
  if (!waitUntil([&process] { return AttachConsole(process.dwProcessId) != FALSE; })) {
    demand(FALSE, "AttachConsole");
  }
  // Whoever is at a console is interrupted with the others there.
  demand(SetConsoleCtrlHandler(nullptr, TRUE), "SetConsoleCtrlHandler");
}

ConsoleProgram::~ConsoleProgram() {
  m_process.reset();
  SetConsoleCtrlHandler(nullptr, FALSE);
  FreeConsole();
}

ConsoleProgram::Pipe ConsoleProgram::makePipe() {
  SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
  HANDLE out = nullptr;
  HANDLE in = nullptr;
  demand(CreatePipe(&out, &in, &attributes, 0), "CreatePipe");
  SetHandleInformation(out, HANDLE_FLAG_INHERIT, 0);
  return {platform::Handle(out), platform::Handle(in)};
}

void ConsoleProgram::readInto(std::string& text, const Pipe& pipe) {
  std::array<char, 4096> buffer{};
  DWORD there = 0;
  DWORD got = 0;
  while (PeekNamedPipe(pipe.out.get(), nullptr, 0, nullptr, &there, nullptr) != FALSE &&
         there > 0 &&
         ReadFile(pipe.out.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &got,
                  nullptr) != FALSE) {
    text.append(buffer.data(), got);
  }
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
}

void ConsoleProgram::read() {
  readInto(m_result.output, m_output);
  readInto(m_result.errors, m_errors);
}

bool ConsoleProgram::hasEnded() const {
  return WaitForSingleObject(m_process.get(), 0) == WAIT_OBJECT_0;
}

bool ConsoleProgram::awaitOutput(const std::string& text) {
  static_cast<void>(waitUntil([this, &text] {
    read();
    return m_result.output.find(text) != std::string::npos || hasEnded();
  }));
  return m_result.output.find(text) != std::string::npos;
}

void ConsoleProgram::interrupt() const {
  demand(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0), "GenerateConsoleCtrlEvent");
}

ProgramResult ConsoleProgram::finish() {
  if (!waitUntil([this] {
        read();
        return hasEnded();
      })) {
    TerminateProcess(m_process.get(), 1);
    WaitForSingleObject(m_process.get(), INFINITE);
  }
  read();
  DWORD status = 0;
  GetExitCodeProcess(m_process.get(), &status);
  m_result.exitStatus = static_cast<int>(status);
  return m_result;
}

}  // namespace test
