#pragma once
// The pictures the studio draws itself: its own shapes (style "Quillaron",
// theme "Shapes"), plain geometric shapes (style "Shapes"), and the design
// elements: backgrounds, frames and badges to build icons on.

#include <string>
#include <vector>

namespace qds::datagen {

struct GeneratedIcon {
  std::string name;
  std::string theme;
  std::string svg;  // a 256 by 256 document
  std::string synonyms;
};

std::vector<GeneratedIcon> QuillaronShapes();
std::vector<GeneratedIcon> GeometricShapes();
std::vector<GeneratedIcon> DesignElements();

}  // namespace qds::datagen
