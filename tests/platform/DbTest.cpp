#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "platform/DbConnection.h"
#include "platform/DbRecordset.h"
#include "platform/Error.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/TempDir.h"

using namespace qds;

namespace {

DbConnection Library() {
  DbConnection cnn = DbConnection::OpenMemory();
  EXPECT_TRUE(cnn.Execute(
      "CREATE TABLE Images (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT, SVG BLOB, Styles_ID INTEGER, "
      "Overlay INTEGER DEFAULT 0, Zoom REAL DEFAULT 1)"));
  EXPECT_TRUE(cnn.Execute("CREATE TABLE Styles (ID INTEGER PRIMARY KEY AUTOINCREMENT, Name TEXT)"));
  EXPECT_TRUE(cnn.Execute("CREATE TABLE Config (Settings TEXT)"));
  return cnn;
}

int AddImage(DbConnection& cnn, const std::string& name) {
  DbRecordset rs = cnn.Query("Select * From Images Where 1=0");
  rs.AddNew();
  rs.Fields("Name") = name;
  rs.Fields("SVG") = ToBytes("<svg/>");
  rs.Fields("Styles_ID") = 1;
  rs.Update();
  return static_cast<int>(rs.Fields("ID").AsLong());
}

}  // namespace

TEST(Db, AddNewOnAnEmptyRecordsetInsertsAndReadsBackIdAndDefaults) {
  DbConnection cnn = Library();
  DbRecordset rs = cnn.Query("Select * From Images Where 1=0");
  EXPECT_EQ(rs.RecordCount(), 0);
  EXPECT_TRUE(rs.Eof());
  ASSERT_EQ(rs.FieldCount(), 6);
  EXPECT_EQ(rs.FieldName(1), "Name");

  rs.AddNew();
  rs.Fields("name") = "Children's";  // field names are case-blind
  rs.Fields("Overlay") = true;       // booleans are stored as -1
  rs.Update();
  const std::int64_t first = rs.Fields("ID").AsLong();
  EXPECT_GT(first, 0);
  EXPECT_DOUBLE_EQ(rs.Fields("Zoom").AsDouble(), 1.0);  // the table's default came back
  EXPECT_EQ(rs.Fields("Overlay").AsLong(), -1);

  rs.AddNew();
  rs.Fields("Name") = "second";
  rs.Update();
  EXPECT_EQ(rs.Fields("ID").AsLong(), first + 1);
  EXPECT_EQ(rs.RecordCount(), 2);

  DbRecordset check = cnn.Query("Select Name, Overlay From Images Where ID = " + std::to_string(first));
  EXPECT_EQ(check.Fields("Name").AsString(), "Children's");
  EXPECT_EQ(check.Fields("Overlay").AsLong(), -1);
}

TEST(Db, UpdateWritesBackARowQueriedByKeyOrTheSettingsRow) {
  DbConnection cnn = Library();
  const int id = AddImage(cnn, "old");
  AddImage(cnn, "other");

  DbRecordset rs = cnn.Query("Select * From Images Where ID=" + std::to_string(id));
  rs.Fields("Name") = "new";
  rs.Fields("Zoom") = 0.75;
  rs.Update();
  DbRecordset check = cnn.Query("Select Name, Zoom From Images Order By ID");
  EXPECT_EQ(check.Fields("Name").AsString(), "new");
  EXPECT_DOUBLE_EQ(check.Fields("Zoom").AsDouble(), 0.75);
  check.MoveNext();
  EXPECT_EQ(check.Fields("Name").AsString(), "other");  // only the one row changed

  // The settings table has no key column at all.
  ASSERT_TRUE(cnn.Execute("Insert Into Config (Settings) Values ('{}')"));
  DbRecordset config = cnn.Query("Select * From Config");
  ASSERT_EQ(config.FieldCount(), 1);  // the row id it keeps is not a field
  config.Fields("Settings") = R"({"Language_ID":2})";
  config.Update();
  EXPECT_EQ(cnn.Query("Select Settings From Config").Fields(0).AsString(), R"({"Language_ID":2})");

  // Moving off a changed row writes it instead of dropping the change.
  DbRecordset all = cnn.Query("Select ID, Name From Images Order By ID");
  all.Fields("Name") = "moved";
  all.MoveNext();
  EXPECT_EQ(cnn.Query("Select Name From Images Where ID=" + std::to_string(id)).Fields(0).AsString(),
            "moved");

  // A join cannot be written back.
  DbRecordset joined =
      cnn.Query("Select Images.Name, Styles.Name From Images Left Join Styles On Images.Styles_ID=Styles.ID");
  EXPECT_FALSE(joined.Updatable());
  EXPECT_NE(ErrorOf([&] { joined.Fields(0) = "x"; }), 0);
}

