// The reasons for which an update is refused before it becomes a job; each has a result code of its
// own (see Orvex_ConcreteJobClass::verifyOrCreateNewJob).

#ifndef ORVEX_AGENT_JOBERRORS_H_
#define ORVEX_AGENT_JOBERRORS_H_

#include <string>

#include "Utils/Exception.h"

// An update of the same adapter is in progress.
ORVEX_DEFINE_EXCEPTION(ETargetInUse);
// An update of another adapter is in progress.
ORVEX_DEFINE_EXCEPTION(EJobIsRunning);
// The URI cannot be parsed, or its scheme is not supported.
ORVEX_DEFINE_EXCEPTION(EInvalidUri);
// The URI names no readable file.
ORVEX_DEFINE_EXCEPTION(EUriDoesNotExist);
// The image file cannot be read.
ORVEX_DEFINE_EXCEPTION(EImageReadError);
// The image is for other adapters.
ORVEX_DEFINE_EXCEPTION(EAdapterNotSupported);
// The image is older than the installed firmware, or of other image types.
ORVEX_DEFINE_EXCEPTION(EDowngradeDetected);
// The adapter's firmware cannot be replaced.
ORVEX_DEFINE_EXCEPTION(ENotApplicableForTarget);

#endif  // ORVEX_AGENT_JOBERRORS_H_
