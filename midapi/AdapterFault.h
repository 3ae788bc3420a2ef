// Why adapters cannot be listed or made.

#ifndef ORVEX_MIDAPI_ADAPTERFAULT_H_
#define ORVEX_MIDAPI_ADAPTERFAULT_H_

#include <exception>
#include <string>

#include "midapi/Export.h"

namespace ma {

// What went wrong, with what, and what to do about it: what() is one line for a person.
class ORVEX_MIDAPI_API AdapterFault final : public std::exception {
 public:
  explicit AdapterFault(std::string text);
  AdapterFault(const AdapterFault&) = default;
  AdapterFault& operator=(const AdapterFault&) = default;
  ~AdapterFault() override;

  [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

 private:
  std::string m_text;
};

}  // namespace ma

#endif  // ORVEX_MIDAPI_ADAPTERFAULT_H_
