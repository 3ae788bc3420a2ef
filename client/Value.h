// A value as a client of CIM meets it: what a property or an argument holds, or a document made of
// such values. A plain value of its own, whatever the other side was. Any thread, as a text.

#ifndef ORVEX_CLIENT_VALUE_H_
#define ORVEX_CLIENT_VALUE_H_

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace client {

class Value {
 public:
  struct Field;  // of an object that is made at once
  using Array = std::vector<Value>;
  // In the order in which the fields were set; no two have one name.
  using Object = std::vector<std::pair<std::string, Value>>;
  // NULL comes first. A whole number is signed only where it is below zero.
  using Variant = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double,
                               std::string, Array, Object>;

  Value() = default;
  explicit Value(bool truth) : m_value(truth) {}
  template <std::signed_integral Number>
  explicit Value(Number number) : m_value(makeWhole(number)) {}
  template <std::unsigned_integral Number>
  explicit Value(Number number) : m_value(std::uint64_t{number}) {}
  explicit Value(double number) : m_value(number) {}
  explicit Value(std::string text) : m_value(std::move(text)) {}
  explicit Value(std::string_view text) : m_value(std::string(text)) {}
  explicit Value(const char* text) : m_value(std::string(text)) {}
  // An array of whatever the items are as values.
  template <class Item>
  explicit Value(const std::vector<Item>& items);

  [[nodiscard]] static Value array(std::initializer_list<Value> items = {});
  [[nodiscard]] static Value object(std::initializer_list<Field> fields = {});

  [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(m_value); }
  // Returns null for a value that is no text.
  [[nodiscard]] const std::string* text() const { return std::get_if<std::string>(&m_value); }
  // Returns null for a value that is no array.
  [[nodiscard]] const Array* items() const { return std::get_if<Array>(&m_value); }
  // Returns the field of an object; null where there is none.
  [[nodiscard]] const Value* find(std::string_view name) const;
  [[nodiscard]] const Variant& variant() const { return m_value; }

  // Returns the value as bool, std::string, a whole number, or a vector of these; nothing where it
  // is of another type, and for a number out of range. A truth value is the number 0 or 1, too.
  template <class Type>
  [[nodiscard]] std::optional<Type> as() const;

  // Sets a field of an object; one of that name is replaced in its place. NULL becomes an object.
  void set(std::string_view name, Value value);
  template <class Type>
  void set(std::string_view name, const Type& value) {
    set(name, Value(value));
  }
  // Adds an item to an array. NULL becomes an array.
  void push(Value item);

  friend bool operator==(const Value& left, const Value& right);

 private:
  [[nodiscard]] static Variant makeWhole(std::int64_t number) {
    return number < 0 ? Variant(number) : Variant(static_cast<std::uint64_t>(number));
  }
  template <class Number>
  [[nodiscard]] std::optional<Number> toNumber() const;

  Variant m_value;
};

struct Value::Field {
  Field(std::string fieldName, Value fieldValue)
      : name(std::move(fieldName)), value(std::move(fieldValue)) {}
  template <class Type>
  Field(std::string fieldName, const Type& fieldValue)
      : name(std::move(fieldName)), value(fieldValue) {}

  std::string name;
  Value value;
};

template <class Item>
Value::Value(const std::vector<Item>& items) : m_value(Array()) {
  for (const Item& item : items) {
    push(Value(item));
  }
}

template <class Number>
std::optional<Number> Value::toNumber() const {
  if (const auto* truth = std::get_if<bool>(&m_value)) {
    return static_cast<Number>(*truth);
  }
  if (const auto* number = std::get_if<std::int64_t>(&m_value);
      number != nullptr && std::in_range<Number>(*number)) {
    return static_cast<Number>(*number);
  }
  if (const auto* number = std::get_if<std::uint64_t>(&m_value);
      number != nullptr && std::in_range<Number>(*number)) {
    return static_cast<Number>(*number);
  }
  return std::nullopt;
}

template <class Type>
std::optional<Type> Value::as() const {
  if constexpr (std::is_same_v<Type, bool> || std::is_same_v<Type, std::string>) {
    const Type* held = std::get_if<Type>(&m_value);
    return held != nullptr ? std::optional<Type>(*held) : std::nullopt;
  } else if constexpr (std::is_integral_v<Type>) {
    return toNumber<Type>();
  } else {
    const Array* const held = items();
    if (held == nullptr) {
      return std::nullopt;
    }
    Type result;
    for (const Value& item : *held) {
      std::optional<typename Type::value_type> read = item.as<typename Type::value_type>();
      if (!read) {
        return std::nullopt;
      }
      result.push_back(std::move(*read));
    }
    return result;
  }
}

}  // namespace client

#endif  // ORVEX_CLIENT_VALUE_H_
