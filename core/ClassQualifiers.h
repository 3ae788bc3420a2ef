// The qualifiers of a class and of its elements: made of the class' declaration and of what there
// is to say of it. All that shows qualifiers shows these.
//
// The schema and the texts are the caller's and outlive this and what it returns. Constant; any
// thread may call.

#ifndef ORVEX_CORE_CLASSQUALIFIERS_H_
#define ORVEX_CORE_CLASSQUALIFIERS_H_

#include <string_view>
#include <vector>

#include "Utils/Export.h"
#include "core/CimSchema.h"
#include "core/ClassTexts.h"
#include "core/Qualifiers.h"

namespace core {

struct Qualifier {
  const QualifierDeclaration* declaration = nullptr;
  bool isTrue = false;                  // of a boolean
  std::vector<std::string_view> texts;  // of an array all elements, of a string the one
};

class ORVEX_CORE_API ClassQualifiers {
 public:
  using List = std::vector<Qualifier>;

  enum class Texts {
    Own,        // what the class says itself
    Inherited,  // that, and what it leaves to those above it
  };

  ClassQualifiers(const CimSchema& schema, const ClassTexts& texts, Texts shown = Texts::Inherited);

  // The elements are those of the class. Each list is in the order in which declarations show it.
  [[nodiscard]] List ofClass(const ClassDeclaration& declaration) const;
  [[nodiscard]] List ofProperty(const ClassDeclaration& declaration,
                                const PropertyDeclaration& property) const;
  [[nodiscard]] List ofMethod(const ClassDeclaration& declaration,
                              const MethodDeclaration& method) const;
  [[nodiscard]] List ofParameter(const MethodDeclaration& method,
                                 const ParameterDeclaration& parameter) const;

 private:
  using Chain = std::vector<const ClassText*>;

  // Returns the texts that count for what the class declares: its own, and those of the classes
  // above.
  [[nodiscard]] Chain getTexts(std::string_view className) const;
  // Returns whether the class declares anew what one above it has.
  template <class Element>
  [[nodiscard]] bool isOverriding(const ClassDeclaration& declaration, const Element& element,
                                  const Element* (ClassDeclaration::*find)(std::string_view)
                                      const) const;

  const CimSchema& m_schema;
  const ClassTexts& m_texts;
  const Texts m_shown;
};

// Returns the texts of the list's qualifier of that name; none where there is none.
[[nodiscard]] ORVEX_CORE_API std::vector<std::string_view> findTexts(
    const ClassQualifiers::List& list, QualifierName name);

// Returns the value names that the list's qualifiers give; none where there are none.
[[nodiscard]] ORVEX_CORE_API std::vector<ValueName> findValueNames(
    const ClassQualifiers::List& list);

}  // namespace core

#endif  // ORVEX_CORE_CLASSQUALIFIERS_H_
