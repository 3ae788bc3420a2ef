#include "cim/SchemaTexts.h"

#include "cim/TextTables.h"

namespace cim {

void addSchemaTexts(core::ClassTexts& texts) {
  texts.add(getElementTexts());
  texts.add(getJobTexts());
  texts.add(getServiceTexts());
  texts.add(getProfileTexts());
  texts.add(getPortTexts());
  texts.add(getSoftwareTexts());
  texts.add(getSystemTexts());
}

}  // namespace cim
