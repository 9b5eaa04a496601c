#include "engine/modColorRewrite.h"

#include <cstdio>

#include "platform/XmlDocument.h"

namespace qds {

namespace {

void ReplaceEvery(std::string& text, const std::string& from, const std::string& to) {
  if (from.empty() || from == to) return;
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

std::string Join(const ColorChannels& c) {
  return c[0] + "," + c[1] + "," + c[2];
}

}  // namespace

std::vector<ColorChannels> ColorParts(std::string_view svg) {
  std::vector<ColorChannels> out;
  SvgDocument doc;
  if (!doc.Parse(svg)) return out;
  for (const XmlNode& e : doc.Elements()) {
    if (!e.HasAttribute("style")) continue;
    const std::string style = e.Attribute("style");
    std::size_t start = 0;
    while (start <= style.size()) {
      const std::size_t end = std::min(style.find(';', start), style.size());
      const std::string part = style.substr(start, end - start);
      start = end + 1;
      const std::size_t at = part.find(":rgb(");
      if (at == std::string::npos) continue;
      std::string inner;
      for (char c : part.substr(at + 5)) {
        if (c != ')') inner += c;
      }
      ColorChannels channels;
      int n = 0;
      std::size_t from = 0;
      while (n < 3) {
        const std::size_t comma = inner.find(',', from);
        channels[n++] = inner.substr(from, comma == std::string::npos ? std::string::npos : comma - from);
        if (comma == std::string::npos) break;
        from = comma + 1;
      }
      if (n == 3) out.push_back(channels);
    }
  }
  return out;
}

std::string PercentChannel(int value) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f%%", value / 255.0 * 100);
  return buf;
}

std::string ReplaceAllColors(std::string svg, std::int64_t colour) {
  const auto c = static_cast<std::uint32_t>(colour);
  const ColorChannels now = {PercentChannel(c & 0xFF), PercentChannel((c >> 8) & 0xFF),
                             PercentChannel((c >> 16) & 0xFF)};
  for (const ColorChannels& old : ColorParts(svg)) {
    ReplaceEvery(svg, ":rgb(" + Join(old) + ")", ":rgb(" + Join(now) + ")");
  }
  return svg;
}

}  // namespace qds
