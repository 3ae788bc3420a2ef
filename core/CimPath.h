// A parsed object path: a class name and key values, as CimInstance::getPath prints them and
// core/ObjectPathReader.h reads them.
//
// A value may be quoted, with a backslash before each double quote inside; the map holds it
// unquoted. Names are case-sensitive. A namespace is accepted and dropped; a class name without
// keys is refused.

#ifndef ORVEX_CORE_CIMPATH_H_
#define ORVEX_CORE_CIMPATH_H_

#include <string>

#include "Utils/Containers.h"
#include "Utils/Export.h"

namespace core {

class ORVEX_CORE_API CimPath : public utils::Map<std::string, std::string> {
 public:
  // Throws utils::ESyntaxError, which quotes the offending text.
  explicit CimPath(const std::string& path);
  CimPath(const CimPath&);
  CimPath& operator=(const CimPath&);
  ~CimPath() override;

  [[nodiscard]] const std::string& getClassName() const { return m_className; }
  // Returns the path without its namespace.
  [[nodiscard]] const std::string& getModelPath() const { return m_modelPath; }

 private:
  std::string m_className;
  std::string m_modelPath;
};

}  // namespace core

#endif  // ORVEX_CORE_CIMPATH_H_
