#include "tools/datagen/Shapes.h"

#include <cmath>
#include <cstdio>

namespace qds::datagen {

namespace {

constexpr double kPi = 3.14159265358979323846;

std::string Svg(const std::string& body) {
  return R"(<svg xmlns="http://www.w3.org/2000/svg" width="256" height="256" viewBox="0 0 256 256">)" + body +
         "</svg>";
}

std::string Num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.2f", v);
  return buf;
}

// A regular polygon or star around (128, 128): `points` corners at radius r,
// and, for a star, as many inner corners at radius inner.
std::string PolygonPath(int points, double r, double inner = 0, double turn = -90) {
  std::string d;
  const int corners = inner > 0 ? 2 * points : points;
  for (int i = 0; i < corners; ++i) {
    const double radius = inner > 0 && i % 2 == 1 ? inner : r;
    const double a = (turn + 360.0 * i / corners) * kPi / 180;
    d += (i == 0 ? "M" : "L") + Num(128 + radius * std::cos(a)) + " " + Num(128 + radius * std::sin(a)) + " ";
  }
  return d + "Z";
}

std::string Path(const std::string& d, const std::string& fill, const std::string& extra = {}) {
  return R"(<path d=")" + d + R"(" fill=")" + fill + "\"" + extra + "/>";
}

const char* const kHeart =
    "M128 224 C 40 160 16 120 16 84 C 16 48 44 24 76 24 C 100 24 118 38 128 58 C 138 38 156 24 180 24 "
    "C 212 24 240 48 240 84 C 240 120 216 160 128 224 Z";
const char* const kShield = "M128 16 L 224 52 C 224 140 188 200 128 240 C 68 200 32 140 32 52 Z";
const char* const kDrop = "M128 16 C 170 80 208 120 208 160 A 80 80 0 0 1 48 160 C 48 120 86 80 128 16 Z";
const char* const kSquircle =
    "M128 16 C 220 16 240 36 240 128 C 240 220 220 240 128 240 C 36 240 16 220 16 128 C 16 36 36 16 128 16 Z";
const char* const kSpeech =
    "M40 32 H216 A24 24 0 0 1 240 56 V168 A24 24 0 0 1 216 192 H112 L64 236 V192 H40 "
    "A24 24 0 0 1 16 168 V56 A24 24 0 0 1 40 32 Z";

}  // namespace

