#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modStartup.h"
#include "app/modTexts.h"
#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/ThemePalette.h"
#include "store/LibrarySchema.h"
#include "store/modLibrary.h"
#include "tests/support/AppFolder.h"
#include "tests/support/Pixels.h"
#include "tests/support/StartedApp.h"

using namespace qds;

namespace {

using Started = StartedApp;

// What the staging table holds: the IDs of every staged row.
std::multiset<long long> StagedIds(const std::string& library) {
  DbConnection cnn = DbConnection::Open(library);
  std::multiset<long long> ids;
  for (DbRecordset rs = cnn.Query("Select Content From TmpImageBlobs"); !rs.Eof(); rs.MoveNext()) {
    DbRecordset batch = DbRecordset::Deserialize(GzipDecompress(rs.FieldValue(0).AsBytes()));
    for (; !batch.Eof(); batch.MoveNext()) ids.insert(batch.Fields("ID").AsLong());
  }
  return ids;
}

}  // namespace

TEST(Startup, FirstStartImportsEveryStagedIconOnceAndFillsThePictureCache) {
  Started s;
  const std::multiset<long long> staged = StagedIds(s.folder.Library());
  ASSERT_GE(staged.size(), 3000u);
  ASSERT_TRUE(StartWithoutWindow(*s.app)) << (s.messages.empty() ? "" : s.messages[0]);
  EXPECT_TRUE(s.messages.empty());

  EXPECT_EQ(s.Count("Select Count(*) From Images"), static_cast<long long>(staged.size()));
  EXPECT_EQ(s.Count("Select Count(Distinct ID) From Images"), static_cast<long long>(staged.size()));
  EXPECT_EQ(s.Count("Select Count(*) From TmpImageBlobs"), 0);
  EXPECT_EQ(s.app->Cnn.Query("Select Settings From Config").Fields(0).AsString(), R"({"Language_ID":2})");
  EXPECT_EQ(s.Count("Select Count(*) From Styles Where Name In ('Quillaron','Slimline','Shapes','Flat',"
                    "'Design Elements')"),
            5);
  EXPECT_GE(s.Count("Select Count(*) From Themes"), 19);

  // The stand-in for vanished icons and the program's own shapes.
  EXPECT_EQ(s.app->DummyID, s.Count("Select Min(ID) From Images Where Styles_ID = 1"));
  ASSERT_GE(s.app->ShapeItems.Count(), 14);
  ASSERT_GE(s.app->FilledCircleIndex, 0);
  const SVGItemPtr circle = s.app->ShapeItems.Item(s.app->FilledCircleIndex);
  EXPECT_EQ(circle->FriendlyName(), "Filled_Circle");
  EXPECT_EQ(circle->Style(), "Quillaron");
  EXPECT_EQ(circle->Theme(), "Shapes");
  EXPECT_TRUE(s.app->ShapeItems.Exists(circle->ID().AsString()));

  // Patterns, the logo, every interface icon, tinted with the accent colour
  // except the three that keep their own.
  ImageList& images = s.app->ImageList();
  for (const char* key :
       {"BasePat64", "BasePat48", "BasePat200x16", "Logo", "Trash", "Magnifier", "Forbidden"}) {
    EXPECT_TRUE(images.Exists(key)) << key;
  }
  EXPECT_EQ(images.Get("BasePat200x16")->Width(), 200);
  EXPECT_EQ(images.Get("Logo")->Width(), 100);
  EXPECT_EQ(images.Get("Forbidden")->Width(), 32);
  EXPECT_EQ(images.Get("Trash")->Width(), 48);
  EXPECT_FALSE(images.Exists("Background"));  // no picture shipped: silently none
  const auto inkColour = [](const SurfacePtr& s) {
    const PixelView v = s->Pixels();
    for (int i = 0; i < v.Width() * v.Height(); ++i) {
      const std::uint8_t* p = v.Bytes() + 4 * i;
      if (p[3] == 255) return Bgra{p[0], p[1], p[2], p[3]};
    }
    return Bgra{0, 0, 0, 0};
  };
  EXPECT_TRUE(Near(inkColour(images.Get("Trash")), {0xC3, 0x8C, 0x00, 255}, 2));  // accent 0xC38C00
  EXPECT_TRUE(Near(inkColour(images.Get("Forbidden")), {0, 0, 0, 255}, 2));

  ASSERT_EQ(s.app->FillOptions.Count(), 13);
  EXPECT_EQ(s.app->FillOptions.KeyByIndex(0), "2");
  EXPECT_EQ(s.app->FillOptions.KeyByIndex(9), "14");
  for (const auto& e : s.app->FillOptions) EXPECT_FALSE(e.Item.AsString().empty()) << e.Key;

  // A second start copies nothing more.
  Started again;
  std::filesystem::copy_file(s.folder.Library(), again.folder.Library(),
                             std::filesystem::copy_options::overwrite_existing);
  ASSERT_TRUE(StartWithoutWindow(*again.app));
  EXPECT_EQ(again.Count("Select Count(*) From Images"), static_cast<long long>(staged.size()));
}

