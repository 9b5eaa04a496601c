// Staging batches reach the program as serialised recordsets. Damaged ones
// must raise AppError; accepted ones must read back field for field.

#include <cstdlib>

#include "platform/DbRecordset.h"
#include "platform/Error.h"
#include "tests/fuzz/SeedWriter.h"

std::vector<qds::Bytes> FuzzSeeds() {
  using namespace qds;
  DbRecordset rs = DbRecordset::Create({"ID", "Name", "SVG", "Zoom", "Overlay"});
  for (int i = 1; i <= 3; ++i) {
    rs.AddNew();
    rs.Fields("ID") = i;
    rs.Fields("Name") = "icon " + std::to_string(i);
    rs.Fields("SVG") = ToBytes("<svg/>");
    rs.Fields("Zoom") = 1.25;
    rs.Fields("Overlay") = i % 2 == 0;
    rs.Update();
  }
  return {rs.Serialize(), DbRecordset::Create({"A"}).Serialize(), DbRecordset::Create({}).Serialize()};
}

QDS_FUZZ_INITIALIZE

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const qds::Bytes bytes(data, data + size);
  qds::DbRecordset rs;
  try {
    rs = qds::DbRecordset::Deserialize(bytes);
  } catch (const qds::AppError&) {
    return 0;
  }
  // Compared as bytes: a NaN read from damaged data is not equal to itself.
  const qds::Bytes once = rs.Serialize();
  const qds::DbRecordset again = qds::DbRecordset::Deserialize(once);
  if (again.RecordCount() != rs.RecordCount() || again.Serialize() != once) std::abort();
  return 0;
}
