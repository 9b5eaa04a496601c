#include "platform/DbConnection.h"

#include <cctype>
#include <cstdio>

#include "platform/DbHandle.h"
#include "platform/DbRecordset.h"
#include "platform/Error.h"
#include "platform/TextUtil.h"

namespace qds {

namespace detail {

void DbHandle::Fail(const std::string& source) {
  Fail(sqlite3_extended_errcode(db), sqlite3_errmsg(db), source);
}

void DbHandle::Fail(int number, const std::string& text, const std::string& source) {
  SetError(number, text);
  Raise(number, text, source);
}

Statement PrepareSingle(DbHandle& h, std::string_view sql, const std::string& source) {
  if (!h.db) {
    h.Fail(h.openErrorNumber ? h.openErrorNumber : SQLITE_MISUSE,
           h.openErrorText.empty() ? "The database is not open" : h.openErrorText, source);
  }
  const std::string text = RewriteSelectTop(sql);
  sqlite3_stmt* raw = nullptr;
  const char* tail = nullptr;
  if (sqlite3_prepare_v2(h.db, text.c_str(), static_cast<int>(text.size()) + 1, &raw, &tail) != SQLITE_OK) {
    h.Fail(source);
  }
  Statement stmt(raw);
  // Whatever follows must be nothing but blanks, semicolons or comments;
  // preparing the rest tells exactly that without a parser of our own.
  while (tail && *tail) {
    sqlite3_stmt* next = nullptr;
    const char* after = nullptr;
    const int rc = sqlite3_prepare_v2(h.db, tail, -1, &next, &after);
    Statement guard(next);
    if (rc != SQLITE_OK || next) {
      h.Fail(SQLITE_ERROR, "Only one SQL statement per call is allowed", source);
    }
    if (after == tail) break;
    tail = after;
  }
  return stmt;
}

void StepToEnd(DbHandle& h, sqlite3_stmt* s, const std::string& source) {
  int rc;
  while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
  }
  if (rc != SQLITE_DONE) h.Fail(source);
}

}  // namespace detail

