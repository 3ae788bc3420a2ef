#include "cli/Output.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "Utils/Printable.h"
#include "cli/JsonOutput.h"

namespace cli {
namespace {

constexpr int kIndent = 2;

// Strings as programs write them, so that a text can be pasted into one.
std::string quoteString(const std::string& text) {
  std::string result = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') {
      result += '\\';
    }
    result += character;
  }
  return utils::toPrintable(result) + "\"";
}

// A truth value or a number looks like that in JSON; so does what has no other form for people.
std::string itemToText(const client::Value& item) {
  const std::string* const text = item.text();
  return text != nullptr ? quoteString(*text) : toJsonLine(item);
}

std::string arrayToText(const client::Value::Array& items) {
  std::string result;
  for (const client::Value& item : items) {
    result += (result.empty() ? "" : ", ") + itemToText(item);
  }
  return "{" + result + "}";
}

bool isShown(const client::PropertySnapshot& property, client::NullProperties nulls) {
  return nulls == client::NullProperties::Shown || !property.value.isNull();
}

// Returns the names of a property's numbers in parentheses, behind a blank; nothing where there are
// none.
std::string toNote(const client::ClassDescription& described,
                   const client::PropertySnapshot& property) {
  const client::ElementDescription* const element = described.findProperty(property.name);
  if (element == nullptr) {
    return {};
  }
  const client::Value names = client::findNames(element->values, property.value);
  if (names.isNull()) {
    return {};
  }
  std::string text;
  for (const client::Value& name :
       names.items() != nullptr ? *names.items() : client::Value::Array{names}) {
    text += (text.empty() ? "" : ", ") + (name.text() != nullptr ? *name.text() : "?");
  }
  return " (" + utils::toPrintable(text) + ")";
}

}  // namespace

std::string toText(const client::PropertySnapshot& property) {
  const client::Value& value = property.value;
  if (value.isNull()) {
    return "NULL";
  }
  if (property.kind != client::PropertySnapshot::Kind::Value && value.text() != nullptr) {
    return utils::toPrintable(*value.text());
  }
  return value.items() != nullptr ? arrayToText(*value.items()) : itemToText(value);
}

void printProperties(std::ostream& out, const client::Properties& properties,
                     client::NullProperties nulls, const client::ClassDescription* described) {
  // A host may name a property as it likes.
  std::vector<std::pair<std::string, const client::PropertySnapshot*>> shown;
  std::size_t width = 0;
  for (const client::PropertySnapshot& property : properties) {
    if (isShown(property, nulls)) {
      const std::string& name =
          shown.emplace_back(utils::toPrintable(property.name), &property).first;
      width = std::max(width, name.size());
    }
  }
  for (const auto& [name, property] : shown) {
    out << std::string(kIndent, ' ') << name << std::string(width - name.size(), ' ') << " = "
        << toText(*property)
        << (described != nullptr ? toNote(*described, *property) : std::string()) << '\n';
  }
}

}  // namespace cli
