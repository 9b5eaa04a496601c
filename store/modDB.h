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
// Rebuilds Layers, BaseIcons and OverlayLayers from the design's rows.
// Icons that have left the library become the stand-in icon.
bool FillCurrentLayerList(AppContext& app, int layerId);
// The same from the entries' contents, in stack order, as a file holds them.
bool FillLayersFromEntries(AppContext& app, const std::vector<std::string>& contents);
void ValidateImageIDs(AppContext& app, cLayersEntries& entry);

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
