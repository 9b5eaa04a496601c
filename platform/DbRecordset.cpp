#include "platform/DbRecordset.h"

#include <cctype>

#include "platform/ByteStream.h"
#include "platform/Collection.h"
#include "platform/DbConnection.h"
#include "platform/DbHandle.h"
#include "platform/Error.h"
#include "platform/TextUtil.h"

namespace qds {

namespace {

constexpr int kNoCurrentRecord = 3021;
constexpr const char* kHiddenRowid = "__qds_rowid__";
constexpr char kMagic[] = "QRS";
constexpr std::uint8_t kVersion = 1;

std::string QuoteId(std::string_view id) {
  std::string out = "\"";
  for (char c : id) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + "\"";
}

Value ColumnValue(sqlite3_stmt* s, int i) {
  switch (sqlite3_column_type(s, i)) {
    case SQLITE_INTEGER:
      return Value(static_cast<long long>(sqlite3_column_int64(s, i)));
    case SQLITE_FLOAT:
      return Value(sqlite3_column_double(s, i));
    case SQLITE_TEXT: {
      const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(s, i));
      return Value(std::string(p, static_cast<std::size_t>(sqlite3_column_bytes(s, i))));
    }
    case SQLITE_BLOB: {
      const auto* p = static_cast<const std::uint8_t*>(sqlite3_column_blob(s, i));
      const int n = sqlite3_column_bytes(s, i);
      return Value(p ? Bytes(p, p + n) : Bytes());
    }
    default:
      return Value();
  }
}

void Bind(detail::DbHandle& h, sqlite3_stmt* s, int at, const Value& v) {
  int rc = SQLITE_OK;
  switch (v.GetKind()) {
    case Value::Kind::Empty:
      rc = sqlite3_bind_null(s, at);
      break;
    case Value::Kind::Bool:
      rc = sqlite3_bind_int64(s, at, v.Get<bool>() ? -1 : 0);
      break;
    case Value::Kind::Integer:
      rc = sqlite3_bind_int64(s, at, v.Get<std::int64_t>());
      break;
    case Value::Kind::Double:
      rc = sqlite3_bind_double(s, at, v.Get<double>());
      break;
    case Value::Kind::String: {
      const std::string& t = v.Get<std::string>();
      rc = sqlite3_bind_text64(s, at, t.data(), t.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
      break;
    }
    case Value::Kind::Bytes: {
      const Bytes& b = v.Get<Bytes>();
      rc = sqlite3_bind_blob64(s, at, b.data(), b.size(), SQLITE_TRANSIENT);
      break;
    }
    case Value::Kind::Collection:
      h.Fail(ErrNo::TypeMismatch, "A collection cannot be stored in a field", "DbRecordset.Update");
  }
  if (rc != SQLITE_OK) h.Fail("DbRecordset.Update");
}

// Update can write when every column comes straight from one table. The
// table's integer key, when selected, tells which row to write back.
struct UpdateTarget {
  std::string table;  // empty: read-only
  int keyColumn = -1;
};

bool IsIntegerKey(sqlite3* db, const char* database, const char* table, const char* column) {
  const char* declType = nullptr;
  int primaryKey = 0;
  return column &&
         sqlite3_table_column_metadata(db, database, table, column, &declType, nullptr, nullptr, &primaryKey,
                                       nullptr) == SQLITE_OK &&
         primaryKey && declType && EqualsNoCase(declType, "INTEGER");
}

UpdateTarget FindUpdateTarget(sqlite3* db, sqlite3_stmt* s) {
  UpdateTarget t;
  const int n = sqlite3_column_count(s);
  if (n == 0 || !sqlite3_stmt_readonly(s)) return t;
  std::string table, database;
  for (int i = 0; i < n; ++i) {
    const char* tn = sqlite3_column_table_name(s, i);
    const char* dn = sqlite3_column_database_name(s, i);
    if (!tn || !dn) return t;
    if (i == 0) {
      table = tn, database = dn;
    } else if (table != tn || database != dn) {
      return t;
    }
  }
  t.table = table;
  for (int i = 0; i < n && t.keyColumn < 0; ++i) {
    if (IsIntegerKey(db, database.c_str(), table.c_str(), sqlite3_column_origin_name(s, i))) t.keyColumn = i;
  }
  return t;
}

}  // namespace

const std::string& DbField::Name() const {
  return rs_->FieldName(column_);
}

const Value& DbField::Value() const {
  return rs_->FieldValue(column_);
}

DbField& DbField::operator=(const qds::Value& v) {
  rs_->Assign(column_, v);
  return *this;
}

DbRecordset::DbRecordset(std::shared_ptr<detail::DbHandle> h, std::string_view sql) : h_(std::move(h)) {
  Load(sql);
}

DbRecordset DbRecordset::Create(std::vector<std::string> fieldNames) {
  DbRecordset rs;
  rs.local_ = true;
  for (auto& n : fieldNames) rs.fields_.push_back({std::move(n), {}});
  return rs;
}

void DbRecordset::Load(std::string_view sql) {
  const std::string source = "DbRecordset.Query";
  detail::Statement s = detail::PrepareSingle(*h_, sql, source);
  if (!s) return;  // no statement at all: an empty recordset
  const UpdateTarget target = FindUpdateTarget(h_->db, s.get());
  table_ = target.table;
  keyColumn_ = target.keyColumn;
  bool hidden = false;
  if (!table_.empty() && keyColumn_ < 0) {
    // The table's key is not among the selected columns (or it has none, as
    // the settings row): select its row id too, so Update finds the row.
    const std::string text = RewriteSelectTop(sql);
    std::size_t i = 0;
    while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
    const std::string injected =
        text.substr(0, i + 6) + " _rowid_ AS " + kHiddenRowid + "," + text.substr(i + 6);
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(h_->db, injected.c_str(), -1, &raw, nullptr) == SQLITE_OK && raw) {
      s = detail::Statement(raw);
      hidden = true;
    } else {
      if (raw) sqlite3_finalize(raw);
      table_.clear();  // rows could not be found again: read-only
    }
  }
  const int first = hidden ? 1 : 0;
  const int n = sqlite3_column_count(s.get());
  for (int i = first; i < n; ++i) {
    const char* origin = sqlite3_column_origin_name(s.get(), i);
    fields_.push_back({sqlite3_column_name(s.get(), i), origin ? origin : ""});
  }
  int rc;
  while ((rc = sqlite3_step(s.get())) == SQLITE_ROW) {
    std::vector<Value> row;
    row.reserve(fields_.size());
    for (int i = first; i < n; ++i) row.push_back(ColumnValue(s.get(), i));
    if (hidden) {
      rowids_.push_back(sqlite3_column_int64(s.get(), 0));
    } else if (keyColumn_ >= 0) {
      rowids_.push_back(row[keyColumn_].AsLong());
    }
    rows_.push_back(std::move(row));
  }
  if (rc != SQLITE_DONE) h_->Fail(source);
}

