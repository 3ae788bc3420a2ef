#include "core/CimPath.h"

#include <optional>

#include "Utils/Conversions.h"
#include "Utils/Exception.h"
#include "Utils/Log.h"
#include "core/ObjectPathReader.h"

namespace core {
namespace {

constexpr utils::LogSource kLog{"CimPath"};
constexpr const char* kConstructor = "core::CimPath::CimPath";

}  // namespace

CimPath::CimPath(const std::string& path) {
  utils::logDebug(kLog, kConstructor, "Creating path %s", path.c_str());
  ObjectPathParts parts;
  const std::optional<ObjectPathProblem> problem =
      readObjectPath(path, ObjectPathKind::Instance, parts);
  // Whatever is wrong behind it: the record of the namespace comes first.
  if (parts.nameSpace) {
    utils::logDebug(kLog, kConstructor, "namespace is stripped [%s]",
                    std::string(*parts.nameSpace).c_str());
  }
  if (problem) {
    throw utils::ESyntaxError(problem->describe());
  }
  for (const ObjectPathKey& key : parts.keys) {
    emplace(key.name, utils::unquote(key.value));
  }
  m_className = parts.className;
  m_modelPath = parts.modelPath;
}

CimPath::CimPath(const CimPath&) = default;
CimPath& CimPath::operator=(const CimPath&) = default;
CimPath::~CimPath() = default;

}  // namespace core
