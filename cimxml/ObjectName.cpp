#include "cimxml/ObjectName.h"

#include <limits>
#include <string_view>
#include <utility>

#include "Utils/Ascii.h"
#include "Utils/Conversions.h"
#include "Utils/Exception.h"
#include "cimxml/Characters.h"
#include "core/ObjectPathReader.h"

namespace cimxml {
namespace {

constexpr char kQuote = '"';
// How deep references are read within references; a text below is a string.
constexpr unsigned kDeepestReference = 16;
constexpr std::size_t kLongestDescription = 1024;

bool isQuoted(std::string_view text) {
  return text.size() >= 2 && text.front() == kQuote && text.back() == kQuote;
}

std::optional<ObjectName> toReference(std::string_view text, unsigned depth);

// `depth` is in how many references the key stands.
KeyBinding toKey(const core::ObjectPathKey& part, unsigned depth) {
  KeyBinding key{std::string(part.name), KeyBinding::Kind::String, utils::unquote(part.value), {}};
  if (!isQuoted(part.value)) {
    const bool isTruth = utils::isSameIgnoringCase(part.value, "TRUE") ||
                         utils::isSameIgnoringCase(part.value, "FALSE");
    key.kind = isTruth ? KeyBinding::Kind::Boolean : KeyBinding::Kind::Numeric;
  } else if (std::optional<ObjectName> target = toReference(key.text, depth + 1)) {
    key.kind = KeyBinding::Kind::Reference;
    key.text.clear();
    key.reference.push_back(std::move(*target));
  }
  return key;
}

ObjectName toName(const core::ObjectPathParts& parts, unsigned depth) {
  ObjectName name;
  name.nameSpace = parts.nameSpace.value_or("");
  name.className = parts.className;
  name.isInstance = parts.isInstance;
  name.keys.reserve(parts.keys.size());
  for (const core::ObjectPathKey& key : parts.keys) {
    name.keys.push_back(toKey(key, depth));
  }
  return name;
}

// Every string in quotes may be one.
std::optional<ObjectName> toReference(std::string_view text, unsigned depth) {
  core::ObjectPathParts parts;
  if (depth > kDeepestReference ||
      core::readObjectPath(text, core::ObjectPathKind::Instance, parts)) {
    return std::nullopt;
  }
  return toName(parts, depth);
}

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
    } else if (key.kind == KeyBinding::Kind::Boolean &&
               utils::isSameIgnoringCase(key.text, "TRUE")) {
      append("1", depth);
    } else if (key.kind == KeyBinding::Kind::Boolean &&
               utils::isSameIgnoringCase(key.text, "FALSE")) {
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
  core::ObjectPathParts parts;
  if (const auto problem =
          core::readObjectPath(path, core::ObjectPathKind::InstanceOrClass, parts)) {
    throw utils::ESyntaxError(problem->describe());
  }
  return toName(parts, 0);
}

std::optional<ObjectName> readObjectPath(std::string_view text) {
  core::ObjectPathParts parts;
  if (core::readObjectPath(text, core::ObjectPathKind::InstanceOrClass, parts)) {
    return std::nullopt;
  }
  return toName(parts, 0);
}

}  // namespace cimxml
