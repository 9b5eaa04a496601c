// The canvas and the controls of the selected layer: moving it with the
// mouse and the arrow keys, its size, place, distance and opacity, and the
// debounced redraw of the canvas.

#include <algorithm>
#include <cmath>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "design/cvIconDesignView.h"
#include "design/cwCanvas.h"
#include "design/cwPosQuad.h"
#include "design/cwPreview.h"
#include "platform/ui/PlatformRoot.h"
#include "widgets/cwDropDownList.h"
#include "widgets/cwOptionButton.h"
#include "widgets/cwSlider.h"
#include "widgets/cwToolBar.h"
#include "widgets/cwVListNew.h"

namespace qds {

// ---- redrawing

void cvIconDesignView::CanvasRedraw() {
  if (!Canvas) return;
  // While the lock holds, the timer's end paints once for all changes.
  if (!Canvas->RefreshLocked()) Canvas->Refresh();
  RedrawList();
}

void cvIconDesignView::SetCanvasLock() {
  tmrCanvasLock_->setEnabled(false);
  tmrCanvasLock_->setEnabled(true);
  Canvas->LockRefresh(true);
}

void cvIconDesignView::tmrCanvasLock_Timer() {
  tmrCanvasLock_->setEnabled(false);
  Canvas->LockRefresh(false);
  Canvas->Refresh();
  FocusCanvas();
}

void cvIconDesignView::FocusCanvas() {
  // The list and the right column must not keep the arrow keys.
  if (layout_ && layout_->ShownInTree()) Canvas->SetFocus();
}

void cvIconDesignView::Canvas_Painted() {
  if (!Preview->Visible()) return;
  // The mini preview paints in a turn of its own, out of the canvas's paint.
  tmrDecouple_->setEnabled(true);
}

void cvIconDesignView::AfterLayerChange(bool moved, bool history) {
  UpdateShadow();
  if (moved) UpdateSymbolOfEffect();
  CanvasRedraw();
  if (history) AddToHistory();
  FocusCanvas();
}

// ---- the controls of the right column and the zoom

void cvIconDesignView::sldZoom_ValueChanged() {
  if (!CurrentLayer || SelectingLayer) return;
  CurrentLayer->setZoomPercent(sldZoom->Value());
  // A drag of the knob takes its snapshot when it is let go.
  AfterLayerChange(true, !sldZoom->Dragging());
}

void cvIconDesignView::sldZoom_MouseUp() {
  if (!CurrentLayer || SelectingLayer) return;
  AfterLayerChange(true, true);
}

void cvIconDesignView::DropDistance_Click() {
  if (!CurrentLayer || SelectingLayer || DropDistance->ListIndex() < 0) return;
  const int n = 256 - DropDistance->ListIndex();
  CurrentLayer->setDistance(n * 100.0 / 256);
  AfterLayerChange(true, true);
}

void cvIconDesignView::PosQuad_Click(int cell) {
  const bool free = cell == 5 || cell == 0;
  DropDistance->setEnabled(!free);
  lblDistance_->setEnabled(!free);
  if (!CurrentLayer || SelectingLayer) return;
  CurrentLayer->setPos(cell);
  ShowDistance(*CurrentLayer);
  AfterLayerChange(true, true);
}

void cvIconDesignView::Opacity1_Changed() {
  if (!CurrentLayer || SelectingLayer) return;
  AppContext& app = App();
  const double value = Opacity1->Value();
  if (optAllLayers_->Checked) {
    app.DesignOpacity = static_cast<int>(std::lround(value));
  } else {
    CurrentLayer->setOpacity(value);
  }
  CanvasRedraw();
  if (!Opacity1->Dragging()) AddToHistory();
}

void cvIconDesignView::Opacity1_LayerChanged() {
  if (!CurrentLayer || SelectingLayer) return;
  AppContext& app = App();
  app.DesignOpacityOn = optAllLayers_->Checked;
  SelectingLayer = true;
  Opacity1->setValue(app.DesignOpacityOn ? app.DesignOpacity : CurrentLayer->Opacity());
  SelectingLayer = false;
  CanvasRedraw();
  AddToHistory();
}

// ---- the canvas

void cvIconDesignView::Canvas_MouseDown(int button, int shift, int hit, double x, double y) {
  (void)shift;
  FocusCanvas();
  if (button != Button::Left) return;
  if (hit < 0) {
    dragStartX_ = dragStartY_ = -1;
  } else {
    vlstLayers->setListIndex(hit);
    dragStartX_ = x, dragStartY_ = y;
  }
  vlstLayers_Click();
  // The press selected the layer; its drag must paint at once.
  tmrCanvasLock_->setEnabled(false);
  Canvas->LockRefresh(false);
  Canvas->Refresh();
}

void cvIconDesignView::Canvas_MouseMove(int button, int shift, double x, double y) {
  (void)shift;
  if (!(button & Button::Left) || !CurrentLayer || dragStartX_ < 0) {
    Canvas->Dragging = false;
    return;
  }
  Canvas->Dragging = true;
  cSVGItem& layer = *CurrentLayer;
  double zW, zH, L, T;
  layer.CalcOffSet(0, 0, zW, zH, L, T);
  // The mouse counts in hundredths of the drawing's side, the unit of a
  // layer's place, so that at full size the layer stays under the mouse.
  const double unit = 100 / std::max(1.0, Canvas->DrawingSide());
  layer.MoveX = (x - dragStartX_) * unit * 100 / layer.ZoomPercent();
  layer.MoveY = (y - dragStartY_) * unit * 100 / layer.ZoomPercent();
  Canvas->Refresh();
}

void cvIconDesignView::Canvas_MouseUp(int button, int shift, double x, double y) {
  (void)button, (void)shift, (void)x, (void)y;
  if (Canvas->Dragging && CurrentLayer) {
    CurrentLayer->SetNewOffSet();
    SelectingLayer = true;
    PosQuad->setCurPos(CurrentLayer->Pos());
    ShowDistance(*CurrentLayer);
    AddToHistory();
    SelectingLayer = false;
  }
  Canvas->Dragging = false;
  dragStartX_ = dragStartY_ = -1;
  UpdateSymbolOfEffect();
  UpdateShadow();
  CanvasRedraw();
  Refresh();
}

void cvIconDesignView::Canvas_KeyDown(int keyCode, int shift) {
  if (SelectedRow() < 0 || !CurrentLayer) return;
  if (keyCode == Key::Delete) {
    vlstLayers_DeleteKeyPressed();
    return;
  }
  if (keyCode < Key::Left || keyCode > Key::Down) return;
  cSVGItem& layer = *CurrentLayer;
  const double step = (shift & Shift::ShiftKey) ? 5 : 1;
  double zW, zH, L, T;
  layer.CalcOffSet(0, 0, zW, zH, L, T);
  const double move = step * 100 / layer.ZoomPercent();
  switch (keyCode) {
    case Key::Left:
      layer.MoveX -= move;
      break;
    case Key::Right:
      layer.MoveX += move;
      break;
    case Key::Up:
      layer.MoveY -= move;
      break;
    default:
      layer.MoveY += move;
  }
  layer.SetNewOffSet();
  SelectingLayer = true;
  PosQuad->setCurPos(layer.Pos());
  ShowDistance(layer);
  UpdateShadow();
  UpdateSymbolOfEffect();
  CanvasRedraw();
  AddToHistory();
  SelectingLayer = false;
  Refresh();
}

// ---- the canvas tool bar

void cvIconDesignView::tbarCanvasV_Click(const std::string& key) {
  cConfig* config = App().Config.get();
  cwToolBarItem* item = tbarCanvasV->Item(key);
  if (!item) return;
  if (key == "Preview") {
    Canvas->setDrawPreview(item->Checked);
    Preview->setVisible(item->Checked);
    if (config) config->setShowMiniPreview(item->Checked);
  } else if (key == "Ruler") {
    Canvas->setShowRuler(item->Checked);
    if (config) config->setShowRuler(item->Checked);
  } else if (key == "CanvasBG") {
    // Until the colour tool comes, the button steps between the chess
    // board, white and black.
    const int colour = Canvas->Color() == -1 ? 0xFFFFFF : (Canvas->Color() == 0xFFFFFF ? 0 : -1);
    Canvas->setColor(colour);
    if (config) config->setCanvasColor(colour);
  }
  if (config) config->Save();
  CanvasRedraw();
}

}  // namespace qds
