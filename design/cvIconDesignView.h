#pragma once
// The view in which one design is built: the layer stack in vlstLayers, the
// canvas that shows it and moves the selected layer, the tool bars around
// them and the column of the layer's position and opacity. Everything that
// changes the stack passes through here and ends in one change cycle: write
// the layer, recompute what derives from it, redraw, take a snapshot for
// undo, recalculate what is enabled, give the canvas the keys again.

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/cSVGItem.h"
#include "widgets/cvView.h"

namespace qds {

class DrawingContext;
class Timer;
class cvIconSelectView;
class cwCanvas;
class cwDropDownList;
class cwLabel;
class cwMenu;
class cwOptionButton;
class cwPosQuad;
class cwPreview;
class cwSlider;
class cwStatusBar;
class cwToolBar;
class cwVListNew;

class cvIconDesignView : public cvView {
 public:
  cvIconDesignView();
  ~cvIconDesignView() override;

  void WidgetInit(Widget& layout) override;
  void HandleResize(double width, double height) override;
  void SwitchToView() override;

  // The select view, whose selection becomes the base layer when the user
  // comes from there; set by the main window.
  cvIconSelectView* SelectView = nullptr;
  // The view that was on screen before this one; set by the main window.
  std::string PreviousView;

  // The main window's keys while this view is shown: Ctrl+Z, Ctrl+Y,
  // Ctrl+C, Ctrl+V. True when taken.
  bool Form_KeyDown(int keyCode, int shift);

  // Recalculates what is enabled; never draws the canvas.
  void Refresh();
  void SetHistory(int mode);
  void AddToHistory();
  void InsertLayer();
  void DuplicateLayer();
  void UpdateShadow();
  void UpdateSymbolOfEffect();
  void UpdateClipWithIcon(bool clear);
  void CollectClipItems();
  // Opens the tool of `key` for the selected layer; false when this build
  // has no such tool yet.
  bool ShowToolWindow(const std::string& key);
  // Saves the design as a template, asking for its name; true when saved.
  bool ShowSaveTemplate();
  // Draws the stack again (debounced by the canvas lock).
  void CanvasRedraw();

  // The stamp of a new layer's key: the time as "ddMMyyhhmmss", so that two
  // layers of one kind made in the same second share a key and the second
  // is refused. Tests set the clock.
  std::function<std::string()> StampNow;
  std::string Stamp() const;
  // The key a copy of a layer gets: text and shape layers a new stamp,
  // every other layer its own key, which makes a second copy fail.
  std::string CopyKey(const std::string& key) const;

  // The selected row's layer; none when no row is selected.
  SVGItemPtr CurrentLayer;
  // What the settings menu's Copy kept.
  SVGItemPtr ColorClipboard;
  SVGItemPtr LayerClipboard;
  std::string LayerClipboardKey;
  std::string TemplateName, TemplateDescription;
  bool SelectingLayer = false;
  bool MenuOpen = false;

  cwVListNew* vlstLayers = nullptr;
  cwToolBar* tbarLayers = nullptr;
  cwToolBar* tbarCanvas = nullptr;
  cwToolBar* tbarCanvas2 = nullptr;
  cwToolBar* tbarCanvasV = nullptr;
  cwSlider* sldZoom = nullptr;
  cwCanvas* Canvas = nullptr;
  cwPreview* Preview = nullptr;
  cwPosQuad* PosQuad = nullptr;
  cwDropDownList* DropDistance = nullptr;
  cwSlider* Opacity1 = nullptr;

  // The layer rows: their height, the picture in them, and the small
  // buttons along their bottom edge, each kButton wide from the right.
  static constexpr int kRowHeight = 58, kRowPicture = 48;
  static constexpr double kButton = 20, kButtonBand = 21;
  static constexpr double kMaxCanvas = 600;
  static constexpr double kCanvasLockMs = 30, kDecoupleMs = 10;

  // Where the small buttons of a row are hit: Minus, Plus, Cut, Eye from
  // the left; -1 for none. `w` and `h` are the row's size.
  static int RowButtonAt(double x, double y, double w, double h);
  enum RowButton { BtnMinus = 0, BtnPlus = 1, BtnCut = 2, BtnEye = 3 };

 private:
  // Runs a handler: every failure ends it silently, as a duplicate key on
  // a second paste is the expected end of that handler.
  void Handle(const char* name, const std::function<void()>& body);
  std::function<void()> On(const char* name, void (cvIconDesignView::*handler)());

  void CreateLayerPanel(Widget& panel);
  void CreateCanvasPanel(Widget& panel);
  void CreateRightPanel(Widget& panel);
  void CreateMenus();

