#pragma once
// SVG path data to drawing paths, with the program's own number grammar:
// "1.5.5" is one number, "10-5" two, exponents are whole, and "T"/"t" are
// not read (their numbers run on as numbers of the command before).

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/KeyedCollection.h"
#include "platform/Path.h"

namespace qds {

class DrawingContext;

// Path command codes; 0 marks a number that continues a command.
namespace PathCode {
constexpr std::uint8_t Move = 1, RelMove = 2, Line = 3, RelLine = 4, Arc = 5, RelArc = 6, HLine = 7,
                       RelHLine = 8, VLine = 9, RelVLine = 10, Curve = 11, RelCurve = 12, Smooth = 13,
                       RelSmooth = 14, Quad = 15, RelQuad = 16, Close = 17;
}

// Numbers and codes in two parallel arrays: a command's code stands at the
// index of its first number; a close writes the number 0 with code 17.
void ParsePoints(std::string_view d, std::vector<float>& numbers, std::vector<std::uint8_t>& codes);

// Draws parsed path data on the context's current path.
void RenderPath(DrawingContext& ctx, const std::vector<float>& numbers,
                const std::vector<std::uint8_t>& codes);

// One path per "path" element of the document, in order. Other shapes,
// transforms and nesting are not read: library documents hold plain paths.
KeyedCollection<PathPtr> GetCairoPathsFromSVG(std::string_view svg);

}  // namespace qds
