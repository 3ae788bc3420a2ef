// The declarations of the classes that the agents serve, with all that these derive from.
//
// One thread fills a schema, then any thread may read it: nothing is locked. A declaration stays at
// its address for the life of the schema. Agents declare their classes with declareClass
// (core/DeclareClass.h); front ends get the schema of all agents from core::CimBroker::getSchema().
//
// Class names are compared without regard to case. Where a name is asked for, one that is not
// declared has no relations, and the empty name stands for what is above the top-level classes.

#ifndef ORVEX_CORE_CIMSCHEMA_H_
#define ORVEX_CORE_CIMSCHEMA_H_

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Utils/Export.h"
#include "core/CimInstance.h"
#include "core/ClassDeclaration.h"

namespace core {

class ORVEX_CORE_API CimSchema {
 public:
  using Classes = std::vector<const ClassDeclaration*>;

  // An instance of a class, made to see what the class declares. Its keys are marked.
  struct Prototype {
    CimInstance& instance;
    std::string superclass;        // empty: none
    std::size_t inheritedObjects;  // how many property objects the superclass's part of it holds
    std::vector<MethodDeclaration> methods;  // those that the class declares; more do no harm
  };

  CimSchema();
  CimSchema(const CimSchema&) = delete;
  CimSchema& operator=(const CimSchema&) = delete;
  ~CimSchema();

  // Adds a class behind the others; the same declaration again changes nothing. Throws
  // utils::Exception for a class whose superclass is not declared, and for another declaration
  // under a name that is taken.
  void add(ClassDeclaration declaration);
  // Adds the class that the prototype is an instance of. Throws as above.
  void add(const Prototype& prototype);
  // Adds a class that has what its superclass has. Throws as above.
  void addPlain(const std::string& className, const std::string& superclass);

  // Returns null when the class is not declared.
  [[nodiscard]] const ClassDeclaration* find(std::string_view className) const;
  // Returns the superclass chain, the nearest first.
  [[nodiscard]] Classes getSuperclasses(std::string_view className) const;
  // Returns the classes directly below; the top-level classes for the empty name.
  [[nodiscard]] const Classes& getSubclasses(std::string_view className) const;
  // Returns all classes below, each behind its superclass; all classes for the empty name.
  [[nodiscard]] const Classes& getDescendants(std::string_view className) const;
  // Returns whether the class is the other one or below it.
  [[nodiscard]] bool isA(std::string_view className, std::string_view ancestor) const;

 private:
  struct Node {
    ClassDeclaration declaration;
    Node* superclass = nullptr;  // null for m_top alone
    Classes subclasses;
    Classes descendants;
  };

  [[nodiscard]] const Node* findNode(std::string_view className) const;

  std::map<std::string, Node, NameLess> m_nodes;
  Node m_top;  // above the top-level classes
};

}  // namespace core

#endif  // ORVEX_CORE_CIMSCHEMA_H_
