#include "cli/InstancesOutput.h"

#include "Utils/Printable.h"
#include "cli/JsonOutput.h"
#include "cli/Output.h"

namespace cli {
namespace {

client::Value toJson(const client::Instances& instances, client::NullProperties nulls) {
  client::Value document = client::Value::array();
  for (const client::InstanceSnapshot& instance : instances) {
    document.push(client::toValue(instance, nulls));
  }
  return document;
}

}  // namespace

void printInstances(const Context& context, const client::Instances& instances,
                    client::NullProperties nulls, const std::string& whenNone) {
  if (context.options.isJson) {
    printJson(context.out, toJson(instances, nulls));
    return;
  }
  if (instances.empty()) {
    context.out << utils::toPrintable(whenNone) << '\n';
  }
  bool isFirst = true;
  for (const client::InstanceSnapshot& instance : instances) {
    context.out << (isFirst ? "" : "\n") << utils::toPrintable(instance.path) << '\n';
    printProperties(context.out, instance.properties, nulls);
    isFirst = false;
  }
}

}  // namespace cli
