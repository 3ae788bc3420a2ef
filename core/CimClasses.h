// The providers of an agent, by the class name that each serves. The registry owns them.

#ifndef ORVEX_CORE_CIMCLASSES_H_
#define ORVEX_CORE_CIMCLASSES_H_

#include <string>

#include "Utils/Containers.h"
#include "Utils/Export.h"
#include "core/CimClass.h"

namespace core {

class ORVEX_CORE_API CimClasses : public utils::SafeMap<std::string, CimClass*> {
 public:
  CimClasses();
  // Deletes the providers, in the order of their names.
  ~CimClasses() override;

  // Takes a provider over. One that serves a name already taken replaces the earlier one, which
  // nobody holds from then on. Throws utils::Exception for null.
  void add(CimClass* cimClass);
};

}  // namespace core

#endif  // ORVEX_CORE_CIMCLASSES_H_
