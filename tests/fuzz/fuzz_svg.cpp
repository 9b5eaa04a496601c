// SVG files come from users. Whatever the bytes, parsing must either give a
// document that renders or report failure; the XML reader must never crash,
// and what it writes must read back. A document the quick reader of plain
// documents takes must draw the very pixels librsvg draws.

#include <algorithm>
#include <cstdlib>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/PlainSvg.h"
#include "platform/SvgRenderer.h"
#include "platform/XmlDocument.h"
#include "tests/fuzz/SeedWriter.h"

std::vector<qds::Bytes> FuzzSeeds() {
  const std::string icon =
      R"svg(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24"><g transform="rotate(10)">)svg"
      R"svg(<path d="M2 2h20v20H2z" style="fill:rgb(100%,0%,0%)"/><circle cx="12" cy="12" r="5"/>)svg"
      R"svg(<linearGradient id="g"><stop offset="0"/></linearGradient><rect fill="url(#g)" width="5" height="5"/>)svg"
      R"svg(</g></svg>)svg";
  // What cairo writes, which the quick reader takes.
  const std::string plain =
      R"svg(<?xml version="1.0" encoding="UTF-8"?>)svg"
      "\n"
      R"svg(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" )svg"
      R"svg(width="16pt" height="16pt" viewBox="0 0 16 16" version="1.1">)svg"
      "\n<g id=\"surface1\">\n"
      R"svg(<path style=" stroke:none;fill-rule:evenodd;fill:rgb(12.156863%,50%,0%);fill-opacity:0.5;" )svg"
      R"svg(d="M 2 2 L 14 2 C 14 9 9 14 2 14 Z M 5 5 L 9 5 L 9 9 Z M 2 2 "/>)svg"
      "\n"
      R"svg(<path style="fill:none;stroke-width:1.5;stroke-linecap:round;stroke-linejoin:bevel;)svg"
      R"svg(stroke:rgb(0%,0%,100%);stroke-opacity:1;stroke-miterlimit:10;" )svg"
      R"svg(d="M 1 1 L 15 8 L 1 15 " transform="matrix(0.5,0,0,0.5,4,4)"/>)svg"
      "\n</g>\n</svg>\n";
  return {qds::ToBytes(icon), qds::GzipCompress(qds::ToBytes(icon)), qds::ToBytes(plain),
          qds::ToBytes(
              R"svg(<?xml version="1.0"?><!DOCTYPE svg><svg><defs><clipPath id="clip1"/></defs></svg>)svg")};
}

QDS_FUZZ_INITIALIZE

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static qds::SvgRenderer renderer(8);
  static const qds::SurfacePtr surface = qds::DrawingSurface::Create(16, 16);
  const qds::Bytes bytes(data, data + size);
  if (const qds::SvgHandlePtr doc = renderer.Parse(bytes)) {
    qds::DrawingContext ctx(surface);
    renderer.Render(ctx, *doc, 0, 0, 16, 16, 30);
  }
  if (const std::optional<qds::PlainSvg> plain = qds::PlainSvg::Read(bytes)) {
    static const qds::SurfacePtr ours = qds::DrawingSurface::Create(16, 12);
    static const qds::SurfacePtr theirs = qds::DrawingSurface::Create(16, 12);
    for (const qds::SurfacePtr& s : {ours, theirs}) {
      qds::DrawingContext clear(s);
      clear.SetOperator(qds::Op::Clear);
      clear.Paint();
    }
    qds::DrawingContext oc(ours), tc(theirs);
    const bool drawn = renderer.RenderPicture(oc, bytes, 0.5, 0.25, 15, 11);
    if (drawn != renderer.Render(tc, bytes, 0.5, 0.25, 15, 11)) std::abort();
    const qds::PixelView a = ours->Pixels(), b = theirs->Pixels();
    if (!std::equal(a.Bytes(), a.Bytes() + a.Height() * a.Stride(), b.Bytes())) std::abort();
  }
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  qds::SvgDocument svg;
  if (svg.Parse(text)) {
    for (const qds::XmlNode& e : svg.Elements()) (void)e.Attribute("d");
  }
  qds::XmlDocument xml;
  if (xml.Load(text)) {
    qds::XmlDocument again;
    if (!again.Load(xml.Serialize()) || again.Serialize() != xml.Serialize()) std::abort();
  }
  return 0;
}
