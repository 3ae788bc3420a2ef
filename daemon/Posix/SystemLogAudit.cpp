#include "daemon/Posix/SystemLogAudit.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <exception>
#include <optional>
#include <syslog.h>
#include <unistd.h>

#include "Utils/Format.h"
#include "Utils/Log.h"
#include "Utils/Printable.h"
#include "platform/Posix/SystemLog.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"SystemLogAudit"};

constexpr std::chrono::milliseconds kPatience{1000};

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

void SystemLogAudit::write(const wbem::AuditRecord& record) noexcept {
  try {
    const std::string line = formatAudit(record);
    const std::string tag = utils::format("quorveld[%d]", static_cast<int>(getpid()));
    if (const int error = platform::sendSystemLogMessage(m_socket, LOG_AUTHPRIV | LOG_NOTICE, tag,
                                                         line, kPatience)) {
      utils::logError(kLog, "quorveld::SystemLogAudit::write", "audit: %s (%s: %s)", line.c_str(),
                      m_socket.c_str(), std::strerror(error));
    }
  } catch (const std::exception& exception) {
    utils::logError(kLog, "quorveld::SystemLogAudit::write", "An audit record is lost: %s",
                    exception.what());
  }
}

}  // namespace quorveld
