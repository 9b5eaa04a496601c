#include "store/LibrarySchema.h"

namespace qds {

std::string ProgramVersion() {
  return QDS_VERSION;
}

namespace {

bool ExecuteAll(DbConnection& cnn, std::initializer_list<const char*> statements) {
  for (const char* sql : statements) {
    if (!cnn.Execute(sql)) return false;
  }
  return true;
}

}  // namespace

bool CreateLibrarySchema(DbConnection& cnn) {
  return ExecuteAll(
      cnn,
      {"CREATE TABLE Styles (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT NOT NULL)",
       "CREATE TABLE Themes (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT NOT NULL)",
       "CREATE TABLE Images (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT, SVG BLOB, Styles_ID INTEGER, "
       "Themes_ID INTEGER, Overlay INTEGER DEFAULT 0, Zoom REAL DEFAULT 100, OffsetX REAL DEFAULT 0, "
       "OffsetY REAL DEFAULT 0, Custom INTEGER DEFAULT 0, Synonyms TEXT)",
       "CREATE INDEX Images_Style_Theme ON Images (Styles_ID, Themes_ID)",
       "CREATE TABLE Layer (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT, Description TEXT, Thumbnail "
       "BLOB, "
       "Opacity INTEGER DEFAULT 100, UseOpacity INTEGER DEFAULT 0)",
       "CREATE TABLE LayerEntries (ID INTEGER PRIMARY KEY AUTOINCREMENT, Layer_ID INTEGER, OrdIndex INTEGER, "
       "Content TEXT)",
       "CREATE INDEX LayerEntries_Layer ON LayerEntries (Layer_ID)",
       "CREATE TABLE ColorFilter (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT, Description TEXT, "
       "ColorFilter INTEGER, OldColors TEXT, NewColors TEXT, Gradient TEXT, R INTEGER, G INTEGER, B INTEGER, "
       "H INTEGER, S INTEGER, L INTEGER, Layers INTEGER DEFAULT 0, UseGlobalOpacity INTEGER DEFAULT 0, "
       "Opacity INTEGER DEFAULT 100)",
       "CREATE TABLE ColorThemes (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT)",
       "CREATE TABLE ColorPalette (ID INTEGER PRIMARY KEY AUTOINCREMENT, ColorThemes_ID INTEGER, ColorType "
       "TEXT, "
       "Color INTEGER, Name TEXT)",
       "CREATE TABLE Templates (ID INTEGER PRIMARY KEY AUTOINCREMENT, TemplateTypes_ID INTEGER, Name TEXT, "
       "Description TEXT, Settings TEXT, Thumbnail BLOB)",
       "CREATE TABLE Config (Settings TEXT)", "CREATE TABLE TmpImageBlobs (Content BLOB)",
       "CREATE TABLE DBVersion (Version TEXT)",
       // Interface icons are looked up by ID through the library connection too.
       "CREATE TABLE Resources (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT, SVG BLOB)"});
}

bool CreateResourcesSchema(DbConnection& cnn) {
  return ExecuteAll(cnn,
                    {"CREATE TABLE Resources (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT, SVG BLOB)",
                     "CREATE TABLE Language (ID INTEGER PRIMARY KEY, Language TEXT)",
                     "CREATE TABLE Texts (Language_ID INTEGER, Name TEXT, Text TEXT, Tooltip TEXT)",
                     "CREATE INDEX Texts_Language ON Texts (Language_ID, Name)"});
}

}  // namespace qds
