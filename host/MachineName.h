// The name that the instances of a host's agents give the machine (SystemName).
//
// Agents take it from the environment variable COMPUTERNAME, which one system sets by itself and
// another does not. For the start of a process, on one thread.

#ifndef ORVEX_HOST_MACHINENAME_H_
#define ORVEX_HOST_MACHINENAME_H_

namespace host {

// Puts the machine's own name into COMPUTERNAME where that is not set, so that two machines have
// two names. What is set stays, an empty text, too.
void nameMachine();

}  // namespace host

#endif  // ORVEX_HOST_MACHINENAME_H_
