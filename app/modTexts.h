#pragma once
// The interface's words: rows of Texts for the chosen language.

#include <string>

namespace qds {

struct AppContext;

struct cLanguage {
  std::string Text;
  std::string Tooltip;
};

// Reads the language's rows into rsTexts.
void OpenTexts(AppContext& app);
// The text of a key; two empty strings for a key that has none.
cLanguage LanguageText(const std::string& key);
cLanguage LanguageText(AppContext& app, const std::string& key);

}  // namespace qds
