#pragma once
// One layer of a saved design as stored in a row: a settings bag of its own
// whose JSON text is the row's Content.

#include <string>

#include "platform/JsonBag.h"
#include "platform/SettingsSchema.h"
#include "platform/Value.h"

namespace qds {

// What an entry holds besides the layer's own settings, with its limits:
// the colour filter code, the blend operator, the colour (R, G, B) and the
// hue, saturation and lightness shifts. A channel may also be null: no value.
inline constexpr SettingRule kEntrySettings[] = {
    {"Key", SettingKind::Text, 0, 0, 256, ""},          {"ImageIDs", SettingKind::Text, 0, 0, 4 << 20, ""},
    {"IsBaseEntry", SettingKind::Flag, 0, 0, 1, {}},    {"Settings", SettingKind::Text, 0, 0, 16 << 20, ""},
    {"ColorFilter", SettingKind::Whole, -1, -6, 0, {}}, {"FillOptions", SettingKind::Whole, 2, 0, 255, {}},
    {"Visible", SettingKind::Flag, 1, 0, 1, {}},        {"R", SettingKind::Number, 0, 0, 255, {}},
    {"G", SettingKind::Number, 0, 0, 255, {}},          {"B", SettingKind::Number, 0, 0, 255, {}},
    {"H", SettingKind::Number, 0, -360, 360, {}},       {"S", SettingKind::Number, 0, -100, 100, {}},
    {"L", SettingKind::Number, 0, -100, 100, {}},
};

// Brings an entry's values and the layer settings inside it into their
// limits, in place; answers how many had to be changed. Text that is not a
// JSON object is left for the reader to refuse.
int CheckEntryContent(std::string& content);

class cLayersEntries {
 public:
  std::string Content() const { return bag_.ToString(); }
  // False (and an empty bag) for text that is not a JSON object. Values out
  // of their limits are brought into them and counted.
  bool setContent(const std::string& text) {
    corrected_ = 0;
    if (!bag_.Parse(text)) {
      bag_.Clear();
      return false;
    }
    corrected_ = CheckSettings(bag_, kEntrySettings);
    return true;
  }
  // How many values the last setContent had to bring into their limits.
  int Corrected() const { return corrected_; }

  int ColorFilter() const { return static_cast<int>(bag_.GetLong("ColorFilter", -1)); }
  void setColorFilter(int v) { bag_.Set("ColorFilter", v); }
  std::string ImageIDs() const { return bag_.GetString("ImageIDs"); }
  void setImageIDs(const std::string& v) { bag_.Set("ImageIDs", v); }
  bool IsBaseEntry() const { return bag_.GetBool("IsBaseEntry", false); }
  void setIsBaseEntry(bool v) { bag_.Set("IsBaseEntry", v); }
  std::string Key() const { return bag_.GetString("Key"); }
  void setKey(const std::string& v) { bag_.Set("Key", v); }
  std::string Settings() const { return bag_.GetString("Settings"); }
  void setSettings(const std::string& v) { bag_.Set("Settings", v); }
  int FillOptions() const { return static_cast<int>(bag_.GetLong("FillOptions", 2)); }
  void setFillOptions(int v) { bag_.Set("FillOptions", v); }
  bool Visible() const { return bag_.GetBool("Visible", true); }
  void setVisible(bool v) { bag_.Set("Visible", v); }

  // Colour channels: empty when absent or null.
  Value r() const { return Channel("R"); }
  Value G() const { return Channel("G"); }
  Value B() const { return Channel("B"); }
  Value H() const { return Channel("H"); }
  Value s() const { return Channel("S"); }
  Value l() const { return Channel("L"); }
  void setr(const Value& v) { SetChannel("R", v); }
  void setG(const Value& v) { SetChannel("G", v); }
  void setB(const Value& v) { SetChannel("B", v); }
  void setH(const Value& v) { SetChannel("H", v); }
  void sets(const Value& v) { SetChannel("S", v); }
  void setl(const Value& v) { SetChannel("L", v); }

 private:
  Value Channel(const char* key) const {
    if (!bag_.Has(key) || bag_.Raw()[key].is_null()) return Value();
    return Value(bag_.GetDouble(key));
  }
  void SetChannel(const char* key, const Value& v) {
    if (v.IsEmpty()) {
      bag_.Raw()[key] = nullptr;
    } else {
      bag_.Set(key, v.AsDouble());
    }
  }

  JsonBag bag_;
  int corrected_ = 0;
};

}  // namespace qds
