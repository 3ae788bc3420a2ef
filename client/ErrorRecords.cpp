#include "client/ErrorRecords.h"

#include <algorithm>
#include <cctype>
#include <new>

namespace client {
namespace {

constexpr std::string_view kErrorMark = ": error: ";
constexpr std::string_view kCaughtBegin = "Exception: '";
constexpr std::string_view kCaughtEnd = "'";

bool isCaughtException(const std::string& message) {
  return message.starts_with(kCaughtBegin) && message.ends_with(kCaughtEnd);
}

}  // namespace

ErrorRecords& ErrorRecords::instance() {
  static ErrorRecords* const records = [] {
    auto* made = new ErrorRecords;
    utils::LogSinks* const previous = utils::exchangeLogSinks(nullptr);
    made->m_next = previous != nullptr ? previous : &utils::platformLogSinks();
    utils::exchangeLogSinks(made);
    return made;
  }();
  return *records;
}

void ErrorRecords::start() {
  const platform::Lock lock(m_mutex);
  m_thread = std::this_thread::get_id();
  m_lines.clear();
}

std::vector<std::string> ErrorRecords::take() {
  std::vector<std::string> messages;
  const platform::Lock lock(m_mutex);
  m_thread = {};
  std::transform(m_lines.begin(), m_lines.end(), std::back_inserter(messages), messageOf);
  m_lines.clear();
  return messages;
}

// Only error records go to the event log.
void ErrorRecords::writeEventLog(const std::string& line) noexcept {
  m_next->writeEventLog(line);
  try {
    const platform::Lock lock(m_mutex);
    if (m_thread == std::this_thread::get_id()) {
      m_lines.push_back(line);
    }
  } catch (const std::exception&) {
    m_next->writeEventLog("OrvexQuorvel: an error record could not be kept for the command line\n");
  }
}

void ErrorRecords::writeDebugChannel(const std::string& line) noexcept {
  m_next->writeDebugChannel(line);
}

void ErrorRecords::writeStandardError(const std::string& text) noexcept {
  m_next->writeStandardError(text);
}

std::string messageOf(std::string_view line) {
  if (line.ends_with('\n')) {
    line.remove_suffix(1);
  }
  const std::size_t mark = line.find(kErrorMark);
  return std::string(mark == std::string_view::npos ? line : line.substr(mark + kErrorMark.size()));
}

std::string reasonOf(const std::vector<std::string>& messages) {
  const auto caught = std::find_if(messages.rbegin(), messages.rend(), isCaughtException);
  if (caught != messages.rend()) {
    return caught->substr(kCaughtBegin.size(),
                          caught->size() - kCaughtBegin.size() - kCaughtEnd.size());
  }
  return messages.empty() ? "" : messages.back();
}

std::string withoutType(std::string_view text) {
  const std::size_t colon = text.find(':');
  const bool hasType =
      colon != std::string_view::npos && colon > 1 && text[0] == 'E' &&
      std::isupper(static_cast<unsigned char>(text[1])) != 0 &&
      std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(colon),
                  [](unsigned char character) { return std::isalpha(character) != 0; });
  std::string_view rest = hasType ? text.substr(colon + 1) : text;
  constexpr std::string_view kPrefix = "Quorvel: ";
  if (rest.starts_with(kPrefix)) {
    return withoutType(rest.substr(kPrefix.size()));
  }
  while (rest.ends_with(' ')) {
    rest.remove_suffix(1);
  }
  return std::string(rest);
}

}  // namespace client
