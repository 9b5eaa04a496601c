#pragma once
// A design in memory (Layers, BaseIcons, the design opacity) to rows and
// back, and the rows of colour filters and tool presets.

#include <string>
#include <vector>

#include "app/AppContext.h"
#include "engine/cLayersEntries.h"
#include "platform/Bytes.h"

namespace qds {

// The Layer row of a design, found by name without regard to case (and so
// overwritten, keeping its ID); 0 on failure.
int WriteLayer(AppContext& app, const std::string& name, const std::string& description,
               const Bytes& thumbnail);
// The Layer row and one entry per layer in stack order, replacing the old
// entries. Not a transaction: a failure after the old entries are deleted
// leaves the design with fewer entries.
bool WriteCurrentLayerList(AppContext& app, const std::string& name, const std::string& description,
                           const Bytes& thumbnail);
bool WriteLayerEntry(AppContext& app, int layerId, int position, const std::string& key, const cSVGItem& item,
                     bool isBaseEntry);
// What a design load met on the way.
struct DesignLoadReport {
  std::string Error;       // why the design could not be read; empty when it was
  int MissingIcons = 0;    // icons gone from the library, shown as the stand-in icon
  int SkippedEntries = 0;  // entries left out: a repeated key, a base layer with no icons
  int Corrected = 0;       // values out of their limits, brought into them
};

// Rebuilds Layers, BaseIcons and OverlayLayers from the design's rows.
// Icons that have left the library become the stand-in icon. A design that
// cannot be read answers false, says why, and leaves the present one as it
// is.
bool FillCurrentLayerList(AppContext& app, int layerId, DesignLoadReport* report = nullptr);
// The same from the entries' contents, in stack order, as a file holds them.
bool FillLayersFromEntries(AppContext& app, const std::vector<std::string>& contents,
                           DesignLoadReport* report = nullptr);
// Replaces the IDs of icons gone from the library by the stand-in icon;
// answers how many it replaced.
int ValidateImageIDs(AppContext& app, cLayersEntries& entry);

// The full query of images with their style and theme, followed by `condition`.
std::string CreateSQLSelectImages(const std::string& condition);
// Fills `target` with the icons of a style, a theme (0: any) and a further
// condition, ordered by name; keyed by ID, or by name and ID.
void AddBaseSVGs(AppContext& app, int styleId, int themeId, const std::string& condition,
                 ItemCollection& target, bool keyByNameAndId = false);
// The styles and themes that hold icons, for the lists of the select view.
DbRecordset QueryStylesAndThemes(AppContext& app);

int WriteColorSettings(AppContext& app, const std::string& name, const std::string& description, int layers,
                       const cSVGItem& item);
int WriteSettings(AppContext& app, int templateTypeId, const std::string& name,
                  const std::string& description, const std::string& settings, const Bytes& thumbnail);

// The layer's colour as a colour item, from a stored entry.
cColorItem EntryColor(const cLayersEntries& entry);

}  // namespace qds
