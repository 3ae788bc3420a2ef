#include "http/RequestMessage.h"

#include <algorithm>

#include "Utils/Ascii.h"

namespace http {
namespace {

constexpr std::string_view kSchemes[] = {"http://", "https://"};

// Takes off the scheme of a target that names its server, if it does.
bool removeScheme(std::string_view& target) {
  for (const std::string_view scheme : kSchemes) {
    if (utils::isSameIgnoringCase(target.substr(0, scheme.size()), scheme)) {
      target.remove_prefix(scheme.size());
      return true;
    }
  }
  return false;
}

}  // namespace

std::string_view RequestMessage::field(std::string_view name) const {
  const Field* found = find(name);
  return found != nullptr ? view(found->value) : std::string_view();
}

std::size_t RequestMessage::countFields(std::string_view name) const {
  return static_cast<std::size_t>(std::count_if(
      m_fields.begin(), m_fields.end(),
      [&](const Field& field) { return utils::isSameIgnoringCase(view(field.name), name); }));
}

void RequestMessage::clear() {
  m_text.clear();
  m_method = {};
  m_target = {};
  m_authority.reset();
  m_fields.clear();
  m_body.clear();
}

void RequestMessage::setRequestLine(std::string_view method, std::string_view target) {
  m_method = append(method);
  m_authority.reset();
  if (!removeScheme(target)) {
    m_target = append(target);
    return;
  }
  const std::string_view authority = target.substr(0, target.find_first_of("/?#"));
  const std::string_view path = target.substr(authority.size());
  m_authority = append(authority);
  const bool isRooted = path.starts_with('/');
  m_target = append(isRooted ? "" : "/");
  m_target.length += append(path).length;
}

void RequestMessage::addField(std::string_view name, std::string_view value) {
  Field& field = m_fields.emplace_back();
  field.name = append(name);
  field.value = append(value);
}

const RequestMessage::Field* RequestMessage::find(std::string_view name) const {
  const auto found = std::find_if(m_fields.begin(), m_fields.end(), [&](const Field& field) {
    return utils::isSameIgnoringCase(view(field.name), name);
  });
  return found != m_fields.end() ? &*found : nullptr;
}

RequestMessage::Span RequestMessage::append(std::string_view text) {
  const Span span{m_text.size(), text.size()};
  m_text.append(text);
  return span;
}

}  // namespace http
