// The reasons for which an update is refused before it becomes a job; each has a result code of its
// own (see Orvex_ConcreteJobClass::verifyOrCreateNewJob).

#ifndef ORVEX_AGENT_JOBERRORS_H_
#define ORVEX_AGENT_JOBERRORS_H_

#include <string>
#include <string_view>

#include "Utils/Exception.h"
#include "Utils/RefusalTexts.h"

// Defines a reason by whose type, as texts begin with it, clients recognise it.
#define ORVEX_DEFINE_REFUSAL(Name, beginning)                \
  static_assert(std::string_view(#Name ":") == (beginning)); \
  ORVEX_DEFINE_EXCEPTION(Name)

// An update of the same adapter is in progress.
ORVEX_DEFINE_REFUSAL(ETargetInUse, utils::refusal::kTargetInUse);
// An update of another adapter is in progress.
ORVEX_DEFINE_REFUSAL(EJobIsRunning, utils::refusal::kJobIsRunning);
// The URI cannot be parsed, or its scheme is not supported.
ORVEX_DEFINE_REFUSAL(EInvalidUri, utils::refusal::kInvalidUri);
// The URI names no readable file.
ORVEX_DEFINE_REFUSAL(EUriDoesNotExist, utils::refusal::kUriDoesNotExist);
// The image file cannot be read.
ORVEX_DEFINE_REFUSAL(EImageReadError, utils::refusal::kImageReadError);
// The image is for other adapters.
ORVEX_DEFINE_REFUSAL(EAdapterNotSupported, utils::refusal::kAdapterNotSupported);
// The image is older than the installed firmware, or of other image types.
ORVEX_DEFINE_REFUSAL(EDowngradeDetected, utils::refusal::kDowngradeDetected);
// The adapter's firmware cannot be replaced.
ORVEX_DEFINE_REFUSAL(ENotApplicableForTarget, utils::refusal::kNotApplicableForTarget);

#undef ORVEX_DEFINE_REFUSAL

#endif  // ORVEX_AGENT_JOBERRORS_H_