TEST(Db, SelectTopMeansLimitAndWorksOnAnEmptyTable) {
  DbConnection cnn = Library();
  DbRecordset none = cnn.Query("Select Top 1 ID From Images");
  EXPECT_FALSE(cnn.HasError());
  EXPECT_EQ(none.RecordCount(), 0);
  EXPECT_TRUE(none.Eof());
  EXPECT_EQ(ErrorOf([&] { none.Fields("ID").AsLong(); }), 3021);

  for (int i = 0; i < 5; ++i) AddImage(cnn, "icon" + std::to_string(i));
  EXPECT_EQ(cnn.Query("Select Top 1 ID From Images").RecordCount(), 1);
  EXPECT_EQ(cnn.Query("select top 3 * from Images order by ID desc;").RecordCount(), 3);
  EXPECT_EQ(cnn.Query("Select Distinct Top 2 Styles_ID From Images").RecordCount(), 1);
  EXPECT_EQ(RewriteSelectTop("Select top 1 * from Images where 1=0"),
            "Select * from Images where 1=0 LIMIT 1");
  EXPECT_EQ(RewriteSelectTop("Select Topaz From T"), "Select Topaz From T");

  DbRecordset rs = cnn.Query("Select ID From Images Order By ID");
  EXPECT_EQ(rs.AbsolutePosition(), 1);
  rs.MoveLast();
  EXPECT_EQ(rs.AbsolutePosition(), 5);
  rs.MoveNext();
  EXPECT_TRUE(rs.Eof());
  EXPECT_EQ(rs.AbsolutePosition(), 0);
  rs.SetAbsolutePosition(2);
  EXPECT_EQ(rs.Fields(0).AsLong(), 2);
}

TEST(Db, OneStatementPerCallAndQuotedTextCannotAddSql) {
  DbConnection cnn = Library();
  AddImage(cnn, "keep");
  EXPECT_FALSE(cnn.Execute("Delete From Images; Drop Table Images"));
  EXPECT_TRUE(cnn.HasError());
  EXPECT_NE(cnn.ErrorText().find("one SQL statement"), std::string::npos);
  EXPECT_EQ(cnn.Query("Select Count(*) From Images").Fields(0).AsLong(), 1);  // nothing ran
  EXPECT_NE(ErrorOf([&] { cnn.Query("Select 1; Select 2"); }), 0);
  EXPECT_TRUE(cnn.Execute("Select 1; -- a trailing comment is no statement"));

  // A hostile name stays a name.
  const std::string name = "x'; Drop Table Images; --";
  EXPECT_TRUE(cnn.Execute("Insert Into Images (Name) Values ('" + SqlText(name) + "')"));
  DbRecordset found = cnn.Query("Select Name From Images Where Name='" + SqlText(name) + "'");
  ASSERT_EQ(found.RecordCount(), 1);
  EXPECT_EQ(found.Fields(0).AsString(), name);
  // Without quoting, the quote breaks the statement and nothing else happens.
  EXPECT_FALSE(cnn.Execute("Insert Into Images (Name) Values ('" + name + "')"));
  EXPECT_EQ(cnn.Query("Select Count(*) From Images").Fields(0).AsLong(), 2);
}

TEST(Db, ErrorsStayOnTheConnectionUntilCleared) {
  DbConnection cnn = Library();
  EXPECT_FALSE(cnn.Execute("Select Opacity From Layer Where 1=0"));
  EXPECT_TRUE(cnn.HasError());
  EXPECT_NE(cnn.ErrorNumber(), 0);
  EXPECT_NE(cnn.ErrorText().find("no such table"), std::string::npos);
  EXPECT_TRUE(cnn.Execute("Select 1"));
  EXPECT_TRUE(cnn.HasError());  // a later success does not hide it
  cnn.ClearError();
  EXPECT_FALSE(cnn.HasError());

  try {
    cnn.Query("Select Nothing From Nowhere");
    FAIL() << "the query should have raised";
  } catch (const AppError& e) {
    EXPECT_EQ(e.Number(), cnn.ErrorNumber());
    EXPECT_EQ(e.Description(), cnn.ErrorText());
  }

  // A file that cannot be opened surfaces at the first statement.
  TempDir dir;
  DbConnection missing = DbConnection::Open(dir / "no such folder/Library.db");
  EXPECT_FALSE(missing.IsOpen());
  EXPECT_NE(ErrorOf([&] { missing.Query("Select Top 1 ID From Images"); }), 0);
  EXPECT_TRUE(missing.HasError());
}