void DbRecordset::MoveFirst() {
  EndEdit();
  pos_ = 0;
}

void DbRecordset::MoveNext() {
  EndEdit();
  if (pos_ < RecordCount()) ++pos_;
}

void DbRecordset::MovePrevious() {
  EndEdit();
  if (pos_ >= 0) --pos_;
}

void DbRecordset::MoveLast() {
  EndEdit();
  pos_ = RecordCount() - 1;
}

void DbRecordset::SetAbsolutePosition(int position) {
  if (position < 1 || position > RecordCount()) {
    Raise(ErrNo::OutOfRange, "Row " + std::to_string(position) + " does not exist", "DbRecordset");
  }
  EndEdit();
  pos_ = position - 1;
}

const std::string& DbRecordset::FieldName(int index) const {
  return fields_[CheckFieldIndex(index)].name;
}

int DbRecordset::FieldIndex(std::string_view name) const {
  for (int i = 0; i < FieldCount(); ++i) {
    if (EqualsNoCase(fields_[i].name, name)) return i;
  }
  return -1;
}

int DbRecordset::CheckField(std::string_view name) const {
  const int i = FieldIndex(name);
  if (i < 0) Raise(ErrNo::InvalidArgument, "No field is named \"" + std::string(name) + "\"", "DbRecordset");
  return i;
}

