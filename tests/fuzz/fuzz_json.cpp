// Settings strings come from saved designs, templates and presets. Any text
// must either parse to an object or be reported; a parsed bag must write out
// text that parses back to the same bag.

#include <cstdlib>
#include <string_view>

#include "platform/JsonBag.h"
#include "tests/fuzz/SeedWriter.h"

std::vector<qds::Bytes> FuzzSeeds() {
  return {
      qds::ToBytes(R"({"Pos":5,"Distance":4,"Zoom":1.5,"Name":"It's","On":true,"Sub":{"A":[1,2.0,"x"]}})"),
      qds::ToBytes(R"({})"), qds::ToBytes(R"([1,2,3])"), qds::ToBytes(R"({"a":"\u00e9\ud83d\ude00"})")};
}

QDS_FUZZ_INITIALIZE

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  qds::JsonBag bag;
  if (!bag.Parse(text)) {
    if (bag.LastError().empty() || bag.Count() != 0) std::abort();
    return 0;
  }
  const std::string once = bag.ToString();
  qds::JsonBag again;
  if (!again.Parse(once) || again.ToString() != once) std::abort();
  for (const auto& key : bag.Keys()) {
    (void)bag.GetLong(key);
    (void)bag.GetDouble(key);
    (void)bag.GetBool(key);
    (void)bag.GetString(key);
  }
  return 0;
}
