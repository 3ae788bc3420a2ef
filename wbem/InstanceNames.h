// Finding the instance that a name in a message means: keys are compared as values of their type,
// without building object paths. Callers hold the broker's request.

#ifndef ORVEX_WBEM_INSTANCENAMES_H_
#define ORVEX_WBEM_INSTANCENAMES_H_

#include <optional>
#include <string>
#include <vector>

#include "cimxml/ObjectName.h"
#include "core/CimInstance.h"
#include "core/CimPropertyRef.h"
#include "core/CimSchema.h"

namespace wbem {

// The keys of one name, made ready to be compared with many instances of its class.
class KeyMatcher {
 public:
  // `name` is one of an instance of the class; a key without a name is the class's only one. Both
  // outlive this.
  KeyMatcher(const core::ClassDeclaration& declaration, const cimxml::ObjectName& name);

  // Returns whether a key leads to a name that names another namespace than these, or one within it
  // does.
  [[nodiscard]] bool leadsElsewhere(const std::vector<std::string>& nameSpaces) const;

  // `instance` is one of the class.
  [[nodiscard]] bool matches(core::CimInstance& instance) const;

 private:
  struct Key {
    const std::string* propertyName;
    const cimxml::KeyBinding* binding;
    std::vector<cimxml::ObjectName> reference;  // of a reference: where it leads, else empty
  };

  // Returns nothing unless the name has the keys of the class and no others.
  static std::optional<std::vector<Key>> resolve(const core::ClassDeclaration& declaration,
                                                 const cimxml::ObjectName& name);

  const std::optional<std::vector<Key>> m_keys;
};

// Returns whether the name is that of the instance. Namespaces and hosts are left aside.
[[nodiscard]] bool isNamed(core::CimInstance& instance, const cimxml::ObjectName& name);

// Returns whether the reference leads to the object of that name.
[[nodiscard]] bool leadsTo(const core::CimPropertyRef& reference, const cimxml::ObjectName& name);

// Returns the name as the agents write it: classes and keys spelled and ordered as they are
// declared, without host and namespace. What the schema does not know stays as it is.
[[nodiscard]] cimxml::ObjectName toDeclaredName(const core::CimSchema& schema,
                                                const cimxml::ObjectName& name);

// Returns the first name that names another namespace than these, in the name and in the references
// that its keys hold; null for none.
[[nodiscard]] const cimxml::ObjectName* findForeignName(const cimxml::ObjectName& name,
                                                        const std::vector<std::string>& nameSpaces);

}  // namespace wbem

#endif  // ORVEX_WBEM_INSTANCENAMES_H_
