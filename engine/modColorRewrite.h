#pragma once
// Colour rewriting in SVG text. Colours are found in one form only: the
// percent rgb() values inside `style` attributes that our vector surfaces
// write ("fill:rgb(20%,40%,60%)"). Named colours, "#" colours and colour
// attributes are left alone on purpose: library documents are normalised.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "colour/cColorItem.h"
#include "platform/Collection.h"

namespace qds {

class cSVGItem;

// The three channel strings of one colour part, as written ("20%").
using ColorChannels = std::array<std::string, 3>;

// Every colour part of every element's style, at any depth, in document
// order. A part counts when it contains ":rgb("; one with fewer than three
// channels is skipped. A document that cannot be parsed gives none.
std::vector<ColorChannels> ColorParts(std::string_view svg);

// Writes the non-empty r, G, B of `colour` into the channel strings as
// percent with two decimals ("54.90%"); empty channels stay as they were.
void ReplaceColorPercentValues(ColorChannels& channels, const cColorItem& colour);

// The new colour of the layer's replacement pairs for `colour`: the first
// old colour that each channel reaches or exceeds by at most 3.
cColorItem ReplaceColor(const cColorItem& colour, const cSVGItem& layer);

// Rewrites every colour of `text` by the layer's filter (colour, gray,
// replace, colourise, HSL shift), with `colorItem` as the filter's colour.
// Each replacement works on the whole text, so a colour produced by one
// part is caught by a later part whose old colour equals it.
std::string RewriteColors(std::string text, const cSVGItem& layer, const cColorItem& colorItem);

// The distinct colours (0xBBGGRR) of the layers' library documents, keyed
// by their decimal text, in the order first seen.
template <class Layers>
Collection GetAllColors(const Layers& layers);

// Percent channels to whole numbers 0..255, for exported files.
std::string RGBPercentToRGBValues(std::string text);

// Every occurrence of `from` in `text` replaced by `to`.
void ReplaceEvery(std::string& text, const std::string& from, const std::string& to);

// The colours of one document, for GetAllColors.
void AddDocumentColors(Collection& colours, std::string_view svg);

template <class Layers>
Collection GetAllColors(const Layers& layers) {
  Collection colours;
  for (const auto& e : layers) AddDocumentColors(colours, ToString(e.Item->GetSVGBytes()));
  return colours;
}

}  // namespace qds
