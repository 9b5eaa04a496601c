#pragma once
// Internals shared by DbConnection and DbRecordset; not for use elsewhere.

#include <sqlite3.h>

#include <string>
#include <string_view>

namespace qds::detail {

// Owns the sqlite3 handle; recordsets keep it alive so that they can still
// write rows after the connection object that made them has gone.
struct DbHandle {
  sqlite3* db = nullptr;
  std::string path;
  int openErrorNumber = 0;
  std::string openErrorText;
  int errorNumber = 0;
  std::string errorText;

  DbHandle() = default;
  DbHandle(const DbHandle&) = delete;
  DbHandle& operator=(const DbHandle&) = delete;
  ~DbHandle() {
    if (db) sqlite3_close_v2(db);
  }

  void SetError(int number, std::string text) {
    errorNumber = number;
    errorText = std::move(text);
  }
  // Records the handle's last error and raises it.
  [[noreturn]] void Fail(const std::string& source);
  [[noreturn]] void Fail(int number, const std::string& text, const std::string& source);
};

class Statement {
 public:
  Statement() = default;
  explicit Statement(sqlite3_stmt* s) : s_(s) {}
  Statement(Statement&& o) noexcept : s_(o.s_) { o.s_ = nullptr; }
  Statement& operator=(Statement&& o) noexcept {
    std::swap(s_, o.s_);
    return *this;
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() {
    if (s_) sqlite3_finalize(s_);
  }
  sqlite3_stmt* get() const { return s_; }
  explicit operator bool() const { return s_ != nullptr; }

 private:
  sqlite3_stmt* s_ = nullptr;
};

// Prepares exactly one statement; raises (and records) an error for a
// second statement, a syntax error or a closed connection. May return an
// empty Statement for text that holds no statement at all.
Statement PrepareSingle(DbHandle& h, std::string_view sql, const std::string& source);

// Runs a prepared statement to its end, raising on failure.
void StepToEnd(DbHandle& h, sqlite3_stmt* s, const std::string& source);

}  // namespace qds::detail
