// What a request says, in memory that the next one uses again. Private to this folder.

#ifndef ORVEX_HTTP_REQUESTMESSAGE_H_
#define ORVEX_HTTP_REQUESTMESSAGE_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace http {

// One object serves many requests after each other and keeps its memory.
class RequestMessage {
 public:
  [[nodiscard]] std::string_view method() const { return view(m_method); }
  // The path; what the request's target has in front of it is the authority.
  [[nodiscard]] std::string_view target() const { return view(m_target); }
  // Returns the server that the target names; nothing where it names none.
  [[nodiscard]] std::optional<std::string_view> authority() const {
    return m_authority ? std::optional(view(*m_authority)) : std::nullopt;
  }
  // Returns the value of the first field of that name, without regard to case; empty for none.
  [[nodiscard]] std::string_view field(std::string_view name) const;
  [[nodiscard]] bool hasField(std::string_view name) const { return find(name) != nullptr; }
  // Returns how many fields have that name.
  [[nodiscard]] std::size_t countFields(std::string_view name) const;
  [[nodiscard]] std::string& body() { return m_body; }
  [[nodiscard]] const std::string& body() const { return m_body; }

  void clear();
  void setRequestLine(std::string_view method, std::string_view target);
  void addField(std::string_view name, std::string_view value);

 private:
  struct Span {
    std::size_t offset = 0;
    std::size_t length = 0;
  };
  struct Field {
    Span name;
    Span value;
  };

  [[nodiscard]] std::string_view view(Span span) const {
    return std::string_view(m_text).substr(span.offset, span.length);
  }
  [[nodiscard]] const Field* find(std::string_view name) const;
  [[nodiscard]] Span append(std::string_view text);

  std::string m_text;  // what the spans are of
  Span m_method;
  Span m_target;
  std::optional<Span> m_authority;
  std::vector<Field> m_fields;
  std::string m_body;
};

}  // namespace http

#endif  // ORVEX_HTTP_REQUESTMESSAGE_H_
