#include <gtest/gtest.h>

#include <memory>

#include "platform/Collection.h"
#include "platform/Error.h"
#include "tests/support/ErrorOf.h"

using namespace qds;

namespace {

std::string Order(const Collection& c) {
  std::string out;
  for (const auto& e : c) out += e.Item.AsString();
  return out;
}

}  // namespace

TEST(KeyedCollection, BeforeAndAfterPlaceItemsAndKeysFollowThem) {
  Collection c;
  c.Add(Value("a"), "A");
  c.Add(Value("c"), "C");
  c.AddBefore(Value("b"), "B", 1);
  EXPECT_EQ(Order(c), "abc");
  c.AddBefore(Value("z"), "Z", -1);  // -1 appends
  c.AddBefore(Value("y"), "", 99);   // past the end appends
  EXPECT_EQ(Order(c), "abczy");
  c.AddAfter(Value("0"), "", -1);  // before everything
  c.AddAfter(Value("d"), "D", 3);  // after "c", now at 3
  c.AddAfter(Value("e"), "E", 99);
  EXPECT_EQ(Order(c), "0abcdzye");

  // Lookups stay right after inserts and removals in the middle.
  EXPECT_EQ(c.IndexByKey("C"), 3);
  EXPECT_EQ(c.IndexByKey("Z"), 5);
  c.RemoveAt(0);
  c.Remove("B");
  EXPECT_EQ(Order(c), "acdzye");
  EXPECT_EQ(c.IndexByKey("Z"), 3);
  EXPECT_EQ(c.KeyByIndex(3), "Z");
  EXPECT_EQ(c.KeyByIndex(4), "");  // "y" has no key
  EXPECT_EQ(c.IndexByKey("B"), -1);
  EXPECT_FALSE(c.Exists("B"));

  c.Replace("C", Value("C!"));
  EXPECT_EQ(c.Item(1).AsString(), "C!");
  EXPECT_EQ(c.IndexByKey("C"), 1);
  c.Clear();
  EXPECT_EQ(c.Count(), 0);
  EXPECT_FALSE(c.Exists("A"));
}

TEST(KeyedCollection, KeysAreUniqueAndCaseBlindUnlessAskedOtherwise) {
  Collection c;
  c.Add(Value(1), "_BaseIco");
  EXPECT_TRUE(c.Exists("_baseico"));
  EXPECT_EQ(ErrorOf([&] { c.Add(Value(2), "_BASEICO"); }), ErrNo::DuplicateKey);
  EXPECT_EQ(c.Count(), 1);  // the failed add changed nothing
  EXPECT_EQ(ErrorOf([&] { c.Item("missing"); }), ErrNo::InvalidArgument);
  EXPECT_EQ(ErrorOf([&] { c.Item(1); }), ErrNo::OutOfRange);
  EXPECT_EQ(ErrorOf([&] { c.Item(-1); }), ErrNo::OutOfRange);
  EXPECT_EQ(ErrorOf([&] { c.Replace("missing", Value()); }), ErrNo::InvalidArgument);

  Collection binary(KeyMode::Unique, KeyCompare::Binary);
  binary.Add(Value(1), "Key");
  binary.Add(Value(2), "key");
  EXPECT_EQ(binary.Item("key").AsLong(), 2);

  // Templates keep entries with equal keys; a lookup finds the first.
  Collection dup(KeyMode::AllowDuplicates);
  dup.Add(Value("first"), "Glow");
  dup.Add(Value("second"), "glow");
  dup.AddBefore(Value("zeroth"), "x", 0);
  EXPECT_EQ(dup.Count(), 3);
  EXPECT_EQ(dup.Item("GLOW").AsString(), "first");
  dup.Remove("glow");
  EXPECT_EQ(dup.Item("glow").AsString(), "second");
}

TEST(KeyedCollection, HoldsObjectReferencesInATypedCollection) {
  struct Layer {
    std::string name;
  };
  KeyedCollection<std::shared_ptr<Layer>> layers;
  auto base = std::make_shared<Layer>(Layer{"base"});
  layers.Add(base, "_BaseIco");
  layers.AddBefore(std::make_shared<Layer>(Layer{"shadow"}), "shadow", 0);
  base->name = "changed";  // the collection holds the object, not a copy
  EXPECT_EQ(layers.Item("_BaseIco")->name, "changed");
  EXPECT_EQ(layers.Item(0)->name, "shadow");
}

