// Damaged collection bytes must raise AppError; bytes that are accepted must
// survive a second trip unchanged.

#include <cstdlib>

#include "platform/Collection.h"
#include "platform/Error.h"
#include "tests/fuzz/SeedWriter.h"

std::vector<qds::Bytes> FuzzSeeds() {
  using namespace qds;
  Collection inner(KeyMode::AllowDuplicates, KeyCompare::Binary);
  inner.Add(Value("x"), "k");
  inner.Add(Value("y"), "k");
  inner.Add(Value(ToBytes(std::string("\0\1\2", 3))));
  Collection c;
  c.Add(Value(), "empty");
  c.Add(Value(true), "flag");
  c.Add(Value(-42), "n");
  c.Add(Value(2.5), "d");
  c.Add(Value("Children's"), "s");
  c.Add(Value(std::make_shared<Collection>(inner)), "inner");
  c.Add(Value(7));
  return {SerializeCollection(c), SerializeCollection(inner), SerializeCollection(Collection())};
}

QDS_FUZZ_INITIALIZE

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const qds::Bytes bytes(data, data + size);
  qds::Collection c;
  try {
    c = qds::DeserializeCollection(bytes);
  } catch (const qds::AppError&) {
    return 0;
  }
  // Compared as bytes: a NaN read from damaged data is not equal to itself.
  const qds::Bytes once = qds::SerializeCollection(c);
  if (qds::SerializeCollection(qds::DeserializeCollection(once)) != once) std::abort();
  return 0;
}
