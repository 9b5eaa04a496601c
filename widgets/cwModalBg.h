#pragma once
// The background panel of a tool window. It paints the window's background
// and, in a dialog, the caption strip with the window's picture and title;
// the strip also moves the frameless window. The hosted widget sits under
// the strip.

#include <cstdint>
#include <memory>
#include <string>

#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"

namespace qds {

class cfForm;

class cwModalBg : public Widget {
 public:
  cwModalBg();

  // The height of the caption strip; 0 (a pop-up) shows none.
  Property<double> CaptionHeight{*this, 0};
  Property<std::string> Caption{*this};
  // Picture of the image cache shown at the left of the strip.
  Property<std::string> ImageKey{*this};
  // Stretched over the whole panel when the image cache has it.
  Property<std::string> PictureKey{*this};
  Property<std::int64_t> BackColor{*this, 0};

  // Takes the background the user chose: the application's picture, or
  // the canvas colour when that is off.
  void UseAppBackground();

  // Puts `widget` under the strip, `width` by `height`, under the key
  // "ToolWidget", in place of the one held before; answers it.
  Widget& LoadToolWidget(std::unique_ptr<Widget> widget, double width, double height);
  Widget* ToolWidget() const;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  void W_PaintOver(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_MouseMove(int button, int shift, double x, double y) override;
  bool W_MouseUp(int button, int shift, double x, double y) override;
  void W_ReportState(WidgetState& state) const override { state.caption = Caption; }

 private:
  bool dragging_ = false;
  double grabX_ = 0, grabY_ = 0;  // the pressed point, screen pixels from the form's corner
};

// The zoom of the interface for a tool window: the user's setting when the
// program has started, else that of the form it opens over.
double ToolWindowZoom(const cfForm* owner);
// The form a tool window opens over: the newest open form that is neither
// a pop-up nor `except`.
cfForm* ToolWindowOwner(const cfForm* except);

}  // namespace qds
