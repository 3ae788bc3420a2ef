#include "cli/LocalWords.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>
#include <vector>

namespace cli {
namespace {

// Wherever they stand.
constexpr std::pair<std::string_view, std::string_view> kWords[] = {
    {"file:///srv/older.rom", "file://C:/firmware/older.rom"},
    {"file:///path/to/image", "file://C:/path/to/image"},
    {"file:///tmp/firmware.rom", "file://C:/firmware/firmware.rom"},
    {"/srv/firmware/firmware.rom", "C:\\firmware\\firmware.rom"},
    {"/usr/lib/ipxe/qemu/pxe-virtio.rom", "C:\\firmware\\firmware.rom"},
    {"/tmp/adapters", "C:\\adapters"},
    {"  quorvel identities --config ./quorvel.conf --json", "  quorvel identities --json"},
    {"FWFilePath = /srv/firmware", "FWFilePath = C:\\firmware"},
    {"Configuration file (/etc/OrvexQuorvelProvider.conf); Windows takes its registry instead",
     "Not read: the settings are in the registry, under "
     "HKEY_LOCAL_MACHINE\\SOFTWARE\\ZOLAN\\Network_Services"},
    {" of this machine, or of a host's.", " of this machine."},
    {"errors to the system log, 2 everything there,",
     "errors to the event log, 2 everything to the debugger,"},
    {"The machine's own Ethernet adapters and virtual ones, as the setting Adapters says. With\n"
     "--adapters the virtual ones of that directory alone.",
     "The virtual adapters of this machine. With --adapters those of that directory."},
    {"prints object paths)", "prints object paths; write \\\" for each \" in one)"},
    {"prints the object path)", "prints the object path; write \\\" for each \" in it)"},
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

// At the prompt of the system, only double quotes hold an argument together, variables stand
// between percent signs, and a caret at the end of a line continues it.
std::string toExample(std::string_view line) {
  std::string example;
  bool isQuoted = false;
  for (std::size_t place = 0; place < line.size(); ++place) {
    const char sign = line[place];
    if (sign == '\'') {
      isQuoted = !isQuoted;
      example += '"';
    } else if (sign == '"' && isQuoted) {
      example += "\\\"";
    } else if (sign == '$') {
      const std::size_t end = std::min(line.find('"', place), line.size());
      example += '%' + std::string(line.substr(place + 1, end - place - 1)) + '%';
      place = end - 1;
    } else {
      example += sign == '\\' && place + 1 == line.size() ? '^' : sign;
    }
  }
  return example;
}

bool isExample(const std::string& line) {
  return line.starts_with("  ");
}

// A heading and examples, those of hosts left out; nothing where there are no others.
std::string toLocalExamples(const std::vector<std::string>& lines) {
  std::string kept;
  for (const std::string& line : lines) {
    if (isExample(line) && !isAboutHosts(line)) {
      kept += "\n" + toExample(line);
    }
  }
  return kept.empty() ? "" : lines.front() + kept;
}

std::string toLocalParagraph(const std::string& paragraph) {
  const std::vector<std::string> lines = split(paragraph, "\n");
  if (std::none_of(lines.begin(), lines.end(), isExample)) {
    return withoutHosts(paragraph);
  }
  return paragraph.starts_with("Example") ? toLocalExamples(lines) : paragraph;
}

}  // namespace

std::string toLocalWords(std::string text) {
  for (const auto& [from, to] : kWords) {
    for (std::size_t place = text.find(from); place != std::string::npos;
         place = text.find(from, place + to.size())) {
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
