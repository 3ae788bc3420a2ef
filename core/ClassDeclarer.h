// What an agent may offer beside its three operations: the declarations of the classes that it
// serves. The broker asks each agent whether it is one (see CimBroker::getSchema).

#ifndef ORVEX_CORE_CLASSDECLARER_H_
#define ORVEX_CORE_CLASSDECLARER_H_

#include "Utils/Export.h"

namespace core {

class CimSchema;

class ORVEX_CORE_API ClassDeclarer {
 public:
  ClassDeclarer() = default;
  ClassDeclarer(const ClassDeclarer&) = delete;
  ClassDeclarer& operator=(const ClassDeclarer&) = delete;

  // Adds the classes that the agent serves to the schema, with those that they derive from or refer
  // to (see core/DeclareClass.h). Asks the broker for nothing. Any thread calls.
  virtual void declareClasses(CimSchema& schema) const = 0;

 protected:
  ~ClassDeclarer() = default;
};

}  // namespace core

#endif  // ORVEX_CORE_CLASSDECLARER_H_
