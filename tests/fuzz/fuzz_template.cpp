// Template files and design files come from other people's machines. Any
// bytes must be either refused or read into a design whose file form reads
// back the same.

#include <cstdlib>

#include "store/modTemplates.h"
#include "tests/fuzz/SeedWriter.h"

std::vector<qds::Bytes> FuzzSeeds() {
  qds::DesignFile d;
  d.Description = "seed";
  d.Image = qds::ToBytes("\x89PNG");
  d.Contents = {R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":"1,2","Settings":"{\"Pos\":5}"})",
                R"({"Key":"231126000000Text","Settings":"{\"TextContent\":\"A\"}","R":255,"G":null})"};
  return {qds::TemplateBytes(d), qds::ToBytes(qds::DesignJson(d)),
          qds::ToBytes(R"({"Description":"","Entries":[]})")};
}

QDS_FUZZ_INITIALIZE

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const qds::Bytes bytes(data, data + size);
  if (const auto d = qds::ReadTemplateBytes(bytes)) {
    const auto again = qds::ReadTemplateBytes(qds::TemplateBytes(*d));
    if (!again || qds::TemplateBytes(*again) != qds::TemplateBytes(*d)) std::abort();
  }
  if (const auto j = qds::ReadDesignJson(qds::ToString(bytes))) {
    const auto again = qds::ReadDesignJson(qds::DesignJson(*j));
    if (!again || again->Contents != j->Contents) std::abort();
  }
  return 0;
}
