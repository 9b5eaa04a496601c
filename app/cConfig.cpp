#include "app/cConfig.h"

#include <algorithm>

#include "platform/Files.h"

namespace qds {

namespace {

constexpr const char* kMessageFlags[] = {"MsgSaveDesign",  "MsgDelOverlay",     "MsgDelTemplate",
                                         "MsgDelAllLayer", "MsgDelLayer",       "MsgDelBaseIcons",
                                         "MsgDelClip",     "MsgDelColorThemes", "MsgDelIcons",
                                         "MsgDelStyle",    "MsgDelTheme",       "MsgDeleteColorPreset"};

#define QDS_RULE(Type, Name, Kind, Def, Min, Max, Getter, Setter) \
  QDS_SETTING_RULE(Kind, #Name, Def, Min, Max),
constexpr SettingRule kConfigSettings[] = {QDS_CONFIG_SETTINGS(QDS_RULE)};
#undef QDS_RULE

}  // namespace

std::span<const SettingRule> ConfigSettings() {
  return kConfigSettings;
}

cConfig::cConfig(DbConnection& cnn, std::string appFolder) : appFolder_(std::move(appFolder)) {
  row_ = cnn.Query("Select * From Config");
  if (row_.RecordCount() > 0) setSettings(row_.Fields("Settings").AsString());
}

void cConfig::setSettings(const std::string& text) {
  // Anything but an object leaves every setting at its default.
  if (text.size() <= 2 || text.front() != '{' || !bag_.Parse(text)) bag_.Clear();
  corrected_ = CheckSettings(bag_, kConfigSettings);
}

bool cConfig::Save() {
  row_.MoveFirst();
  row_.Fields("Settings") = Settings();
  row_.Update();
  return true;
}

void cConfig::ResetMessages() {
  for (const char* flag : kMessageFlags) bag_.Set(flag, true);
}

void cConfig::setImgFormat(std::string v) {
  std::string upper = v;
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  SetChecked(bag_, kConfigSettings, "ImgFormat", upper);
}

std::string cConfig::ImportIconsDBPath() const {
  const std::string def = appFolder_ + "/";
  const std::string value = bag_.GetString("ImportIconsDBPath", def);
  if (value == def && FolderExists(appFolder_ + "/NewIconsDatabase/"))
    return appFolder_ + "/NewIconsDatabase/";
  return value;
}

std::string cConfig::ImportPath() const {
  return bag_.GetString("ImportPath", appFolder_);
}

std::string cConfig::TemplatePath() const {
  return bag_.GetString("TemplatePath", appFolder_ + "/");
}

}  // namespace qds
