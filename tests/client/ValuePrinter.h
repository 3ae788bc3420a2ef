// How a failed expectation shows a client::Value.

#ifndef ORVEX_TESTS_CLIENT_VALUEPRINTER_H_
#define ORVEX_TESTS_CLIENT_VALUEPRINTER_H_

#include <ostream>
#include <string>
#include <variant>

#include "client/Value.h"

namespace test {

// Returns a number or a truth value as it is, a text in quotes, an array as {1, 2}, nothing as
// NULL.
inline std::string textOf(const client::Value& value) {
  struct Writer {
    std::string operator()(std::monostate) const { return "NULL"; }
    std::string operator()(bool truth) const { return truth ? "true" : "false"; }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(std::uint64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return std::to_string(number); }
    std::string operator()(const std::string& text) const { return '"' + text + '"'; }
    std::string operator()(const client::Value::Array& items) const {
      std::string text;
      for (const client::Value& item : items) {
        text += (text.empty() ? "" : ", ") + textOf(item);
      }
      return "{" + text + "}";
    }
    std::string operator()(const client::Value::Object& fields) const {
      std::string text;
      for (const auto& [name, field] : fields) {
        text += (text.empty() ? "" : ", ") + name + ": " + textOf(field);
      }
      return "{" + text + "}";
    }
  };
  return std::visit(Writer(), value.variant());
}

}  // namespace test

namespace client {

inline void PrintTo(const Value& value, std::ostream* out) {  // GoogleTest's name for it
  *out << test::textOf(value);
}

}  // namespace client

#endif  // ORVEX_TESTS_CLIENT_VALUEPRINTER_H_
