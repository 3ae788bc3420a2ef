// The texts of platform/Texts.h, for the folders above this one.

#ifndef ORVEX_OS_TEXTS_H_
#define ORVEX_OS_TEXTS_H_

#include "platform/Texts.h"

namespace os {

using platform::toGenericText;
using platform::toPath;
using platform::toShownText;
using platform::toText;
using platform::toUtf8;

}  // namespace os

#endif  // ORVEX_OS_TEXTS_H_