TEST(Db, TransactionsCommitOrRollBackAsOne) {
  TempDir dir;
  const std::string path = dir / "Library.db";
  {
    DbConnection cnn = DbConnection::Open(path);
    ASSERT_TRUE(cnn.Execute("CREATE TABLE T (ID INTEGER PRIMARY KEY, Name TEXT)"));
    ASSERT_TRUE(cnn.BeginTrans());
    DbRecordset rs = cnn.Query("Select * From T Where 1=0");
    for (int i = 0; i < 100; ++i) {
      rs.AddNew();
      rs.Fields("Name") = "row" + std::to_string(i);
      rs.Update();
    }
    ASSERT_TRUE(cnn.CommitTrans());
    ASSERT_TRUE(cnn.BeginTrans());
    ASSERT_TRUE(cnn.Execute("Delete From T"));
    ASSERT_TRUE(cnn.RollbackTrans());
  }
  DbConnection reopened = DbConnection::Open(path, "any key", DbOpenMode::ReadOnly);
  EXPECT_EQ(reopened.Query("Select Count(*) From T").Fields(0).AsLong(), 100);
  EXPECT_FALSE(reopened.Execute("Delete From T"));  // read-only
}

TEST(Db, AWriterWaitsItsTurnInsteadOfFailingBesideAnother) {
  TempDir dir;
  const std::string path = dir / "Library.db";
  ASSERT_TRUE(DbConnection::Open(path).Execute("CREATE TABLE T (ID INTEGER PRIMARY KEY, Name TEXT)"));
  DbConnection first = DbConnection::Open(path), second = DbConnection::Open(path);
  ASSERT_TRUE(first.BeginTrans());
  ASSERT_TRUE(first.Execute("Insert Into T (Name) Values ('first')"));
  std::thread finisher([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    first.CommitTrans();
  });
  // The second reads before it writes, as a save does; it waits for the
  // first rather than fail, well within the busy timeout.
  const bool begun = second.BeginTrans();
  const long long before = second.Query("Select Count(*) From T").Fields(0).AsLong();
  const bool wrote = second.Execute("Insert Into T (Name) Values ('second')");
  const bool committed = second.CommitTrans();
  finisher.join();
  EXPECT_TRUE(begun && wrote && committed) << second.ErrorText();
  EXPECT_EQ(before, 1);
  EXPECT_EQ(second.Query("Select Count(*) From T").Fields(0).AsLong(), 2);
}

TEST(Db, RecordsetsSerialiseForStagingAndRefuseDamagedBytes) {
  DbConnection cnn = Library();
  AddImage(cnn, "Grüße");
  ASSERT_TRUE(cnn.Execute("Insert Into Images (Name, SVG, Zoom) Values (NULL, X'00FF', 0.5)"));
  DbRecordset rs = cnn.Query("Select * From Images Order By ID");
  const Bytes bytes = rs.Serialize();

  DbRecordset back = DbRecordset::Deserialize(bytes);
  ASSERT_EQ(back.RecordCount(), 2);
  ASSERT_EQ(back.FieldCount(), rs.FieldCount());
  EXPECT_EQ(back.Fields("Name").AsString(), "Grüße");
  back.MoveNext();
  EXPECT_TRUE(back.Fields("Name").IsNull());
  EXPECT_EQ(back.Fields("SVG").AsBytes(), (Bytes{0x00, 0xFF}));
  EXPECT_DOUBLE_EQ(back.Fields("Zoom").AsDouble(), 0.5);

  // Copying a batch row field by field into the table, as the first start does.
  back.MoveFirst();
  ASSERT_TRUE(cnn.Execute("Delete From Images"));
  DbRecordset target = cnn.Query("Select * From Images Where 1=0");
  for (; !back.Eof(); back.MoveNext()) {
    target.AddNew();
    for (int i = 0; i < back.FieldCount(); ++i) target.Fields(i) = back.FieldValue(i);
    target.Update();
  }
  EXPECT_EQ(cnn.Query("Select Count(*) From Images").Fields(0).AsLong(), 2);

  for (std::size_t n = 0; n < bytes.size(); n += 3) {
    EXPECT_EQ(ErrorOf([&] { DbRecordset::Deserialize(Bytes(bytes.begin(), bytes.begin() + n)); }),
              ErrNo::InvalidData)
        << "cut at " << n;
  }
}
