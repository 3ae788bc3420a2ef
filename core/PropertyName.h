// The name of a property.
//
// The instances of a class have the same names, over and over: the names that classes give to their
// properties stand in one table of the process, where they stay until it ends, and a property only
// points at its name. A name that comes from outside, as an argument's may, is never entered, so
// that no client makes the table grow; it is found there, or is a text of its own.
//
// A name never changes. Any thread may make, compare and destroy names.

#ifndef ORVEX_CORE_PROPERTYNAME_H_
#define ORVEX_CORE_PROPERTYNAME_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "Utils/Export.h"

namespace core {

// Who gave a property its name.
enum class NameSource { Class, Outside };

class ORVEX_CORE_API PropertyName {
 public:
  PropertyName(std::string_view name, NameSource source);
  PropertyName(const PropertyName&) = delete;
  PropertyName& operator=(const PropertyName&) = delete;
  ~PropertyName() {
    if (m_isOwned) {
      delete m_text;
    }
  }

  [[nodiscard]] const std::string& text() const { return *m_text; }
  [[nodiscard]] std::size_t length() const { return m_text->length(); }

  // Compares the texts, which are one object where both stand in the table.
  friend bool operator==(const PropertyName& left, const PropertyName& right) {
    return left.m_text == right.m_text ||
           ((left.m_isOwned || right.m_isOwned) && *left.m_text == *right.m_text);
  }

 private:
  const std::string* m_text;
  bool m_isOwned;  // not in the table
};

}  // namespace core

#endif  // ORVEX_CORE_PROPERTYNAME_H_