DbConnection DbConnection::Open(const std::string& path, const std::string& /*key*/, DbOpenMode mode) {
  DbConnection c;
  c.h_ = std::make_shared<detail::DbHandle>();
  c.h_->path = path;
  const int flags = mode == DbOpenMode::ReadOnly   ? SQLITE_OPEN_READONLY
                    : mode == DbOpenMode::Existing ? SQLITE_OPEN_READWRITE
                                                   : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  sqlite3* db = nullptr;
  const int rc = sqlite3_open_v2(path.c_str(), &db, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (rc != SQLITE_OK) {
    c.h_->openErrorNumber = rc;
    c.h_->openErrorText = std::string("Cannot open the database \"") + path +
                          "\": " + (db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
    if (db) sqlite3_close_v2(db);
    return c;
  }
  c.h_->db = db;
  sqlite3_extended_result_codes(db, 1);
  sqlite3_busy_timeout(db, kBusyTimeoutMs);
  return c;
}

DbConnection DbConnection::OpenMemory() {
  return Open(":memory:");
}

bool DbConnection::BackupTo(const std::string& path) {
  if (!IsOpen()) return false;
  const std::string temp = path + ".part";
  sqlite3* dest = nullptr;
  int rc = sqlite3_open_v2(temp.c_str(), &dest, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  if (rc == SQLITE_OK) {
    sqlite3_backup* b = sqlite3_backup_init(dest, "main", h_->db, "main");
    if (b) {
      sqlite3_backup_step(b, -1);
      sqlite3_backup_finish(b);
    }
    rc = sqlite3_errcode(dest);
  }
  const std::string why = dest ? sqlite3_errmsg(dest) : sqlite3_errstr(rc);
  sqlite3_close_v2(dest);
  // Renamed only when whole, so a backup file is never a torn one.
  if (rc != SQLITE_OK || std::rename(temp.c_str(), path.c_str()) != 0) {
    std::remove(temp.c_str());
    h_->SetError(rc != SQLITE_OK ? rc : SQLITE_CANTOPEN, "The backup \"" + path + "\" failed: " + why);
    return false;
  }
  return true;
}

bool DbConnection::IsOpen() const {
  return h_ && h_->db;
}

std::string DbConnection::Path() const {
  return h_ ? h_->path : std::string();
}

void DbConnection::Close() {
  h_.reset();
}

DbRecordset DbConnection::Query(std::string_view sql) {
  if (!h_) h_ = std::make_shared<detail::DbHandle>();
  return DbRecordset(h_, sql);
}

bool DbConnection::Execute(std::string_view sql) {
  if (!h_) h_ = std::make_shared<detail::DbHandle>();
  try {
    detail::Statement s = detail::PrepareSingle(*h_, sql, "DbConnection.Execute");
    if (s) detail::StepToEnd(*h_, s.get(), "DbConnection.Execute");
    return true;
  } catch (const AppError&) {
    return false;  // the error stays on the connection for the caller
  }
}

bool DbConnection::HasError() const {
  return h_ && h_->errorNumber != 0;
}
int DbConnection::ErrorNumber() const {
  return h_ ? h_->errorNumber : 0;
}
std::string DbConnection::ErrorText() const {
  return h_ ? h_->errorText : std::string();
}

void DbConnection::ClearError() {
  if (h_) h_->SetError(0, {});
}

std::int64_t DbConnection::LastInsertID() const {
  return IsOpen() ? sqlite3_last_insert_rowid(h_->db) : 0;
}

int DbConnection::Changes() const {
  return IsOpen() ? sqlite3_changes(h_->db) : 0;
}

DbFailure DbFailureOf(int errorNumber) {
  switch (errorNumber & 0xFF) {  // extended codes keep the primary one in the low byte
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return DbFailure::Busy;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return DbFailure::Damaged;
    default:
      return DbFailure::Other;
  }
}

std::string SqlText(std::string_view value) {
  std::string out;
  out.reserve(value.size() + 2);
  for (char c : value) {
    if (c == '\'') out += '\'';
    if (c != '\0') out += c;
  }
  return out;
}

std::string SqlLikeText(std::string_view value) {
  std::string out;
  for (char c : value) {
    if (c == '%' || c == '_' || c == '\\') out += '\\';
    out += c;
  }
  return SqlText(out);
}

namespace {

// Reads a keyword at `i` (after blanks); advances past it on success.
bool Keyword(std::string_view s, std::size_t& i, std::string_view word) {
  std::size_t k = i;
  while (k < s.size() && std::isspace(static_cast<unsigned char>(s[k]))) ++k;
  if (s.size() - k < word.size()) return false;
  for (std::size_t j = 0; j < word.size(); ++j) {
    if (AsciiLower(s[k + j]) != word[j]) return false;
  }
  k += word.size();
  if (k < s.size() && !std::isspace(static_cast<unsigned char>(s[k]))) return false;
  i = k;
  return true;
}

}  // namespace

std::string RewriteSelectTop(std::string_view sql) {
  std::size_t i = 0;
  if (!Keyword(sql, i, "select")) return std::string(sql);
  const std::size_t afterSelect = i;
  std::size_t j = i;
  const bool distinct = Keyword(sql, j, "distinct");
  if (distinct) i = j;
  const std::size_t beforeTop = i;
  if (!Keyword(sql, i, "top")) return std::string(sql);
  while (i < sql.size() && std::isspace(static_cast<unsigned char>(sql[i]))) ++i;
  const std::size_t digits = i;
  while (i < sql.size() && std::isdigit(static_cast<unsigned char>(sql[i]))) ++i;
  if (i == digits || i >= sql.size() || !std::isspace(static_cast<unsigned char>(sql[i]))) {
    return std::string(sql);
  }
  const std::string_view n = sql.substr(digits, i - digits);
  std::string_view rest = sql.substr(i);
  while (!rest.empty() && (rest.back() == ';' || std::isspace(static_cast<unsigned char>(rest.back())))) {
    rest.remove_suffix(1);
  }
  std::string out(sql.substr(0, distinct ? beforeTop : afterSelect));
  out += rest;
  out += " LIMIT ";
  out += n;
  return out;
}

}  // namespace qds
