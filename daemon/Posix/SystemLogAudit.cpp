#include "daemon/Posix/SystemLogAudit.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <optional>
#include <poll.h>
#include <string_view>
#include <syslog.h>
#include <unistd.h>

#include "Utils/Format.h"
#include "Utils/Log.h"
#include "Utils/Printable.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"SystemLogAudit"};

void appendField(std::string& line, const char* name, std::string_view text) {
  constexpr std::string_view kCut = "...";
  if (!line.empty()) {
    line += ' ';
  }
  line += name;
  line += "=\"";
  const std::size_t end = line.size() + SystemLogAudit::kMostBytes;
  while (!text.empty()) {
    const std::size_t length = utils::lengthOfPrintable(text);
    const auto byte = static_cast<unsigned char>(text.front());
    std::string piece =
        length > 0 ? std::string(text.substr(0, length)) : utils::format("\\x%02X", byte);
    if (byte == '"' || byte == '\\') {
      piece.insert(0, 1, '\\');
    }
    if (line.size() + piece.size() > end) {
      line += kCut;
      break;
    }
    line += piece;
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  line += '"';
}

const char* nameOf(std::optional<wbem::Role> role) {
  if (!role) {
    return "";
  }
  switch (*role) {
    case wbem::Role::Reader:
      return "reader";
    case wbem::Role::Operator:
      return "operator";
  }
  return "";
}

// Writes to standard error as long as that takes something at once.
void writeToStandardError(std::string_view text) {
  constexpr std::size_t kMostAtOnce = 4096;  // what a pipe takes when it takes anything
  while (!text.empty()) {
    pollfd source{STDERR_FILENO, POLLOUT, 0};
    if (poll(&source, 1, 0) != 1 || (source.revents & POLLOUT) == 0) {
      return;
    }
    const ssize_t written = ::write(STDERR_FILENO, text.data(), std::min(text.size(), kMostAtOnce));
    if (written <= 0) {
      return;
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace

std::string formatAudit(const wbem::AuditRecord& record) {
  std::string line;
  appendField(line, "user", record.caller.user);
  appendField(line, "address", record.caller.address);
  appendField(line, "role", nameOf(record.caller.role));
  appendField(line, "action", record.action);
  appendField(line, "result", record.result);
  appendField(line, "target", record.target);
  for (const auto& [name, value] : record.details) {
    appendField(line, name.c_str(), value);
  }
  return line;
}

bool SystemLogAudit::write(const wbem::AuditRecord& record,
                           std::chrono::milliseconds patience) noexcept {
  try {
    const std::string line = formatAudit(record);
    const std::string tag = utils::format("quorveld[%d]", static_cast<int>(getpid()));
    const int error =
        platform::sendSystemLogMessage(m_socket, LOG_AUTHPRIV | LOG_NOTICE, tag, line, patience);
    if (error == EAGAIN) {
      return false;
    }
    if (error != 0) {
      utils::logError(kLog, "quorveld::SystemLogAudit::write", "audit: %s (%s: %s)", line.c_str(),
                      m_socket.c_str(), std::strerror(error));
      writeElsewhere(record);
    }
  } catch (const std::exception& exception) {
    utils::logError(kLog, "quorveld::SystemLogAudit::write", "An audit record is lost: %s",
                    exception.what());
  }
  return true;
}

void SystemLogAudit::writeElsewhere(const wbem::AuditRecord& record) noexcept {
  try {
    writeToStandardError("quorveld: audit: " + formatAudit(record) + "\n");
  } catch (const std::exception&) {
    writeToStandardError("quorveld: an audit record is lost for want of memory\n");
  }
}

}  // namespace quorveld
