#include "wbem/InteropTexts.h"

#include "cim/SchemaTexts.h"

namespace wbem {
namespace {

using core::ClassText;
using core::ElementText;

constexpr ElementText kObjectManager[] = {
    {"GatherStatisticalData", "Whether the server gathers statistics of its operations."}};

constexpr ElementText kNamespace[] = {
    {"SystemCreationClassName", "The class of the system on which the server runs."},
    {"SystemName", "The name of the system on which the server runs."},
    {"ObjectManagerCreationClassName", "The class of the server that serves the namespace."},
    {"ObjectManagerName", "The name of the server that serves the namespace."},
    {"CreationClassName", "The class of which the instance was created."},
    {"Name", "The name of the namespace, which requests name it by."},
};

constexpr ClassText kTexts[] = {
    {"CIM_WBEMService",
     "A part of a system that serves WBEM clients.",
     {},
     {},
     cim::kSchemaVersion,
     true},
    {"CIM_ObjectManager",
     "The server of the instances: what a WBEM client talks to.",
     kObjectManager,
     {},
     cim::kSchemaVersion},
    {"CIM_Namespace", "A namespace that the server serves.", kNamespace, {}, cim::kSchemaVersion},
};

}  // namespace

std::span<const ClassText> getInteropTexts() {
  return kTexts;
}

}  // namespace wbem
