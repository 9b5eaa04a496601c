#pragma once
// A copied path: the outline of something drawn, kept to be appended,
// stroked or clipped with later. Coordinates are in the user space of the
// context at the time of the copy.

#include <functional>
#include <memory>

typedef struct cairo_path cairo_path_t;

namespace qds {

enum class PathOp { MoveTo = 0, LineTo = 1, CurveTo = 2, Close = 3 };

class Path {
 public:
  explicit Path(cairo_path_t* p) : p_(p) {}
  ~Path();
  Path(const Path&) = delete;
  Path& operator=(const Path&) = delete;

  bool Empty() const;
  // Calls back once per element with its points (1 for move and line, 3 for
  // a curve, 0 for close).
  void ForEach(const std::function<void(PathOp op, const double* xy, int points)>& visit) const;
  cairo_path_t* Native() const { return p_; }

 private:
  cairo_path_t* p_;
};

// "None" is a null pointer: a layer without a clip path holds one.
using PathPtr = std::shared_ptr<Path>;

}  // namespace qds
