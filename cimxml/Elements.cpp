#include "cimxml/Elements.h"

#include <algorithm>

#include "cimxml/Characters.h"
#include "cimxml/RequestFault.h"

namespace cimxml {
namespace {

bool isText(const pugi::xml_node& node) {
  return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

bool isBlank(std::string_view text) {
  return std::all_of(text.begin(), text.end(), isXmlBlank);
}

}  // namespace

void refuse(const std::string& problem) {
  throw RequestFault(RequestFault::Kind::Malformed, kNotValid, problem);
}

std::string describe(const pugi::xml_node& element) {
  return std::string("<") + element.name() + ">";
}

Children::Children(const pugi::xml_node& parent) : m_parent(parent), m_next(parent.first_child()) {
  skipBlanks();
}

pugi::xml_node Children::take() {
  if (isAtEnd()) {
    refuse(describe(m_parent) + " lacks an element");
  }
  const pugi::xml_node taken = m_next;
  m_next = m_next.next_sibling();
  skipBlanks();
  return taken;
}

pugi::xml_node Children::take(const char* name) {
  if (!isAt(name)) {
    refuse(describe(m_parent) + " lacks <" + name + ">" +
           (isAtEnd() ? std::string() : " where " + describe(m_next) + " stands"));
  }
  return take();
}

void Children::skipAll(std::string_view name) {
  while (isAt(name)) {
    take();
  }
}

void Children::end() const {
  if (!isAtEnd()) {
    refuse(describe(m_next) + " has no place in " + describe(m_parent));
  }
}

void Children::skipBlanks() {
  for (; m_next && m_next.type() != pugi::node_element; m_next = m_next.next_sibling()) {
    if (isText(m_next) && !isBlank(m_next.value())) {
      refuse(describe(m_parent) + " holds text");
    }
  }
}

const char* getAttribute(const pugi::xml_node& element, const char* name) {
  const pugi::xml_attribute attribute = element.attribute(name);
  if (!attribute) {
    refuse(describe(element) + " lacks the attribute " + name);
  }
  return attribute.value();
}

std::string readText(const pugi::xml_node& element) {
  std::string text;
  for (const pugi::xml_node part : element.children()) {
    if (!isText(part)) {
      refuse(describe(part) + " has no place in " + describe(element));
    }
    text += part.value();
  }
  return text;
}

}  // namespace cimxml
