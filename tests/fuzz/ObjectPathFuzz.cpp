// What is made of an object path agrees, whatever the text: the broker's keys, which are texts, and
// a message's name, which also tells what a key is. A path that is written again reads the same.

#include <optional>

#include "Utils/Exception.h"
#include "cimxml/ObjectName.h"
#include "core/CimPath.h"
#include "core/ObjectPathReader.h"
#include "tests/fuzz/Fuzz.h"

namespace {

using cimxml::KeyBinding;
using cimxml::ObjectName;

std::optional<core::CimPath> readAsBroker(const std::string& text) {
  try {
    return core::CimPath(text);
  } catch (const utils::ESyntaxError&) {
    return std::nullopt;
  }
}

bool isRefused(const std::string& text) {
  try {
    static_cast<void>(cimxml::parseObjectPath(text));
    return false;
  } catch (const utils::ESyntaxError&) {
    return true;
  }
}

void compare(const core::CimPath& path, const ObjectName& name) {
  test::require(path.getClassName() == name.className, "the class is the same");
  test::require(path.size() == name.keys.size(), "there are as many keys");
  for (const KeyBinding& key : name.keys) {
    const auto found = path.find(key.name);
    test::require(found != path.end(), "the key is in both");
    test::require(key.kind == KeyBinding::Kind::Reference || key.text == found->second,
                  "the key has the same text in both");
  }
}

// What is told as a problem is a part of the text.
void checkProblem(const std::string& text, core::ObjectPathKind kind) {
  core::ObjectPathParts parts;
  const auto problem = core::readObjectPath(text, kind, parts);
  if (!problem) {
    return;
  }
  test::require(problem->offender.has_value() != text.empty(), "an empty text has no part");
  if (problem->offender) {
    const std::string_view offender = *problem->offender;
    test::require(offender.data() >= text.data() &&
                      offender.data() + offender.size() <= text.data() + text.size(),
                  "the offender is a part of the text");
  }
}

void compareWrittenBack(const ObjectName& name) {
  const std::string written = cimxml::toObjectPath(name);
  const std::optional<ObjectName> again = cimxml::readObjectPath(written);
  test::require(again.has_value(), "what is written can be read");
  test::require(cimxml::toObjectPath(*again) == written, "and is written the same again");
  if (name.isInstance) {
    const std::optional<core::CimPath> path = readAsBroker(written);
    test::require(path.has_value(), "the broker reads what is written");
    compare(*path, *again);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::optional<core::CimPath> path = readAsBroker(text);
  const std::optional<ObjectName> name = cimxml::readObjectPath(text);
  test::require(isRefused(text) == !name, "both forms for messages refuse the same");
  test::require(path.has_value() == (name && name->isInstance),
                "the broker takes the names of instances, and nothing else");
  checkProblem(text, core::ObjectPathKind::Instance);
  checkProblem(text, core::ObjectPathKind::InstanceOrClass);
  if (path) {
    compare(*path, *name);
  }
  if (name && !test::hasBackslash(*name)) {
    compareWrittenBack(*name);
  }
  return 0;
}
