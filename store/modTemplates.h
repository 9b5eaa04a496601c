#pragma once
// Designs as files: the ".tpl" exchange file (a serialised collection that
// admits equal keys: "Image", "Description", "Opacity", "UseOpacity", then
// one "Content" per layer entry in stack order) and a readable JSON file for
// people and scripts:
//   {"Name":..,"Description":..,"Opacity":100,"UseOpacity":false,
//    "Entries":[<each entry's Content object, in stack order>]}

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/Bytes.h"

namespace qds {

struct AppContext;

// No design or template file is larger than this; a larger one (or an
// endless device) is refused before it fills the memory.
constexpr std::size_t kMaxDesignFileBytes = std::size_t{64} << 20;

// A design as it travels between libraries.
struct DesignFile {
  std::string Name;  // JSON files only; a template takes its file's name
  std::string Description;
  Bytes Image;
  int Opacity = 100;
  bool UseOpacity = false;
  std::vector<std::string> Contents;  // each a layer entry's JSON object
};

// The saved design of that name, without regard to case; 0 when none.
int FindDesign(AppContext& app, const std::string& name);
// The design's rows as a file; nullopt when there is no such design.
std::optional<DesignFile> ReadDesign(AppContext& app, int layerId);

Bytes TemplateBytes(const DesignFile& design);
// Nullopt for bytes that are no template: damaged, not a collection, a
// required key missing ("Image", "Description", "Content"), or an entry
// that is not a layer entry.
std::optional<DesignFile> ReadTemplateBytes(const Bytes& bytes);

std::string DesignJson(const DesignFile& design, bool pretty = false);
// The same checks as a template; nullopt for text that does not pass them.
std::optional<DesignFile> ReadDesignJson(const std::string& text);

// Writes the design under `name`, replacing an existing design of that name
// (its ID kept, its entries replaced), all or nothing. Returns its ID, or 0
// when the database refused (nothing is changed then).
int StoreDesign(AppContext& app, const std::string& name, const DesignFile& design);
bool DeleteDesign(AppContext& app, int layerId);

}  // namespace qds
