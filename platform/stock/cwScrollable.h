#pragma once
// The base of a widget whose content is larger than itself (a list, the
// tree, a canvas): the content has a size, the widget shows the part of it
// at an offset, and scroll bars appear along the right and the bottom when
// the content does not fit that way.
//
// Two kinds of coordinates: the widget's own, as every Widget has them, and
// the content's, whose origin is the content's top-left corner. The view is
// the widget less the bars that are shown; the content point at the view's
// top-left corner is (ScrollX(), ScrollY()). The base turns painting and the
// mouse into content coordinates, so that a subclass never adds or
// subtracts the offset itself: it paints its content in PaintContent and
// hears the mouse in the Content* handlers.
//
// The bars are placed in W_Resize and whenever the content size changes; a
// subclass that overrides W_Resize calls this one's. What depends on the
// widget's size (the view, the offset's range) is worked out from the
// present size at once, so it holds even before the bars are placed.

#include <string>

#include "platform/ui/Widget.h"

namespace qds {

class cwScrollBar;

class cwScrollable : public Widget {
 public:
  // The bars are children under these keys, so that scripts can name them.
  explicit cwScrollable(std::string typeName, const std::string& vBarKey = "vsbScroll",
                        const std::string& hBarKey = "hsbScroll");
  // As thick as the theme's scrollers.
  static double BarSize();

  // The size of the content, in logical units; a side of 0 (or anything up
  // to the view's size) never scrolls.
  double ContentWidth() const { return contentW_; }
  double ContentHeight() const { return contentH_; }
  void setContentSize(double width, double height);

  // The content point at the view's top-left corner, always within
  // 0..content-view (0 when the content fits).
  double ScrollX() const;
  double ScrollY() const;
  double MaxScrollX() const;
  double MaxScrollY() const;
  // Held to the range; the bars follow and ScrollChanged is told.
  void ScrollTo(double x, double y);
  void ScrollBy(double dx, double dy) { ScrollTo(ScrollX() + dx, ScrollY() + dy); }
  // Scrolls the least that shows the content rectangle; when it is larger
  // than the view, its top-left corner.
  void EnsureVisible(double x, double y, double w, double h);

  // The widget less the bars that are shown.
  double ViewWidth() const;
  double ViewHeight() const;
  bool VBarShown() const;
  bool HBarShown() const;

  // A line: what an arrow of a bar moves, and the wheel WheelLines of them
  // (shift with the wheel: sideways). A page is the view's size.
  double LineStepX = 20;
  double LineStepY = 20;
  int WheelLines = 3;
  double PageStepX() const { return ViewWidth(); }
  double PageStepY() const { return ViewHeight(); }
  // What one step of the vertical bar's value is worth in content units. A
  // list of lines counts its bar in lines, so that a list of any length
  // stays within the bar's whole numbers.
  double BarUnitY = 1;

  cwScrollBar& VBar() const { return *vBar_; }
  cwScrollBar& HBar() const { return *hBar_; }

  // Content point <-> widget point.
  void ToContent(double& x, double& y) const { x += ScrollX(), y += ScrollY(); }
  void ToWidget(double& x, double& y) const { x -= ScrollX(), y -= ScrollY(); }

  void W_Resize() override;
  void W_Paint(DrawingContext& ctx, double w, double h) final;
  bool W_MouseDown(int button, int shift, double x, double y) final;
  bool W_MouseMove(int button, int shift, double x, double y) final;
  bool W_MouseUp(int button, int shift, double x, double y) final;
  bool W_DblClick(int button, int shift, double x, double y) final;
  bool W_MouseWheel(int delta, int shift, double x, double y) final;
  // scrollIndex: the first line shown (ScrollY / LineStepY).
  void W_ReportState(WidgetState& state) const override;

 protected:
  // Paints the content within the visible rectangle (content coordinates:
  // the view at the present offset, which may reach past the content when
  // that is smaller than the view). The context is clipped to the view and
  // moved so that content points are drawn where they show.
  virtual void PaintContent(DrawingContext& ctx, double x, double y, double w, double h) {
    (void)ctx, (void)x, (void)y, (void)w, (void)h;
  }
  // Paints what stays put in the view over the content (a frame), in the
  // widget's coordinates, clipped to the view of w by h.
  virtual void PaintView(DrawingContext& ctx, double w, double h) { (void)ctx, (void)w, (void)h; }
  // The mouse in content coordinates: anywhere on the view, also where there
  // is no content, and anywhere at all while the widget holds the capture.
  // Presses on the corner between the bars reach nobody.
  virtual bool ContentMouseDown(int button, int shift, double x, double y) {
    return Ignored(button, shift, x, y);
  }
  virtual bool ContentMouseMove(int button, int shift, double x, double y) {
    return Ignored(button, shift, x, y);
  }
  virtual bool ContentMouseUp(int button, int shift, double x, double y) {
    return Ignored(button, shift, x, y);
  }
  virtual bool ContentDblClick(int button, int shift, double x, double y) {
    return Ignored(button, shift, x, y);
  }
  // True when the subclass took the wheel; otherwise it scrolls.
  virtual bool ContentMouseWheel(int delta, int shift, double x, double y) {
    return Ignored(delta, shift, x, y);
  }
  // The offset moved, by whatever means.
  virtual void ScrollChanged() {}

 private:
  static bool Ignored(int, int, double, double) { return false; }
  // Which bars the present size and content need.
  void NeedBars(bool& vertical, bool& horizontal) const;
  bool InView(double x, double y) const { return x < ViewWidth() && y < ViewHeight(); }
  // Places, shows and hides the bars, and holds the offset to its range.
  void Layout();
  // Sets the bars' values from the offset.
  void SyncBars();

  double contentW_ = 0, contentH_ = 0;
  double scrollX_ = 0, scrollY_ = 0;  // as asked; read through ScrollX/ScrollY
  cwScrollBar* vBar_;
  cwScrollBar* hBar_;
  bool syncing_ = false;  // the bars are being set from the offset
};

}  // namespace qds
