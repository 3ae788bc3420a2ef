#include "client/MethodCall.h"

#include "cim/MethodSignatures.h"
#include "client/ErrorRecords.h"
#include "client/Snapshot.h"

namespace client {

bool MethodAnswer::isAccepted() const {
  return returnValue == cim::kCompletedWithNoError || returnValue == cim::kJobStarted;
}

MethodAnswer callMethod(core::CimInstance& instance, const std::string& method,
                        core::CimPropertyList& in, core::CimPropertyList& out) {
  ErrorRecords& records = ErrorRecords::instance();
  records.start();
  MethodAnswer answer;
  core::CimInstance* job = nullptr;
  answer.returnValue = instance.invokeMethod(method, &in, &out, &job);
  const std::string reason = reasonOf(records.take());
  answer.returnText = cim::describeReturn(method, answer.returnValue);
  if (job != nullptr) {
    answer.jobPath = job->getPath();
  }
  if (!answer.isAccepted()) {
    answer.reason = reason;
  }
  answer.outputs = snapshotOf(out);
  return answer;
}

}  // namespace client
