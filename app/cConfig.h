#pragma once
// The user's settings: one JSON object in the single row of table Config.
// A setting the object does not hold reads as its default. Setters change
// the object in memory only; Save writes the whole object back, so keys this
// version does not know survive.

#include <cstdint>
#include <string>

#include "platform/DbConnection.h"
#include "platform/DbRecordset.h"
#include "platform/JsonBag.h"

namespace qds {

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

#define QDS_SETTING(Type, Name, Getter, Def)           \
  Type Name() const {                                  \
    return static_cast<Type>(bag_.Getter(#Name, Def)); \
  }                                                    \
  void set##Name(Type v) {                             \
    bag_.Set(#Name, v);                                \
  }

  QDS_SETTING(int, Language_ID, GetLong, 0)
  // The undo depth as stored may come from an older or hand-edited file:
  // it is read as 0 to HistoryMaxLimit states.
  static constexpr int HistoryMaxLimit = 1000;
  int HistoryMax() const;
  void setHistoryMax(int v) {
    bag_.Set("HistoryMax", v);
  }
  QDS_SETTING(int, CanvasColor, GetLong, -1)
  QDS_SETTING(bool, ShowAppBG, GetBool, true)
  QDS_SETTING(bool, CreateFolderFormat, GetBool, false)
  QDS_SETTING(bool, CreateFolderSize, GetBool, false)
  QDS_SETTING(bool, ColorsinPerc, GetBool, false)
  QDS_SETTING(bool, ShowExportNameOptions, GetBool, true)
  QDS_SETTING(bool, ShowMiniPreview, GetBool, true)
  QDS_SETTING(bool, ShowRuler, GetBool, true)
  QDS_SETTING(bool, ShowIconBG, GetBool, false)
  QDS_SETTING(bool, MsgSaveDesign, GetBool, true)
  QDS_SETTING(bool, MsgDelOverlay, GetBool, true)
  QDS_SETTING(bool, MsgDelTemplate, GetBool, true)
  QDS_SETTING(bool, MsgDelAllLayer, GetBool, true)
  QDS_SETTING(bool, MsgDelLayer, GetBool, true)
  QDS_SETTING(bool, MsgDelBaseIcons, GetBool, true)
  QDS_SETTING(bool, MsgDelClip, GetBool, true)
  QDS_SETTING(bool, MsgDelColorThemes, GetBool, true)
  QDS_SETTING(bool, MsgDelIcons, GetBool, true)
  QDS_SETTING(bool, MsgDelStyle, GetBool, true)
  QDS_SETTING(bool, MsgDelTheme, GetBool, true)
  QDS_SETTING(bool, MsgDeleteColorPreset, GetBool, true)
  QDS_SETTING(std::string, ExportPath, GetString, "")

  std::string ImgFormat() const {
    return bag_.GetString("ImgFormat", "PNG");
  }
  void setImgFormat(const std::string& v);  // stored in upper case

  static constexpr const char* IcoSizesAll = "16,20,24,32,40,48,64,96,128,256";
  static constexpr const char* IcoSizesVistaWin8 = "16,32,48,256";
  static constexpr const char* IcoSizesWin10 = "16,20,24,32,40,48,64,256";

  QDS_SETTING(std::string, IcoSizes, GetString, IcoSizesWin10)
  QDS_SETTING(std::string, ImgSizePresets, GetString,
              "12x12,16x16,18x18,20x20,22x22,24x24,32x32,48x48,57x57,64x64,96x96,120x120,128x128,256x256,"
              "512x512,1024x1024")
  QDS_SETTING(std::string, ImgSize, GetString, "32x32")
  QDS_SETTING(bool, SizeExt, GetBool, true)
  QDS_SETTING(bool, AdjustSize, GetBool, false)
  QDS_SETTING(bool, RenameDuplicates, GetBool, false)
  QDS_SETTING(bool, RemoveBlank, GetBool, false)
  QDS_SETTING(std::string, Prefix, GetString, "")
  QDS_SETTING(std::string, Delimiter, GetString, "_")
  QDS_SETTING(int, BGColorJPG, GetLong, 0xFFFFFF)
  QDS_SETTING(int, BGColorPreview, GetLong, -1)
  QDS_SETTING(int, BGColorBMP, GetLong, 0xC0C0C0)
  QDS_SETTING(int, JPGQuality, GetLong, 90)

  std::string ImportPath() const {
    return bag_.GetString("ImportPath", appFolder_);
  }
  void setImportPath(const std::string& v) {
    bag_.Set("ImportPath", v);
  }
  std::string TemplatePath() const {
    return bag_.GetString("TemplatePath", appFolder_ + "/");
  }
  void setTemplatePath(const std::string& v) {
    bag_.Set("TemplatePath", v);
  }
  std::string ImportIconsDBPath() const;
  void setImportIconsDBPath(const std::string& v) {
    bag_.Set("ImportIconsDBPath", v);
  }

  QDS_SETTING(int, LastStyleID, GetLong, 0)
  QDS_SETTING(int, LastThemeID, GetLong, 19)
  QDS_SETTING(std::string, ClipIconSettings, GetString, "")
  QDS_SETTING(std::string, ClipSettings, GetString, "")
  QDS_SETTING(std::string, TextSettings, GetString, "")
  QDS_SETTING(std::string, LSSettings, GetString, "")
  QDS_SETTING(std::string, WSSettings, GetString, "")
  QDS_SETTING(std::string, GradSettings, GetString, "")
  QDS_SETTING(std::string, ReflectSettings, GetString, "")
  QDS_SETTING(std::string, LineSettings, GetString, "")
  QDS_SETTING(std::string, BlurSettings, GetString, "")
  QDS_SETTING(std::string, GlowSettings, GetString, "")
#undef QDS_SETTING

  double UserZoom() const;  // 1.0 .. 4.0
  void setUserZoom(double v) {
    bag_.Set("UserZoom", v);
  }

 private:
  std::string appFolder_;
  DbRecordset row_;
  JsonBag bag_;
};

}  // namespace qds
