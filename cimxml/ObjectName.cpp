#include "cimxml/ObjectName.h"

#include <algorithm>
#include <limits>
#include <set>
#include <string_view>
#include <utility>

#include "Utils/Conversions.h"
#include "Utils/Exception.h"
#include "cimxml/Characters.h"
#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

constexpr char kQuote = '"';
// How deep references are read within references; a text below is a string.
constexpr unsigned kDeepestReference = 16;
constexpr std::size_t kLongestDescription = 1024;

bool isNameStart(char sign) {
  return sign == '_' || (sign >= 'A' && sign <= 'Z') || (sign >= 'a' && sign <= 'z');
}

bool isName(std::string_view text) {
  return !text.empty() && isNameStart(text.front()) &&
         std::all_of(text.begin(), text.end(),
                     [](char sign) { return isNameStart(sign) || (sign >= '0' && sign <= '9'); });
}

bool isQuoted(std::string_view text) {
  return text.size() >= 2 && text.front() == kQuote && text.back() == kQuote;
}

// Reads a path. What is wrong with it is told without an exception, since every string in quotes
// is tried.
class PathReader {
 public:
  explicit PathReader(unsigned depth) : m_depth(depth) {}

  // Returns nothing for a text that is no path; then getProblem() tells why.
  std::optional<ObjectName> read(std::string_view path) {
    const std::vector<std::string_view> parts = utils::splitViews(path, ':', kQuote);
    if (parts.empty() || parts.size() > 2) {
      return refuse("model path not found", path);
    }
    ObjectName name;
    if (parts.size() == 2) {
      name.nameSpace = parts.front();
    }
    const std::vector<std::string_view> halves = utils::splitViews(parts.back(), '.', kQuote);
    if (halves.empty() || halves.size() > 2) {
      return refuse("too many classname separators", path);
    }
    if (!isName(halves.front())) {
      return refuse("invalid class name", path);
    }
    name.className = halves.front();
    name.isInstance = halves.size() == 2;
    if (name.isInstance && !readKeys(halves.back(), name.keys)) {
      return std::nullopt;
    }
    return name;
  }

  [[nodiscard]] std::string getProblem() const {
    return std::string(m_problem) + ": '" + std::string(m_offender) + "'";
  }

 private:
  std::nullopt_t refuse(const char* problem, std::string_view offender) {
    m_problem = problem;
    m_offender = offender;
    return std::nullopt;
  }

  bool readKeys(std::string_view text, std::vector<KeyBinding>& keys) {
    const std::vector<std::string_view> pairs = utils::splitViews(text, ',', kQuote);
    if (pairs.empty()) {
      refuse("no properties", text);
      return false;
    }
    std::set<std::string_view> names;
    for (const std::string_view pair : pairs) {
      std::optional<KeyBinding> key = readKey(pair);
      if (!key) {
        return false;
      }
      if (!names.insert(pair.substr(0, key->name.size())).second) {
        refuse("property already exists", pair);
        return false;
      }
      keys.push_back(std::move(*key));
    }
    return true;
  }

  std::optional<KeyBinding> readKey(std::string_view pair) {
    const std::vector<std::string_view> sides = utils::splitViews(pair, '=', kQuote);
    if (sides.size() != 2) {
      return refuse("only one '=' allowed", pair);
    }
    if (!isName(sides[0])) {
      return refuse("invalid property name", pair);
    }
    if (sides[1].empty()) {
      return refuse("property value empty", pair);
    }
    return toKey(sides[0], sides[1]);
  }

  [[nodiscard]] KeyBinding toKey(std::string_view name, std::string_view value) const {
    KeyBinding key{std::string(name), KeyBinding::Kind::String, utils::unquote(value), {}};
    if (!isQuoted(value)) {
      const bool isTruth = core::isSameName(value, "TRUE") || core::isSameName(value, "FALSE");
      key.kind = isTruth ? KeyBinding::Kind::Boolean : KeyBinding::Kind::Numeric;
    } else if (m_depth < kDeepestReference) {
      std::optional<ObjectName> target = PathReader(m_depth + 1).read(key.text);
      if (target && target->isInstance) {
        key.kind = KeyBinding::Kind::Reference;
        key.text.clear();
        key.reference.push_back(std::move(*target));
      }
    }
    return key;
  }

  unsigned m_depth;
  const char* m_problem = "";
  std::string_view m_offender;
};

// Returns whether the text can stand in a path without quotes.
bool isPlain(std::string_view text) {
  return !text.empty() && text.find_first_of("\",=.:") == std::string_view::npos;
}

// Writes a path from its begin to its end, the quotes within quotes escaped as they come, and no
// further than it is wanted.
class PathWriter {
 public:
  explicit PathWriter(std::size_t most) : m_most(most) {}

  // `depth` is in how many references the name stands.
  void write(const ObjectName& name, unsigned depth = 0) {
    append(name.className, depth);
    if (!name.isInstance) {
      return;
    }
    append(".", depth);
    for (const KeyBinding& key : name.keys) {
      if (isFull()) {
        return;
      }
      if (&key != name.keys.data()) {
        append(",", depth);
      }
      append(key.name, depth);
      append("=", depth);
      writeValue(key, depth);
    }
  }

  // Returns what is written: all of it, or more than was wanted.
  [[nodiscard]] std::string take() { return std::move(m_path); }

 private:
  [[nodiscard]] bool isFull() const { return m_path.size() > m_most; }

  void append(std::string_view text, unsigned depth) {
    for (const char sign : text) {
      if (isFull()) {
        return;
      }
      if (sign == kQuote) {
        m_path.append(depth, '\\');
      }
      m_path += sign;
    }
  }

  void writeValue(const KeyBinding& key, unsigned depth) {
    if (key.kind == KeyBinding::Kind::Reference) {
      append("\"", depth);
      if (!key.reference.empty()) {
        write(key.reference.front(), depth + 1);
      }
      append("\"", depth);
    } else if (key.kind == KeyBinding::Kind::Boolean && core::isSameName(key.text, "TRUE")) {
      append("1", depth);
    } else if (key.kind == KeyBinding::Kind::Boolean && core::isSameName(key.text, "FALSE")) {
      append("0", depth);
    } else if (key.kind != KeyBinding::Kind::String && isPlain(key.text)) {
      append(key.text, depth);
    } else {
      append("\"", depth);
      append(key.text, depth + 1);
      append("\"", depth);
    }
  }

  const std::size_t m_most;
  std::string m_path;
};

}  // namespace

std::string toObjectPath(const ObjectName& name) {
  PathWriter writer(std::numeric_limits<std::size_t>::max());
  writer.write(name);
  return writer.take();
}

std::string describeObject(const ObjectName& name) {
  PathWriter writer(kLongestDescription);
  writer.write(name);
  return shorten(writer.take(), kLongestDescription);
}

ObjectName parseObjectPath(const std::string& path) {
  PathReader reader(0);
  std::optional<ObjectName> name = reader.read(path);
  if (!name) {
    throw utils::ESyntaxError(reader.getProblem());
  }
  return std::move(*name);
}

std::optional<ObjectName> readObjectPath(std::string_view text) {
  return PathReader(0).read(text);
}

}  // namespace cimxml
