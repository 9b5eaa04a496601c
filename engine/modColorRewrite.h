#pragma once
// Colour rewriting in SVG text. Colours are found in one form only: the
// percent rgb() values inside `style` attributes that our vector surfaces
// write ("fill:rgb(20%,40%,60%)"). Named colours, "#" colours and colour
// attributes are left alone on purpose: library documents are normalised.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qds {

// The three channel strings of one colour part, as written ("20%").
using ColorChannels = std::array<std::string, 3>;

// Every colour part of every element's style, at any depth, in document
// order. A part counts when it contains ":rgb(". Parts with fewer than three
// channels are skipped. A document that cannot be parsed gives none.
std::vector<ColorChannels> ColorParts(std::string_view svg);

// A channel 0..255 as the percent text the rewrite writes: two decimals.
std::string PercentChannel(int value);

// Every colour of the document becomes `colour` (0xBBGGRR). Replacements
// work on the text part by part, so one colour part's result can be caught
// by a later part whose old text equals it.
std::string ReplaceAllColors(std::string svg, std::int64_t colour);

}  // namespace qds
