#include "cli/LocalWords.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>
#include <vector>

namespace cli {
namespace {

// The first that fits at a place counts.
constexpr std::pair<std::string_view, std::string_view> kWords[] = {
    {"file:///srv/older.rom", "file://C:/firmware/older.rom"},
    {"file:///path/to/image", "file://C:/path/to/image"},
    {"/srv/firmware/firmware.rom", "C:\\firmware\\firmware.rom"},
    {"FWFilePath = /srv/firmware", "FWFilePath = C:\\firmware"},
    {"Configuration file (/etc/OrvexQuorvelProvider.conf); Windows takes its registry instead",
     "Not read: the settings are in the registry, under "
     "HKEY_LOCAL_MACHINE\\SOFTWARE\\ZOLAN\\Network_Services"},
    {" of this machine, or of a host's.", " of this machine."},
};

constexpr std::size_t kWidth = 95;
constexpr std::string_view kHost = "host";

bool isLetter(char sign) {
  return std::isalnum(static_cast<unsigned char>(sign)) != 0;
}

// Returns whether a host is spoken of: the word, with an "s" at its end or not, or the option.
bool isAboutHosts(std::string_view text) {
  for (std::size_t place = text.find(kHost); place != std::string_view::npos;
       place = text.find(kHost, place + 1)) {
    std::string_view rest = text.substr(place + kHost.size());
    if (rest.starts_with('s')) {
      rest.remove_prefix(1);
    }
    if ((place == 0 || !isLetter(text[place - 1])) && (rest.empty() || !isLetter(rest[0]))) {
      return true;
    }
  }
  return false;
}

// Splits at a separator, which is left out; a piece behind the last one is one, too, unless it is
// empty.
std::vector<std::string> split(const std::string& text, std::string_view separator) {
  std::vector<std::string> pieces;
  std::size_t start = 0;
  for (std::size_t end = text.find(separator); end != std::string::npos;
       end = text.find(separator, start)) {
    pieces.push_back(text.substr(start, end - start));
    start = end + separator.size();
  }
  if (start < text.size()) {
    pieces.push_back(text.substr(start));
  }
  return pieces;
}

std::string wrap(const std::string& text) {
  std::string result;
  std::size_t column = 0;
  for (const std::string& word : split(text, " ")) {
    if (column + word.size() + 1 > kWidth) {
      result += '\n';
      column = 0;
    }
    result += (column == 0 ? "" : " ") + word;
    column += word.size() + (column == 0 ? 0 : 1);
  }
  return result;
}

std::string withoutHosts(std::string paragraph) {
  if (!isAboutHosts(paragraph)) {
    return paragraph;
  }
  std::replace(paragraph.begin(), paragraph.end(), '\n', ' ');
  std::string kept;
  for (std::string sentence : split(paragraph, ". ")) {
    if (sentence.ends_with('.')) {
      sentence.pop_back();
    }
    if (!isAboutHosts(sentence)) {
      kept += (kept.empty() ? "" : " ") + sentence + ".";
    }
  }
  return wrap(kept);
}

// At the prompt of the system, only double quotes hold an argument together.
std::string toExample(std::string line) {
  std::replace(line.begin(), line.end(), '\'', '"');
  return line;
}

bool isExample(const std::string& line) {
  return line.starts_with("  ");
}

std::string toLocalParagraph(const std::string& paragraph) {
  const std::vector<std::string> lines = split(paragraph, "\n");
  if (std::none_of(lines.begin(), lines.end(), isExample)) {
    return withoutHosts(paragraph);
  }
  std::string kept;
  for (const std::string& line : lines) {
    if (!isExample(line) || !isAboutHosts(line)) {
      kept += (kept.empty() ? "" : "\n") + (isExample(line) ? toExample(line) : line);
    }
  }
  return kept;
}

}  // namespace

std::string toLocalWords(std::string text) {
  for (const auto& [from, to] : kWords) {
    if (const std::size_t place = text.find(from); place != std::string::npos) {
      text.replace(place, from.size(), to);
    }
  }
  return text;
}

std::string toLocalHelp(const std::string& text) {
  std::string result;
  for (std::string paragraph : split(toLocalWords(text), "\n\n")) {
    if (paragraph.ends_with('\n')) {
      paragraph.pop_back();
    }
    paragraph = toLocalParagraph(paragraph);
    if (!paragraph.empty()) {
      result += (result.empty() ? "" : "\n") + paragraph + "\n";
    }
  }
  return result;
}

bool hasHosts() {
  return false;
}

}  // namespace cli
