#include "app/ui/modMenuResources.h"

#include "app/AppContext.h"
#include "app/modTexts.h"
#include "platform/stock/cwMenu.h"

namespace qds {

void AddMenuHelp(cwMenu& menu) {
  static const char* const items[][2] = {{"HelpInfographic", "InfoGraphic"},
                                         {"HelpPDFDoc", "PDFDoc"},
                                         {"HelpWebsite", "Website"},
                                         {"HelpTutorials", "Tutorials"},
                                         {"HelpForum", "Forum"}};
  for (const auto& item : items) menu.AddItem(std::string("MenuHelp>") + item[0], LanguageText(item[1]).Text);
}

void AddMenuEffectsTo(cwMenu& menu, const std::string& root) {
  static const char* const items[][2] = {{"ShadowLong", "Shadow_Long"},
                                         {"WallShadow", "Shadow_Drop"},
                                         {"Mirroring", "Reflection_Floor"},
                                         {"Blur", "Blur"},
                                         {"Glow", "Glow"}};
  for (const auto& item : items) menu.AddItem(root + ">" + item[0], LanguageText(item[0]).Text, item[1]);
}

void AddMenuFillMetodsTo(cwMenu& menu, const std::string& root) {
  // The captions are the operators' own names, as in every other program
  // that blends; the keys are the numbers the layers store.
  static const struct {
    const char* caption;
    int op;
  } items[] = {{"Over (Default)", 2}, {"Add", 12},        {"Color Burn", 20}, {"Color Dodge", 19},
               {"Darken", 17},        {"Difference", 23}, {"Exclusion", 24},  {"Hard Light", 21},
               {"Lighten", 18},       {"Multiply", 14},   {"Overlay", 16},    {"Screen", 15},
               {"Soft Light", 22}};
  for (const auto& item : items) menu.AddItem(root + ">" + std::to_string(item.op), item.caption);
}

std::string HelpTarget(const std::string& itemKey) {
  AppContext& app = App();
  if (itemKey == "HelpInfographic") return app.DocInfographic;
  if (itemKey == "HelpPDFDoc") return app.DocManual;
  if (itemKey == "HelpWebsite") return app.LinkHome;
  if (itemKey == "HelpTutorials") return app.LinkTutorials;
  if (itemKey == "HelpForum") return app.LinkForum;
  return {};
}

}  // namespace qds