TEST(Startup, AnInterruptedImportResumesAndADamagedBatchStopsIt) {
  Started s;
  const std::size_t staged = StagedIds(s.folder.Library()).size();
  OpenDatabases(*s.app);
  // The first start dies after two batches.
  EXPECT_THROW(ImportTmpImages(*s.app,
                               [](int done, int) {
                                 if (done == 2) throw std::runtime_error("power cut");
                               }),
               std::runtime_error);
  const long long afterCut = s.Count("Select Count(*) From Images");
  EXPECT_GT(afterCut, 0);
  EXPECT_LT(afterCut, static_cast<long long>(staged));
  EXPECT_GT(s.Count("Select Count(*) From TmpImageBlobs"), 0);  // kept for the next start
  // The next start finishes, and every icon is there once.
  EXPECT_EQ(ImportTmpImages(*s.app), static_cast<int>(staged - afterCut));
  EXPECT_EQ(s.Count("Select Count(*) From Images"), static_cast<long long>(staged));
  EXPECT_EQ(s.Count("Select Count(*) From TmpImageBlobs"), 0);

  // A damaged third batch: the two before it arrive, the start stops with a
  // clear message, and the staging table stays for another try.
  Started d;
  {
    DbConnection cnn = DbConnection::Open(d.folder.Library());
    DbRecordset rs = cnn.Query("Select * From TmpImageBlobs");
    rs.MoveNext();
    rs.MoveNext();
    Bytes broken = rs.Fields("Content").AsBytes();
    broken.resize(broken.size() / 2);
    rs.Fields("Content") = broken;
    rs.Update();
  }
  const long long batches =
      DbConnection::Open(d.folder.Library()).Query("Select Count(*) From TmpImageBlobs").Fields(0).AsLong();
  EXPECT_FALSE(InitGlobals(*d.app));
  ASSERT_EQ(d.messages.size(), 1u);
  EXPECT_NE(d.messages[0].find("batch 3 of"), std::string::npos) << d.messages[0];
  EXPECT_EQ(d.Count("Select Count(*) From TmpImageBlobs"), batches);
  EXPECT_EQ(d.Count("Select Count(*) From Images"), 500);
}

TEST(Startup, ALibraryThatIsNoDatabaseStopsTheStartAndStaysUntouched) {
  Started s;
  const Bytes garbage = ToBytes("This is not a database, but it is my file.");
  WriteAllBytes(s.folder.Library(), garbage);
  EXPECT_FALSE(StartWithoutWindow(*s.app));
  ASSERT_FALSE(s.messages.empty());
  EXPECT_EQ(s.messages[0],
            s.folder.Library() + ": The library is damaged or is not a database (file is not a database)");
  EXPECT_EQ(ReadAllBytes(s.folder.Library()), garbage);

  Started m;
  std::filesystem::remove(m.folder.Library());
  EXPECT_FALSE(StartWithoutWindow(*m.app));
  EXPECT_EQ(m.messages.at(0), m.folder.Library() + ": The library database is missing");
  EXPECT_FALSE(FileExists(m.folder.Library()));  // not created behind the user's back
}

