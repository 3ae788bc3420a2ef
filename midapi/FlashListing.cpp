#include "midapi/FlashListing.h"

#include "midapi/Digest.h"

namespace ma {

void describeFlash(RomBytes flash, AdapterListing& listing) {
  listing.flashBytes = flash.size();
  const RomChain chain = parseRomChain(flash);
  if (!chain.isValid() && !isPadding(flash)) {
    listing.flashDefect = chain.defect->toString();
  }
  for (const OptionRomImage& image : chain.images) {
    listing.components.push_back({image.type, image.version, image.vendor, image.device,
                                  image.isFor(listing.vendor, listing.device), image.offset,
                                  image.length,
                                  digestOf(flash.subspan(image.offset, image.length))});
  }
}

}  // namespace ma
