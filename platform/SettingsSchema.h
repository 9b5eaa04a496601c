#pragma once
// What a settings bag may hold: for each known key its kind, default and
// limits. A bag read from a file, a database row or the user's settings is
// checked against its table once, where it is read; code that draws or
// writes can then take every value as it finds it.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/JsonBag.h"

namespace qds {

enum class SettingKind {
  Number,  // a double in [min, max]
  Whole,   // an integer in [min, max]
  Flag,    // a boolean
  Text,    // a string of at most `max` bytes
};

struct SettingRule {
  std::string_view key;
  SettingKind kind;
  double def;             // Number, Whole, Flag (0 or 1)
  double min, max;        // Number, Whole; Text: max is the longest in bytes
  std::string_view text;  // Text's default

  // The value brought into range: NaN gives the default, a Whole is rounded.
  double Clamp(double v) const;
  // Cut to `max` bytes, never inside a UTF-8 sequence.
  std::string Clamp(std::string_view v) const;
};

// Brings every key of `rules` that the bag holds into range, in place. A
// value of another kind is converted the way the bag's getters read it
// (text "5" is 5, -1 is true); one that cannot be is removed, so that its
// getter answers the default.
// Keys the table does not know are left alone. Answers how many values had
// to be changed, so that the caller can say so.
int CheckSettings(JsonBag& bag, std::span<const SettingRule> rules);

// The row of `key` in the table, or none.
const SettingRule* FindSetting(std::span<const SettingRule> rules, std::string_view key);

// Stores a value brought into the limits of its rule (as it is, for a key
// the table does not know).
void SetChecked(JsonBag& bag, std::span<const SettingRule> rules, std::string_view key, double v);
void SetChecked(JsonBag& bag, std::span<const SettingRule> rules, std::string_view key, const std::string& v);
inline void SetChecked(JsonBag& bag, std::span<const SettingRule> rules, std::string_view key, int v) {
  SetChecked(bag, rules, key, static_cast<double>(v));
}
inline void SetChecked(JsonBag& bag, std::span<const SettingRule>, std::string_view key, bool v) {
  bag.Set(key, v);
}

// One row of a table kept as an X-macro list: the kind picks where the
// default goes.
#define QDS_SETTING_RULE_Number(Key, Def, Min, Max)    \
  {                                                    \
    Key, ::qds::SettingKind::Number, Def, Min, Max, {} \
  }
#define QDS_SETTING_RULE_Whole(Key, Def, Min, Max)    \
  {                                                   \
    Key, ::qds::SettingKind::Whole, Def, Min, Max, {} \
  }
#define QDS_SETTING_RULE_Flag(Key, Def, Min, Max)    \
  {                                                  \
    Key, ::qds::SettingKind::Flag, Def, Min, Max, {} \
  }
#define QDS_SETTING_RULE_Text(Key, Def, Min, Max) \
  { Key, ::qds::SettingKind::Text, 0, Min, Max, Def }
#define QDS_SETTING_RULE(Kind, Key, Def, Min, Max) QDS_SETTING_RULE_##Kind(Key, Def, Min, Max)

}  // namespace qds
