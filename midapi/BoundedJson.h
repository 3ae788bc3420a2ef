// JSON texts in the folders of adapters, read and written within bounds.
//
// Whoever may write a folder decides what stands in it, so a text costs its readers no more than it
// is worth: its size, its nesting and the members of its objects are bounded, and what is written
// is never more than what can be read again. Pure: no I/O.

#ifndef ORVEX_MIDAPI_BOUNDEDJSON_H_
#define ORVEX_MIDAPI_BOUNDEDJSON_H_

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace ma {

// Keeps the order of members, so that a changed text still looks like its author's.
using Json = nlohmann::ordered_json;

inline constexpr std::size_t kMaxJsonSize = std::size_t{1} << 20;
// An indented text grows with the product of its size and its nesting.
inline constexpr std::size_t kMaxJsonNesting = 32;
// A member is looked up among all others of its object.
inline constexpr std::size_t kMaxJsonMembers = 1000;

// Reads an object. Throws DescriptionFault for what is none, and for what exceeds a bound.
[[nodiscard]] Json parseJsonObject(std::string_view text);

// Returns the text, indented where it fits then and else without white space. Throws
// DescriptionFault where it does not fit either way.
[[nodiscard]] std::string formatJson(const Json& json);

// Empties a value when it goes, without memory: a value that is not empty needs some for its own
// end, and ends the program where there is none.
class EmptiedJson {
 public:
  explicit EmptiedJson(Json& json) : m_json(json) {}
  EmptiedJson(const EmptiedJson&) = delete;
  EmptiedJson& operator=(const EmptiedJson&) = delete;
  ~EmptiedJson();

 private:
  Json& m_json;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_BOUNDEDJSON_H_
