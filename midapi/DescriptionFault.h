// What is wrong with a text in an adapter's folder.

#ifndef ORVEX_MIDAPI_DESCRIPTIONFAULT_H_
#define ORVEX_MIDAPI_DESCRIPTIONFAULT_H_

#include <exception>
#include <string>
#include <utility>

namespace ma {

// A text that is not what it should be. what() names the field where there is one, as in
// "field ports[1].mac: must be like \"02:00:00:03:00:00\"".
class DescriptionFault final : public std::exception {
 public:
  explicit DescriptionFault(std::string text) : m_text(std::move(text)) {}
  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  std::string m_text;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_DESCRIPTIONFAULT_H_
