// The adapters of this machine, as the command line shows them: a table, or a document for
// programs.
//
// Adapters that the kernel drives have much to tell, and a terminal has 80 columns: where there are
// some, a table has a line for each port, another one a block of lines for each adapter, and below
// stands what needs a sentence. Where all are virtual there is one table.

#ifndef ORVEX_CLI_ADAPTERSLIST_H_
#define ORVEX_CLI_ADAPTERSLIST_H_

#include <ostream>

#include "client/Value.h"
#include "midapi/AdapterListing.h"

namespace cli {

void printAdapters(std::ostream& out, const ma::AdapterList& list);

// Prints what a person should mend.
void warnAboutAdapters(std::ostream& err, const ma::AdapterList& list);

[[nodiscard]] client::Value toJson(const ma::AdapterListing& adapter);

}  // namespace cli

#endif  // ORVEX_CLI_ADAPTERSLIST_H_