TEST(Startup, OldSchemasAreUpgradedOnceByAnOrdinalVersionCompare) {
  Started s;
  ASSERT_TRUE(InitGlobals(*s.app));
  DbConnection& cnn = s.app->Cnn;
  const auto setVersion = [&](const std::string& v) {
    ASSERT_TRUE(cnn.Execute("Update DBVersion Set Version='" + v + "'"));
  };
  const auto version = [&] { return cnn.Query("Select Version From DBVersion").Fields(0).AsString(); };
  const auto dropColumns = [&] {
    for (const char* sql :
         {"ALTER TABLE Layer DROP COLUMN Opacity", "ALTER TABLE Layer DROP COLUMN UseOpacity",
          "ALTER TABLE ColorFilter DROP COLUMN Opacity",
          "ALTER TABLE ColorFilter DROP COLUMN UseGlobalOpacity",
          "ALTER TABLE ColorFilter DROP COLUMN Layers"}) {
      ASSERT_TRUE(cnn.Execute(sql)) << cnn.ErrorText();
    }
  };

  // A current library passes every probe and writes nothing.
  setVersion("1.0.7");
  EXPECT_FALSE(UpdateDB(*s.app));
  EXPECT_EQ(version(), "1.0.7");

  dropColumns();
  setVersion("1.1.19");
  EXPECT_FALSE(UpdateDB(*s.app));  // new enough: not even probed
  EXPECT_FALSE(cnn.Execute("Select Opacity From Layer Where 1=0"));
  cnn.ClearError();
  // Versions compare as text, so "1.1.9" and even "1.1.2" count as new enough.
  for (const char* v : {"1.1.9", "1.1.2", "1.2.0"}) {
    setVersion(v);
    EXPECT_FALSE(UpdateDB(*s.app)) << v;
  }

  ASSERT_TRUE(cnn.Execute(
      "Insert Into ColorFilter (Name, ColorFilter, OldColors, R) Values ('Warm', 3, '255;65280', 40)"));
  ASSERT_TRUE(cnn.Execute(
      "Insert Into ColorFilter (Name, ColorFilter, OldColors, R) Values ('Cold', 3, '16711680', -40)"));
  setVersion("1.1.10");
  EXPECT_TRUE(UpdateDB(*s.app)) << (s.messages.empty() ? std::string() : s.messages.back());
  EXPECT_EQ(version(), ProgramVersion());
  EXPECT_TRUE(s.messages.empty());
  // The user's filters keep what they had and take the new columns' defaults.
  DbRecordset filters = cnn.Query("Select * From ColorFilter Order By Name");
  ASSERT_EQ(filters.RecordCount(), 2);
  for (const char* name : {"Cold", "Warm"}) {
    EXPECT_EQ(filters.Fields("Name").AsString(), name);
    EXPECT_EQ(filters.Fields("OldColors").AsString(), std::string(name) == "Warm" ? "255;65280" : "16711680");
    EXPECT_EQ(filters.Fields("R").AsLong(), std::string(name) == "Warm" ? 40 : -40);
    EXPECT_EQ(filters.Fields("Opacity").AsLong(), 100) << name;
    EXPECT_EQ(filters.Fields("UseGlobalOpacity").AsLong(), 0) << name;
    EXPECT_EQ(filters.Fields("Layers").AsLong(), 0) << name;
    filters.MoveNext();
  }
  ASSERT_TRUE(cnn.Execute("Insert Into Layer (Name) Values ('x')"));
  EXPECT_EQ(s.Count("Select Opacity From Layer"), 100);  // the new column's default
  EXPECT_FALSE(UpdateDB(*s.app));                        // once only

  // A backup is a whole, readable copy.
  const std::string backup = BackupLibrary(*s.app);
  ASSERT_FALSE(backup.empty());
  EXPECT_NE(FileNameOf(backup).find("Quillaron_20"), std::string::npos);
  EXPECT_EQ(DbConnection::Open(backup).Query("Select Count(*) From Images").Fields(0).AsLong(),
            s.Count("Select Count(*) From Images"));
}

