#include "daemon/Posix/SystemLogAudit.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <exception>
#include <syslog.h>
#include <unistd.h>

#include "Utils/Format.h"
#include "Utils/Log.h"
#include "daemon/Posix/LocalDatagram.h"

namespace quorveld {
namespace {

constexpr utils::LogSource kLog{"SystemLogAudit"};

constexpr unsigned char kFirstPrintable = 0x20;
constexpr unsigned char kDelete = 0x7F;
constexpr unsigned char kFirstOfMany = 0x80;

// Lead bytes of UTF-8: what they look like under a mask, how many bytes follow, and from which code
// point on that many are needed.
struct Lead {
  unsigned char mask;
  unsigned char bits;
  std::size_t following;
  std::uint32_t least;
};

constexpr Lead kLeads[] = {
    {0xE0, 0xC0, 1, 0x80},
    {0xF0, 0xE0, 2, 0x800},
    {0xF8, 0xF0, 3, 0x10000},
};
constexpr std::uint32_t kSurrogates = 0xD800;
constexpr std::uint32_t kAfterSurrogates = 0xE000;
constexpr std::uint32_t kLastCodePoint = 0x10FFFF;
// Control characters above ASCII.
constexpr std::uint32_t kLastControl = 0x9F;
constexpr std::uint32_t kLineSeparator = 0x2028;
constexpr std::uint32_t kParagraphSeparator = 0x2029;

// Returns the length of the printable character beyond ASCII that the text begins with, 0 for none.
std::size_t lengthOfCharacter(std::string_view text) {
  constexpr unsigned kBits = 6;
  constexpr unsigned char kContinuationMask = 0xC0;
  constexpr unsigned char kContinuation = 0x80;
  constexpr unsigned char kContinuationBits = 0x3F;
  const auto first = static_cast<unsigned char>(text.front());
  for (const Lead& lead : kLeads) {
    if ((first & lead.mask) != lead.bits || text.size() <= lead.following) {
      continue;
    }
    std::uint32_t point = first & static_cast<unsigned char>(~lead.mask);
    for (std::size_t i = 1; i <= lead.following; ++i) {
      const auto byte = static_cast<unsigned char>(text[i]);
      if ((byte & kContinuationMask) != kContinuation) {
        return 0;
      }
      point = (point << kBits) | (byte & kContinuationBits);
    }
    const bool isSound = point >= lead.least && point <= kLastCodePoint && point > kLastControl &&
                         (point < kSurrogates || point >= kAfterSurrogates) &&
                         point != kLineSeparator && point != kParagraphSeparator;
    return isSound ? lead.following + 1 : 0;
  }
  return 0;
}

void appendField(std::string& line, const char* name, std::string_view text) {
  constexpr std::string_view kCut = "...";
  if (!line.empty()) {
    line += ' ';
  }
  line += name;
  line += "=\"";
  const std::size_t end = line.size() + SystemLogAudit::kMostBytes;
  while (!text.empty()) {
    const auto byte = static_cast<unsigned char>(text.front());
    std::string piece(1, text.front());
    if (byte == '"' || byte == '\\') {
      piece.insert(0, 1, '\\');
    } else if (byte >= kFirstOfMany) {
      const std::size_t length = lengthOfCharacter(text);
      piece = length > 0 ? std::string(text.substr(0, length)) : utils::format("\\x%02X", byte);
      text.remove_prefix(length > 0 ? length - 1 : 0);
    } else if (byte < kFirstPrintable || byte == kDelete) {
      piece = utils::format("\\x%02X", byte);
    }
    if (line.size() + piece.size() > end) {
      line += kCut;
      break;
    }
    line += piece;
    text.remove_prefix(1);
  }
  line += '"';
}

const char* nameOf(wbem::Role role) {
  switch (role) {
    case wbem::Role::Reader:
      return "reader";
    case wbem::Role::Operator:
      return "operator";
  }
  return "";
}

// The time as the log's socket takes it, in the C locale whatever the process has.
std::string formatTime() {
  constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  return utils::format("%s %2d %02d:%02d:%02d", kMonths.at(static_cast<std::size_t>(parts.tm_mon)),
                       parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
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
  return line;
}

void SystemLogAudit::write(const wbem::AuditRecord& record) noexcept {
  try {
    const std::string line = formatAudit(record);
    const std::string datagram =
        utils::format("<%d>%s quorveld[%d]: %s", static_cast<int>(LOG_AUTHPRIV | LOG_NOTICE),
                      formatTime().c_str(), static_cast<int>(getpid()), line.c_str());
    if (const int error = sendLocalDatagram(m_socket, datagram)) {
      utils::logError(kLog, "quorveld::SystemLogAudit::write", "audit: %s (%s: %s)", line.c_str(),
                      m_socket.c_str(), std::strerror(error));
    }
  } catch (const std::exception& exception) {
    utils::logError(kLog, "quorveld::SystemLogAudit::write", "An audit record is lost: %s",
                    exception.what());
  }
}

}  // namespace quorveld
