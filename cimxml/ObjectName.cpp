#include "cimxml/ObjectName.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "Utils/Conversions.h"
#include "Utils/Exception.h"
#include "core/ClassDeclaration.h"

namespace cimxml {
namespace {

constexpr char kQuote = '"';
// How deep references are read within references; a text below is a string.
constexpr unsigned kDeepestReference = 16;

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

std::string toPathValue(const KeyBinding& key) {
  if (key.kind == KeyBinding::Kind::Reference) {
    return utils::quote(key.reference.empty() ? std::string() : toObjectPath(key.reference[0]));
  }
  if (key.kind == KeyBinding::Kind::Boolean) {
    if (core::isSameName(key.text, "TRUE")) {
      return "1";
    }
    if (core::isSameName(key.text, "FALSE")) {
      return "0";
    }
  }
  return key.kind != KeyBinding::Kind::String && isPlain(key.text) ? key.text
                                                                   : utils::quote(key.text);
}

}  // namespace

std::string toObjectPath(const ObjectName& name) {
  std::string path = name.className;
  if (!name.isInstance) {
    return path;
  }
  path += '.';
  for (const KeyBinding& key : name.keys) {
    path += key.name;
    path += '=';
    path += toPathValue(key);
    path += ',';
  }
  if (path.ends_with(',')) {
    path.pop_back();
  }
  return path;
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
