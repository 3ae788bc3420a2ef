// Names without regard to the case of ASCII letters, to be looked up: a client may list very many
// properties, and many classes are written by one list. Constant: any thread may call.

#ifndef ORVEX_CIMXML_NAMESET_H_
#define ORVEX_CIMXML_NAMESET_H_

#include <string>
#include <string_view>
#include <vector>

namespace cimxml {

class NameSet {
 public:
  // Names may come several times.
  explicit NameSet(std::vector<std::string> names);

  [[nodiscard]] bool has(std::string_view name) const;

 private:
  std::vector<std::string> m_names;  // in order, each once
};

}  // namespace cimxml

#endif  // ORVEX_CIMXML_NAMESET_H_
