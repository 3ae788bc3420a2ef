// Whether two names mean the same object.
//
//   host, namespace          left aside
//   names of class and keys  without regard to the case of ASCII letters
//   order of the keys        does not count; an only key may stand without its name
//   references               mean the same object, by these rules
//   booleans                 without regard to case: TRUE is true
//   any other value          byte by byte, whatever its kind: a path cannot tell a number from a
//                            string as a message does; 1 and 01 are two values
//
// Whoever does not know the class writes a reference as a string: beside a reference, a key of any
// other kind counts as the object that its text reads as (see readObjectPath), and as another one
// when it reads as none. The name of a class is never that of an instance, with keys or without.
//
// The work grows with the number of keys and its logarithm: a message may hold very many.

#ifndef ORVEX_CIMXML_OBJECTNAMECOMPARISON_H_
#define ORVEX_CIMXML_OBJECTNAMECOMPARISON_H_

#include "cimxml/ObjectName.h"

namespace cimxml {

[[nodiscard]] bool isSameObject(const ObjectName& left, const ObjectName& right);

}  // namespace cimxml

#endif  // ORVEX_CIMXML_OBJECTNAMECOMPARISON_H_
