#pragma once
// The start of the program up to the point where the window opens: the
// process-wide objects, both databases, the settings and texts, the first
// fill of the library, and the pictures every view draws with.

#include <cstdint>
#include <functional>
#include <string>

#include "platform/JsonBag.h"

namespace qds {

struct AppContext;

// Told after each batch of the first start's import: batches done, in all.
using ImportProgress = std::function<void(int done, int total)>;

// Objects, connections, settings and texts; then the first-start import and
// the stand-in icon. False (after a message that names the library and
// what is wrong with it, or the import's message) when the library cannot
// be used.
bool InitGlobals(AppContext& app, const ImportProgress& progress = {});

// Both databases, the settings and the texts, and nothing of the library's
// content: what windows that ask and report need. False, quietly, when the
// library cannot be used.
bool OpenSettingsAndTexts(AppContext& app);

void AddBasePatterns(AppContext& app);
void AddQuillaronShapes(AppContext& app);
void AddResourceSVGs(AppContext& app, std::int64_t iconColor);
void InitFillOptions(AppContext& app);
// The language's documents and web addresses: German for language 1,
// English for every other.
void SetDocumentsAndLinks(AppContext& app);
// Dat/Quillaron.ini, section SVG, key RemoveClipPath "J".
void ReadSettingsFile(AppContext& app);

bool IsFlatStyle(const std::string& styleName, const std::string& themeName, const std::string& extra);
// Shows the text of key "Error" of a result and returns true when there is one.
bool CheckError(AppContext& app, const JsonBag& result);

// Everything of the start that needs no window, in the start-up order, and
// the schema upgrade unless the caller runs it once its window shows.
// False when the program cannot go on.
bool StartWithoutWindow(AppContext& app, const ImportProgress& progress = {}, bool updateDb = true);

}  // namespace qds
