#include "wbem/ShownClasses.h"

#include <algorithm>
#include <exception>
#include <functional>

#include "Utils/Log.h"
#include "core/ClassDeclarer.h"

namespace wbem {
namespace {

constexpr utils::LogSource kLog{"ShownClasses"};

bool isUndeclared(const core::CimAgent* agent) {
  return dynamic_cast<const core::ClassDeclarer*>(agent) == nullptr;
}

std::vector<core::CimAgent*> findUndeclared(const core::CimBroker& broker) {
  std::vector<core::CimAgent*> agents = broker.getAgents();
  std::erase_if(agents, [](const core::CimAgent* agent) { return !isUndeclared(agent); });
  return agents;
}

// A class whose instances cannot be had shows nothing, and is no harm to the others.
void visitInstances(core::CimAgent& agent, const std::string& className,
                    const std::function<void(core::CimInstance&)>& visit) {
  try {
    core::InstanceList::Iterator cursor = agent.getInstances(className);
    for (core::CimInstance* instance = cursor.first(); instance != nullptr;
         instance = cursor.next()) {
      visit(*instance);
    }
  } catch (const std::exception& exception) {
    utils::logDebug(kLog, "wbem::ShownClasses::visitInstances", "class %s shows nothing: %s",
                    className.c_str(), exception.what());
  }
}

// Adds what an instance shows that others of its class have not.
void addShown(core::ClassDeclaration& declaration, core::CimInstance& instance) {
  core::CimSchema shown;
  shown.add(core::CimSchema::Prototype{instance, "", 0, {}});
  for (core::PropertyDeclaration property : shown.find(instance.getClassName())->properties) {
    if (declaration.findProperty(property.name) == nullptr) {
      property.origin = declaration.name;
      declaration.isAssociation |= property.type == core::kCimReference;
      declaration.properties.push_back(std::move(property));
    }
  }
}

}  // namespace

ShownClasses::ShownClasses(core::CimBroker& broker, Schema declared,
                           const std::set<std::string>& names)
    : m_schema(std::move(declared)), m_names(names), m_agents(findUndeclared(broker)) {
  if (m_agents.empty()) {
    return;
  }
  const auto schema = std::make_shared<core::CimSchema>();
  for (const core::ClassDeclaration* declaration : m_schema->getDescendants("")) {
    schema->add(*declaration);
  }
  const core::CimBroker::Request request(broker);
  for (core::CimAgent* const agent : m_agents) {
    for (const std::string& className : getServed(*agent)) {
      if (schema->find(className) != nullptr) {
        continue;
      }
      core::ClassDeclaration declaration;
      declaration.name = className;
      visitInstances(*agent, className, [&declaration](core::CimInstance& instance) {
        addShown(declaration, instance);
      });
      if (declaration.properties.empty()) {
        m_unseen.emplace_back(agent, className);
      }
      schema->add(std::move(declaration));
    }
  }
  m_schema = schema;
}

std::vector<std::string> ShownClasses::getServed(core::CimAgent& agent) const {
  std::vector<std::string> served = agent.getClassNames();
  if (isUndeclared(&agent)) {
    for (const std::string& name : m_names) {
      if (std::find(served.begin(), served.end(), name) == served.end() && agent.hasClass(name)) {
        served.push_back(name);
      }
    }
  }
  return served;
}

bool ShownClasses::hasNews(core::CimBroker& broker) const {
  if (m_unseen.empty()) {
    return false;
  }
  const core::CimBroker::Request request(broker);
  bool isSeen = false;
  for (const auto& [agent, className] : m_unseen) {
    visitInstances(*agent, className, [&isSeen](core::CimInstance&) { isSeen = true; });
  }
  return isSeen;
}

bool ShownClasses::isServed(core::CimBroker& broker, const std::string& className) {
  const std::vector<core::CimAgent*> agents = findUndeclared(broker);
  return std::any_of(agents.begin(), agents.end(),
                     [&className](core::CimAgent* agent) { return agent->hasClass(className); });
}

}  // namespace wbem
