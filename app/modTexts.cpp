#include "app/modTexts.h"

#include "app/AppContext.h"
#include "app/cConfig.h"

namespace qds {

void OpenTexts(AppContext& app) {
  app.rsTexts = app.CnnResources.Query("Select * From Texts where Language_ID = " +
                                       std::to_string(app.Config ? app.Config->Language_ID() : 0));
}

cLanguage LanguageText(AppContext& app, const std::string& key) {
  DbRecordset& rs = app.rsTexts;
  const int name = rs.FieldIndex("Name");
  if (name < 0) return {};
  for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext()) {
    if (rs.FieldValue(name).AsString() == key) {
      return {rs.Fields("Text").AsString(), rs.Fields("Tooltip").AsString()};
    }
  }
  return {};
}

cLanguage LanguageText(const std::string& key) {
  return LanguageText(App(), key);
}

}  // namespace qds
