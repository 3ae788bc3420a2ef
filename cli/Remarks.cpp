#include "cli/Remarks.h"

#include <algorithm>

#include "Utils/Printable.h"
#include "client/Texts.h"

namespace cli {

void Remarks::add(const std::string& adapter, const std::string& text) {
  const auto found = std::find_if(m_remarks.begin(), m_remarks.end(),
                                  [&text](const auto& remark) { return remark.first == text; });
  if (found == m_remarks.end()) {
    m_remarks.push_back({text, {adapter}});
  } else {
    found->second.push_back(adapter);
  }
}

void Remarks::print(std::ostream& out) const {
  if (m_remarks.empty()) {
    return;
  }
  out << '\n' << m_heading << ":\n";
  for (const auto& [text, adapters] : m_remarks) {
    out << "  " << client::join(adapters, ", ") << ": " << utils::toPrintable(text) << '\n';
  }
}

}  // namespace cli
