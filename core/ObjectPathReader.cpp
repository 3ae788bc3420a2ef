#include "core/ObjectPathReader.h"

#include <algorithm>
#include <set>

#include "Utils/Conversions.h"

namespace core {
namespace {

using Problem = std::optional<ObjectPathProblem>;

std::vector<std::string_view> splitUnquoted(std::string_view text, char separator) {
  return utils::splitViews(text, separator, '"');
}

bool isNameStart(char character) {
  return character == '_' || (character >= 'A' && character <= 'Z') ||
         (character >= 'a' && character <= 'z');
}

bool isNamePart(char character) {
  return isNameStart(character) || (character >= '0' && character <= '9');
}

bool isName(std::string_view text) {
  return !text.empty() && isNameStart(text.front()) &&
         std::all_of(text.begin(), text.end(), isNamePart);
}

Problem readKey(std::string_view pair, ObjectPathKey& key) {
  const std::vector<std::string_view> sides = splitUnquoted(pair, '=');
  if (sides.size() != 2) {
    return ObjectPathProblem{"only one '=' allowed", pair};
  }
  if (!isName(sides[0])) {
    return ObjectPathProblem{"invalid property name", pair};
  }
  if (sides[1].empty()) {
    return ObjectPathProblem{"property value empty", pair};
  }
  key = {sides[0], sides[1]};
  return std::nullopt;
}

Problem readKeys(std::string_view text, std::string_view path, std::vector<ObjectPathKey>& keys) {
  const std::vector<std::string_view> pairs = splitUnquoted(text, ',');
  if (pairs.empty()) {
    return ObjectPathProblem{"no properties", path};
  }
  std::set<std::string_view> names;  // a message may hold a path of very many keys
  keys.reserve(pairs.size());
  for (const std::string_view pair : pairs) {
    ObjectPathKey key;
    if (Problem problem = readKey(pair, key)) {
      return problem;
    }
    if (!names.insert(key.name).second) {
      return ObjectPathProblem{"property already exists", pair};
    }
    keys.push_back(key);
  }
  return std::nullopt;
}

}  // namespace

std::string ObjectPathProblem::describe() const {
  return offender ? std::string(what) + ": '" + std::string(*offender) + "'" : std::string(what);
}

std::optional<ObjectPathProblem> readObjectPath(std::string_view text, ObjectPathKind kind,
                                                ObjectPathParts& parts) {
  parts = {};
  if (text.empty()) {
    return ObjectPathProblem{"empty path", std::nullopt};
  }
  const std::vector<std::string_view> pieces = splitUnquoted(text, ':');
  if (pieces.size() > 2) {
    return ObjectPathProblem{"model path not found", text};
  }
  if (pieces.size() == 2) {
    parts.nameSpace = pieces.front();
  }
  parts.modelPath = pieces.back();
  const std::vector<std::string_view> halves = splitUnquoted(parts.modelPath, '.');
  const bool isClass = kind == ObjectPathKind::InstanceOrClass && halves.size() == 1;
  if (halves.size() != 2 && !isClass) {
    return ObjectPathProblem{"too many classname separators", text};
  }
  if (halves.front().empty()) {
    return ObjectPathProblem{"empty class name", text};
  }
  if (!isName(halves.front())) {
    return ObjectPathProblem{"invalid class name", text};
  }
  parts.className = halves.front();
  parts.isInstance = !isClass;
  return isClass ? std::nullopt : readKeys(halves.back(), text, parts.keys);
}

}  // namespace core