int DbRecordset::CheckFieldIndex(int index) const {
  if (index < 0 || index >= FieldCount()) {
    Raise(ErrNo::OutOfRange, "No field has the index " + std::to_string(index), "DbRecordset");
  }
  return index;
}

int DbRecordset::CurrentRow() const {
  if (Eof() || pos_ < 0) Raise(kNoCurrentRecord, "There is no current record", "DbRecordset");
  return pos_;
}

DbField DbRecordset::Fields(std::string_view name) {
  return DbField(this, CheckField(name));
}

DbField DbRecordset::Fields(int index) {
  return DbField(this, CheckFieldIndex(index));
}

const Value& DbRecordset::FieldValue(std::string_view name) const {
  return FieldValue(CheckField(name));
}

const Value& DbRecordset::FieldValue(int index) const {
  return rows_[CurrentRow()][CheckFieldIndex(index)];
}

bool DbRecordset::Updatable() const {
  return local_ || (!table_.empty() && h_ && h_->db);
}

void DbRecordset::Assign(int column, const Value& v) {
  const int row = CurrentRow();
  if (!Updatable()) {
    Raise(ErrNo::InvalidArgument, "This recordset cannot be changed: it does not come from one table",
          "DbRecordset");
  }
  if (editRow_ != row) {
    EndEdit();
    editRow_ = row;
    editIsNew_ = false;
    dirty_.assign(fields_.size(), false);
  }
  rows_[row][column] = v.GetKind() == Value::Kind::Bool ? Value(v.Get<bool>() ? -1 : 0) : v;
  dirty_[column] = true;
}

void DbRecordset::AddNew() {
  if (!Updatable()) {
    Raise(ErrNo::InvalidArgument, "Rows cannot be added here: the recordset does not come from one table",
          "DbRecordset");
  }
  EndEdit();
  rows_.emplace_back(fields_.size());
  if (!local_) rowids_.push_back(0);
  pos_ = RecordCount() - 1;
  editRow_ = pos_;
  editIsNew_ = true;
  dirty_.assign(fields_.size(), false);
}

void DbRecordset::CancelUpdate() {
  if (editRow_ < 0) return;
  if (editIsNew_) {
    rows_.erase(rows_.begin() + editRow_);
    if (!local_) rowids_.erase(rowids_.begin() + editRow_);
    pos_ = RecordCount();
  } else if (!local_) {
    Reread(rowids_[editRow_]);  // back to what the database holds
  }
  editRow_ = -1;
}

void DbRecordset::EndEdit() {
  if (editRow_ >= 0) Update();
}

void DbRecordset::Update() {
  if (editRow_ < 0) return;
  if (!local_) {
    try {
      if (editIsNew_) {
        Insert();
      } else {
        WriteBack();
      }
    } catch (...) {
      // A row that could not be written must not look written.
      CancelUpdate();
      throw;
    }
  }
  editRow_ = -1;
}

void DbRecordset::Insert() {
  const std::string source = "DbRecordset.Update";
  std::string cols, marks;
  std::vector<int> written;
  for (int i = 0; i < FieldCount(); ++i) {
    if (!dirty_[i]) continue;
    if (fields_[i].originColumn.empty()) {
      h_->Fail(ErrNo::InvalidArgument, "Field \"" + fields_[i].name + "\" cannot be written", source);
    }
    if (!written.empty()) cols += ",", marks += ",";
    cols += QuoteId(fields_[i].originColumn);
    marks += "?";
    written.push_back(i);
  }
  const std::string sql = written.empty()
                              ? "INSERT INTO " + QuoteId(table_) + " DEFAULT VALUES"
                              : "INSERT INTO " + QuoteId(table_) + " (" + cols + ") VALUES (" + marks + ")";
  detail::Statement s = detail::PrepareSingle(*h_, sql, source);
  for (std::size_t k = 0; k < written.size(); ++k)
    Bind(*h_, s.get(), static_cast<int>(k) + 1, rows_[editRow_][written[k]]);
  detail::StepToEnd(*h_, s.get(), source);
  const std::int64_t rowid = sqlite3_last_insert_rowid(h_->db);
  rowids_[editRow_] = rowid;
  Reread(rowid);  // picks up the new ID and the table's defaults
}