TEST(KeyedCollection, SerialisesEveryKindOfValueAndReadsItBack) {
  auto inner = NewCollection(KeyMode::AllowDuplicates, KeyCompare::Binary);
  inner->Add(Value("x"), "k");
  inner->Add(Value("y"), "k");
  Collection c;
  c.Add(Value(), "empty");
  c.Add(Value(true), "flag");
  c.Add(Value(-4200000000LL), "big");
  c.Add(Value(0.1), "d");
  c.Add(Value("Children's Grüße"), "s");
  c.Add(Value(ToBytes(std::string("\0\xff", 2))), "raw");
  c.Add(Value(inner), "inner");
  c.Add(Value(7));

  const Collection back = DeserializeCollection(SerializeCollection(c));
  EXPECT_TRUE(back == c);
  EXPECT_EQ(back.Item("d").AsDouble(), 0.1);
  EXPECT_EQ(back.KeyByIndex(7), "");
  const CollectionPtr innerBack = back.Item("inner").AsCollection();
  EXPECT_EQ(innerBack->Mode(), KeyMode::AllowDuplicates);
  EXPECT_EQ(innerBack->Compare(), KeyCompare::Binary);
  EXPECT_EQ(innerBack->Count(), 2);

  // A deep copy shares nothing with the original.
  Collection copy = DeepCopy(c);
  copy.Item("inner").AsCollection()->Clear();
  EXPECT_EQ(inner->Count(), 2);
}

TEST(KeyedCollection, DamagedBytesRaiseAnErrorAndNeverCrash) {
  Collection c;
  c.Add(Value("value"), "key");
  c.Add(Value(NewCollection()), "nested");
  const Bytes good = SerializeCollection(c);

  // Every truncation is refused, as are bytes after the end.
  for (std::size_t n = 0; n < good.size(); ++n) {
    EXPECT_EQ(ErrorOf([&] { DeserializeCollection(Bytes(good.begin(), good.begin() + n)); }),
              ErrNo::InvalidData)
        << "cut at " << n;
  }
  Bytes longer = good;
  longer.push_back(0);
  EXPECT_EQ(ErrorOf([&] { DeserializeCollection(longer); }), ErrNo::InvalidData);

  // A count that promises more items than the bytes can hold.
  Bytes lying = good;
  lying[5] = 0xFF, lying[6] = 0xFF, lying[7] = 0xFF, lying[8] = 0x7F;
  EXPECT_EQ(ErrorOf([&] { DeserializeCollection(lying); }), ErrNo::InvalidData);

  // Nesting beyond the limit is refused rather than overflowing the stack.
  CollectionPtr deep = NewCollection();
  for (int i = 0; i < kMaxCollectionDepth + 5; ++i) {
    auto outer = NewCollection();
    outer->Add(Value(deep));
    deep = outer;
  }
  EXPECT_EQ(ErrorOf([&] { DeserializeCollection(SerializeCollection(*deep)); }), ErrNo::InvalidData);

  // Two equal keys in a collection that does not admit them.
  Collection one;
  one.Add(Value(1), "a");
  one.Add(Value(2), "b");
  Bytes twice = SerializeCollection(one);
  const auto at = std::find(twice.rbegin(), twice.rend(), 'b');
  *at = 'A';
  EXPECT_EQ(ErrorOf([&] { DeserializeCollection(twice); }), ErrNo::InvalidData);
}

TEST(Value, ConvertsTheWayUsersOfTheOldRuntimeExpect) {
  EXPECT_EQ(Value("42").AsLong(), 42);
  EXPECT_EQ(Value(" 7 ").AsLong(), 7);
  EXPECT_EQ(Value("2.5").AsLong(), 2);  // half to even
  EXPECT_EQ(Value(3.5).AsLong(), 4);
  EXPECT_EQ(Value(-2.5).AsLong(), -2);
  EXPECT_EQ(Value(true).AsLong(), -1);
  EXPECT_TRUE(Value("True").AsBool());
  EXPECT_TRUE(Value(-1).AsBool());
  EXPECT_FALSE(Value("0").AsBool());
  EXPECT_EQ(Value(5.0).AsString(), "5");
  EXPECT_EQ(Value(0.1).AsString(), "0.1");
  EXPECT_EQ(Value().AsString(), "");
  EXPECT_EQ(Value().AsLong(), 0);
  EXPECT_DOUBLE_EQ(Value("1e3").AsDouble(), 1000);
  EXPECT_EQ(ErrorOf([] { Value("abc").AsLong(); }), ErrNo::TypeMismatch);
  EXPECT_EQ(ErrorOf([] { Value(1e300).AsLong(); }), ErrNo::Overflow);
  EXPECT_EQ(ErrorOf([] { Value(NewCollection()).AsString(); }), ErrNo::TypeMismatch);
}
