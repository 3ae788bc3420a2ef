// How the C++ classes of instances become declarations of CIM classes.
//
// The C++ class is the description. Its member properties, in their order, are the properties of
// the CIM class. Beside them stand, in each class on the way from core::CimInstance down:
//
//   static constexpr const char* kClassName = "CIM_Job";   the name of the CIM class
//   using Superclass = CIM_LogicalElement;                 core::CimInstance in a top-level class
//
// and, where a class says more than its superclass, getKeys (core/CimKeys.h) and its methods:
//
//   static std::vector<core::MethodDeclaration> getMethods();

#ifndef ORVEX_CORE_DECLARECLASS_H_
#define ORVEX_CORE_DECLARECLASS_H_

#include <cstddef>
#include <string>
#include <type_traits>

#include "core/CimInstance.h"
#include "core/CimKeys.h"
#include "core/CimSchema.h"

namespace core {

// An instance that is there for its properties alone.
template <class Class, class Model = Class>
class PrototypeOf final : public Model {
 public:
  [[nodiscard]] std::string getClassName() const override { return Class::kClassName; }
};

template <class Class, class Model = Class>
void declareClass(CimSchema& schema);

// Declares the superclasses that are not declared yet. Returns the name of the nearest one, nothing
// for a top-level class.
template <class Class>
std::string declareSuperclass(CimSchema& schema) {
  using Superclass = typename Class::Superclass;
  static_assert(std::is_base_of_v<Superclass, Class> && !std::is_same_v<Superclass, Class>);
  if constexpr (std::is_same_v<Superclass, CimInstance>) {
    return {};
  } else {
    if (schema.find(Superclass::kClassName) == nullptr) {
      declareClass<Superclass>(schema);
    }
    return Superclass::kClassName;
  }
}

// Declares a class, and first the superclasses that are not declared yet. Model is what is built to
// see the properties: where Class cannot be built without arguments, a class derived from it that
// can. Throws as CimSchema::add.
template <class Class, class Model>
void declareClass(CimSchema& schema) {
  using Superclass = typename Class::Superclass;
  static_assert(std::is_base_of_v<Class, Model>);
  PrototypeOf<Class, Model> instance;
  if constexpr (requires { Model::getKeys(instance); }) {
    markKeys(instance);
  }
  CimSchema::Prototype prototype{instance, declareSuperclass<Class>(schema), 0, {}};
  if constexpr (!std::is_same_v<Superclass, CimInstance>) {
    prototype.inheritedObjects = PrototypeOf<Superclass>().getProperties().size();
  }
  if constexpr (requires { Class::getMethods(); }) {
    prototype.methods = Class::getMethods();
  }
  schema.add(prototype);
}

// Declares classes that have no more properties, keys and methods than their superclasses; builds
// none of them.
template <class... Classes>
void declarePlainClasses(CimSchema& schema) {
  (schema.addPlain(Classes::kClassName, declareSuperclass<Classes>(schema)), ...);
}

}  // namespace core

#endif  // ORVEX_CORE_DECLARECLASS_H_