  // The one way a selected row reaches the controls.
  void vlstLayers_Click();
  void vlstLayers_MouseUpClick();
  void vlstLayers_DblClick();
  void vlstLayers_DeleteKeyPressed();
  void vlstLayers_DragDropDst(const std::string& dataKey, double x, double y);
  void vlstLayers_OwnerDrawItem(int index, DrawingContext& cc, double dx, double dy, double alpha);
  void CheckLayerItemBtn(int row, double x, double y);
  bool RowButtonShown(const std::string& key, const cSVGItem& layer, int button) const;
  void StepSelectionIndex(int delta);

  void tbarLayers_Click(const std::string& key);
  void MoveLayer(int from, int to);
  void DeleteLayer();
  bool ConfirmRemoveLayer() const;
  // The list, the canvas and the history after the row at `row` went.
  void ShowAfterRemoval(int row);
  void DeleteAllLayers();
  void CreateOverlaySet();
  void tbarCanvas2_Click(const std::string& key);
  void tbarCanvas2_ArrowClick(const std::string& key);
  void tbarCanvasV_Click(const std::string& key);
  void AddTextLayer();
  void AddShapeLayer();
  void ShowMenu(const std::string& root, Widget& near);
  void MenuPopUp_Click(const std::string& key);
  void ReplaceDesign();
  void OpenTemplate();
  void SaveTemplate_Saved(const std::string& name, const std::string& description);
  void LoadTemplate_TemplateChanged(const std::string& name, const std::string& description);

  // The controls of the right column and the zoom.
  void sldZoom_ValueChanged();
  void sldZoom_MouseUp();
  void DropDistance_Click();
  void PosQuad_Click(int cell);
  void Opacity1_Changed();
  void Opacity1_LayerChanged();
  void ShowDistance(const cSVGItem& layer);

  // The canvas.
  void Canvas_MouseDown(int button, int shift, int hit, double x, double y);
  void Canvas_MouseMove(int button, int shift, double x, double y);
  void Canvas_MouseUp(int button, int shift, double x, double y);
  void Canvas_KeyDown(int keyCode, int shift);
  void Canvas_Painted();
  void SetCanvasLock();
  void tmrCanvasLock_Timer();
  void FocusCanvas();
  // The change cycle after a layer was moved or resized.
  void AfterLayerChange(bool moved, bool history);

  // Enabled states, in the order Refresh runs them.
  void SetMenuLayerEnabledState();
  void SetMenuCanvasEnabledState();
  void CheckShadowOptions();
  void SetWidgetEnabledStates();
  // Fills the settings menu for the selected layer; answers its entries.
  int CreateSettingsMenu();

  int SelectedRow() const;
  void SyncListCount();
  void SelectRow(int row);
  void RedrawList();
  void ShowStatus();

  Widget* layout_ = nullptr;
  Widget* pnlMain_ = nullptr;
  Widget* pnlRight_ = nullptr;
  Widget* tbarCanvasCont_ = nullptr;
  Widget* tbarCanvas2Cont_ = nullptr;
  Widget* tbarCanvasVCont_ = nullptr;
  Widget* PosQuadCont_ = nullptr;
  cwLabel* lblDistance_ = nullptr;
  cwLabel* lblOpacity_ = nullptr;
  cwOptionButton* optCurrLayer_ = nullptr;
  cwOptionButton* optAllLayers_ = nullptr;
  // The places of the colour tools, which arrive with their own work.
  Widget* ColorThemes_ = nullptr;
  Widget* ColorSettings_ = nullptr;
  Widget* ColorAdjust_ = nullptr;
  cwMenu* menu_ = nullptr;
  cwStatusBar* Statusbar_ = nullptr;
  std::unique_ptr<Timer> tmrCanvasLock_;
  std::unique_ptr<Timer> tmrDecouple_;

  // The wall clock and the loop's clock when the view was made: stamps
  // count on from there by the loop's time.
  std::chrono::system_clock::time_point startWall_ = std::chrono::system_clock::now();
  double startMs_ = 0;
  // A drag on the canvas: where it started (-1: no layer was hit), and
  // whether the mouse has moved the layer yet.
  double dragStartX_ = -1, dragStartY_ = -1;
  // Where the mouse last was over a row of the layer list, in the row.
  double rowMouseX_ = -1, rowMouseY_ = -1;
  int rowMouseIndex_ = -1;
  // A drop of a row on the list moved it: the release that ends the drag is no click.
  bool rowDropped_ = false;
  // The row a drag of the layer list carries.
  int dragRow_ = -1;
};

}  // namespace qds
