#pragma once
// Letter case and the parts of words for text a user types. Unlike the
// ASCII helpers of TextUtil.h these know every script, and unlike the C
// library they do not depend on the locale the program was started in.

namespace qds {

char32_t UpperCaseChar(char32_t c);
char32_t LowerCaseChar(char32_t c);
// A letter, a digit, a combining mark or '_': what a word is made of when
// the caret jumps by words or a double click picks one.
bool IsWordChar(char32_t c);

}  // namespace qds
