#pragma once
// The general collection of values and its byte form.
//
// Byte layout, version 1. Integers are little-endian; a "text" or "blob" is a
// u32 length followed by that many bytes.
//
//   collection := "QKC" version:u8(=1) flags:u8 count:u32 item*count
//   flags      := bit 0 equal keys admitted, bit 1 keys compared as binary
//   item       := hasKey:u8(0|1) [key:text] value
//   value      := tag:u8 payload
//     tag 0 empty       (no payload)
//     tag 1 boolean     u8 0|1
//     tag 2 integer     i64
//     tag 3 double      f64, IEEE 754 bits
//     tag 4 string      text (UTF-8)
//     tag 5 byte array  blob
//     tag 6 collection  a whole nested collection, magic included
//
// Reading checks every length against what is left, refuses nesting deeper
// than kMaxCollectionDepth, unknown tags or flags, keys that break the
// collection's own key rule, and bytes after the end.

#include "platform/Bytes.h"
#include "platform/KeyedCollection.h"
#include "platform/Value.h"

namespace qds {

class ByteWriter;
class ByteReader;

constexpr int kMaxCollectionDepth = 64;

CollectionPtr NewCollection(KeyMode mode = KeyMode::Unique, KeyCompare compare = KeyCompare::Text);

Bytes SerializeCollection(const Collection& c);
// Raises AppError(InvalidData) for damaged bytes.
Collection DeserializeCollection(const Bytes& bytes);

// A copy that shares nothing with the original, nested collections included.
Collection DeepCopy(const Collection& c);

// The value encoding above, shared with the recordset's byte form.
void WriteValue(ByteWriter& w, const Value& v);
Value ReadValue(ByteReader& r, int depth);

}  // namespace qds
