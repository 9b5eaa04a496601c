#include "engine/modColorRewrite.h"

#include <cstdio>
#include <string_view>
#include <unordered_map>

#include "colour/modColorFunctions.h"
#include "engine/cSVGItem.h"
#include "platform/Value.h"
#include "platform/XmlDocument.h"

namespace qds {

namespace {

std::string Join(const ColorChannels& c) {
  return c[0] + "," + c[1] + "," + c[2];
}

// Calls `visit` with each colour part's channels and the text between
// ":rgb(" and the closing parenthesis, as written.
template <class Visit>
void WalkColorParts(std::string_view svg, Visit visit) {
  SvgDocument doc;
  if (!doc.Parse(svg)) return;
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
      const std::string raw = part.substr(at + 5);
      std::string inner;
      for (char c : raw) {
        if (c != ')') inner += c;
      }
      ColorChannels channels;
      int n = 0;
      std::size_t from = 0;
      for (;;) {
        const std::size_t comma = inner.find(',', from);
        if (n < 3)
          channels[n] = inner.substr(from, comma == std::string::npos ? std::string::npos : comma - from);
        ++n;
        if (comma == std::string::npos) break;
        from = comma + 1;
      }
      if (n >= 3) visit(channels, inner);  // fewer channels: not a colour we can rewrite
    }
  }
}

}  // namespace

void ReplaceEvery(std::string& text, const std::string& from, const std::string& to) {
  if (from.empty() || from == to) return;
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

std::vector<ColorChannels> ColorParts(std::string_view svg) {
  std::vector<ColorChannels> out;
  WalkColorParts(svg, [&](const ColorChannels& c, const std::string&) { out.push_back(c); });
  return out;
}

void ReplaceColorPercentValues(ColorChannels& channels, const cColorItem& colour) {
  const Channel* values[3] = {&colour.r(), &colour.G(), &colour.B()};
  for (int i = 0; i < 3; ++i) {
    if (!*values[i]) continue;
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.2f%%", **values[i] / 255 * 100);
    channels[i] = buf;
  }
}

cColorItem ReplaceColor(const cColorItem& colour, const cSVGItem& layer) {
  const Collection olds = layer.RCOldColor();
  const Collection news = layer.RCNewColor();
  if (olds.Count() != news.Count()) return colour;
  for (int i = 0; i < olds.Count(); ++i) {
    const cColorItem old(olds.Item(i).AsLong());
    const auto within = [](const Channel& o, const Channel& c) {
      const double v = c.value_or(0);
      return o && *o <= v && v <= *o + 3;
    };
    if (within(old.r(), colour.r()) && within(old.G(), colour.G()) && within(old.B(), colour.B())) {
      cColorItem out = colour;
      out.setColor(news.Item(i).AsLong());
      return out;
    }
  }
  return colour;
}

std::string RewriteColors(std::string text, const cSVGItem& layer, const cColorItem& colorItem) {
  const int filter = layer.Filter();
  const bool line = layer.EffIsLine();
  for (const ColorChannels& old : ColorParts(text)) {
    cColorItem now;
    switch (filter) {
      case cSVGItem::FilterColor:
        now = colorItem;
        break;
      case cSVGItem::FilterGray:
        now = line ? RGBToBlack() : RGBToGray(ColorArrayToColorItem(old));
        break;
      case cSVGItem::FilterReplace:
        now = ReplaceColor(line ? RGBToBlack() : ColorArrayToColorItem(old), layer);
        break;
      case cSVGItem::FilterColorize:
        now = line ? RGBToBlack() : RGBToGray(ColorArrayToColorItem(old));
        ColorizeColorItem(now, colorItem);
        break;
      case cSVGItem::FilterHSL:
        now = ChangeHSL(ColorArrayToColorItem(old), colorItem);
        break;
      default:
        return text;
    }
    ColorChannels written = old;
    ReplaceColorPercentValues(written, now);
    ReplaceEvery(text, ":rgb(" + Join(old) + ")", ":rgb(" + Join(written) + ")");
  }
  return text;
}

void AddDocumentColors(Collection& colours, std::string_view svg) {
  for (const ColorChannels& c : ColorParts(svg)) {
    const std::int64_t colour = ColorArrayToColorItem(c).Color();
    const std::string key = std::to_string(colour);
    if (!colours.Exists(key)) colours.Add(Value(static_cast<long long>(colour)), key);
  }
}

std::string RGBPercentToRGBValues(std::string text) {
  // Each colour as written, to its value form; the text is then rewritten
  // in one pass, so that a document of thousands of colours (a gradient of
  // many stops) takes no longer than its length.
  std::unordered_map<std::string, std::string> values;
  WalkColorParts(text, [&](const ColorChannels& c, const std::string& inner) {
    if (values.count(inner)) return;
    std::string whole;
    for (int i = 0; i < 3; ++i) {
      if (i) whole += ",";
      whole += std::to_string(RoundHalfEven(PercentValue(c[i]) / 100 * 255));
    }
    values.emplace(inner, whole);
  });
  if (values.empty()) return text;
  static constexpr std::string_view kOpen = ":rgb(";
  std::string out;
  out.reserve(text.size());
  std::size_t at = 0;
  for (;;) {
    const std::size_t open = text.find(kOpen, at);
    const std::size_t close = open == std::string::npos ? open : text.find(')', open + kOpen.size());
    if (close == std::string::npos) break;
    const std::size_t inner = open + kOpen.size();
    out.append(text, at, inner - at);
    const auto it = values.find(text.substr(inner, close - inner));
    if (it != values.end()) {
      out += it->second;
    } else {
      out.append(text, inner, close - inner);
    }
    at = close;
  }
  out.append(text, at, std::string::npos);
  return out;
}

}  // namespace qds
