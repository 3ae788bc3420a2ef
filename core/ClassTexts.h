// The texts of classes (core/ClassText.h), found by the class' name.
//
// One thread fills it, then any thread may read. The tables are not copied: they are constant data
// of the modules that hand them over, and live as long.

#ifndef ORVEX_CORE_CLASSTEXTS_H_
#define ORVEX_CORE_CLASSTEXTS_H_

#include <map>
#include <span>
#include <string_view>

#include "Utils/Export.h"
#include "core/CimBroker.h"
#include "core/ClassDeclaration.h"
#include "core/ClassText.h"

namespace core {

class ORVEX_CORE_API ClassTexts {
 public:
  // Adds a table. A class that has its text keeps it.
  void add(std::span<const ClassText> table);

  // Returns null for a class of which nothing is said. Names are compared without regard to case.
  [[nodiscard]] const ClassText* find(std::string_view className) const;

 private:
  std::map<std::string_view, const ClassText*, NameLess> m_texts;
};

// Returns what the broker's agents say of their classes (core/ClassDescriber.h).
[[nodiscard]] ORVEX_CORE_API ClassTexts getClassTexts(const CimBroker& broker);

}  // namespace core

#endif  // ORVEX_CORE_CLASSTEXTS_H_
