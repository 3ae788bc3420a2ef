// What an agent may offer beside its three operations and its declarations: what there is to say of
// its classes. Front ends ask each agent whether it is one (see core::getClassTexts).

#ifndef ORVEX_CORE_CLASSDESCRIBER_H_
#define ORVEX_CORE_CLASSDESCRIBER_H_

#include "Utils/Export.h"

namespace core {

class ClassTexts;

class ORVEX_CORE_API ClassDescriber {
 public:
  ClassDescriber() = default;
  ClassDescriber(const ClassDescriber&) = delete;
  ClassDescriber& operator=(const ClassDescriber&) = delete;

  // Adds the texts of the classes that the agent declares, with those that they derive from or
  // refer to. Asks the broker for nothing. Any thread calls.
  virtual void describeClasses(ClassTexts& texts) const = 0;

 protected:
  ~ClassDescriber() = default;
};

}  // namespace core

#endif  // ORVEX_CORE_CLASSDESCRIBER_H_
