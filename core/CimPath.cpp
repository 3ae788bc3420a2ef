#include "core/CimPath.h"

#include <algorithm>
#include <vector>

#include "Utils/Conversions.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimPath"};
constexpr const char* kConstructor = "core::CimPath::CimPath";

[[noreturn]] void refuse(const char* problem, std::string_view text) {
  throw utils::ESyntaxError(std::string(problem) + ": '" + std::string(text) + "'");
}

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

}  // namespace

CimPath::CimPath(const std::string& path) {
  utils::logDebug(kLog, kConstructor, "Creating path %s", path.c_str());
  if (path.empty()) {
    throw utils::ESyntaxError("empty path");
  }
  const std::vector<std::string_view> parts = splitUnquoted(path, ':');
  if (parts.size() == 2) {
    utils::logDebug(kLog, kConstructor, "namespace is stripped [%s]",
                    std::string(parts.front()).c_str());
  } else if (parts.size() != 1) {
    refuse("model path not found", path);
  }
  const std::string_view modelPath = parts.back();
  const std::vector<std::string_view> halves = splitUnquoted(modelPath, '.');
  if (halves.size() != 2) {
    refuse("too many classname separators", path);
  }
  parseClassName(halves[0], path);
  const std::vector<std::string_view> pairs = splitUnquoted(halves[1], ',');
  if (pairs.empty()) {
    refuse("no properties", path);
  }
  for (const std::string_view pair : pairs) {
    parseKey(pair);
  }
  m_modelPath = modelPath;
}

CimPath::CimPath(const CimPath&) = default;
CimPath& CimPath::operator=(const CimPath&) = default;
CimPath::~CimPath() = default;

void CimPath::parseClassName(std::string_view name, const std::string& path) {
  if (name.empty()) {
    refuse("empty class name", path);
  }
  if (!isName(name)) {
    refuse("invalid class name", path);
  }
  m_className = name;
}

void CimPath::parseKey(std::string_view pair) {
  const std::vector<std::string_view> sides = splitUnquoted(pair, '=');
  if (sides.size() != 2) {
    refuse("only one '=' allowed", pair);
  }
  if (!isName(sides[0])) {
    refuse("invalid property name", pair);
  }
  if (sides[1].empty()) {
    refuse("property value empty", pair);
  }
  if (!emplace(sides[0], utils::unquote(sides[1])).second) {
    refuse("property already exists", pair);
  }
}

}  // namespace core
