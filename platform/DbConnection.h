#pragma once
// An open SQLite database. Exactly one statement per call: text that holds a
// second statement is refused before anything runs, so no value spliced into
// a statement can ever add SQL of its own. "Select Top N ..." is accepted and
// runs as "... LIMIT N".
//
// Errors are kept the way the old data layer kept them: a failed statement
// leaves its number and text on the connection until ClearError() or the
// next failure, so a caller can look at the error state after a run of
// statements. Query() also raises the error; Execute() only returns false.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Bytes.h"

namespace qds {

class DbRecordset;
namespace detail {
struct DbHandle;
}

// ReadWrite creates a missing file; Existing opens for writing but never
// creates one (a missing file is then the error of the first statement).
enum class DbOpenMode { ReadWrite, ReadOnly, Existing };

class DbConnection {
 public:
  DbConnection() = default;  // not open: every statement fails

  // Never throws: a file that cannot be opened surfaces as the error of the
  // first statement. `key` is for encrypted exchange files; plain database
  // files ignore it.
  static DbConnection Open(const std::string& path, const std::string& key = {},
                           DbOpenMode mode = DbOpenMode::ReadWrite);
  // A private database in memory, for tests and scratch work.
  static DbConnection OpenMemory();
  // How long a statement waits for another program's lock before it fails
  // with SQLITE_BUSY.
  static constexpr int kBusyTimeoutMs = 2000;

  bool IsOpen() const;
  std::string Path() const;
  void Close();

  DbRecordset Query(std::string_view sql);
  bool Execute(std::string_view sql);
  // Every transaction of ours writes, so it takes the write lock at once
  // and waits its turn (the busy timeout) there. A deferred one that has
  // read first cannot be upgraded while another program writes: SQLite
  // answers "database is locked" at once rather than wait into a deadlock.
  bool BeginTrans() { return Execute("BEGIN IMMEDIATE"); }
  bool CommitTrans() { return Execute("COMMIT"); }
  bool RollbackTrans() { return Execute("ROLLBACK"); }

  bool HasError() const;
  int ErrorNumber() const;
  std::string ErrorText() const;
  void ClearError();

  // A consistent copy of the whole database written to `path` (SQLite's
  // online backup), replacing any file there. False on failure, with the
  // error on the connection.
  bool BackupTo(const std::string& path);
  std::int64_t LastInsertID() const;
  int Changes() const;

 private:
  std::shared_ptr<detail::DbHandle> h_;
};

// What a failure of a statement means for the user: another program holds
// the lock (past the busy timeout), the file is damaged or no database, or
// something else, whose text then says what.
enum class DbFailure { Other, Busy, Damaged };
DbFailure DbFailureOf(int errorNumber);

// Doubles every "'" so that a text can stand between quotes in a statement:
// "Name='" + SqlText(name) + "'". NUL characters, which would cut the
// statement short, are dropped.
std::string SqlText(std::string_view value);
// Text to look for inside a LIKE pattern, taken literally: "%", "_" and the
// escape character itself are escaped. Use it with "... like '%" + it +
// "%' escape '\\'".
std::string SqlLikeText(std::string_view value);

// "Select [Distinct] Top N rest" -> "Select [Distinct] rest LIMIT N"; any
// other text is returned unchanged.
std::string RewriteSelectTop(std::string_view sql);

}  // namespace qds
