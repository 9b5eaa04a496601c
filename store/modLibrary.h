#pragma once
// Opening, checking, filling and upgrading the library database.

#include <functional>
#include <string>

namespace qds {

struct AppContext;

// Opens CnnResources (read-only) and Cnn on the library of the application
// folder. A missing library is not created: its error surfaces at the first
// statement.
void OpenDatabases(AppContext& app);

// Why the library cannot be used: a key of Texts, the folder or file it is
// about, and the database's own words or the missing table.
struct LibraryProblem {
  std::string Key;  // empty when the library can be used
  std::string Subject;
  std::string Reason;
  explicit operator bool() const { return !Key.empty(); }
};

// Looks at the application folder, the library file, the database and the
// tables the program reads, in that order; the first thing wrong is the
// problem. Another program's lock is waited for up to the busy timeout.
LibraryProblem CheckLibrary(AppContext& app);
// The problem behind the error pending on the library connection.
LibraryProblem LibraryProblemOf(AppContext& app);

// Copies the staged icon batches into Images, one transaction per batch,
// pumping events after every row, and empties the staging table at the end.
// A row whose ID is already in Images was copied by an earlier start that
// did not finish; it is passed over, so every icon arrives exactly once.
// A damaged batch, or a transaction that cannot begin, store or commit,
// raises AppError after undoing that transaction; the staging table stays
// until every batch is in.
// `progress` hears (0, batches in all) before the first batch, and
// (batches done, batches in all) after each.
// Returns the number of rows copied.
int ImportTmpImages(AppContext& app, const std::function<void(int done, int total)>& progress = {});

// DummyID: the first icon of style 1, or 0 when there is none.
void InitDummyID(AppContext& app);

// Adds the columns that libraries older than 1.1.19 lack, all in one
// transaction, so that two programs starting at once add each column once.
// Returns true when the schema changed. Failures are shown through
// app.ShowMessage and leave the version unwritten; none of them stops the
// start.
bool UpdateDB(AppContext& app);

// Writes Database/Quillaron_yyyymmddhhnn.db; returns its path, or "" when
// the backup failed (the error stays on the connection).
std::string BackupLibrary(AppContext& app);

}  // namespace qds
