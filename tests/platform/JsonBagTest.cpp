#include <gtest/gtest.h>

#include "platform/JsonBag.h"

using namespace qds;

TEST(JsonBag, KeepsFirstAssignmentOrderAndWritesWholeNumbersWithoutPoint) {
  JsonBag bag;
  bag.Set("Pos", 5.0);
  bag.Set("Distance", 4);
  bag.Set("Zoom", 1.25);
  bag.Set("Pos", 6.0);  // a new value keeps its place
  bag.Set("Text", "It's \"quoted\" Grüße");
  bag.Set("Visible", true);
  EXPECT_EQ(bag.ToString(),
            R"({"Pos":6,"Distance":4,"Zoom":1.25,"Text":"It's \"quoted\" Grüße","Visible":true})");

  JsonBag read;
  ASSERT_TRUE(read.Parse(R"({"B":2.0,"A":-0.0,"C":[1.0,2.5],"D":{"E":3.0}})"));
  EXPECT_EQ(read.ToString(), R"({"B":2,"A":0,"C":[1,2.5],"D":{"E":3}})");
  EXPECT_EQ(read.Keys(), (std::vector<std::string>{"B", "A", "C", "D"}));
  read.Remove("A");
  EXPECT_FALSE(read.Has("A"));
  EXPECT_EQ(read.GetObject("D").GetLong("E"), 3);

  JsonBag nested;
  nested.Set("Glow", read.GetObject("D"));
  EXPECT_EQ(nested.ToString(), R"({"Glow":{"E":3}})");
}

TEST(JsonBag, GettersConvertAndFallBackToTheDefault) {
  JsonBag bag = JsonBag::FromText(R"({"N":"12","F":2.5,"T":true,"S":"text","Null":null,"O":{}})");
  EXPECT_EQ(bag.GetLong("N"), 12);
  EXPECT_EQ(bag.GetLong("F"), 2);  // half to even
  EXPECT_EQ(bag.GetLong("T"), -1);
  EXPECT_TRUE(bag.GetBool("T"));
  EXPECT_EQ(bag.GetString("F"), "2.5");
  EXPECT_EQ(bag.GetLong("S", 7), 7);  // not a number: the default
  EXPECT_EQ(bag.GetLong("Null", 7), 7);
  EXPECT_EQ(bag.GetLong("O", 7), 7);
  EXPECT_EQ(bag.GetLong("Missing", 100), 100);
  EXPECT_EQ(bag.GetString("Missing", "Arial"), "Arial");
}

TEST(JsonBag, TextThatIsNoObjectIsReportedNotThrown) {
  for (const char* bad : {"", "[1,2]", "\"text\"", "{\"a\":", "{'a':1}", "nonsense", "42"}) {
    bool ok = true;
    JsonBag bag = JsonBag::FromText(bad, &ok);
    EXPECT_FALSE(ok) << bad;
    EXPECT_EQ(bag.Count(), 0);
    EXPECT_FALSE(bag.LastError().empty());
  }
  JsonBag deep;
  EXPECT_FALSE(deep.Parse(std::string(100000, '[')));
  EXPECT_TRUE(deep.Parse("{}"));
  EXPECT_TRUE(deep.LastError().empty());
}