TEST(Startup, AnImportTransactionThatFailsIsUndoneAndSaysWhy) {
  Started s;
  const std::size_t staged = StagedIds(s.folder.Library()).size();
  OpenDatabases(*s.app);
  DbConnection& cnn = s.app->Cnn;
  const long long batches = s.Count("Select Count(*) From TmpImageBlobs");
  const long long before = s.Count("Select Count(*) From Images");
  const auto raisesWith = [&](const std::string& words) {
    try {
      ImportTmpImages(*s.app);
      ADD_FAILURE() << "no error for: " << words;
    } catch (const AppError& e) {
      EXPECT_NE(e.Description().find(words), std::string::npos) << e.Description();
    }
    EXPECT_EQ(s.Count("Select Count(*) From TmpImageBlobs"), batches) << words;
  };

  // A transaction that cannot begin (here: one is open already) stores nothing.
  ASSERT_TRUE(cnn.BeginTrans());
  raisesWith("could not be stored (batch 1 of");
  EXPECT_EQ(s.Count("Select Count(*) From Images"), before);
  ASSERT_TRUE(cnn.RollbackTrans());

  // A commit that cannot finish (another program is reading) is undone.
  DbConnection reader = DbConnection::Open(s.folder.Library());
  ASSERT_TRUE(reader.Execute("BEGIN"));  // a read that holds its lock
  ASSERT_EQ(reader.Query("Select Count(*) From Images").Fields(0).AsLong(), before);
  raisesWith("database is locked");
  ASSERT_TRUE(reader.CommitTrans());
  EXPECT_EQ(s.Count("Select Count(*) From Images"), before);

  // A staging table that cannot be emptied stays, and every icon is in.
  ASSERT_TRUE(cnn.Execute(
      "Create Trigger KeepStaging Before Delete On TmpImageBlobs Begin Select Raise(Abort, 'kept'); End"));
  raisesWith("could not be cleared away: 1811 kept");
  EXPECT_EQ(s.Count("Select Count(*) From Images"), static_cast<long long>(staged));
  // Once the cause is gone the next start finishes without doubling anything.
  ASSERT_TRUE(cnn.Execute("Drop Trigger KeepStaging"));
  EXPECT_EQ(ImportTmpImages(*s.app), 0);
  EXPECT_EQ(s.Count("Select Count(*) From TmpImageBlobs"), 0);
  EXPECT_EQ(s.Count("Select Count(*) From Images"), static_cast<long long>(staged));
}

TEST(Startup, AVersionThatCannotBeWrittenIsReportedAndTheStartGoesOn) {
  Started s;
  ASSERT_TRUE(InitGlobals(*s.app));
  DbConnection& cnn = s.app->Cnn;
  ASSERT_TRUE(cnn.Execute("ALTER TABLE ColorFilter DROP COLUMN Layers"));
  ASSERT_TRUE(cnn.Execute("Update DBVersion Set Version='1.1.10'"));
  ASSERT_TRUE(
      cnn.Execute("Create Trigger FixedVersion Before Update On DBVersion Begin Select Raise(Abort, 'version "
                  "fixed'); End"));
  Started again;
  std::filesystem::copy_file(s.folder.Library(), again.folder.Library(),
                             std::filesystem::copy_options::overwrite_existing);
  ASSERT_TRUE(StartWithoutWindow(*again.app));
  ASSERT_EQ(again.messages.size(), 1u);
  EXPECT_EQ(again.messages[0], "Error UpdateDB: 1811 version fixed");
  EXPECT_TRUE(again.app->Cnn.Execute("Select Layers From ColorFilter Where 1=0"));  // the column is in
  EXPECT_EQ(again.app->Cnn.Query("Select Version From DBVersion").Fields(0).AsString(), "1.1.10");
}

TEST(Startup, EveryLibraryIconIsNormalisedAndDraws) {
  Started s;
  ASSERT_TRUE(InitGlobals(*s.app));
  SvgRenderer renderer(1);
  SurfacePtr surface = DrawingSurface::Create(24, 24);
  int checked = 0;
  for (DbRecordset rs = s.app->Cnn.Query("Select ID, Name, SVG From Images"); !rs.Eof(); rs.MoveNext()) {
    const std::string svg = rs.Fields("SVG").AsString();
    ASSERT_NE(svg.find("width=\"256pt\""), std::string::npos) << rs.Fields("Name").AsString();
    ASSERT_NE(svg.find("viewBox=\"0 0 256 256\""), std::string::npos);
    ASSERT_NE(svg.find(":rgb("), std::string::npos) << rs.Fields("Name").AsString();
    {
      DrawingContext ctx(surface);
      ctx.SetOperator(Op::Clear);
      ctx.Paint();
      ctx.SetOperator(Op::Over);
      ASSERT_TRUE(renderer.Render(ctx, ToBytes(svg), 0, 0, 24, 24));
    }
    const PixelView v = surface->Pixels();
    bool ink = false;
    for (int i = 0; i < 24 * 24 && !ink; ++i) ink = v.Bytes()[4 * i + 3] != 0;
    ASSERT_TRUE(ink) << rs.Fields("Name").AsString() << " draws nothing";
    ++checked;
  }
  EXPECT_GE(checked, 3000);
}
