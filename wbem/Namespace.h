// A namespace as clients see it: its classes, and who serves their instances.
//
// Constant but for the cache of formats, which is guarded: any thread may call. Instances are
// visited under the broker's request.

#ifndef ORVEX_WBEM_NAMESPACE_H_
#define ORVEX_WBEM_NAMESPACE_H_

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "Utils/Mutex.h"
#include "cimxml/InstanceFormat.h"
#include "cimxml/ObjectName.h"
#include "core/CimAgent.h"
#include "core/CimSchema.h"
#include "wbem/InstanceNames.h"

namespace wbem {

// A class that has instances of its own.
struct ServedClass {
  const core::ClassDeclaration* declaration = nullptr;
  std::vector<core::CimAgent*> agents;           // that serve it, in the broker's order
  std::vector<core::CimInstance*> ownInstances;  // of the server, constant
  // Its instances refer to objects of both namespaces, and nothing else is in them.
  bool isCrossing = false;

  // Calls visit(instance) for each instance until it returns false. The pointers are valid until
  // the next visit to the class. Throws what a provider throws.
  template <class Visit>
  void visitInstances(Visit visit) const {
    for (core::CimAgent* agent : agents) {
      core::InstanceList::Iterator cursor = agent->getInstances(declaration->name);
      for (core::CimInstance* instance = cursor.first(); instance != nullptr;
           instance = cursor.next()) {
        if (!visit(*instance)) {
          return;
        }
      }
    }
    for (core::CimInstance* instance : ownInstances) {
      if (!visit(*instance)) {
        return;
      }
    }
  }

  // Calls use(served, instance) for the first instance that matches, when there is one, and returns
  // whether there is. Throws as visitInstances.
  template <class Use>
  [[nodiscard]] bool withInstance(const KeyMatcher& matcher, Use use) const {
    bool isFound = false;
    visitInstances([&](core::CimInstance& instance) {
      isFound = matcher.matches(instance);
      if (isFound) {
        use(*this, instance);
      }
      return !isFound;
    });
    return isFound;
  }
};

class Namespace {
 public:
  // Which instance formats are kept: those that do not depend on a list of properties.
  struct FormatOptions {
    bool isLocalOnly = false;
    bool hasClassOrigin = false;
    const core::ClassDeclaration* ancestor = nullptr;

    [[nodiscard]] auto tie() const { return std::tie(isLocalOnly, hasClassOrigin, ancestor); }
    friend bool operator<(const FormatOptions& left, const FormatOptions& right) {
      return left.tie() < right.tie();
    }
  };
  using Format = std::shared_ptr<const cimxml::InstanceFormat>;

  // The declarations of the served classes are those of the schema.
  Namespace(std::string name, std::shared_ptr<const core::CimSchema> schema,
            std::vector<ServedClass> served);

  [[nodiscard]] const std::string& name() const { return m_name; }
  [[nodiscard]] const core::CimSchema& schema() const { return *m_schema; }

  // Throws StatusFault (CIM_ERR_INVALID_CLASS).
  [[nodiscard]] const core::ClassDeclaration& demandClass(std::string_view className) const;

  // Returns null when nobody serves the class itself.
  [[nodiscard]] const ServedClass* findServed(std::string_view className) const;
  // Returns the served classes that are the class or below it, the class first. Throws as
  // demandClass.
  [[nodiscard]] std::vector<const ServedClass*> demandServedBelow(std::string_view className) const;
  // Returns all of them, by name.
  [[nodiscard]] std::vector<const ServedClass*> served() const;

  // Calls use(served, instance) for the instance of that name, when there is one, and returns
  // whether there is. Throws as demandClass, and what a provider throws.
  template <class Use>
  [[nodiscard]] bool withInstance(const cimxml::ObjectName& instanceName, Use use) const;

  [[nodiscard]] Format format(const core::ClassDeclaration& declaration,
                              const FormatOptions& options) const;

 private:
  struct Key {
    const core::ClassDeclaration* declaration = nullptr;
    FormatOptions options;

    friend bool operator<(const Key& left, const Key& right) {
      return std::tie(left.declaration, left.options) < std::tie(right.declaration, right.options);
    }
  };

  const std::string m_name;
  const std::shared_ptr<const core::CimSchema> m_schema;
  std::map<std::string_view, ServedClass, core::NameLess> m_served;

  mutable utils::Mutex m_formatsMutex;
  mutable std::map<Key, Format> m_formats ORVEX_GUARDED_BY(m_formatsMutex);
};

template <class Use>
bool Namespace::withInstance(const cimxml::ObjectName& instanceName, Use use) const {
  const core::ClassDeclaration& declaration = demandClass(instanceName.className);
  const ServedClass* served = findServed(declaration.name);
  return served != nullptr && served->withInstance(KeyMatcher(declaration, instanceName), use);
}

}  // namespace wbem

#endif  // ORVEX_WBEM_NAMESPACE_H_
