#include "cli/ServedClasses.h"

#include "Utils/Exception.h"
#include "cli/Context.h"

namespace cli {

ServingAgents getServingAgents(const core::CimBroker& broker) {
  ServingAgents result;
  for (const core::CimAgent* agent : broker.getAgents()) {
    for (const std::string& name : agent->getClassNames()) {
      result[name].push_back(agent->getName());
    }
  }
  return result;
}

void demandServed(const core::CimBroker& broker, const std::string& className) {
  const ServingAgents served = getServingAgents(broker);
  if (served.contains(className)) {
    return;
  }
  std::string text = "no class '" + className + "' is served here; the classes are:";
  for (const auto& [name, agents] : served) {
    text += "\n  " + name;
  }
  throw Fault(text);
}

core::CimPath parseObjectPath(const std::string& text) {
  try {
    return core::CimPath(text);
  } catch (const utils::ESyntaxError&) {
    throw Fault("'" + text + "' is no object path; write CLASS.KEY=VALUE,... as " +
                    "'quorvel instances' prints it",
                ExitStatus::Usage);
  }
}

core::CimInstance& demandInstance(core::CimBroker& broker, const core::CimPath& path) {
  core::CimInstance* instance = broker.getInstanceByPath(path);
  if (instance == nullptr) {
    demandServed(broker, path.getClassName());
    throw Fault("there is no instance " + path.getModelPath() + "; 'quorvel instances " +
                path.getClassName() + "' shows what there is");
  }
  return *instance;
}

}  // namespace cli
