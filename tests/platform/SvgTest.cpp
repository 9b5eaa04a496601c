#include <gtest/gtest.h>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/ImageList.h"
#include "platform/SvgRenderer.h"
#include "platform/XmlDocument.h"
#include "tests/support/Pixels.h"
#include "tests/support/TempDir.h"

using namespace qds;

namespace {

// A red square filling the left half of a 24 by 24 icon.
const std::string kHalf =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="24" height="24" viewBox="0 0 24 24">)"
    R"(<rect x="0" y="0" width="12" height="24" fill="#ff0000"/></svg>)";

bool Blank(const SurfacePtr& s) {
  const PixelView v = s->Pixels();
  for (int i = 0; i < v.Height() * v.Stride() / 4; ++i) {
    if (v.Longs()[i] != 0) return false;
  }
  return true;
}

}  // namespace

TEST(SvgRenderer, RendersIntoTheBoxTurnedAboutItsCentre) {
  SvgRenderer renderer;
  SurfacePtr s = DrawingSurface::Create(64, 64);
  DrawingContext ctx(s);
  ASSERT_TRUE(renderer.Render(ctx, ToBytes(kHalf), 0, 0, 64, 64));
  EXPECT_EQ(PixelAt(s, 10, 32), (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(PixelAt(s, 54, 32), (Bgra{0, 0, 0, 0}));

  // A quarter turn clockwise puts the left half on top.
  SurfacePtr turned = DrawingSurface::Create(64, 64);
  DrawingContext tctx(turned);
  ASSERT_TRUE(renderer.Render(tctx, ToBytes(kHalf), 0, 0, 64, 64, 90));
  EXPECT_EQ(PixelAt(turned, 32, 10), (Bgra{0, 0, 255, 255}));
  EXPECT_EQ(PixelAt(turned, 32, 54), (Bgra{0, 0, 0, 0}));

  // The aspect ratio is kept: a wide document sits in the middle of a square.
  const std::string wide = R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 40 20">)"
                           R"(<rect width="40" height="20" fill="#00ff00"/></svg>)";
  SurfacePtr band = DrawingSurface::Create(40, 40);
  DrawingContext bctx(band);
  ASSERT_TRUE(renderer.Render(bctx, ToBytes(wide), 0, 0, 40, 40));
  EXPECT_EQ(PixelAt(band, 20, 5), (Bgra{0, 0, 0, 0}));
  EXPECT_EQ(PixelAt(band, 20, 20), (Bgra{0, 255, 0, 255}));

  // A compressed .svgz draws the same.
  SurfacePtr z = DrawingSurface::Create(64, 64);
  DrawingContext zctx(z);
  ASSERT_TRUE(renderer.Render(zctx, GzipCompress(ToBytes(kHalf)), 0, 0, 64, 64));
  EXPECT_EQ(z->ToPngBytes(), s->ToPngBytes());

  const SvgHandlePtr doc = renderer.Parse(ToBytes(kHalf));
  ASSERT_TRUE(doc);
  EXPECT_EQ(doc->Width(), 24);
  EXPECT_EQ(doc->Height(), 24);
}

TEST(SvgRenderer, DamagedDocumentsDrawNothingAndSaySo) {
  SvgRenderer renderer;
  SurfacePtr s = DrawingSurface::Create(32, 32);
  DrawingContext ctx(s);
  for (const std::string& bad : {std::string("<svg><path d="), std::string(), std::string("\x1f\x8b garbage"),
                                 std::string("not xml at all"), std::string(1000, '\0')}) {
    std::string error;
    EXPECT_FALSE(renderer.Parse(ToBytes(bad), &error));
    EXPECT_FALSE(error.empty());
    EXPECT_FALSE(renderer.Render(ctx, ToBytes(bad), 0, 0, 32, 32));
  }
  EXPECT_TRUE(Blank(s));
  // The context is still fine for what comes next.
  EXPECT_TRUE(renderer.Render(ctx, ToBytes(kHalf), 0, 0, 32, 32));
  EXPECT_FALSE(Blank(s));
}

TEST(SvgRenderer, CachesParsedDocumentsByContentAndForgetsTheOldest) {
  SvgRenderer renderer(2);
  const Bytes a = ToBytes(kHalf);
  const Bytes b = ToBytes(kHalf + " ");
  const Bytes c = ToBytes(kHalf + "  ");
  const SvgHandlePtr first = renderer.Parse(a);
  EXPECT_EQ(renderer.Parse(Bytes(a)), first);  // equal bytes, same document
  renderer.Parse(b);
  renderer.Parse(a);  // a is now the most recent
  renderer.Parse(c);  // so b goes
  EXPECT_EQ(renderer.CachedDocuments(), 2u);
  EXPECT_EQ(renderer.Parse(a), first);
  renderer.ClearCache();
  EXPECT_NE(renderer.Parse(a), first);
}

TEST(XmlDocument, ListsElementsInOrderAndEditsTheTree) {
  const std::string text =
      R"(<?xml version="1.0" encoding="UTF-8"?>)"
      R"(<svg xmlns="http://www.w3.org/2000/svg" width="256pt" viewBox="0 0 256 256"><defs>)"
      R"(<clipPath id="clip1"><path d="M 0 0 L 10 0 L 10 10 Z"/></clipPath></defs>)"
      R"svg(<g id="surface1" clip-path="url(#clip1)" clip-rule="nonzero"><path style="fill:rgb(100%,0%,0%);" d="M 1 1"/>)svg"
      R"(<g><path d="M 2 2"/></g></g></svg>)";
  SvgDocument doc;
  ASSERT_TRUE(doc.Parse(text));
  std::string names;
  for (const XmlNode& e : doc.Elements()) names += e.Name() + " ";
  EXPECT_EQ(names, "svg defs clipPath path g path g path ");
  EXPECT_EQ(doc.Elements()[5].Attribute("style"), "fill:rgb(100%,0%,0%);");
  EXPECT_EQ(doc.Elements()[5].Attribute("missing"), "");

  XmlDocument xml;
  ASSERT_TRUE(xml.Load(text));
  XmlNode root = xml.Root();
  EXPECT_EQ(root.Name(), "svg");
  EXPECT_TRUE(root.Parent().IsNull());
  const std::vector<XmlNode> top = root.Children();
  ASSERT_EQ(top.size(), 2u);
  XmlNode defs = top[0], group = top[1];
  EXPECT_EQ(defs.Children()[0].Parent(), defs);
  EXPECT_TRUE(group.RemoveAttribute("clip-path"));
  EXPECT_TRUE(group.RemoveAttribute("clip-rule"));
  EXPECT_FALSE(group.RemoveAttribute("clip-rule"));
  EXPECT_TRUE(root.RemoveChild(defs));
  EXPECT_FALSE(root.RemoveChild(group.Children()[1]));  // not its child
  group.SetAttribute("opacity", "0.5");
  const std::string out = xml.Serialize();
  EXPECT_EQ(out.find("clip"), std::string::npos);
  EXPECT_NE(out.find(R"(<g id="surface1" opacity="0.5"><path style="fill:rgb(100%,0%,0%);" d="M 1 1"/>)"),
            std::string::npos);
  EXPECT_EQ(out.rfind(R"(<?xml version="1.0" encoding="UTF-8"?>)", 0), 0u);  // the declaration is kept

  // Damaged text is refused; declared entities are never fetched.
  EXPECT_FALSE(xml.Load("<svg><g></svg>"));
  EXPECT_FALSE(xml.Error().empty());
  EXPECT_TRUE(xml.Root().IsNull());
  ASSERT_TRUE(
      xml.Load(R"(<!DOCTYPE svg [<!ENTITY x SYSTEM "file:///etc/passwd">]><svg><text>&x;</text></svg>)"));
  EXPECT_EQ(xml.Serialize().find("root:"), std::string::npos);
}

TEST(ImageList, AddsPicturesFromFilesAndBytesAndReplacesByKey) {
  SvgRenderer renderer;
  ImageList images(renderer);
  TempDir dir;

  ASSERT_TRUE(images.AddFromBytes(ToBytes(kHalf), "Trash", 48, 48));
  SurfacePtr trash = images.Get("trash");  // keys are case-blind
  ASSERT_TRUE(trash);
  EXPECT_EQ(trash->Width(), 48);
  EXPECT_EQ(PixelAt(trash, 10, 24), (Bgra{0, 0, 255, 255}));
  ASSERT_TRUE(images.AddFromBytes(ToBytes(kHalf), "Natural"));
  EXPECT_EQ(images.Get("Natural")->Width(), 24);

  // PNG from a file, scaled when asked.
  const std::string png = dir / "bg.png";
  trash->WritePng(png);
  ASSERT_TRUE(images.AddFromFile(png, "Background", 96, 96));
  EXPECT_EQ(images.Get("Background")->Height(), 96);
  EXPECT_EQ(PixelAt(images.Get("Background"), 20, 48), (Bgra{0, 0, 255, 255}));

  // The same key again replaces the picture.
  ASSERT_TRUE(images.AddFromFile(png, "Background"));
  EXPECT_EQ(images.Get("Background")->Height(), 48);
  EXPECT_EQ(images.Count(), 3);

  // Missing and damaged input add nothing.
  EXPECT_FALSE(images.AddFromFile(dir / "Titlebar.PNG", "Titlebar"));
  EXPECT_FALSE(images.AddFromBytes(ToBytes("<svg"), "Broken", 32, 32));
  EXPECT_FALSE(images.Exists("Titlebar"));
  EXPECT_FALSE(images.Exists("Broken"));
  EXPECT_EQ(images.Get("Titlebar"), nullptr);
  images.Remove("Trash");
  EXPECT_FALSE(images.Exists("Trash"));
}
