#include "cli/ServedClasses.h"

#include <algorithm>

#include "cli/Context.h"

namespace cli {

std::vector<std::string> getServedClasses(const core::CimBroker& broker) {
  std::vector<std::string> result;
  for (const core::CimAgent* agent : broker.getAgents()) {
    const std::vector<std::string> names = agent->getClassNames();
    result.insert(result.end(), names.begin(), names.end());
  }
  std::sort(result.begin(), result.end());
  result.erase(std::unique(result.begin(), result.end()), result.end());
  return result;
}

void demandServed(const core::CimBroker& broker, const std::string& className) {
  const std::vector<std::string> served = getServedClasses(broker);
  if (std::binary_search(served.begin(), served.end(), className)) {
    return;
  }
  std::string text = "no class '" + className + "' is served here; the classes are:";
  for (const std::string& name : served) {
    text += "\n  " + name;
  }
  throw Fault(text);
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
