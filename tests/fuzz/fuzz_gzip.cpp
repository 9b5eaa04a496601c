// A damaged .svgz or staging batch must raise AppError, never read out of
// bounds; what decompresses must compress and decompress to the same bytes.

#include <cstdlib>

#include "platform/Bytes.h"
#include "platform/Error.h"
#include "tests/fuzz/SeedWriter.h"

std::vector<qds::Bytes> FuzzSeeds() {
  using namespace qds;
  const Bytes svg = ToBytes("<svg xmlns=\"http://www.w3.org/2000/svg\"><path d=\"M0 0L10 10Z\"/></svg>");
  Bytes two = GzipCompress(svg);
  const Bytes second = GzipCompress(ToBytes("second member"));
  two.insert(two.end(), second.begin(), second.end());
  return {GzipCompress(svg), GzipCompress(Bytes()), two};
}

QDS_FUZZ_INITIALIZE

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const qds::Bytes bytes(data, data + size);
  qds::Bytes plain;
  try {
    plain = qds::GzipDecompress(bytes, 1 << 20);
  } catch (const qds::AppError&) {
    return 0;
  }
  if (qds::GzipDecompress(qds::GzipCompress(plain)) != plain) std::abort();
  return 0;
}
