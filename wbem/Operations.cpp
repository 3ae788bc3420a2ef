#include "wbem/Operations.h"

#include <algorithm>
#include <iterator>

#include "core/ClassDeclaration.h"
#include "wbem/AssociationOperations.h"
#include "wbem/ClassOperations.h"
#include "wbem/InstanceOperations.h"
#include "wbem/PullOperations.h"
#include "wbem/QualifierOperations.h"

namespace wbem {
namespace {

using Names = std::string_view[];

constexpr Names kGetClass = {"ClassName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin",
                             "PropertyList"};
constexpr Names kEnumerateClasses = {"ClassName", "DeepInheritance", "LocalOnly",
                                     "IncludeQualifiers", "IncludeClassOrigin"};
constexpr Names kEnumerateClassNames = {"ClassName", "DeepInheritance"};
constexpr Names kGetQualifier = {"QualifierName"};
constexpr Names kEnumerateInstances = {"ClassName",         "LocalOnly",          "DeepInheritance",
                                       "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"};
constexpr Names kEnumerateInstanceNames = {"ClassName"};
constexpr Names kGetInstance = {"InstanceName", "LocalOnly", "IncludeQualifiers",
                                "IncludeClassOrigin", "PropertyList"};
constexpr Names kModifyInstance = {"ModifiedInstance", "IncludeQualifiers", "PropertyList"};
constexpr Names kReferences = {"ObjectName",        "ResultClass",        "Role",
                               "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"};
constexpr Names kReferenceNames = {"ObjectName", "ResultClass", "Role"};
constexpr Names kAssociators = {
    "ObjectName", "AssocClass",        "ResultClass",        "Role",
    "ResultRole", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"};
constexpr Names kAssociatorNames = {"ObjectName", "AssocClass", "ResultClass", "Role",
                                    "ResultRole"};
constexpr Names kOpenEnumerateInstances = {
    "ClassName",   "DeepInheritance",  "IncludeClassOrigin", "PropertyList",  "FilterQueryLanguage",
    "FilterQuery", "OperationTimeout", "ContinueOnError",    "MaxObjectCount"};
constexpr Names kOpenEnumerateInstancePaths = {"ClassName",       "FilterQueryLanguage",
                                               "FilterQuery",     "OperationTimeout",
                                               "ContinueOnError", "MaxObjectCount"};
constexpr Names kOpenReferenceInstances = {
    "InstanceName",    "ResultClass",         "Role",        "IncludeClassOrigin",
    "PropertyList",    "FilterQueryLanguage", "FilterQuery", "OperationTimeout",
    "ContinueOnError", "MaxObjectCount"};
constexpr Names kOpenReferenceInstancePaths = {
    "InstanceName",     "ResultClass",     "Role",          "FilterQueryLanguage", "FilterQuery",
    "OperationTimeout", "ContinueOnError", "MaxObjectCount"};
constexpr Names kOpenAssociatorInstances = {
    "InstanceName", "AssocClass",         "ResultClass",     "Role",
    "ResultRole",   "IncludeClassOrigin", "PropertyList",    "FilterQueryLanguage",
    "FilterQuery",  "OperationTimeout",   "ContinueOnError", "MaxObjectCount"};
constexpr Names kOpenAssociatorInstancePaths = {
    "InstanceName",    "AssocClass",          "ResultClass", "Role",
    "ResultRole",      "FilterQueryLanguage", "FilterQuery", "OperationTimeout",
    "ContinueOnError", "MaxObjectCount"};
constexpr Names kPull = {"EnumerationContext", "MaxObjectCount"};
constexpr Names kClose = {"EnumerationContext"};

// The order is that in which clients use them most.
constexpr Operation kOperations[] = {
    {"GetInstance", getInstance, kGetInstance, false},
    {"EnumerateInstances", enumerateInstances, kEnumerateInstances, false},
    {"EnumerateInstanceNames", enumerateInstanceNames, kEnumerateInstanceNames, false},
    {"Associators", associators, kAssociators, false},
    {"AssociatorNames", associatorNames, kAssociatorNames, false},
    {"References", references, kReferences, false},
    {"ReferenceNames", referenceNames, kReferenceNames, false},
    {"GetClass", getClass, kGetClass, false},
    {"EnumerateClasses", enumerateClasses, kEnumerateClasses, false},
    {"EnumerateClassNames", enumerateClassNames, kEnumerateClassNames, false},
    {"GetQualifier", getQualifier, kGetQualifier, false},
    {"EnumerateQualifiers", enumerateQualifiers, {}, false},
    {"ModifyInstance", modifyInstance, kModifyInstance, true},
    {"OpenEnumerateInstances", openEnumerateInstances, kOpenEnumerateInstances, false},
    {"OpenEnumerateInstancePaths", openEnumerateInstancePaths, kOpenEnumerateInstancePaths, false},
    {"OpenReferenceInstances", openReferenceInstances, kOpenReferenceInstances, false},
    {"OpenReferenceInstancePaths", openReferenceInstancePaths, kOpenReferenceInstancePaths, false},
    {"OpenAssociatorInstances", openAssociatorInstances, kOpenAssociatorInstances, false},
    {"OpenAssociatorInstancePaths", openAssociatorInstancePaths, kOpenAssociatorInstancePaths,
     false},
    {"PullInstancesWithPath", pullInstancesWithPath, kPull, false},
    {"PullInstancePaths", pullInstancePaths, kPull, false},
    {"CloseEnumeration", closeEnumeration, kClose, false},
};

}  // namespace

const Operation* findOperation(std::string_view name) {
  const auto found =
      std::find_if(std::begin(kOperations), std::end(kOperations),
                   [name](const Operation& one) { return core::isSameName(one.name, name); });
  return found != std::end(kOperations) ? &*found : nullptr;
}

}  // namespace wbem
