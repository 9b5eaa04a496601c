#pragma once
// The user's settings: one JSON object in the single row of table Config.
// A setting the object does not hold reads as its default. Setters change
// the object in memory only; Save writes the whole object back, so keys this
// version does not know survive.

#include <cstdint>
#include <span>
#include <string>

#include "platform/DbConnection.h"
#include "platform/DbRecordset.h"
#include "platform/JsonBag.h"
#include "platform/SettingsSchema.h"

namespace qds {

// The user's settings: name, kind, default, lowest and highest value (for
// text the longest, in bytes), and whether the getter and setter do more
// than read and store. The stored object is brought into these limits when
// it is read; setters keep it there.
#define QDS_CONFIG_SETTINGS(X)                                                                   \
  X(int, Language_ID, Whole, 0, 0, 255, Plain, Plain)                                            \
  X(int, HistoryMax, Whole, 50, 0, 1000, Plain, Plain)                                           \
  X(int, CanvasColor, Whole, -1, -1, 0xFFFFFF, Plain, Plain)                                     \
  X(bool, ShowAppBG, Flag, true, 0, 1, Plain, Plain)                                             \
  X(bool, CreateFolderFormat, Flag, false, 0, 1, Plain, Plain)                                   \
  X(bool, CreateFolderSize, Flag, false, 0, 1, Plain, Plain)                                     \
  X(bool, ColorsinPerc, Flag, false, 0, 1, Plain, Plain)                                         \
  X(bool, ShowExportNameOptions, Flag, true, 0, 1, Plain, Plain)                                 \
  X(bool, ShowMiniPreview, Flag, true, 0, 1, Plain, Plain)                                       \
  X(bool, ShowRuler, Flag, true, 0, 1, Plain, Plain)                                             \
  X(bool, ShowIconBG, Flag, false, 0, 1, Plain, Plain)                                           \
  X(bool, MsgSaveDesign, Flag, true, 0, 1, Plain, Plain)                                         \
  X(bool, MsgDelOverlay, Flag, true, 0, 1, Plain, Plain)                                         \
  X(bool, MsgDelTemplate, Flag, true, 0, 1, Plain, Plain)                                        \
  X(bool, MsgDelAllLayer, Flag, true, 0, 1, Plain, Plain)                                        \
  X(bool, MsgDelLayer, Flag, true, 0, 1, Plain, Plain)                                           \
  X(bool, MsgDelBaseIcons, Flag, true, 0, 1, Plain, Plain)                                       \
  X(bool, MsgDelClip, Flag, true, 0, 1, Plain, Plain)                                            \
  X(bool, MsgDelColorThemes, Flag, true, 0, 1, Plain, Plain)                                     \
  X(bool, MsgDelIcons, Flag, true, 0, 1, Plain, Plain)                                           \
  X(bool, MsgDelStyle, Flag, true, 0, 1, Plain, Plain)                                           \
  X(bool, MsgDelTheme, Flag, true, 0, 1, Plain, Plain)                                           \
  X(bool, MsgDeleteColorPreset, Flag, true, 0, 1, Plain, Plain)                                  \
  X(std::string, ExportPath, Text, "", 0, 4096, Plain, Plain)                                    \
  /* Stored in upper case. */                                                                    \
  X(std::string, ImgFormat, Text, "PNG", 0, 8, Plain, Own)                                       \
  X(std::string, IcoSizes, Text, "16,20,24,32,40,48,64,256", 0, 256, Plain, Plain)               \
  X(std::string, ImgSizePresets, Text,                                                           \
    "12x12,16x16,18x18,20x20,22x22,24x24,32x32,48x48,57x57,64x64,96x96,120x120,128x128,256x256," \
    "512x512,1024x1024",                                                                         \
    0, 4096, Plain, Plain)                                                                       \
  X(std::string, ImgSize, Text, "32x32", 0, 32, Plain, Plain)                                    \
  X(bool, SizeExt, Flag, true, 0, 1, Plain, Plain)                                               \
  X(bool, AdjustSize, Flag, false, 0, 1, Plain, Plain)                                           \
  X(bool, RenameDuplicates, Flag, false, 0, 1, Plain, Plain)                                     \
  X(bool, RemoveBlank, Flag, false, 0, 1, Plain, Plain)                                          \
  X(std::string, Prefix, Text, "", 0, 256, Plain, Plain)                                         \
  X(std::string, Delimiter, Text, "_", 0, 256, Plain, Plain)                                     \
  X(int, BGColorJPG, Whole, 0xFFFFFF, -1, 0xFFFFFF, Plain, Plain)                                \
  X(int, BGColorPreview, Whole, -1, -1, 0xFFFFFF, Plain, Plain)                                  \
  X(int, BGColorBMP, Whole, 0xC0C0C0, -1, 0xFFFFFF, Plain, Plain)                                \
  X(int, JPGQuality, Whole, 90, 10, 100, Plain, Plain)                                           \
  /* The three folders default to places in the application folder. */                           \
  X(std::string, ImportPath, Text, "", 0, 4096, Own, Plain)                                      \
  X(std::string, TemplatePath, Text, "", 0, 4096, Own, Plain)                                    \
  X(std::string, ImportIconsDBPath, Text, "", 0, 4096, Own, Plain)                               \
  X(int, LastStyleID, Whole, 0, 0, 2147483647, Plain, Plain)                                     \
  X(int, LastThemeID, Whole, 19, 0, 2147483647, Plain, Plain)                                    \
  /* The presets of the tools, each a settings object of its own. */                             \
  X(std::string, ClipIconSettings, Text, "", 0, 1 << 20, Plain, Plain)                           \
  X(std::string, ClipSettings, Text, "", 0, 1 << 20, Plain, Plain)                               \
  X(std::string, TextSettings, Text, "", 0, 1 << 20, Plain, Plain)                               \
  X(std::string, LSSettings, Text, "", 0, 1 << 20, Plain, Plain)                                 \
  X(std::string, WSSettings, Text, "", 0, 1 << 20, Plain, Plain)                                 \
  X(std::string, GradSettings, Text, "", 0, 1 << 20, Plain, Plain)                               \
  X(std::string, ReflectSettings, Text, "", 0, 1 << 20, Plain, Plain)                            \
  X(std::string, LineSettings, Text, "", 0, 1 << 20, Plain, Plain)                               \
  X(std::string, BlurSettings, Text, "", 0, 1 << 20, Plain, Plain)                               \
  X(std::string, GlowSettings, Text, "", 0, 1 << 20, Plain, Plain)                               \
  X(double, UserZoom, Number, 1.25, 1, 4, Plain, Plain)                                          \
  /* The main window's place and size on the screen, in pixels; a width */                       \
  /* of 0 means none was kept. Where they still fit is for the window to decide. */              \
  X(int, WindowLeft, Whole, 0, -1000000, 1000000, Plain, Plain)                                  \
  X(int, WindowTop, Whole, 0, -1000000, 1000000, Plain, Plain)                                   \
  X(int, WindowWidth, Whole, 0, 0, 1000000, Plain, Plain)                                        \
  X(int, WindowHeight, Whole, 0, 0, 1000000, Plain, Plain)                                       \
  X(bool, WindowMaximized, Flag, false, 0, 1, Plain, Plain)

// The table above as data.
std::span<const SettingRule> ConfigSettings();

class cConfig {
 public:
  // Reads "Select * From Config" on `cnn`; `appFolder` has no trailing "/".
  cConfig(DbConnection& cnn, std::string appFolder);

