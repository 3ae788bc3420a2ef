#include "wbem/Namespaces.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "cim/CIM_RegisteredProfile.h"
#include "cim/SchemaTexts.h"
#include "core/CimPropertyRef.h"
#include "core/DeclareClass.h"
#include "wbem/InteropClasses.h"
#include "wbem/InteropTexts.h"
#include "wbem/Status.h"

namespace wbem {
namespace {

bool isReference(const core::PropertyDeclaration& property) {
  return property.type == core::kCimReference;
}

bool leadsToProfile(const core::CimSchema& schema, const core::PropertyDeclaration& property) {
  return isReference(property) &&
         schema.isA(property.referenceClass, CIM_RegisteredProfile::kClassName);
}

// Whether the class is one of the interop namespace too.
bool isOfInterop(const core::CimSchema& schema, const core::ClassDeclaration& declaration) {
  return schema.isA(declaration.name, CIM_RegisteredProfile::kClassName) ||
         std::any_of(declaration.properties.begin(), declaration.properties.end(),
                     [&schema](const core::PropertyDeclaration& property) {
                       return leadsToProfile(schema, property);
                     });
}

bool isCrossing(const core::CimSchema& schema, const core::ClassDeclaration& declaration) {
  return isOfInterop(schema, declaration) &&
         std::all_of(declaration.properties.begin(), declaration.properties.end(), isReference);
}

std::vector<ServedClass> findServed(const core::CimBroker& broker, const ShownClasses& shown) {
  const core::CimSchema& schema = *shown.schema();
  std::vector<ServedClass> served;
  for (core::CimAgent* agent : broker.getAgents()) {
    for (const std::string& className : shown.getServed(*agent)) {
      const core::ClassDeclaration* declaration = schema.find(className);
      if (declaration == nullptr) {
        continue;  // nobody can ask for it
      }
      auto entry =
          std::find_if(served.begin(), served.end(), [declaration](const ServedClass& candidate) {
            return candidate.declaration == declaration;
          });
      if (entry == served.end()) {
        entry = served.insert(served.end(),
                              ServedClass{declaration, {}, {}, isCrossing(schema, *declaration)});
      }
      entry->agents.push_back(agent);
    }
  }
  return served;
}

void addWithSuperclasses(core::CimSchema& target, const core::CimSchema& source,
                         std::string_view className) {
  core::CimSchema::Classes chain = source.getSuperclasses(className);
  std::reverse(chain.begin(), chain.end());
  if (const core::ClassDeclaration* own = source.find(className)) {
    chain.push_back(own);
  }
  for (const core::ClassDeclaration* declaration : chain) {
    target.add(*declaration);
  }
}

// Adds the class, what it derives from, and the classes that it refers to.
void addClass(core::CimSchema& target, const core::CimSchema& source,
              const core::ClassDeclaration& declaration) {
  for (const core::PropertyDeclaration& property : declaration.properties) {
    if (isReference(property)) {
      addWithSuperclasses(target, source, property.referenceClass);
    }
  }
  addWithSuperclasses(target, source, declaration.name);
}

ServedClass serveOwn(const core::CimSchema& schema, const char* className,
                     std::vector<core::CimInstance*> instances) {
  return {schema.find(className), {}, std::move(instances), false};
}

// Returns the object path with the namespace in which its object is at home; a text that names
// nothing as it is.
std::string toQualifiedPath(const Namespaces& namespaces, const std::string& path) {
  const std::optional<cimxml::ObjectName> name = cimxml::readObjectPath(path);
  return name ? namespaces.homeOf(name->className).name() + ":" + cimxml::toObjectPath(*name)
              : path;
}

}  // namespace

Namespaces::Namespaces(core::CimBroker& broker, const std::string& agentsName,
                       const std::set<std::string>& named)
    : m_declared(broker.getSchema()),
      m_shown(broker, m_declared, named),
      m_schema(m_shown.schema()),
      m_texts(core::getClassTexts(broker)) {
  cim::addSchemaTexts(m_texts);
  m_texts.add(getInteropTexts());
  std::vector<ServedClass> served = findServed(broker, m_shown);
  m_agents = std::make_unique<Namespace>(agentsName, m_schema, served);

  const auto interopSchema = std::make_shared<core::CimSchema>();
  std::vector<ServedClass> interopServed;
  for (ServedClass& entry : served) {
    if (isOfInterop(*m_schema, *entry.declaration)) {
      addClass(*interopSchema, *m_schema, *entry.declaration);
      entry.declaration = interopSchema->find(entry.declaration->name);
      interopServed.push_back(std::move(entry));
    }
  }
  core::declareClass<CIM_Namespace>(*interopSchema);
  core::declareClass<CIM_ObjectManager>(*interopSchema);
  std::vector<core::CimInstance*> namespaceInstances;
  for (const std::string& name : {std::string(kInteropName), agentsName}) {
    auto instance = std::make_unique<CIM_Namespace>();
    instance->setPropertyValues(name);
    namespaceInstances.push_back(instance.get());
    m_ownInstances.push_back(std::move(instance));
  }
  auto manager = std::make_unique<CIM_ObjectManager>();
  manager->setPropertyValues();
  interopServed.push_back(
      serveOwn(*interopSchema, CIM_Namespace::kClassName, std::move(namespaceInstances)));
  interopServed.push_back(serveOwn(*interopSchema, CIM_ObjectManager::kClassName, {manager.get()}));
  m_ownInstances.push_back(std::move(manager));
  m_interop = std::make_unique<Namespace>(kInteropName, interopSchema, std::move(interopServed));
}

Namespaces::~Namespaces() = default;

bool Namespaces::isUpToDate(core::CimBroker& broker) const {
  return m_declared == broker.getSchema() && !m_shown.hasNews(broker);
}

std::vector<std::string> Namespaces::names() const {
  return {m_agents->name(), m_interop->name()};
}

const Namespace& Namespaces::demand(std::string_view name) const {
  for (const Namespace* candidate : {m_agents.get(), m_interop.get()}) {
    if (core::isSameName(candidate->name(), name)) {
      return *candidate;
    }
  }
  throw StatusFault(Status::InvalidNamespace, "there is no namespace '" + std::string(name) +
                                                  "'; there are " + m_agents->name() + " and " +
                                                  m_interop->name());
}

const Namespace& Namespaces::homeOf(std::string_view className) const {
  const ServedClass* served = m_interop->findServed(className);
  const bool isAtHomeThere =
      served != nullptr && (!served->ownInstances.empty() ||
                            m_schema->isA(className, CIM_RegisteredProfile::kClassName));
  return isAtHomeThere ? *m_interop : *m_agents;
}

CrossingInstance::CrossingInstance(const Namespaces& namespaces,
                                   const core::ClassDeclaration& declaration,
                                   core::CimInstance& source)
    : m_className(declaration.name) {
  for (const core::PropertyDeclaration& property : declaration.properties) {
    auto reference = std::make_unique<core::CimPropertyRef>(property.name.c_str(), this);
    if (property.isKey) {
      reference->setKey();
    }
    const core::CimProperty* original = source.getProperty(property.name);
    if (original != nullptr && !original->isNull()) {
      reference->setText(toQualifiedPath(namespaces, original->toString()));
    }
    m_references.push_back(std::move(reference));
  }
}

CrossingInstance::~CrossingInstance() = default;

}  // namespace wbem
