#include "query/ObjectPathComparison.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "Utils/Conversions.h"
#include "core/ClassDeclaration.h"
#include "core/ObjectPathReader.h"

namespace query {
namespace {

// A path in a path in a path: no association refers to associations deeper than this.
constexpr unsigned kDeepest = 8;

std::optional<core::ObjectPathParts> read(std::string_view text) {
  core::ObjectPathParts parts;
  return core::readObjectPath(text, core::ObjectPathKind::Instance, parts) ? std::nullopt
                                                                           : std::optional(parts);
}

bool isSameObjectWithin(std::string_view left, std::string_view right, unsigned depth);

bool isSameValue(const core::ObjectPathKey& left, const core::ObjectPathKey& right,
                 unsigned depth) {
  const std::string one = utils::unquote(left.value);
  const std::string other = utils::unquote(right.value);
  return one == other || (depth < kDeepest && isSameObjectWithin(one, other, depth + 1));
}

void sortByName(std::vector<core::ObjectPathKey>& keys) {
  std::stable_sort(keys.begin(), keys.end(),
                   [](const core::ObjectPathKey& left, const core::ObjectPathKey& right) {
                     return core::NameLess()(left.name, right.name);
                   });
}

bool isSameObjectWithin(std::string_view left, std::string_view right, unsigned depth) {
  std::optional<core::ObjectPathParts> one = read(left);
  std::optional<core::ObjectPathParts> other = read(right);
  if (!one || !other || !core::isSameName(one->className, other->className)) {
    return false;
  }
  sortByName(one->keys);
  sortByName(other->keys);
  return std::equal(one->keys.begin(), one->keys.end(), other->keys.begin(), other->keys.end(),
                    [depth](const core::ObjectPathKey& key, const core::ObjectPathKey& otherKey) {
                      return core::isSameName(key.name, otherKey.name) &&
                             isSameValue(key, otherKey, depth);
                    });
}

}  // namespace

bool isObjectPath(std::string_view text) {
  return read(text).has_value();
}

bool isSameObject(std::string_view left, std::string_view right) {
  return isSameObjectWithin(left, right, 0);
}

}  // namespace query
