#include "store/modLibrary.h"

#include <ctime>
#include <filesystem>
#include <set>

#include "app/AppContext.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"
#include "store/LibrarySchema.h"

namespace qds {

namespace {

constexpr const char* kImportSource = "ImportTmpImages";

// The connection's pending error, as the message shows it.
std::string Reason(const DbConnection& cnn) {
  return std::to_string(cnn.ErrorNumber()) + " " + cnn.ErrorText();
}

[[noreturn]] void RaiseWithReason(const DbConnection& cnn, const std::string& what) {
  Raise(cnn.ErrorNumber(), what + ": " + Reason(cnn), kImportSource);
}

// Runs `work` as one transaction: a BEGIN, a statement of the work or a
// COMMIT that fails undoes all of it and raises with `what` before the
// reason, so the library holds the whole of the work or none of it.
template <class Work>
void InOneTransaction(DbConnection& cnn, const std::string& what, Work&& work) {
  // A BEGIN that fails opened nothing, and what is open then is not ours.
  if (!cnn.BeginTrans()) RaiseWithReason(cnn, what);
  // SQLite may have undone the transaction already (a full disk does); a
  // ROLLBACK that then finds nothing open changes nothing.
  try {
    work();
  } catch (const AppError& e) {
    cnn.RollbackTrans();
    Raise(e.Number(), what + ": " + std::to_string(e.Number()) + " " + e.Description(), kImportSource);
  } catch (...) {
    cnn.RollbackTrans();
    throw;
  }
  if (!cnn.CommitTrans()) {
    const AppError failed(cnn.ErrorNumber(), what + ": " + Reason(cnn), kImportSource);
    cnn.RollbackTrans();
    throw failed;  // the COMMIT's reason, not the ROLLBACK's
  }
}

}  // namespace

namespace {

// The tables every library has had since the first version, and that the
// start and the saved designs read.
constexpr const char* kRequiredTables[] = {"Images",        "Styles", "Themes",      "Config",
                                           "TmpImageBlobs", "Layer",  "LayerEntries"};

LibraryProblem ProblemOf(const std::string& path, int number, std::string text) {
  // The connection names the file itself when it cannot open it; the
  // message names it once.
  const std::string named = "Cannot open the database \"" + path + "\": ";
  if (text.rfind(named, 0) == 0) text.erase(0, named.size());
  switch (DbFailureOf(number)) {
    case DbFailure::Busy:
      return {"LibraryLocked", path, text};
    case DbFailure::Damaged:
      return {"LibraryDamaged", path, text};
    default:
      return {"LibraryUnreadable", path, text};
  }
}

}  // namespace

LibraryProblem CheckLibrary(AppContext& app) {
  if (!FolderExists(app.AppPath)) return {"LibraryFolderMissing", app.AppPath, {}};
  const std::string path = app.PathOf(kLibraryFile);
  if (!FileExists(path)) return {"LibraryMissing", path, {}};
  std::error_code ec;
  // SQLite takes an empty file for an empty database; for the user it is a
  // library that lost everything.
  if (std::filesystem::file_size(path, ec) == 0 && !ec) return {"LibraryDamaged", path, "the file is empty"};
  std::set<std::string> tables;
  try {
    DbRecordset rs = app.Cnn.Query("Select Name From sqlite_master Where Type = 'table'");
    for (; !rs.Eof(); rs.MoveNext()) tables.insert(AsciiLower(rs.FieldValue(0).AsString()));
  } catch (const AppError&) {
    return LibraryProblemOf(app);
  }
  for (const char* table : kRequiredTables) {
    if (!tables.count(AsciiLower(table))) return {"LibraryTableMissing", path, table};
  }
  return {};
}

LibraryProblem LibraryProblemOf(AppContext& app) {
  return ProblemOf(app.PathOf(kLibraryFile), app.Cnn.ErrorNumber(), app.Cnn.ErrorText());
}

void OpenDatabases(AppContext& app) {
  app.CnnResources = DbConnection::Open(app.PathOf(kResourcesFile), "", DbOpenMode::ReadOnly);
  app.Cnn = DbConnection::Open(app.PathOf(kLibraryFile), "", DbOpenMode::Existing);
}

int ImportTmpImages(AppContext& app, const std::function<void(int, int)>& progress) {
  DbRecordset staging = app.Cnn.Query("Select * From TmpImageBlobs");
  const int total = staging.RecordCount();
  if (total == 0) return 0;  // later starts cost nothing
  // A first start is told before the first batch, so a window can say so.
  if (progress) progress(0, total);
  int copied = 0;
  for (int done = 1; !staging.Eof(); staging.MoveNext(), ++done) {
    const std::string which = "batch " + std::to_string(done) + " of " + std::to_string(total);
    DbRecordset batch;
    try {
      batch = DbRecordset::Deserialize(GzipDecompress(staging.Fields("Content").AsBytes()));
    } catch (const AppError& e) {
      Raise(ErrNo::InvalidData,
            "The icon collection could not be unpacked (" + which + "): " + e.Description(), kImportSource);
    }
    InOneTransaction(app.Cnn, "The icon collection could not be stored (" + which + ")", [&] {
      std::set<std::int64_t> present;
      const int idField = batch.FieldIndex("ID");
      if (idField >= 0 && batch.RecordCount() > 0) {
        DbRecordset ids = app.Cnn.Query("Select ID From Images");
        for (; !ids.Eof(); ids.MoveNext()) present.insert(ids.FieldValue(0).AsLong());
      }
      DbRecordset images = app.Cnn.Query("Select * From Images Where 1=0");
      if (batch.FieldCount() > images.FieldCount()) {
        Raise(ErrNo::InvalidData, "A staged batch has more columns than the Images table", kImportSource);
      }
      for (batch.MoveFirst(); !batch.Eof(); batch.MoveNext()) {
        if (idField >= 0 && present.count(batch.FieldValue(idField).AsLong())) continue;
        images.AddNew();
        for (int i = 0; i < batch.FieldCount(); ++i) images.Fields(i) = batch.FieldValue(i);
        images.Update();
        ++copied;
        app.DoEvents();
      }
    });
    app.DoEvents();
    if (progress) progress(done, total);
  }
  // Only now, when every batch is in, does the staging table go.
  InOneTransaction(app.Cnn, "The unpacked icon collection could not be cleared away", [&] {
    if (!app.Cnn.Execute("Delete From TmpImageBlobs")) {
      Raise(app.Cnn.ErrorNumber(), app.Cnn.ErrorText(), kImportSource);
    }
  });
  return copied;
}

void InitDummyID(AppContext& app) {
  DbRecordset rs = app.Cnn.Query("Select top 1 ID From Images Where Styles_ID = 1");
  if (!rs.Eof()) app.DummyID = static_cast<int>(rs.Fields("ID").AsLong());
}

bool UpdateDB(AppContext& app) {
  DbConnection& cnn = app.Cnn;
  std::string stored;
  try {
    DbRecordset version = cnn.Query(std::string("Select Version From ") + kVersionTable);
    if (!version.Eof()) stored = version.Fields(0).AsString();
  } catch (const AppError&) {
    cnn.ClearError();  // no version table yet: an old library
  }
  // An ordinal comparison of texts, so "1.1.9" passes as well.
  if (stored >= "1.1.19") return false;

  const auto failed = [&] {
    const std::string why = "Error UpdateDB: " + std::to_string(cnn.ErrorNumber()) + " " + cnn.ErrorText();
    cnn.RollbackTrans();  // nothing open: it changes nothing
    app.ShowMessage(why);
    return false;
  };
  static const char* const steps[][2] = {
      {"Select Opacity from Layer Where 1=0", "ALTER TABLE Layer ADD COLUMN Opacity Integer Default 100"},
      {"Select UseOpacity from Layer Where 1=0", "ALTER TABLE Layer ADD COLUMN UseOpacity Integer Default 0"},
      {"Select Opacity from ColorFilter Where 1=0",
       "ALTER TABLE ColorFilter ADD COLUMN Opacity Integer Default 100"},
      {"Select UseGlobalOpacity from ColorFilter Where 1=0",
       "ALTER TABLE ColorFilter ADD COLUMN UseGlobalOpacity Integer Default 0"},
      {"Select Layers from ColorFilter Where 1=0",
       "ALTER TABLE ColorFilter ADD COLUMN Layers Integer Default 0"}};
  // Probed inside the write: a program that started at the same time and
  // got there first has added the columns, and they are then not added
  // twice.
  if (!cnn.BeginTrans()) return failed();
  bool changed = false;
  for (const auto& step : steps) {
    if (!cnn.Execute(step[0])) {
      cnn.ClearError();
      if (!cnn.Execute(step[1])) return failed();
      changed = true;
    }
    if (cnn.HasError()) return failed();
  }
  if (!cnn.CommitTrans()) return failed();
  if (!changed) return false;

  // The columns are in; a version that cannot be written only means that
  // the next start probes again, so the start goes on after saying so.
  try {
    if (!cnn.BeginTrans()) Raise(cnn.ErrorNumber(), cnn.ErrorText(), "UpdateDB");
    try {
      if (!cnn.Execute(std::string("CREATE TABLE IF NOT EXISTS ") + kVersionTable + " (Version TEXT)")) {
        Raise(cnn.ErrorNumber(), cnn.ErrorText(), "UpdateDB");
      }
      DbRecordset version = cnn.Query(std::string("Select * From ") + kVersionTable);
      if (version.Eof()) version.AddNew();
      version.Fields("Version") = ProgramVersion();
      version.Update();
      if (!cnn.CommitTrans()) Raise(cnn.ErrorNumber(), cnn.ErrorText(), "UpdateDB");
    } catch (const AppError&) {
      cnn.RollbackTrans();
      throw;
    }
  } catch (const AppError& e) {
    app.ShowMessage("Error UpdateDB: " + std::to_string(e.Number()) + " " + e.Description());
  }
  return true;
}

std::string BackupLibrary(AppContext& app) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char stamp[16];
  std::strftime(stamp, sizeof stamp, "%Y%m%d%H%M", &local);
  const std::string path = app.PathOf(std::string("Database/Quillaron_") + stamp + ".db");
  return app.Cnn.BackupTo(path) ? path : std::string();
}

}  // namespace qds