void DbRecordset::WriteBack() {
  const std::string source = "DbRecordset.Update";
  std::string sets;
  std::vector<int> written;
  for (int i = 0; i < FieldCount(); ++i) {
    if (!dirty_[i]) continue;
    if (fields_[i].originColumn.empty()) {
      h_->Fail(ErrNo::InvalidArgument, "Field \"" + fields_[i].name + "\" cannot be written", source);
    }
    if (!written.empty()) sets += ",";
    sets += QuoteId(fields_[i].originColumn) + "=?";
    written.push_back(i);
  }
  if (written.empty()) return;
  const std::string sql = "UPDATE " + QuoteId(table_) + " SET " + sets + " WHERE _rowid_=?";
  detail::Statement s = detail::PrepareSingle(*h_, sql, source);
  int at = 1;
  for (int i : written) Bind(*h_, s.get(), at++, rows_[editRow_][i]);
  sqlite3_bind_int64(s.get(), at, rowids_[editRow_]);
  detail::StepToEnd(*h_, s.get(), source);
  // A changed key moves the row; follow it.
  if (keyColumn_ >= 0 && dirty_[keyColumn_]) rowids_[editRow_] = rows_[editRow_][keyColumn_].AsLong();
}

void DbRecordset::Reread(std::int64_t rowid) {
  std::string cols;
  std::vector<int> read;
  for (int i = 0; i < FieldCount(); ++i) {
    if (fields_[i].originColumn.empty()) continue;
    if (!read.empty()) cols += ",";
    cols += QuoteId(fields_[i].originColumn);
    read.push_back(i);
  }
  if (read.empty()) return;
  const std::string source = "DbRecordset.Update";
  detail::Statement s =
      detail::PrepareSingle(*h_, "SELECT " + cols + " FROM " + QuoteId(table_) + " WHERE _rowid_=?", source);
  sqlite3_bind_int64(s.get(), 1, rowid);
  if (sqlite3_step(s.get()) == SQLITE_ROW) {
    for (std::size_t k = 0; k < read.size(); ++k)
      rows_[editRow_][read[k]] = ColumnValue(s.get(), static_cast<int>(k));
  }
}

Bytes DbRecordset::Serialize() const {
  ByteWriter w;
  w.Raw(kMagic, 3);
  w.U8(kVersion);
  w.U32(static_cast<std::uint32_t>(fields_.size()));
  for (const auto& f : fields_) w.Text(f.name);
  w.U32(static_cast<std::uint32_t>(rows_.size()));
  for (const auto& row : rows_) {
    for (const auto& v : row) {
      if (v.GetKind() == Value::Kind::Collection) {
        Raise(ErrNo::TypeMismatch, "A collection cannot be stored in a field", "DbRecordset.Serialize");
      }
      WriteValue(w, v);
    }
  }
  return w.Take();
}

DbRecordset DbRecordset::Deserialize(const Bytes& bytes) {
  ByteReader r(bytes, "recordset data");
  r.Expect(kMagic);
  if (r.U8() != kVersion) r.Fail("unknown version");
  const std::uint32_t fieldCount = r.U32();
  // A field name takes at least its four length bytes.
  if (fieldCount > r.Remaining() / 4) r.Fail("a field count larger than the data");
  std::vector<std::string> names;
  names.reserve(fieldCount);
  for (std::uint32_t i = 0; i < fieldCount; ++i) names.push_back(r.Text());
  const std::uint32_t rowCount = r.U32();
  // Every value takes at least one byte; rows without fields carry nothing.
  if (fieldCount == 0 ? rowCount != 0 : rowCount > r.Remaining() / fieldCount) {
    r.Fail("a row count larger than the data");
  }
  DbRecordset rs = Create(std::move(names));
  rs.rows_.reserve(rowCount);
  for (std::uint32_t row = 0; row < rowCount; ++row) {
    std::vector<Value> values;
    values.reserve(fieldCount);
    for (std::uint32_t i = 0; i < fieldCount; ++i) {
      Value v = ReadValue(r, kMaxCollectionDepth);  // no room left for nesting
      if (v.GetKind() == Value::Kind::Collection) r.Fail("a collection inside a field");
      values.push_back(std::move(v));
    }
    rs.rows_.push_back(std::move(values));
  }
  r.ExpectEnd();
  return rs;
}

}  // namespace qds