std::vector<GeneratedIcon> QuillaronShapes() {
  const std::string k = "#000000";
  return {
      {"Filled_Circle", "Shapes", Svg(R"(<circle cx="128" cy="128" r="128" fill="#000000"/>)"),
       "circle round"},
      {"Filled_Rectangle", "Shapes", Svg(R"(<rect width="256" height="256" fill="#000000"/>)"),
       "rectangle square"},
      {"Filled_Rounded_Rectangle", "Shapes",
       Svg(R"(<rect width="256" height="256" rx="48" fill="#000000"/>)"), "rounded rectangle square"},
      {"Filled_Ellipse", "Shapes", Svg(R"(<ellipse cx="128" cy="128" rx="128" ry="80" fill="#000000"/>)"),
       "ellipse oval"},
      {"Filled_Triangle", "Shapes", Svg(Path("M128 8 L248 232 H8 Z", k)), "triangle"},
      {"Filled_Diamond", "Shapes", Svg(Path("M128 0 L256 128 L128 256 L0 128 Z", k)), "diamond rhombus"},
      {"Filled_Pentagon", "Shapes", Svg(Path(PolygonPath(5, 128), k)), "pentagon"},
      {"Filled_Hexagon", "Shapes", Svg(Path(PolygonPath(6, 128, 0, 0), k)), "hexagon"},
      {"Filled_Octagon", "Shapes", Svg(Path(PolygonPath(8, 128, 0, 22.5), k)), "octagon stop"},
      {"Filled_Star", "Shapes", Svg(Path(PolygonPath(5, 128, 52), k)), "star"},
      {"Filled_Star_6", "Shapes", Svg(Path(PolygonPath(6, 128, 74), k)), "star six"},
      {"Filled_Heart", "Shapes", Svg(Path(kHeart, k)), "heart love"},
      {"Filled_Shield", "Shapes", Svg(Path(kShield, k)), "shield badge"},
      {"Filled_Drop", "Shapes", Svg(Path(kDrop, k)), "drop water"},
      {"Filled_Squircle", "Shapes", Svg(Path(kSquircle, k)), "squircle rounded square"},
      {"Filled_Speech_Bubble", "Shapes", Svg(Path(kSpeech, k)), "speech bubble message"},
      {"Ring", "Shapes",
       Svg(R"(<circle cx="128" cy="128" r="112" fill="none" stroke="#000000" stroke-width="32"/>)"),
       "ring circle outline"},
      {"Frame", "Shapes",
       Svg(R"(<rect x="16" y="16" width="224" height="224" fill="none" stroke="#000000" stroke-width="32"/>)"),
       "frame square outline"},
  };
}

std::vector<GeneratedIcon> GeometricShapes() {
  std::vector<GeneratedIcon> out;
  const char* const colour = "#3D7BD9";
  for (int n = 3; n <= 12; ++n) {
    out.push_back({"Polygon_" + std::to_string(n), "Polygons", Svg(Path(PolygonPath(n, 120), colour)),
                   "polygon corners " + std::to_string(n)});
  }
  for (int n = 4; n <= 12; n += 2) {
    out.push_back({"Star_" + std::to_string(n), "Stars", Svg(Path(PolygonPath(n, 124, 124 * 0.45), colour)),
                   "star points " + std::to_string(n)});
  }
  out.push_back({"Heart", "Symbols", Svg(Path(kHeart, colour)), "heart love"});
  out.push_back({"Drop", "Symbols", Svg(Path(kDrop, colour)), "drop water"});
  out.push_back({"Shield", "Symbols", Svg(Path(kShield, colour)), "shield badge"});
  out.push_back({"Speech_Bubble", "Symbols", Svg(Path(kSpeech, colour)), "speech bubble message"});
  return out;
}

std::vector<GeneratedIcon> DesignElements() {
  struct Colour {
    const char* name;
    const char* light;
    const char* dark;
  };
  const Colour colours[] = {{"Blue", "#5B9BF0", "#1F5FBF"},   {"Green", "#5CC783", "#23864A"},
                            {"Orange", "#FFB45C", "#E0711A"}, {"Red", "#F26D6D", "#B8262B"},
                            {"Purple", "#A98BF0", "#6236C4"}, {"Grey", "#B8BEC8", "#5C6470"}};
  std::vector<GeneratedIcon> out;
  for (const Colour& c : colours) {
    const std::string n = c.name;
    const std::string grad = std::string(R"(<defs><linearGradient id="g" x1="0" y1="0" x2="0" y2="1">)") +
                             R"(<stop offset="0" stop-color=")" + c.light +
                             R"("/><stop offset="1" stop-color=")" + c.dark +
                             R"("/></linearGradient></defs>)";
    out.push_back({"Background_Circle_" + n, "Backgrounds",
                   Svg(std::string(R"(<circle cx="128" cy="128" r="124" fill=")") + c.dark + "\"/>"),
                   "background circle round " + n});
    out.push_back(
        {"Background_Rounded_Square_" + n, "Backgrounds",
         Svg(std::string(R"(<rect x="8" y="8" width="240" height="240" rx="48" fill=")") + c.dark + "\"/>"),
         "background rounded square " + n});
    out.push_back({"Background_Squircle_Gradient_" + n, "Backgrounds", Svg(grad + Path(kSquircle, "url(#g)")),
                   "background squircle gradient " + n});
    out.push_back({"Background_Circle_Gradient_" + n, "Backgrounds",
                   Svg(grad + R"svg(<circle cx="128" cy="128" r="124" fill="url(#g)"/>)svg"),
                   "background circle gradient " + n});
    out.push_back(
        {"Frame_Ring_" + n, "Frames",
         Svg(std::string(R"(<circle cx="128" cy="128" r="116" fill="none" stroke-width="16" stroke=")") +
             c.dark + "\"/>"),
         "frame ring border " + n});
    out.push_back({"Frame_Rounded_" + n, "Frames",
                   Svg(std::string(R"(<rect x="12" y="12" width="232" height="232" rx="44" fill="none" )") +
                       R"(stroke-width="16" stroke=")" + c.dark + "\"/>"),
                   "frame rounded border " + n});
    out.push_back({"Badge_Seal_" + n, "Badges", Svg(Path(PolygonPath(16, 124, 106), c.dark)),
                   "badge seal rosette " + n});
    out.push_back({"Badge_Shield_" + n, "Badges", Svg(grad + Path(kShield, "url(#g)")), "badge shield " + n});
    out.push_back(
        {"Badge_Hexagon_" + n, "Badges", Svg(Path(PolygonPath(6, 124), c.dark)), "badge hexagon " + n});
    out.push_back({"Badge_Dot_" + n, "Badges",
                   Svg(std::string(R"(<circle cx="200" cy="56" r="48" fill=")") + c.light +
                       R"(" stroke="#FFFFFF" stroke-width="8"/>)"),
                   "badge dot notification corner " + n});
  }
  return out;
}

}  // namespace qds::datagen
