#include "cimxml/ObjectNameComparison.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "Utils/Ascii.h"

namespace cimxml {
namespace {

using Kind = KeyBinding::Kind;

bool isSameReference(const KeyBinding& reference, const KeyBinding& other) {
  if (reference.reference.empty()) {
    return false;
  }
  if (other.kind == Kind::Reference) {
    return !other.reference.empty() &&
           isSameObject(reference.reference.front(), other.reference.front());
  }
  const std::optional<ObjectName> target = readObjectPath(other.text);
  return target && isSameObject(reference.reference.front(), *target);
}

bool isSameValue(const KeyBinding& left, const KeyBinding& right) {
  if (left.kind == Kind::Reference) {
    return isSameReference(left, right);
  }
  if (right.kind == Kind::Reference) {
    return isSameReference(right, left);
  }
  return left.kind == Kind::Boolean || right.kind == Kind::Boolean
             ? utils::isSameIgnoringCase(left.text, right.text)
             : left.text == right.text;
}

std::vector<const KeyBinding*> sortByName(const std::vector<KeyBinding>& keys) {
  std::vector<const KeyBinding*> sorted;
  sorted.reserve(keys.size());
  for (const KeyBinding& key : keys) {
    sorted.push_back(&key);
  }
  // Stable: names that differ by case alone stay in their order.
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const KeyBinding* left, const KeyBinding* right) {
                     return utils::LessIgnoringCase()(left->name, right->name);
                   });
  return sorted;
}

bool areSameKeys(const std::vector<KeyBinding>& left, const std::vector<KeyBinding>& right) {
  if (left.size() != right.size()) {
    return false;
  }
  if (left.size() == 1 && (left.front().name.empty() || right.front().name.empty())) {
    return isSameValue(left.front(), right.front());
  }
  const std::vector<const KeyBinding*> sorted = sortByName(left);
  const std::vector<const KeyBinding*> others = sortByName(right);
  return std::equal(sorted.begin(), sorted.end(), others.begin(),
                    [](const KeyBinding* key, const KeyBinding* other) {
                      return utils::isSameIgnoringCase(key->name, other->name) &&
                             isSameValue(*key, *other);
                    });
}

}  // namespace

bool isSameObject(const ObjectName& left, const ObjectName& right) {
  return left.isInstance == right.isInstance &&
         utils::isSameIgnoringCase(left.className, right.className) &&
         areSameKeys(left.keys, right.keys);
}

}  // namespace cimxml
