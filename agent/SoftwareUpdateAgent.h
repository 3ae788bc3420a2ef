// The software update agent: serves the classes of the DMTF Software Update Profile.

#ifndef ORVEX_AGENT_SOFTWAREUPDATEAGENT_H_
#define ORVEX_AGENT_SOFTWAREUPDATEAGENT_H_

#include "core/CimAgent.h"
#include "core/ClassDeclarer.h"
#include "core/ClassDescriber.h"

namespace core {

class SoftwareUpdateAgent : public CimAgent, public ClassDeclarer, public ClassDescriber {
 public:
  SoftwareUpdateAgent();
  ~SoftwareUpdateAgent() override;

  // ClassDeclarer
  void declareClasses(CimSchema& schema) const override;

  // ClassDescriber
  void describeClasses(ClassTexts& texts) const override;
};

}  // namespace core

#endif  // ORVEX_AGENT_SOFTWAREUPDATEAGENT_H_
