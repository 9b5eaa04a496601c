// SVG files come from users. Whatever the bytes, parsing must either give a
// document that renders or report failure; the XML reader must never crash,
// and what it writes must read back.

#include <cstdlib>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/SvgRenderer.h"
#include "platform/XmlDocument.h"
#include "tests/fuzz/SeedWriter.h"

std::vector<qds::Bytes> FuzzSeeds() {
  const std::string icon =
      R"svg(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 24 24"><g transform="rotate(10)">)svg"
      R"svg(<path d="M2 2h20v20H2z" style="fill:rgb(100%,0%,0%)"/><circle cx="12" cy="12" r="5"/>)svg"
      R"svg(<linearGradient id="g"><stop offset="0"/></linearGradient><rect fill="url(#g)" width="5" height="5"/>)svg"
      R"svg(</g></svg>)svg";
  return {qds::ToBytes(icon), qds::GzipCompress(qds::ToBytes(icon)),
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
