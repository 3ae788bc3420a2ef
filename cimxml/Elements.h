// The elements of a request, read in the order of their content models.
//
// Whatever is not there, or has no place where it stands, is thrown as a RequestFault of a request
// that is not valid.

#ifndef ORVEX_CIMXML_ELEMENTS_H_
#define ORVEX_CIMXML_ELEMENTS_H_

#include <pugixml.hpp>
#include <string>
#include <string_view>

namespace cimxml {

[[noreturn]] void refuse(const std::string& problem);

// Returns "<NAME>".
[[nodiscard]] std::string describe(const pugi::xml_node& element);

// The elements in an element that holds no text of its own, one after the other.
class Children {
 public:
  explicit Children(const pugi::xml_node& parent);

  [[nodiscard]] bool isAtEnd() const { return !m_next; }
  [[nodiscard]] bool isAt(std::string_view name) const { return m_next && m_next.name() == name; }

  // Returns the next element, which must be there.
  pugi::xml_node take();
  // The same for one of the name.
  pugi::xml_node take(const char* name);
  // Passes over all of the name that come next.
  void skipAll(std::string_view name);
  // Throws unless all elements were taken.
  void end() const;

 private:
  void skipBlanks();

  pugi::xml_node m_parent;
  pugi::xml_node m_next;
};

// Returns the value of an attribute that must be there.
[[nodiscard]] const char* getAttribute(const pugi::xml_node& element, const char* name);

// Returns the text of an element that holds no other.
[[nodiscard]] std::string readText(const pugi::xml_node& element);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_ELEMENTS_H_
