#include "app/modStartup.h"

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modTexts.h"
#include "engine/cSVGItem.h"
#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/IniFile.h"
#include "platform/TextUtil.h"
#include "platform/ThemePalette.h"
#include "store/modLibrary.h"

namespace qds {

namespace {

// Words for the library's problems when not even the texts can be read
// (the application folder is missing); they match the English rows.
constexpr const char* kLibraryWords[][2] = {
    {"LibraryFolderMissing", "The application folder does not exist"},
    {"LibraryMissing", "The library database is missing"},
    {"LibraryDamaged", "The library is damaged or is not a database"},
    {"LibraryTableMissing", "A table the program needs is missing from the library"},
    {"LibraryLocked",
     "Another program is using the library and did not release it in time; please try again "
     "later"},
    {"LibraryUnreadable", "The library cannot be opened"}};
constexpr int kEnglish = 2;

// "<file>: <what is wrong> (<the database's words>)". The language is a
// setting in the library: a library that lacks some other table can still
// tell it, one that cannot be read at all is answered in English.
std::string LibraryMessage(AppContext& app, const LibraryProblem& p) {
  if (!app.Config) {
    int language = kEnglish;
    try {
      if (p.Key == "LibraryTableMissing") language = cConfig(app.Cnn, app.AppPath).Language_ID();
    } catch (const AppError&) {
    }
    if (language <= 0) language = kEnglish;
    try {
      app.rsTexts =
          app.CnnResources.Query("Select * From Texts where Language_ID = " + std::to_string(language));
    } catch (const AppError&) {
    }
  }
  std::string words = LanguageText(app, p.Key).Text;
  for (const auto& w : kLibraryWords) {
    if (words.empty() && p.Key == w[0]) words = w[1];
  }
  return p.Subject + ": " + words + (p.Reason.empty() ? "" : " (" + p.Reason + ")");
}

}  // namespace

bool InitGlobals(AppContext& app, const ImportProgress& progress) {
  app.DesignOpacity = 100;
  app.DesignOpacityOn = false;
  app.WorkSurface512 = DrawingSurface::Create(512, 512);
  app.WorkSurface256 = DrawingSurface::Create(256, 256);

  // What is wrong with the library is told before anything reads it, each
  // case in words the user can act on.
  LibraryProblem problem;
  try {
    OpenDatabases(app);
    problem = CheckLibrary(app);
    if (!problem) {
      app.Config = std::make_unique<cConfig>(app.Cnn, app.AppPath);
      OpenTexts(app);
    }
  } catch (const AppError&) {
  }
  if (!problem) {
    try {
      app.Cnn.Query("Select Top 1 ID From Images");
    } catch (const AppError&) {
    }
    if (app.Cnn.HasError() || !app.Config) problem = LibraryProblemOf(app);
  }
  if (problem) {
    app.ShowMessage(LibraryMessage(app, problem));
    return false;
  }
  try {
    ImportTmpImages(app, progress);
    InitDummyID(app);
  } catch (const AppError& e) {
    app.ShowMessage(e.Description());
    return false;
  }
  return true;
}

bool OpenSettingsAndTexts(AppContext& app) {
  try {
    OpenDatabases(app);
    if (CheckLibrary(app)) return false;
    app.Config = std::make_unique<cConfig>(app.Cnn, app.AppPath);
    OpenTexts(app);
    return true;
  } catch (const AppError&) {
    return false;
  }
}

void AddBasePatterns(AppContext& app) {
  SurfacePtr tile = DrawingSurface::Create(8, 8);
  {
    DrawingContext ctx(tile);
    ctx.SetSourceColor(0xFFFFFF, 0.6);
    ctx.Paint();
    ctx.SetSourceColor(0xFFFFFF, 0.3);
    ctx.Rectangle(0, 0, 4, 4);
    ctx.Rectangle(4, 4, 4, 4);
    ctx.Fill();
  }
  Pattern pattern = Pattern::ForSurface(tile);
  pattern.SetExtend(Extend::Repeat);
  const struct {
    const char* key;
    int w, h;
  } sizes[] = {{"BasePat64", 64, 64}, {"BasePat48", 48, 48}, {"BasePat200x16", 200, 16}};
  for (const auto& s : sizes) {
    SurfacePtr surface = DrawingSurface::Create(s.w, s.h);
    app.ImageList().AddSurface(s.key, surface);
    DrawingContext ctx(surface);
    ctx.SetSource(pattern);
    ctx.Paint(1.0);
  }
}

void AddQuillaronShapes(AppContext& app) {
  DbRecordset rs = app.Cnn.Query(
      "SELECT Distinct [Images].ID, [Images].Name as Images_Name, SVG, [Styles].Name as Styles_Name, "
      "[Themes].Name as Themes_Name from Images "
      "join Themes on [Images].Themes_ID=[Themes].ID "
      "join Styles on [Images].Styles_ID=[Styles].ID where [Styles].Name='Quillaron' and "
      "[Themes].Name='Shapes' "
      "order by [Images].Name");
  for (int position = 0; !rs.Eof(); rs.MoveNext(), ++position) {
    auto item = std::make_shared<cSVGItem>();
    item->Init(rs.Fields("ID").Value(), rs.Fields("SVG").AsBytes(), rs.Fields("Images_Name").AsString());
    item->setStyle(rs.Fields("Styles_Name").AsString());
    item->setTheme(rs.Fields("Themes_Name").AsString());
    app.ShapeItems.Add(item, rs.Fields("ID").AsString());
    if (item->FriendlyName() == "Filled_Circle") app.FilledCircleIndex = position;
  }
}

void AddResourceSVGs(AppContext& app, std::int64_t iconColor) {
  DbRecordset rs = app.CnnResources.Query("Select * From Resources");
  const cColorItem tint(iconColor);
  for (; !rs.Eof(); rs.MoveNext()) {
    const std::string name = rs.Fields("Name").AsString();
    const std::string lower = AsciiLower(name);
    cSVGItem item;
    item.IsResource = true;
    const cColorItem neutral(0x999999);
    // The logo and the two signal icons keep their own colours; the others
    // take the theme's accent through the colour filter.
    if (lower == "forbidden" || lower == "quillaron" || lower == "close") {
      item.Init(rs.Fields("ID").Value(), rs.Fields("SVG").AsBytes(), name, &neutral);
    } else {
      item.Init(rs.Fields("ID").Value(), rs.Fields("SVG").AsBytes(), name, &tint, true, cSVGItem::FilterColor,
                2, "", true);
    }
    app.ImageList().AddFromFile(app.PathOf("DocAndImages/Quillaron.svg"), "Logo", 100, 100);
    if (lower == "quillaron") {
      app.ImageList().AddFromBytes(item.SvgBytes(), "Logo", 100, 100);
    } else if (lower == "forbidden") {
      app.ImageList().AddFromBytes(item.SvgBytes(), name, 32, 32);
    } else {
      app.ImageList().AddFromBytes(item.SvgBytes(), name, 48, 48);
    }
  }
}

void InitFillOptions(AppContext& app) {
  static const struct {
    const char* key;
    int op;
  } options[] = {{"FillOptionStandard", 2},    {"FillOptionAdd", 12},       {"FillOptionCOLORBURN", 20},
                 {"FillOptionCOLORDODGE", 19}, {"FillOptionDARKEN", 17},    {"FillOptionDIFFERENCE", 23},
                 {"FillOptionEXCLUSION", 24},  {"FillOptionHARDLIGHT", 21}, {"FillOptionLIGHTEN", 18},
                 {"FillOptionMULTIPLY", 14},   {"FillOptionOVERLAY", 16},   {"FillOptionSCREEN", 15},
                 {"FillOptionSOFTLIGHT", 22}};
  for (const auto& o : options)
    app.FillOptions.Add(Value(LanguageText(app, o.key).Text), std::to_string(o.op));
}

void SetDocumentsAndLinks(AppContext& app) {
  const std::string docs = app.PathOf("DocAndImages/");
  const std::string site = "https://www.quillaron.com";
  if (app.Config && app.Config->Language_ID() == 1) {
    app.DocInfographic = docs + "Quillaron_Infographic_DE.pdf";
    app.DocManual = docs + "Quillaron_Dokumentation.pdf";
    app.LinkHome = site;
  } else {
    app.DocInfographic = docs + "Quillaron_Infographic_EN.pdf";
    app.DocManual = docs + "Quillaron_Documentation.pdf";
    app.LinkHome = site + "/en";
  }
  app.LinkTutorials = app.LinkHome + "/tutorials.htm";
  app.LinkForum = app.LinkHome + "/forum.htm";
}

void ReadSettingsFile(AppContext& app) {
  app.RemoveClipPath = IniFile::Load(app.PathOf("Dat/Quillaron.ini")).Get("SVG", "RemoveClipPath") == "J";
}

bool IsFlatStyle(const std::string& styleName, const std::string& themeName, const std::string& extra) {
  return (styleName == "Quillaron" && themeName == "Shapes") || styleName == "Slimline" ||
         styleName == "Shapes" || styleName == "Flat" || !extra.empty();
}

bool CheckError(AppContext& app, const JsonBag& result) {
  if (!result.Has("Error")) return false;
  app.ShowMessage(result.GetString("Error"));
  return true;
}

bool StartWithoutWindow(AppContext& app, const ImportProgress& progress, bool updateDb) {
  if (!InitGlobals(app, progress)) return false;
  try {
    AddBasePatterns(app);
    AddQuillaronShapes(app);
    AddResourceSVGs(app, QuillaronPaletteColor(4));
    InitFillOptions(app);
  } catch (const AppError& e) {
    // Without its resource database the program is damaged, not merely bare.
    app.ShowMessage(FormatErrorMessage(e));
    return false;
  }
  app.ImageList().AddFromFile(app.PathOf("DocAndImages/BG6.PNG"), "Background");
  app.ImageList().AddFromFile(app.PathOf("DocAndImages/Titlebar.PNG"), "Titlebar");
  SetDocumentsAndLinks(app);
  ReadSettingsFile(app);
  app.UndoRedo.setMax(app.Config->HistoryMax());
  if (updateDb) UpdateDB(app);
  return true;
}

}  // namespace qds
