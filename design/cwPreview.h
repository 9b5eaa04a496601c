#pragma once
// The mini preview: the canvas's small picture of the design, drawn when
// the canvas paints with DrawPreview on, shown here in its own turn.

#include "platform/ui/Widget.h"

namespace qds {

class cwCanvas;

class cwPreview : public Widget {
 public:
  cwPreview();

  // The canvas whose picture is shown; it is asked for a picture of this
  // widget's size. None shows an empty frame.
  void setCanvas(cwCanvas* canvas);
  cwCanvas* Canvas() const { return canvas_; }

  void W_Resize() override;
  void W_Paint(DrawingContext& ctx, double w, double h) override;
  // checked: a picture is shown.
  void W_ReportState(WidgetState& state) const override;

 private:
  void AskForSide();
  cwCanvas* canvas_ = nullptr;
};

}  // namespace qds
