#include "platform/SettingsSchema.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qds {

double SettingSpec::Clamp(double v) const {
  if (std::isnan(v)) return def;
  if (kind == SettingKind::Whole) v = std::nearbyint(std::clamp(v, min, max));
  return std::clamp(v, min, max);
}

std::string SettingSpec::Clamp(std::string_view v) const {
  std::size_t n = std::min(v.size(), static_cast<std::size_t>(max));
  // Step back over continuation bytes so that no character is cut in two.
  if (n < v.size()) {
    while (n > 0 && (static_cast<unsigned char>(v[n]) & 0xC0) == 0x80) --n;
  }
  return std::string(v.substr(0, n));
}

const SettingSpec* FindSetting(std::span<const SettingSpec> specs, std::string_view key) {
  const auto it =
      std::find_if(specs.begin(), specs.end(), [&](const SettingSpec& s) { return s.key == key; });
  return it == specs.end() ? nullptr : &*it;
}

void SetChecked(JsonBag& bag, std::span<const SettingSpec> specs, std::string_view key, double v) {
  const SettingSpec* spec = FindSetting(specs, key);
  if (spec && spec->kind == SettingKind::Whole) {
    bag.Set(key, static_cast<long long>(spec->Clamp(v)));
  } else {
    bag.Set(key, spec ? spec->Clamp(v) : v);
  }
}

void SetChecked(JsonBag& bag, std::span<const SettingSpec> specs, std::string_view key,
                const std::string& v) {
  const SettingSpec* spec = FindSetting(specs, key);
  bag.Set(key, spec ? spec->Clamp(std::string_view(v)) : v);
}

namespace {

// One value against its spec; true when it had to be changed.
bool CheckOne(JsonBag& bag, const SettingSpec& spec) {
  const JsonBag::Json& j = bag.Raw()[std::string(spec.key)];
  if (j.is_null()) return false;  // reads as the default
  switch (spec.kind) {
    case SettingKind::Number:
    case SettingKind::Whole: {
      constexpr double kUnreadable = std::numeric_limits<double>::quiet_NaN();
      const double v = j.is_structured() ? kUnreadable : bag.GetDouble(spec.key, kUnreadable);
      if (std::isnan(v)) {
        bag.Remove(spec.key);  // unreadable: the getter's default stands
        return true;
      }
      const double c = spec.Clamp(v);
      const bool changed = c != v;
      // Stored as the number it reads as, so that a converted text needs no
      // second conversion by whoever reads it next.
      if (changed || !j.is_number() || (spec.kind == SettingKind::Whole && !j.is_number_integer())) {
        if (spec.kind == SettingKind::Whole) {
          bag.Set(spec.key, static_cast<long long>(c));
        } else {
          bag.Set(spec.key, c);
        }
      }
      return changed;
    }
    case SettingKind::Flag: {
      if (j.is_boolean()) return false;
      const bool asFalse = !j.is_structured() && bag.GetBool(spec.key, false);
      const bool asTrue = j.is_structured() || bag.GetBool(spec.key, true);
      if (asFalse != asTrue) {
        bag.Remove(spec.key);
        return true;
      }
      bag.Set(spec.key, asFalse);
      return false;
    }
    case SettingKind::Text: {
      if (j.is_structured()) {
        bag.Remove(spec.key);
        return true;
      }
      const std::string v = bag.GetString(spec.key);
      const std::string c = spec.Clamp(v);
      if (c != v || !j.is_string()) bag.Set(spec.key, c);
      return c != v;
    }
  }
  return false;
}

}  // namespace

int CheckSettings(JsonBag& bag, std::span<const SettingSpec> specs) {
  int changed = 0;
  for (const SettingSpec& spec : specs) {
    if (bag.Has(spec.key) && CheckOne(bag, spec)) ++changed;
  }
  return changed;
}

}  // namespace qds
