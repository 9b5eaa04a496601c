#include "colour/modColorFunctions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "platform/Value.h"

namespace qds {

namespace {

std::uint8_t Byte(double v) {
  return static_cast<std::uint8_t>(std::clamp<std::int64_t>(RoundHalfEven(v), 0, 255));
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 0;
}

std::int32_t Rgb(int r, int g, int b) {
  return r | (g << 8) | (b << 16);
}

}  // namespace

void HEXtoRGB(const std::string& hex, std::uint8_t& r, std::uint8_t& g, std::uint8_t& b) {
  std::string digits;
  for (char c : hex) {
    if (c != '#') digits += c;
  }
  digits.resize(std::max<std::size_t>(digits.size(), 6), '0');
  const auto pair = [&](int at) {
    return static_cast<std::uint8_t>(HexDigit(digits[at]) * 16 + HexDigit(digits[at + 1]));
  };
  r = pair(0), g = pair(2), b = pair(4);
}

std::string RGBtoHex(std::uint8_t r, std::uint8_t g, std::uint8_t b) {
  char buf[8];
  std::snprintf(buf, sizeof buf, "%02X%02X%02X", r, g, b);
  return buf;
}

void SplitColorToRGB(std::int64_t colour, std::uint8_t& r, std::uint8_t& g, std::uint8_t& b) {
  const auto c = static_cast<std::uint32_t>(colour);
  r = c & 0xFF, g = (c >> 8) & 0xFF, b = (c >> 16) & 0xFF;
}

double PercentValue(const std::string& text) {
  std::string number;
  for (char c : text) {
    if (c != '%') number += c;
  }
  try {
    return Value(number).AsDouble();
  } catch (...) {
    return 0;
  }
}

cColorItem ColorArrayToColorItem(const std::array<std::string, 3>& percent) {
  cColorItem out;
  out.setr(std::floor(PercentValue(percent[0]) / 100 * 255));
  out.setG(std::floor(PercentValue(percent[1]) / 100 * 255));
  out.setB(std::floor(PercentValue(percent[2]) / 100 * 255));
  return out;
}

cColorItem RGBToGray(const cColorItem& c) {
  const double gray = static_cast<double>(
      RoundHalfEven(0.299 * c.r().value_or(0) + 0.587 * c.G().value_or(0) + 0.114 * c.B().value_or(0)));
  cColorItem out;
  out.setr(gray), out.setG(gray), out.setB(gray);
  return out;
}

cColorItem RGBToBlack() {
  cColorItem out;
  out.setr(0.0), out.setG(0.0), out.setB(0.0);
  return out;
}

void RGB2HSL(std::uint8_t R, std::uint8_t G, std::uint8_t B, int& H, std::uint8_t& S, std::uint8_t& L) {
  const double r = R / 255.0, g = G / 255.0, b = B / 255.0;
  const double max = std::max({r, g, b}), min = std::min({r, g, b});
  const double d = max - min;
  const double l = (max + min) / 2;
  double s = 0;
  if (std::fabs(d) >= 1e-5) s = l <= 0.5 ? d / (2 * l) : d / (2 - 2 * l);
  double h = 0;
  if (d > 0) {
    if (max == r) {
      h = (g - b) / d;
    } else if (max == g) {
      h = (b - r) / d + 2;
    } else {
      h = (r - g) / d + 4;
    }
    h *= 60;
    if (h < 0) h += 360;
  }
  H = static_cast<int>(RoundHalfEven(h));
  S = Byte(s * 100);
  L = Byte(l * 100);
}

void HSL2RGB(double H, double S, double L, std::uint8_t& R, std::uint8_t& G, std::uint8_t& B) {
  const double h = H / 360, s = S / 100, l = L / 100;
  if (s == 0) {
    R = G = B = Byte(l * 255);
    return;
  }
  const double t2 = l >= 0.5 ? (s + l) - s * l : (s + 1) * l;
  const double t1 = 2 * l - t2;
  const auto channel = [&](double t) {
    if (t < 0) t += 1;
    if (t > 1) t -= 1;
    double c;
    if (6 * t < 1) {
      c = (t2 - t1) * 6 * t + t1;
    } else if (2 * t < 1) {
      c = t2;
    } else if (3 * t < 2) {
      c = (2.0 / 3 - t) * (t2 - t1) * 6 + t1;
    } else {
      c = t1;
    }
    return Byte(c * 255);
  };
  R = channel(h + 1.0 / 3);
  G = channel(h);
  B = channel(h - 1.0 / 3);
}

cColorItem ChangeHSL(const cColorItem& colour, const cColorItem& delta) {
  cColorItem out = colour.Clone();
  int h;
  std::uint8_t s8, l8;
  RGB2HSL(Byte(colour.r().value_or(0)), Byte(colour.G().value_or(0)), Byte(colour.B().value_or(0)), h, s8,
          l8);
  double H = h, S = s8, L = l8;
  if (delta.H()) {
    H += *delta.H();
    if (H >= 360) H -= 360;  // once: a larger shift stays out of range
    if (H < 0) H += 360;
  }
  if (delta.s()) S = std::clamp(S + *delta.s(), 0.0, 100.0);
  if (delta.l()) L = std::clamp(L + *delta.l(), 0.0, 100.0);
  std::uint8_t r, g, b;
  HSL2RGB(H, S, L, r, g, b);
  out.setr(r), out.setG(g), out.setB(b);
  return out;
}

cColorItem& ColorizeColorItem(cColorItem& gray, const cColorItem& tint) {
  const auto blend = [](const Channel& c, const Channel& t) -> Channel {
    if (!t) return c;
    const double v = c.value_or(0);
    return v + *t * (1 - v / 255);
  };
  gray.setr(blend(gray.r(), tint.r()));
  gray.setG(blend(gray.G(), tint.G()));
  gray.setB(blend(gray.B(), tint.B()));
  return gray;
}

std::vector<cColorStop> ColorStopDummy(const std::optional<cColorItem>&) {
  return {{0, 1, Rgb(128, 128, 128)}, {1, 1, Rgb(128, 128, 128)}};
}

std::vector<cColorStop> ColorStopsHue(const std::optional<cColorItem>&) {
  // Each sextant raises or lowers one channel in four steps of 64 (255 at
  // the top), starting from red.
  const int ramp[] = {0, 64, 128, 191, 255};
  std::vector<std::array<int, 3>> colours;
  std::array<int, 3> c = {255, 0, 0};
  const int moves[6][2] = {{1, +1}, {0, -1}, {2, +1}, {1, -1}, {0, +1}, {2, -1}};  // channel, direction
  colours.push_back(c);
  for (const auto& m : moves) {
    for (int step = 1; step <= 4; ++step) {
      c[m[0]] = m[1] > 0 ? ramp[step] : ramp[4 - step];
      colours.push_back(c);
    }
  }
  std::vector<cColorStop> stops;
  const int n = static_cast<int>(colours.size()) - 1;
  for (int i = 0; i <= n; ++i) {
    const double offset = static_cast<double>(RoundHalfEven(100.0 * i / n)) / 100;
    stops.push_back({offset, 1, Rgb(colours[i][0], colours[i][1], colours[i][2])});
  }
  return stops;
}

}  // namespace qds
