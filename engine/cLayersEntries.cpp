#include "engine/cLayersEntries.h"

#include "engine/cSVGItem.h"

namespace qds {

int CheckEntryContent(std::string& content) {
  cLayersEntries entry;
  if (!entry.setContent(content)) return 0;
  int changed = entry.Corrected();
  const std::string settings = entry.Settings();
  JsonBag bag;
  // Settings that are no object read as none; nothing to bring into range.
  if (!settings.empty() && bag.Parse(settings)) {
    const int inSettings = CheckLayerSettings(bag);
    if (inSettings > 0) entry.setSettings(bag.ToString());
    changed += inSettings;
  }
  if (changed > 0) content = entry.Content();
  return changed;
}

}  // namespace qds
