#pragma once
// The design on its canvas: a chess board or a colour, the layers of the
// design over it, and rulers in the margin at the top and on the left. A
// press finds the layer under the mouse by its pixels, not by its box; the
// moves themselves are left to the owner, which hears the mouse and the
// keys through the events below.
//
// The drawing stands at (Border / 2, Border / 2) and is drawn in the
// form's device pixels, so that it is as sharp as the screen allows; a
// press is looked up in the same pixels.

#include <functional>

#include "platform/Drawing.h"
#include "platform/ui/Widget.h"

namespace qds {

class cSVGItem;
class cwRuler;

class cwCanvas : public Widget {
 public:
  cwCanvas();

  // The background, 0xBBGGRR; -1 the chess board.
  int Color() const { return color_; }
  void setColor(int colour);
  // The margin around the drawing, half of it on each side.
  double Border() const { return border_; }
  void setBorder(double b);
  // Whether each paint also draws the mini preview's picture.
  bool DrawPreview() const { return drawPreview_; }
  void setDrawPreview(bool on);
  // The two rulers, "hRuler" and "vRuler".
  bool ShowRuler() const { return showRuler_; }
  void setShowRuler(bool on);
  // Off hides the mouse's marks on both rulers until it is on again.
  bool ShowRulerPos() const { return showRulerPos_; }
  void setShowRulerPos(bool on);
  // Marks a point of the canvas (widget units) on the rulers, when they
  // are shown and ShowRulerPos is on.
  void ShowImgPos(double x, double y);

  // Every visible layer of the design from the bottom (last index) to the
  // top (index 0) into a square of side `side` at the context's origin.
  // The canvas's own drawing: the layers may mark their selection and
  // centre (App().ShowsSelectionFrame, App().ShowCentre, which hears the
  // centre in pixels of the drawing). With no layers the drag is over.
  void RenderSVGLayers(DrawingContext& ctx, double side);
  // The same for the mini preview, without marks.
  void RenderPreview(DrawingContext& ctx, double side);

  // The layer a press at the widget point (x, y) lands on: the first
  // visible layer from the top whose own picture is not transparent in
  // that pixel; -1 when none is, or the point is off the drawing.
  int HitTest(double x, double y);
  // The side of the drawing square in widget units.
  double DrawingSide() const;
  // The side the layers are drawn at, in device pixels. Each paint makes
  // it App().CanvasWidth and CanvasHeight, so that a layer measured with
  // CalcOffSet(0, 0, ...) is measured as it is drawn.
  int DevicePixelSide() const;
  // The mini preview's picture; none until a paint with DrawPreview on.
  SurfacePtr PreviewSurface() const { return preview_; }
  // Its side in pixels; the preview widget sets it to its own.
  int PreviewSide() const { return previewSide_; }
  void setPreviewSide(int side);

  // Which layer the canvas frames as the selected one; none frames no layer.
  std::function<bool(const cSVGItem& layer)> IsSelected;
  // Set by the owner while the mouse drags a layer.
  bool Dragging = false;

  // Events, each also bubbled under its own name.
  std::function<void(int button, int shift, int hitIndex, double x, double y)> MouseDown;
  std::function<void(int button, int shift, double x, double y)> MouseMove;
  std::function<void(int button, int shift, double x, double y)> MouseUp;
  // Arrows and Delete stop at the canvas; other keys go on to the form.
  std::function<void(int keyCode, int shift)> KeyDown;
  std::function<void(int keyCode, int shift)> KeyUp;
  // After each paint; bubbled as "Refresh".
  std::function<void()> Painted;

  static constexpr double kDefaultBorder = 80;
  static constexpr double kRulerDepth = 18;
  static constexpr int kPreviewBack = 0xC0C0C0;

  void W_Resize() override;
  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_MouseMove(int button, int shift, double x, double y) override;
  bool W_MouseUp(int button, int shift, double x, double y) override;
  void W_MouseLeave() override;
  bool W_KeyDown(int keyCode, int shift) override;
  bool W_KeyUp(int keyCode, int shift) override;
  // value: Color; checked: ShowRuler; listCount: the layers; listIndex: the
  // layer the last press hit; text: the drawing's side in units.
  void W_ReportState(WidgetState& state) const override;
  // A point of the layer where a press would hit it; none when it shows
  // nowhere.
  WidgetPoint W_RowPoint(int row) override;

 private:
  // Device pixels per unit: the form's zoom, as the last paint found it.
  double Scale() const;
  // The size of the work surface in device pixels.
  void InnerPixels(int& width, int& height) const;
  void PlaceRulers();
  void PaintBackground(DrawingContext& ctx, int width, int height);
  // The layers with the design's opacity over what the context shows.
  void DrawDesign(DrawingContext& ctx, double side, bool preview);
  void DrawLayers(DrawingContext& ctx, double side, bool marks);
  // Each visible layer's own picture, alone, into the scratch surface:
  // `clipTo` limits the drawing to one pixel.
  void RenderAlone(int index, int side, int clipX, int clipY);

  int color_ = -1;
  double border_ = kDefaultBorder;
  bool drawPreview_ = false;
  bool showRuler_ = true;
  bool showRulerPos_ = true;
  int previewSide_ = 128;
  int lastHit_ = -1;
  double paintScale_ = 0;  // 0: not painted yet
  cwRuler& hRuler_;
  cwRuler& vRuler_;
  SurfacePtr work_;
  SurfacePtr scratch_;
  SurfacePtr preview_;
  SurfacePtr chessTile_;
};

}  // namespace qds
