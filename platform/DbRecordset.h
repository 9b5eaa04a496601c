#pragma once
// The rows of one query, read into memory, with a current-row cursor.
//
// Writing follows the pattern used throughout the program: query
// "Select * From T Where 1=0", AddNew, assign fields, Update; the new row's
// ID can then be read from the recordset. A recordset of one table queried
// by its key (or of a table without one, such as the settings row) writes
// assigned fields back with Update. Moving off a row with pending changes
// writes them first, so nothing assigned is ever lost silently.
//
// A recordset made by Create() or Deserialize() belongs to no database: its
// rows can be added and edited in memory and serialised.
//
// Byte layout, version 1 (integers little-endian, texts as u32 length + bytes):
//   "QRS" version:u8(=1) fieldCount:u32 name:text*fieldCount rowCount:u32
//   then rowCount × fieldCount values in the collection value encoding
//   (tags 0..5; nested collections are refused).

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Bytes.h"
#include "platform/Value.h"

namespace qds {

namespace detail {
struct DbHandle;
}
class DbRecordset;

class DbField {
 public:
  const std::string& Name() const;
  const qds::Value& Value() const;
  bool IsNull() const { return Value().IsEmpty(); }
  std::string AsString() const { return Value().AsString(); }
  std::int64_t AsLong() const { return Value().AsLong(); }
  double AsDouble() const { return Value().AsDouble(); }
  bool AsBool() const { return Value().AsBool(); }
  Bytes AsBytes() const { return Value().AsBytes(); }

  // Assigns the current row's value; booleans are stored as -1 and 0.
  DbField& operator=(const qds::Value& v);

 private:
  friend class DbRecordset;
  DbField(DbRecordset* rs, int column) : rs_(rs), column_(column) {}
  DbRecordset* rs_;
  int column_;
};

class DbRecordset {
 public:
  DbRecordset() = default;
  static DbRecordset Create(std::vector<std::string> fieldNames);

  int RecordCount() const { return static_cast<int>(rows_.size()); }
  bool Eof() const { return pos_ >= RecordCount(); }
  bool Bof() const { return pos_ < 0 || RecordCount() == 0; }
  void MoveFirst();
  void MoveNext();
  void MovePrevious();
  void MoveLast();
  // 1-based number of the current row; 0 when there is none.
  int AbsolutePosition() const { return Eof() || Bof() ? 0 : pos_ + 1; }
  void SetAbsolutePosition(int position);

  int FieldCount() const { return static_cast<int>(fields_.size()); }
  const std::string& FieldName(int index) const;
  // -1 when there is no such field; names compare without regard to case.
  int FieldIndex(std::string_view name) const;
  DbField Fields(std::string_view name);
  DbField Fields(int index);
  const Value& FieldValue(std::string_view name) const;
  const Value& FieldValue(int index) const;

  void AddNew();
  void Update();
  void CancelUpdate();
  bool Updatable() const;
  const std::string& TableName() const { return table_; }

  Bytes Serialize() const;
  // Raises AppError(InvalidData) for damaged bytes.
  static DbRecordset Deserialize(const Bytes& bytes);

 private:
  friend class DbConnection;
  friend class DbField;
  struct FieldInfo {
    std::string name;
    std::string originColumn;  // empty for expressions
  };

  DbRecordset(std::shared_ptr<detail::DbHandle> h, std::string_view sql);
  void Load(std::string_view sql);
  int CheckField(std::string_view name) const;
  int CheckFieldIndex(int index) const;
  int CurrentRow() const;
  void Assign(int column, const Value& v);
  void Insert();
  void WriteBack();
  void Reread(std::int64_t rowid);
  void EndEdit();

  std::shared_ptr<detail::DbHandle> h_;
  std::vector<FieldInfo> fields_;
  std::vector<std::vector<Value>> rows_;
  std::vector<std::int64_t> rowids_;  // per row, when the recordset can write
  int pos_ = 0;
  std::string table_;   // the table written by Update; empty when read-only
  int keyColumn_ = -1;  // the table's integer key among the fields
  bool local_ = false;
  int editRow_ = -1;
  bool editIsNew_ = false;
  std::vector<bool> dirty_;
};

}  // namespace qds
