#include "http/RequestMessage.h"

#include <algorithm>

#include "Utils/Ascii.h"

namespace http {
namespace {

// A request may name its target with the server in front of it.
std::string_view withoutServer(std::string_view target) {
  for (const std::string_view scheme : {"http://", "https://"}) {
    if (utils::isSameIgnoringCase(target.substr(0, scheme.size()), scheme)) {
      const std::size_t path = target.find('/', scheme.size());
      return path == std::string_view::npos ? std::string_view("/") : target.substr(path);
    }
  }
  return target;
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
  m_fields.clear();
  m_body.clear();
}

void RequestMessage::setRequestLine(std::string_view method, std::string_view target) {
  m_method = append(method);
  m_target = append(withoutServer(target));
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
