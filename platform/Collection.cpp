#include "platform/Collection.h"

#include "platform/ByteStream.h"

namespace qds {

namespace {

constexpr char kMagic[] = "QKC";
constexpr std::uint8_t kVersion = 1;
constexpr std::uint8_t kFlagDuplicates = 1;
constexpr std::uint8_t kFlagBinary = 2;

void WriteCollection(ByteWriter& w, const Collection& c) {
  w.Raw(kMagic, 3);
  w.U8(kVersion);
  std::uint8_t flags = 0;
  if (c.Mode() == KeyMode::AllowDuplicates) flags |= kFlagDuplicates;
  if (c.Compare() == KeyCompare::Binary) flags |= kFlagBinary;
  w.U8(flags);
  w.U32(static_cast<std::uint32_t>(c.Count()));
  for (const auto& e : c) {
    w.U8(e.Key.empty() ? 0 : 1);
    if (!e.Key.empty()) w.Text(e.Key);
    WriteValue(w, e.Item);
  }
}

Collection ReadCollection(ByteReader& r, int depth) {
  if (depth > kMaxCollectionDepth) r.Fail("collections nested too deeply");
  r.Expect(kMagic);
  if (r.U8() != kVersion) r.Fail("unknown version");
  const std::uint8_t flags = r.U8();
  if (flags & ~(kFlagDuplicates | kFlagBinary)) r.Fail("unknown flags");
  Collection c(flags & kFlagDuplicates ? KeyMode::AllowDuplicates : KeyMode::Unique,
               flags & kFlagBinary ? KeyCompare::Binary : KeyCompare::Text);
  const std::uint32_t count = r.U32();
  // Every item takes at least two bytes, so a larger count is a lie and must
  // not drive a huge allocation or a long loop.
  if (count > r.Remaining() / 2) r.Fail("an item count larger than the data");
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint8_t hasKey = r.U8();
    if (hasKey > 1) r.Fail("a bad key marker");
    std::string key;
    if (hasKey) {
      key = r.Text();
      if (key.empty()) r.Fail("an empty key");
      if (c.Mode() == KeyMode::Unique && c.Exists(key)) r.Fail("a repeated key");
    }
    c.Add(ReadValue(r, depth), key);
  }
  return c;
}

}  // namespace

CollectionPtr NewCollection(KeyMode mode, KeyCompare compare) {
  return std::make_shared<Collection>(mode, compare);
}

void WriteValue(ByteWriter& w, const Value& v) {
  w.U8(static_cast<std::uint8_t>(v.GetKind()));
  switch (v.GetKind()) {
    case Value::Kind::Empty:
      break;
    case Value::Kind::Bool:
      w.U8(v.Get<bool>() ? 1 : 0);
      break;
    case Value::Kind::Integer:
      w.I64(v.Get<std::int64_t>());
      break;
    case Value::Kind::Double:
      w.F64(v.Get<double>());
      break;
    case Value::Kind::String:
      w.Text(v.Get<std::string>());
      break;
    case Value::Kind::Bytes: {
      const Bytes& b = v.Get<Bytes>();
      w.Blob(b.data(), b.size());
      break;
    }
    case Value::Kind::Collection: {
      const CollectionPtr& c = v.Get<CollectionPtr>();
      if (c) {
        WriteCollection(w, *c);
      } else {
        WriteCollection(w, Collection());
      }
      break;
    }
  }
}

Value ReadValue(ByteReader& r, int depth) {
  switch (r.U8()) {
    case 0:
      return Value();
    case 1: {
      const std::uint8_t b = r.U8();
      if (b > 1) r.Fail("a bad boolean");
      return Value(b == 1);
    }
    case 2:
      return Value(static_cast<long long>(r.I64()));
    case 3:
      return Value(r.F64());
    case 4:
      return Value(r.Text());
    case 5:
      return Value(r.Blob());
    case 6:
      return Value(std::make_shared<Collection>(ReadCollection(r, depth + 1)));
    default:
      r.Fail("an unknown value type");
  }
}

Bytes SerializeCollection(const Collection& c) {
  ByteWriter w;
  WriteCollection(w, c);
  return w.Take();
}

Collection DeserializeCollection(const Bytes& bytes) {
  ByteReader r(bytes, "collection data");
  Collection c = ReadCollection(r, 0);
  r.ExpectEnd();
  return c;
}

Collection DeepCopy(const Collection& c) {
  Collection out(c.Mode(), c.Compare());
  for (const auto& e : c) {
    if (e.Item.GetKind() == Value::Kind::Collection && e.Item.Get<CollectionPtr>()) {
      out.Add(Value(std::make_shared<Collection>(DeepCopy(*e.Item.Get<CollectionPtr>()))), e.Key);
    } else {
      out.Add(e.Item, e.Key);
    }
  }
  return out;
}

}  // namespace qds
