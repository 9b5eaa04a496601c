#include "app/cConfig.h"

#include <algorithm>

#include "platform/Files.h"

namespace qds {

namespace {

constexpr const char* kMessageFlags[] = {"MsgSaveDesign",  "MsgDelOverlay",     "MsgDelTemplate",
                                         "MsgDelAllLayer", "MsgDelLayer",       "MsgDelBaseIcons",
                                         "MsgDelClip",     "MsgDelColorThemes", "MsgDelIcons",
                                         "MsgDelStyle",    "MsgDelTheme",       "MsgDeleteColorPreset"};

}  // namespace

cConfig::cConfig(DbConnection& cnn, std::string appFolder) : appFolder_(std::move(appFolder)) {
  row_ = cnn.Query("Select * From Config");
  if (row_.RecordCount() > 0) setSettings(row_.Fields("Settings").AsString());
}

void cConfig::setSettings(const std::string& text) {
  // Anything but an object leaves every setting at its default.
  if (text.size() <= 2 || text.front() != '{' || !bag_.Parse(text)) bag_.Clear();
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

void cConfig::setImgFormat(const std::string& v) {
  std::string upper = v;
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  bag_.Set("ImgFormat", upper);
}

std::string cConfig::ImportIconsDBPath() const {
  const std::string def = appFolder_ + "/";
  const std::string value = bag_.GetString("ImportIconsDBPath", def);
  if (value == def && FolderExists(appFolder_ + "/NewIconsDatabase/"))
    return appFolder_ + "/NewIconsDatabase/";
  return value;
}

int cConfig::HistoryMax() const {
  // Every state holds a copy of the whole design: a negative depth means
  // none, and no file may ask for more than the limit.
  return static_cast<int>(std::clamp<std::int64_t>(bag_.GetLong("HistoryMax", 50), 0, HistoryMaxLimit));
}

double cConfig::UserZoom() const {
  return std::clamp(bag_.GetDouble("UserZoom", 1.25), 1.0, 4.0);
}

}  // namespace qds
