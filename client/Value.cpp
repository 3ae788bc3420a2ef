#include "client/Value.h"

#include <algorithm>

namespace client {

Value Value::array(std::initializer_list<Value> items) {
  Value result;
  result.m_value = Array(items);
  return result;
}

Value Value::object(std::initializer_list<Field> fields) {
  Value result;
  result.m_value = Object();
  for (const Field& field : fields) {
    result.set(field.name, field.value);
  }
  return result;
}

const Value* Value::find(std::string_view name) const {
  const auto* const fields = std::get_if<Object>(&m_value);
  if (fields == nullptr) {
    return nullptr;
  }
  const auto found = std::find_if(fields->begin(), fields->end(),
                                  [name](const auto& field) { return field.first == name; });
  return found != fields->end() ? &found->second : nullptr;
}

void Value::set(std::string_view name, Value value) {
  if (isNull()) {
    m_value = Object();
  }
  auto& fields = std::get<Object>(m_value);
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [name](const auto& field) { return field.first == name; });
  if (found != fields.end()) {
    found->second = std::move(value);
  } else {
    fields.emplace_back(std::string(name), std::move(value));
  }
}

void Value::push(Value item) {
  if (isNull()) {
    m_value = Array();
  }
  std::get<Array>(m_value).push_back(std::move(item));
}

bool operator==(const Value& left, const Value& right) {
  return left.m_value == right.m_value;
}

}  // namespace client