  // Writes the object to the open row. Raises the database's error when the
  // table has no row.
  bool Save();
  // Sets the twelve confirmation flags to true; does not save.
  void ResetMessages();
  std::string Settings() const { return bag_.ToString(); }
  void setSettings(const std::string& text);

  // Any setting by its name, for code that names it at run time (the
  // message box reads the confirmation flag it was given).
  bool GetFlag(const std::string& name, bool def = true) const { return bag_.GetBool(name, def); }
  void SetFlag(const std::string& name, bool v) { bag_.Set(name, v); }

#define QDS_GET_Number(Key, Def) bag_.GetDouble(Key, Def)
#define QDS_GET_Whole(Key, Def) bag_.GetLong(Key, Def)
#define QDS_GET_Flag(Key, Def) bag_.GetBool(Key, Def)
#define QDS_GET_Text(Key, Def) bag_.GetString(Key, Def)
#define QDS_GETTER_Plain(Type, Name, Kind, Def)           \
  Type Name() const {                                     \
    return static_cast<Type>(QDS_GET_##Kind(#Name, Def)); \
  }
#define QDS_GETTER_Own(Type, Name, Kind, Def) Type Name() const;
#define QDS_SETTER_Plain(Type, Name)              \
  void set##Name(Type v) {                        \
    SetChecked(bag_, ConfigSettings(), #Name, v); \
  }
#define QDS_SETTER_Own(Type, Name) void set##Name(Type v);
#define QDS_ACCESSORS(Type, Name, Kind, Def, Min, Max, Getter, Setter) \
  QDS_GETTER_##Getter(Type, Name, Kind, Def) QDS_SETTER_##Setter(Type, Name)

  QDS_CONFIG_SETTINGS(QDS_ACCESSORS)
#undef QDS_ACCESSORS
#undef QDS_SETTER_Own
#undef QDS_SETTER_Plain
#undef QDS_GETTER_Own
#undef QDS_GETTER_Plain
#undef QDS_GET_Text
#undef QDS_GET_Flag
#undef QDS_GET_Whole
#undef QDS_GET_Number

  // The undo depth as stored may come from an older or hand-edited file.
  static constexpr int HistoryMaxLimit = 1000;

  static constexpr const char* IcoSizesAll = "16,20,24,32,40,48,64,96,128,256";
  static constexpr const char* IcoSizesVistaWin8 = "16,32,48,256";
  static constexpr const char* IcoSizesWin10 = "16,20,24,32,40,48,64,256";

  // How many values setSettings had to bring into their limits.
  int CorrectedSettings() const {
    return corrected_;
  }

 private:
  std::string appFolder_;
  DbRecordset row_;
  JsonBag bag_;
  int corrected_ = 0;
};

}  // namespace qds
