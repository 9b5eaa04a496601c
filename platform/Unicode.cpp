#include "platform/Unicode.h"

#include <glib.h>

namespace qds {

char32_t UpperCaseChar(char32_t c) {
  return static_cast<char32_t>(g_unichar_toupper(static_cast<gunichar>(c)));
}

char32_t LowerCaseChar(char32_t c) {
  return static_cast<char32_t>(g_unichar_tolower(static_cast<gunichar>(c)));
}

bool IsWordChar(char32_t c) {
  const gunichar u = static_cast<gunichar>(c);
  return c == U'_' || g_unichar_isalnum(u) || g_unichar_ismark(u);
}

}  // namespace qds
