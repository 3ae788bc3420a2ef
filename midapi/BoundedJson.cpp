#include "midapi/BoundedJson.h"

#include <array>

#include "midapi/DescriptionFault.h"

namespace ma {
namespace {

// Watches a text while it is parsed, and refuses it as soon as it exceeds a bound.
class Bounds {
 public:
  // `depth` counts what the event happens in: 0 for the text's own value.
  void check(int depth, Json::parse_event_t event) {
    const auto level = static_cast<std::size_t>(depth);
    switch (event) {
      case Json::parse_event_t::object_start:
      case Json::parse_event_t::array_start:
        if (level >= kMaxJsonNesting) {
          throw DescriptionFault("the text is nested more than " + std::to_string(kMaxJsonNesting) +
                                 " levels deep");
        }
        m_members[level + 1] = 0;
        break;
      case Json::parse_event_t::key:
        if (++m_members[level] > kMaxJsonMembers) {
          throw DescriptionFault("an object in the text has more than " +
                                 std::to_string(kMaxJsonMembers) + " members");
        }
        break;
      case Json::parse_event_t::object_end:
      case Json::parse_event_t::array_end:
      case Json::parse_event_t::value:
        break;
    }
  }

 private:
  // Of the object that is open at each level.
  std::array<std::size_t, kMaxJsonNesting + 1> m_members{};
};

// What is no UTF-8 in a name that somebody typed must not make the text unwritable.
std::string dump(const Json& json, int indent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

// The innermost values first: an empty one needs nothing.
void empty(Json& json) {
  if (auto* const object = json.get_ptr<Json::object_t*>(); object != nullptr) {
    for (auto& [name, member] : *object) {
      empty(member);
    }
    object->clear();
  } else if (auto* const array = json.get_ptr<Json::array_t*>(); array != nullptr) {
    for (Json& member : *array) {
      empty(member);
    }
    array->clear();
  }
}

}  // namespace

EmptiedJson::~EmptiedJson() {
  empty(m_json);
}

Json parseJsonObject(std::string_view text) {
  if (text.size() > kMaxJsonSize) {
    throw DescriptionFault("the text has " + std::to_string(text.size()) + " bytes, more than " +
                           std::to_string(kMaxJsonSize));
  }
  try {
    Bounds bounds;
    Json json = Json::parse(text, [&bounds](int depth, Json::parse_event_t event, Json& /*value*/) {
      bounds.check(depth, event);
      return true;
    });
    if (!json.is_object()) {
      throw DescriptionFault("the text is no JSON object");
    }
    return json;
  } catch (const Json::exception& error) {
    throw DescriptionFault(std::string("the text is no JSON: ") + error.what());
  }
}

std::string formatJson(const Json& json) {
  constexpr int kIndent = 2;
  constexpr int kNoWhiteSpace = -1;
  std::string text = dump(json, kIndent);
  if (text.size() > kMaxJsonSize) {
    text = dump(json, kNoWhiteSpace);
  }
  if (text.size() > kMaxJsonSize) {
    throw DescriptionFault("the text would have " + std::to_string(text.size()) +
                           " bytes, more than the " + std::to_string(kMaxJsonSize) +
                           " that can be read");
  }
  return text;
}

}  // namespace ma
