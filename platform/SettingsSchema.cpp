#include "platform/SettingsSchema.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qds {

double SettingRule::Clamp(double v) const {
  if (std::isnan(v)) return def;
  if (kind == SettingKind::Whole) v = std::nearbyint(std::clamp(v, min, max));
  return std::clamp(v, min, max);
}

std::string SettingRule::Clamp(std::string_view v) const {
  std::size_t n = std::min(v.size(), static_cast<std::size_t>(max));
  // Step back over continuation bytes so that no character is cut in two.
  if (n < v.size()) {
    while (n > 0 && (static_cast<unsigned char>(v[n]) & 0xC0) == 0x80) --n;
  }
  return std::string(v.substr(0, n));
}

const SettingRule* FindSetting(std::span<const SettingRule> rules, std::string_view key) {
  const auto it =
      std::find_if(rules.begin(), rules.end(), [&](const SettingRule& s) { return s.key == key; });
  return it == rules.end() ? nullptr : &*it;
}

void SetChecked(JsonBag& bag, std::span<const SettingRule> rules, std::string_view key, double v) {
  const SettingRule* rule = FindSetting(rules, key);
  if (rule && rule->kind == SettingKind::Whole) {
    bag.Set(key, static_cast<long long>(rule->Clamp(v)));
  } else {
    bag.Set(key, rule ? rule->Clamp(v) : v);
  }
}

void SetChecked(JsonBag& bag, std::span<const SettingRule> rules, std::string_view key,
                const std::string& v) {
  const SettingRule* rule = FindSetting(rules, key);
  bag.Set(key, rule ? rule->Clamp(std::string_view(v)) : v);
}

namespace {

// One value against its rule; true when it had to be changed.
bool CheckOne(JsonBag& bag, const SettingRule& rule) {
  const JsonBag::Json& j = bag.Raw()[std::string(rule.key)];
  if (j.is_null()) return false;  // reads as the default
  switch (rule.kind) {
    case SettingKind::Number:
    case SettingKind::Whole: {
      constexpr double kUnreadable = std::numeric_limits<double>::quiet_NaN();
      const double v = j.is_structured() ? kUnreadable : bag.GetDouble(rule.key, kUnreadable);
      if (std::isnan(v)) {
        bag.Remove(rule.key);  // unreadable: the getter's default stands
        return true;
      }
      const double c = rule.Clamp(v);
      const bool changed = c != v;
      // Stored as the number it reads as, so that a converted text needs no
      // second conversion by whoever reads it next.
      if (changed || !j.is_number() || (rule.kind == SettingKind::Whole && !j.is_number_integer())) {
        if (rule.kind == SettingKind::Whole) {
          bag.Set(rule.key, static_cast<long long>(c));
        } else {
          bag.Set(rule.key, c);
        }
      }
      return changed;
    }
    case SettingKind::Flag: {
      if (j.is_boolean()) return false;
      const bool asFalse = !j.is_structured() && bag.GetBool(rule.key, false);
      const bool asTrue = j.is_structured() || bag.GetBool(rule.key, true);
      if (asFalse != asTrue) {
        bag.Remove(rule.key);
        return true;
      }
      bag.Set(rule.key, asFalse);
      return false;
    }
    case SettingKind::Text: {
      if (j.is_structured()) {
        bag.Remove(rule.key);
        return true;
      }
      const std::string v = bag.GetString(rule.key);
      const std::string c = rule.Clamp(v);
      if (c != v || !j.is_string()) bag.Set(rule.key, c);
      return c != v;
    }
  }
  return false;
}

}  // namespace

int CheckSettings(JsonBag& bag, std::span<const SettingRule> rules) {
  int changed = 0;
  for (const SettingRule& rule : rules) {
    if (bag.Has(rule.key) && CheckOne(bag, rule)) ++changed;
  }
  return changed;
}

}  // namespace qds
