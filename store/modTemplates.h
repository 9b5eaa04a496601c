#pragma once
// Designs as files: the ".tpl" exchange file (a serialised collection that
// admits equal keys: "Image", "Description", "Opacity", "UseOpacity", then
// one "Content" per layer entry in stack order) and a readable JSON file for
// people and scripts:
//   {"Name":..,"Description":..,"Opacity":100,"UseOpacity":false,
//    "Entries":[<each entry's Content object, in stack order>]}

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Bytes.h"
#include "platform/Value.h"

namespace qds {

struct AppContext;
class cLayersEntries;

// No design or template file is larger than this; a larger one (or an
// endless device) is refused before it fills the memory.
constexpr std::size_t kMaxDesignFileBytes = std::size_t{64} << 20;

// A design as it travels between libraries.
struct DesignFile {
  std::string Name;  // JSON files only; a template takes its file's name
  std::string Description;
  Bytes Image;
  int Opacity = 100;  // 0..100
  bool UseOpacity = false;
  std::vector<std::string> Contents;  // each a layer entry's JSON object
  // Values found out of range as the design was read, and set to their
  // limits; the caller tells the user.
  int Clamped = 0;
};

// The design's own values as a row, a template or a JSON file holds them:
// nullopt for a key the source lacks.
using DesignValueSource = std::function<std::optional<Value>(const char* key)>;
// The one reader of Name, Description, Opacity and UseOpacity, whatever the
// source. An Opacity outside 0..100 is set to its limit and counted in
// `d.Clamped`. Returns why a value cannot be used ("Opacity is not a
// number: \"half\"", "Description is missing"); empty when all can.
std::string ReadDesignValues(const DesignValueSource& get, DesignFile& d);

// Layers made by the effect and text tools have no library row of their
// own: their settings alone define them.
bool IsGeneratedKey(const std::string& key);
// The one check of a stored layer entry, for loading, importing and
// exporting alike: a JSON object with a key, icon IDs that are whole
// numbers (the base entry's a list of them, a generated layer's none), and
// settings that are a JSON object. Returns why not ("has no key"), to be
// put after the entry's name; empty when the entry can be used, which is
// then read into `entry`.
// Brings the layer entries' values into their limits as well, in place, and
// answers how many values of the design, its own and its entries', were
// out of range.
int CorrectDesign(DesignFile& design);
std::string CheckLayerEntry(const std::string& content, cLayersEntries* entry = nullptr);

// The saved design of that name, without regard to case; 0 when none.
int FindDesign(AppContext& app, const std::string& name);
// The design's rows as a file; nullopt when there is no such design. A row
// value that cannot be used raises AppError(InvalidData) naming the design
// and the value.
std::optional<DesignFile> ReadDesign(AppContext& app, int layerId);

Bytes TemplateBytes(const DesignFile& design);
// Nullopt for bytes that are no template: damaged, not a collection, a
// required key missing ("Image", "Description", "Content"), a value of the
// wrong kind, or an entry that does not pass CheckLayerEntry; `why` then
// hears the reason.
std::optional<DesignFile> ReadTemplateBytes(const Bytes& bytes, std::string* why = nullptr);
// Why the template of this design would be refused by ReadTemplateBytes;
// empty when it would be taken. Export checks with it so that it never
// writes a file that import refuses.
std::string TemplateProblem(const DesignFile& design);

// An entry that does not parse is written as the text it is, so that the
// damage shows and reading the file back refuses it rather than losing it.
std::string DesignJson(const DesignFile& design, bool pretty = false);
// The same checks as a template, with the parser's line and column for
// text that is no JSON; nullopt for text that does not pass them, `why`
// then hears the reason ("Entries[2] is not an object").
std::optional<DesignFile> ReadDesignJson(const std::string& text, std::string* why = nullptr);

// Writes the design under `name`, replacing an existing design of that name
// (its ID kept, its entries replaced), all or nothing. Returns its ID, or 0
// when the database refused (nothing is changed then). With `replace`
// false a design of that name is left as it is: 0, and `existed` is set.
// The name is looked for inside the write, so two programs saving at once
// cannot both find it free.
int StoreDesign(AppContext& app, const std::string& name, const DesignFile& design, bool replace = true,
                bool* existed = nullptr);
bool DeleteDesign(AppContext& app, int layerId);

}  // namespace qds
