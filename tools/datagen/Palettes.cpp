#include "tools/datagen/Palettes.h"

#include <cmath>
#include <stdexcept>
#include <string>

#include "platform/DbRecordset.h"

namespace qds::datagen {

namespace {

// 0xRRGGBB as written in design tools, to the program's 0xBBGGRR.
long long FromRgb(unsigned rgb) {
  return ((rgb & 0xFF) << 16) | (rgb & 0xFF00) | ((rgb >> 16) & 0xFF);
}

// Mixes a 0xRRGGBB colour towards white (amount > 0) or black (amount < 0).
unsigned Shade(unsigned rgb, double amount) {
  unsigned out = 0;
  for (int shift = 16; shift >= 0; shift -= 8) {
    const double c = (rgb >> shift) & 0xFF;
    const double v = amount >= 0 ? c + (255 - c) * amount : c * (1 + amount);
    out |= static_cast<unsigned>(std::lround(v)) << shift;
  }
  return out;
}

void AddColour(DbRecordset& rs, long long theme, const char* type, unsigned rgb, const std::string& name) {
  rs.AddNew();
  rs.Fields("ColorThemes_ID") = theme;
  rs.Fields("ColorType") = type;
  rs.Fields("Color") = FromRgb(rgb);
  if (!name.empty()) rs.Fields("Name") = name;
  rs.Update();
}

long long AddTheme(DbConnection& cnn, const char* name) {
  DbRecordset rs = cnn.Query("Select * From ColorThemes Where 1=0");
  rs.AddNew();
  rs.Fields("Name") = name;
  rs.Update();
  return rs.Fields("ID").AsLong();
}

}  // namespace

void WritePalettes(DbConnection& cnn) {
  struct Named {
    unsigned rgb;
    const char* name;
  };
  const Named office[] = {{0xFFFFFF, "Background 1"}, {0x000000, "Text 1"},   {0xE7E6E6, "Background 2"},
                          {0x44546A, "Text 2"},       {0x4472C4, "Accent 1"}, {0xED7D31, "Accent 2"},
                          {0xA5A5A5, "Accent 3"},     {0xFFC000, "Accent 4"}, {0x5B9BD5, "Accent 5"},
                          {0x70AD47, "Accent 6"}};
  const long long officeId = AddTheme(cnn, "Office Themes");
  const long long webId = AddTheme(cnn, "Web");
  if (officeId != 1) throw std::runtime_error("the first colour theme must have ID 1");

  DbRecordset rs = cnn.Query("Select * From ColorPalette Where 1=0");
  for (const Named& c : office) AddColour(rs, officeId, "H", c.rgb, c.name);
  // Row by row: lighter 80 %, 60 %, 40 %, darker 25 %, 50 % of each colour.
  for (double amount : {0.8, 0.6, 0.4, -0.25, -0.5}) {
    for (const Named& c : office) AddColour(rs, officeId, "S", Shade(c.rgb, amount), {});
  }
  for (unsigned r = 0; r <= 0xFF; r += 0x33) {
    for (unsigned g = 0; g <= 0xFF; g += 0x33) {
      for (unsigned b = 0; b <= 0xFF; b += 0x33) AddColour(rs, webId, "C", (r << 16) | (g << 8) | b, {});
    }
  }
}

}  // namespace qds::datagen
