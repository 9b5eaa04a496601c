#pragma once
// Conversions between the encodings of a colour. "Round" is always round
// half to even.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "colour/cColorItem.h"

namespace qds {

// "#FF0000" or "FF0000" to bytes; characters that are no hex digit read as 0.
void HEXtoRGB(const std::string& hex, std::uint8_t& r, std::uint8_t& g, std::uint8_t& b);
std::string RGBtoHex(std::uint8_t r, std::uint8_t g, std::uint8_t b);  // six upper-case digits
void SplitColorToRGB(std::int64_t colour, std::uint8_t& r, std::uint8_t& g, std::uint8_t& b);

// The number of a percent string ("50.2%"), read with a point; 0 when it
// is no number.
double PercentValue(const std::string& text);
// Three percent strings ("50%") to r, G, B, each truncated down: 50% is 127.
cColorItem ColorArrayToColorItem(const std::array<std::string, 3>& percent);
cColorItem RGBToGray(const cColorItem& c);
cColorItem RGBToBlack();
// H, S, L of the colour shifted by the non-empty deltas of `delta`.
cColorItem ChangeHSL(const cColorItem& colour, const cColorItem& delta);
// Screen blend of the tint's non-empty channels over a gray colour.
cColorItem& ColorizeColorItem(cColorItem& gray, const cColorItem& tint);

void RGB2HSL(std::uint8_t r, std::uint8_t g, std::uint8_t b, int& h, std::uint8_t& s, std::uint8_t& l);
void HSL2RGB(double h, double s, double l, std::uint8_t& r, std::uint8_t& g, std::uint8_t& b);

std::vector<cColorStop> ColorStopDummy(const std::optional<cColorItem>& colour = std::nullopt);
// The hue circle: red, yellow, green, cyan, blue, magenta and back to red,
// in ramps of 64 steps per channel.
std::vector<cColorStop> ColorStopsHue(const std::optional<cColorItem>& colour = std::nullopt);

}  // namespace qds
