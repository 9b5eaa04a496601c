#include "design/cvIconDesignView.h"

#include <algorithm>
#include <cmath>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modStartup.h"
#include "app/modTexts.h"
#include "app/ui/modMenuResources.h"
#include "browser/cvIconSelectView.h"
#include "design/cwCanvas.h"
#include "design/cwPosQuad.h"
#include "design/cwPreview.h"
#include "engine/modFunctions.h"
#include "engine/modHistory.h"
#include "platform/Error.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwMenu.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/ui/PlatformRoot.h"
#include "widgets/cwDropDownList.h"
#include "widgets/cwOptionButton.h"
#include "widgets/cwSlider.h"
#include "widgets/cwToolBar.h"
#include "widgets/cwVListNew.h"

namespace qds {

namespace {

constexpr double kToolBarHeight = 30, kMargin = 8, kLine = 26;
constexpr double kPreviewSide = 110;

}  // namespace

cvIconDesignView::cvIconDesignView() = default;

cvIconDesignView::~cvIconDesignView() {
  // The stack outlives the view in tests; it must not call back into it.
  if (HasApp()) App().LayersRestored = nullptr;
}

void cvIconDesignView::Handle(const char* name, const std::function<void()>& body) {
  RunHandler(std::string("cvIconDesignView:") + name, HandlerMode::Silent, body);
}

std::function<void()> cvIconDesignView::On(const char* name, void (cvIconDesignView::*handler)()) {
  return [this, name, handler] { Handle(name, [this, handler] { (this->*handler)(); }); };
}

void cvIconDesignView::WidgetInit(Widget& layout) {
  layout_ = &layout;
  if (PlatformRoot* root = PlatformRoot::Current()) startMs_ = root->NowMs();
  Widget* pnlLeft2 = layout.Find("pnlLeft2");
  pnlMain_ = layout.Find("pnlMain");
  pnlRight_ = layout.Find("pnlRight");
  Widget* pnlStatusBar = layout.Find("pnlStatusBar");
  if (!pnlLeft2 || !pnlMain_ || !pnlRight_ || !pnlStatusBar)
    Raise(ErrNo::InvalidArgument, "The layout lacks a panel of the design view",
          "cvIconDesignView:WidgetInit");

  CreateLayerPanel(*pnlLeft2);
  CreateCanvasPanel(*pnlMain_);
  CreateRightPanel(*pnlRight_);
  Statusbar_ = &pnlStatusBar->Children().Add<cwStatusBar>("StatusbarDesign");
  Statusbar_->setDock(Dock::Fill);
  CreateMenus();

  tmrCanvasLock_ = std::make_unique<Timer>(*Canvas);
  tmrCanvasLock_->Interval = kCanvasLockMs;
  tmrCanvasLock_->OnTimer = On("tmrCanvasLock_Timer", &cvIconDesignView::tmrCanvasLock_Timer);
  tmrDecouple_ = std::make_unique<Timer>(*Preview);
  tmrDecouple_->Interval = kDecoupleMs;
  tmrDecouple_->OnTimer = [this] {
    tmrDecouple_->setEnabled(false);
    Preview->Refresh();
  };

  if (HasApp()) {
    AppContext& app = App();
    app.UndoRedo.setMax(app.Config ? app.Config->HistoryMax() : 50);
    app.UndoRedo.Clear();
    // An undo rebuilt the stack: the list shows it and ends on the top layer.
    app.LayersRestored = [this] {
      SyncListCount();
      vlstLayers->setListIndex(-1);
      CanvasRedraw();
      if (App().Layers.Empty()) {
        CurrentLayer = nullptr;
        Refresh();
      } else {
        SelectRow(0);
      }
    };
    Canvas->IsSelected = [this](const cSVGItem& layer) { return CurrentLayer.get() == &layer; };
    if (app.Config) {
      Canvas->setColor(app.Config->CanvasColor());
      Canvas->setShowRuler(app.Config->ShowRuler());
      Canvas->setDrawPreview(app.Config->ShowMiniPreview());
      Preview->setVisible(app.Config->ShowMiniPreview());
      if (auto* item = tbarCanvasV->Item("Preview")) item->Checked = app.Config->ShowMiniPreview();
      if (auto* item = tbarCanvasV->Item("Ruler")) item->Checked = app.Config->ShowRuler();
    }
  }
  SyncListCount();
  Refresh();
}

void cvIconDesignView::CreateLayerPanel(Widget& panel) {
  tbarLayers = &panel.Children().Add<cwToolBar>("tbarLayers");
  tbarLayers->setDock(Dock::Top);
  tbarLayers->Move(0, 0, 0, kToolBarHeight);
  const struct {
    const char* key;
    const char* picture;
    const char* tip;
  } items[] = {{"DeleteAll", "DeleteAll", "RemoveIcons"},
               {"Minus", "Minus", "RemoveIcon"},
               {"ArrowDown", "ArrowDown", "MoveIconDown"},
               {"ArrowUp", "ArrowUp", "MoveIconUp"},
               {"Config", "Config", "Config"},
               {"Overlay", "Overlay", "OverlaySelection"},
               {"Save", "Save", "SaveAsTemplate"},
               {"Open", "Open", "LoadTemplate"}};
  for (const auto& i : items) tbarLayers->AddItem(i.key, i.picture, TipOf(i.tip));
  tbarLayers->Click = [this](const std::string& key) {
    Handle("tbarLayers_Click", [&] { tbarLayers_Click(key); });
  };

  vlstLayers = &panel.Children().Add<cwVListNew>("vlstLayers");
  vlstLayers->setDock(Dock::Fill);
  vlstLayers->setRowHeight(kRowHeight);
  vlstLayers->CanFocus = true;
  vlstLayers->AllowDrag = true;
  vlstLayers->DragDataKey = "LayerRow";
  vlstLayers->DragPictureKey = "Pictures";
  vlstLayers->OwnerDrawItem = [this](int index, DrawingContext& cc, double dx, double dy, double alpha) {
    Handle("vlstLayers_OwnerDrawItem", [&] { vlstLayers_OwnerDrawItem(index, cc, dx, dy, alpha); });
  };
  vlstLayers->Click = On("vlstLayers_Click", &cvIconDesignView::vlstLayers_Click);
  vlstLayers->MouseUpClick = On("vlstLayers_MouseUpClick", &cvIconDesignView::vlstLayers_MouseUpClick);
  vlstLayers->DblClick = On("vlstLayers_DblClick", &cvIconDesignView::vlstLayers_DblClick);
  vlstLayers->DeleteKeyPressed =
      On("vlstLayers_DeleteKeyPressed", &cvIconDesignView::vlstLayers_DeleteKeyPressed);
  vlstLayers->MouseMoveOnListItem = [this](int index, double x, double y) {
    rowMouseIndex_ = index;
    double left = 0, top = 0, w = 0, h = 0;
    if (index >= 0 && vlstLayers->ItemBounds(index, left, top, w, h)) {
      rowMouseX_ = x - left, rowMouseY_ = y - top;
    } else {
      rowMouseX_ = rowMouseY_ = -1;
    }
  };
  vlstLayers->ReportItems = [] {
    std::vector<WidgetState::Item> rows;
    if (!HasApp()) return rows;
    for (const auto& e : App().Layers)
      rows.push_back({e.Key, e.Item->FriendlyName(), true, e.Item->Visible()});
    return rows;
  };
  vlstLayers->DragStartSrc = [this] { dragRow_ = vlstLayers->ListIndex(); };
  vlstLayers->DragDropDst = [this](const std::string& dataKey, Widget& source, double x, double y) {
    if (&source != vlstLayers) return;
    Handle("vlstLayers_DragDropDst", [&] { vlstLayers_DragDropDst(dataKey, x, y); });
  };
}

void cvIconDesignView::CreateCanvasPanel(Widget& panel) {
  tbarCanvasCont_ = &panel.Children().Add<Widget>("tbarCanvasCont");
  tbarCanvasCont_->setDock(Dock::Top);
  tbarCanvasCont_->Move(0, 0, 0, kToolBarHeight);
  tbarCanvas = &tbarCanvasCont_->Children().Add<cwToolBar>("tbarCanvas");
  tbarCanvas->setDock(Dock::Fill);
  sldZoom = &Place<cwSlider>(*tbarCanvas, "sldZoom", kMargin, 3, 260, kToolBarHeight - 6);
  sldZoom->Unit = "%";
  sldZoom->setMin(5);
  sldZoom->setMax(100);
  sldZoom->setValue(100);
  sldZoom->ToolTip = TipOf("Size");
  sldZoom->Changed = On("sldZoom_ValueChanged", &cvIconDesignView::sldZoom_ValueChanged);
  sldZoom->MouseUp = On("sldZoom_MouseUp", &cvIconDesignView::sldZoom_MouseUp);

  tbarCanvas2Cont_ = &panel.Children().Add<Widget>("tbarCanvas2Cont");
  tbarCanvas2Cont_->setDock(Dock::Top);
  tbarCanvas2Cont_->Move(0, 0, 0, kToolBarHeight);
  tbarCanvas2 = &tbarCanvas2Cont_->Children().Add<cwToolBar>("tbarCanvas2");
  tbarCanvas2->setDock(Dock::Fill);
  tbarCanvas2->AddItem("Text", "Text", TipOf("Text"));
  tbarCanvas2->AddItem("Shapes", "Shapes", TipOf("Shapes"));
  tbarCanvas2->AddItem("Effects", "Effects", TipOf("Effects"), false, true);
  tbarCanvas2->AddItem("ClipWithForm", "ClipWithForm", TipOf("ClipWithForm"), true);
  tbarCanvas2->AddItem("ClipWithIcon", "ClipWithIcon", TipOf("ClipWithIcon"));
  tbarCanvas2->AddItem("FillOptions", "FillOptions", TipOf("FillOptions"), false, true);
  tbarCanvas2->AddItem("Line", "Line", TipOf("OutLine"), true);
  tbarCanvas2->AddItem("Rotation", "Rotation", TipOf("Rotation"));
  tbarCanvas2->AddItem("Undo", "Undo", TipOf("Undo"));
  tbarCanvas2->AddItem("Redo", "Redo", TipOf("Redo"));
  tbarCanvas2->AddItem("btnPipette", "Pipette", TipOf("Pipette"));
  tbarCanvas2->Click = [this](const std::string& key) {
    Handle("tbarCanvas2_Click", [&] { tbarCanvas2_Click(key); });
  };
  tbarCanvas2->ArrowClick = [this](const std::string& key) {
    Handle("tbarCanvas2_ArrowClick", [&] { tbarCanvas2_ArrowClick(key); });
  };

  tbarCanvasVCont_ = &panel.Children().Add<Widget>("tbarCanvasVCont");
  tbarCanvasVCont_->setDock(Dock::Right);
  tbarCanvasVCont_->Move(0, 0, kToolBarHeight, 0);
  tbarCanvasV = &tbarCanvasVCont_->Children().Add<cwToolBar>("tbarCanvasV");
  tbarCanvasV->setDock(Dock::Fill);
  tbarCanvasV->setVertical(true);
  tbarCanvasV->AddItem("CanvasBG", "CanvasBG", TipOf("CanvasColor"));
  tbarCanvasV->AddItem("Preview", "Preview", TipOf("ShowPreview"), true);
  tbarCanvasV->AddItem("Ruler", "Ruler", TipOf("Ruler"), true);
  tbarCanvasV->Click = [this](const std::string& key) {
    Handle("tbarCanvasV_Click", [&] { tbarCanvasV_Click(key); });
  };

  Canvas = &panel.Children().Add<cwCanvas>("Canvas");
  Canvas->MouseDown = [this](int button, int shift, int hit, double x, double y) {
    Handle("Canvas_MouseDown", [&] { Canvas_MouseDown(button, shift, hit, x, y); });
  };
  Canvas->MouseMove = [this](int button, int shift, double x, double y) {
    Handle("Canvas_MouseMove", [&] { Canvas_MouseMove(button, shift, x, y); });
  };
  Canvas->MouseUp = [this](int button, int shift, double x, double y) {
    Handle("Canvas_MouseUp", [&] { Canvas_MouseUp(button, shift, x, y); });
  };
  Canvas->KeyDown = [this](int keyCode, int shift) {
    Handle("Canvas_KeyDown", [&] { Canvas_KeyDown(keyCode, shift); });
  };
  Canvas->KeyUp = [this](int, int) { Handle("Canvas_KeyUp", [&] { CanvasRedraw(); }); };
  Canvas->Painted = On("Canvas_Refresh", &cvIconDesignView::Canvas_Painted);

  Preview = &panel.Children().Add<cwPreview>("Preview");
  Preview->setCanvas(Canvas);
}

void cvIconDesignView::CreateRightPanel(Widget& panel) {
  Widget& right = panel.Children().Add<Widget>("RightCont");
  right.setDock(Dock::Fill);
  const double w = 225 - 2 * kMargin;
  double y = kMargin;
  PosQuadCont_ = &Place<Widget>(right, "PosQuadCont", kMargin, y, w, 96 + kLine + 8);
  PosQuad = &Place<cwPosQuad>(*PosQuadCont_, "PosQuad", 0, 0, 96, 96);
  PosQuad->ToolTip = TipOf("Position");
  PosQuad->Click = [this](int cell) { Handle("PosQuad_Click", [&] { PosQuad_Click(cell); }); };
  lblDistance_ = &Place<cwLabel>(*PosQuadCont_, "lblDistance", 104, 0, w - 104, kLine);
  lblDistance_->Caption = LanguageText("Offset").Text;
  DropDistance = &Place<cwDropDownList>(*PosQuadCont_, "DropDistance", 104, kLine, 80, kLine);
  DataRows rows;
  for (int n = 256; n >= 0; --n) rows.push_back({std::to_string(n), {{"Text", Value(std::to_string(n))}}});
  DropDistance->SetDataSource(std::move(rows), "Text");
  DropDistance->Click = On("DropDistance_Click", &cvIconDesignView::DropDistance_Click);
  y += PosQuadCont_->Height() + kMargin;

  lblOpacity_ = &Place<cwLabel>(right, "lblOpacity", kMargin, y, w, kLine);
  lblOpacity_->Caption = LanguageText("Opacity").Text;
  y += kLine;
  Opacity1 = &Place<cwSlider>(right, "Opacity1", kMargin, y, w, kLine);
  Opacity1->Unit = "%";
  Opacity1->setMin(0);
  Opacity1->setMax(100);
  Opacity1->setValue(100);
  Opacity1->Changed = On("Opacity1_Changed", &cvIconDesignView::Opacity1_Changed);
  Opacity1->MouseUp = On("Opacity1_AddHistory", &cvIconDesignView::AddToHistory);
  y += kLine + 4;
  // One under the other: the captions are long in some languages.
  optCurrLayer_ = &Place<cwOptionButton>(right, "optCurrLayer", kMargin, y, w, kLine);
  optCurrLayer_->Caption = LanguageText("Layer").Text;
  y += kLine;
  optAllLayers_ = &Place<cwOptionButton>(right, "optAllLayers", kMargin, y, w, kLine);
  optAllLayers_->Caption = LanguageText("Layers").Text;
  for (cwOptionButton* o : {optCurrLayer_, optAllLayers_}) {
    o->Group = "OpacityScope";
    o->Click = On("Opacity1_LayerChanged", &cvIconDesignView::Opacity1_LayerChanged);
  }
  optCurrLayer_->Choose();
  y += kLine + kMargin;

  // The colour tools take these places with their own work.
  ColorThemes_ = &Place<Widget>(right, "ColorThemes", kMargin, y, w, 60);
  ColorSettings_ = &Place<Widget>(right, "ColorSettings", kMargin, y + 64, w, 60);
  ColorAdjust_ = &Place<Widget>(right, "ColorAdjust", kMargin, y + 128, w, 60);
}

void cvIconDesignView::CreateMenus() {
  menu_ = &layout_->Children().Add<cwMenu>("MenuPopUp");
  AddMenuEffectsTo(*menu_, "MenuEffects");
  AddMenuFillMetodsTo(*menu_, "MenuFillOptions");
  menu_->Click = [this](const std::string& key) { Handle("MenuPopUp_Click", [&] { MenuPopUp_Click(key); }); };
  menu_->MenuDestroyed = [this] { MenuOpen = false; };
}

void cvIconDesignView::HandleResize(double width, double height) {
  (void)width, (void)height;
  if (!layout_ || !pnlMain_) return;
  Widget* top = layout_;
  while (top->Parent()) top = top->Parent();
  top->LayoutNow();
  // The canvas takes the free square of its panel below the tool bars,
  // never more than kMaxCanvas; the mini preview sits in the corner.
  const double freeW = pnlMain_->Width() - tbarCanvasVCont_->Width();
  const double freeTop = tbarCanvasCont_->Height() + tbarCanvas2Cont_->Height();
  const double freeH = pnlMain_->Height() - freeTop;
  const double side = std::max(0.0, std::min({freeW, freeH, kMaxCanvas}));
  Canvas->Move(std::floor((freeW - side) / 2), freeTop + std::floor((freeH - side) / 2), side, side);
  Preview->Move(freeW - kPreviewSide - 4, pnlMain_->Height() - kPreviewSide - 4, kPreviewSide, kPreviewSide);
  top->LayoutNow();
}

void cvIconDesignView::SwitchToView() {
  const bool fromSelect = PreviousView == "IconSelectView";
  cvView::SwitchToView();
  if (!HasApp() || !vlstLayers) return;
  AppContext& app = App();
  if (fromSelect && SelectView && SelectView->SelectionChanged) {
    SelectView->UpdateSelection();
    SelectView->SelectionChanged = false;
    SyncListCount();
  }
  if (fromSelect && app.Layers.Exists("_BaseIco")) {
    vlstLayers->setListIndex(app.Layers.IndexByKey("_BaseIco"));
    const SVGItemPtr& base = app.Layers.Item("_BaseIco");
    if (base->EffIsLine() || !base->ClipIOverlayKey().empty()) {
      base->SettingsRefresh();
      RedrawList();
    }
    // The effect drawn from the base icon follows the icon shown now.
    const std::string effect = EffectKeyBySymbolKey(app, "_BaseIco");
    if (!effect.empty()) app.Layers.Item(effect)->SettingsRefresh();
  }
  SyncListCount();
  if (!app.Layers.Empty()) {
    if (vlstLayers->ListIndex() < 0) vlstLayers->setListIndex(0);
    vlstLayers_Click();
  } else {
    CurrentLayer = nullptr;
    CanvasRedraw();
    Refresh();
  }
  // Undo needs a state to go back to: the design as the user found it,
  // while there is nothing to undo or redo yet.
  if (!app.UndoRedo.UndoEnabled() && !app.UndoRedo.RedoEnabled()) {
    SetHistory(HistoryMode::Clear);
  } else if (app.PendingHistory) {
    AddToHistory();
  }
  ShowStatus();
}

bool cvIconDesignView::Form_KeyDown(int keyCode, int shift) {
  if (shift != Shift::Ctrl) return false;
  AppContext& app = App();
  bool taken = true;
  Handle("Form_KeyDown", [&] {
    switch (keyCode) {
      case 'Z':
        if (app.UndoRedo.UndoEnabled()) SetHistory(HistoryMode::Undo);
        break;
      case 'Y':
        if (app.UndoRedo.RedoEnabled()) SetHistory(HistoryMode::Redo);
        break;
      case 'C': {
        const int row = SelectedRow();
        if (row < 0) break;
        const std::string& key = app.Layers.KeyByIndex(row);
        const SVGItemPtr& layer = app.Layers.Item(row);
        if (key == "_BaseIco" || key == "_Overlay" || layer->EffType() != 0) break;
        LayerClipboard = layer->Clone();
        LayerClipboardKey = key;
        break;
      }
      case 'V':
        InsertLayer();
        break;
      default:
        taken = false;
    }
  });
  return taken;
}

// ---- the selection reaches the controls

int cvIconDesignView::SelectedRow() const {
  const int row = vlstLayers ? vlstLayers->ListIndex() : -1;
  return row >= 0 && row < App().Layers.Count() ? row : -1;
}

void cvIconDesignView::SyncListCount() {
  if (vlstLayers && vlstLayers->ListCount() != App().Layers.Count())
    vlstLayers->setListCount(App().Layers.Count());
  ShowStatus();
}

void cvIconDesignView::SelectRow(int row) {
  vlstLayers->setListIndex(row);
  vlstLayers_Click();
}

void cvIconDesignView::RedrawList() {
  vlstLayers->Refresh();
}

void cvIconDesignView::ShowStatus() {
  if (!Statusbar_ || !HasApp()) return;
  AppContext& app = App();
  Statusbar_->Caption = LanguageText("CountIcons").Text + ": " + std::to_string(app.BaseIcons.Count()) +
                        "   " + LanguageText("History").Text + ": " +
                        std::to_string(app.UndoRedo.HistoryCount());
}

void cvIconDesignView::vlstLayers_Click() {
  AppContext& app = App();
  if (auto* clip = tbarCanvas2->Item("ClipWithForm")) clip->Checked = false;
  const int row = SelectedRow();
  if (row < 0) {
    CurrentLayer = nullptr;
    Canvas->setShowRulerPos(false);
    Refresh();
    CanvasRedraw();
    return;
  }
  SetCanvasLock();
  // The controls are set from the layer: none of them may write back, nor
  // take a snapshot.
  struct Selecting {
    cvIconDesignView& v;
    AppContext& app;
    Selecting(cvIconDesignView& view, AppContext& a) : v(view), app(a) {
      app.ApplyingHistory = true;
      v.SelectingLayer = true;
    }
    ~Selecting() {
      app.ApplyingHistory = false;
      v.SelectingLayer = false;
    }
  } selecting(*this, app);
  CurrentLayer = app.Layers.Item(row);
  const cSVGItem& layer = *CurrentLayer;
  Canvas->setShowRulerPos(layer.Visible());
  PosQuad->setCurPos(layer.Pos());
  const double zoom = std::round(layer.ZoomPercent());
  if (sldZoom->Value() != zoom) sldZoom->setValue(zoom);
  Opacity1->setValue(app.DesignOpacityOn ? app.DesignOpacity : layer.Opacity());
  if (app.DesignOpacityOn) {
    optAllLayers_->Choose();
  } else {
    optCurrLayer_->Choose();
  }
  ShowDistance(layer);
  Refresh();
  CanvasRedraw();
}

void cvIconDesignView::ShowDistance(const cSVGItem& layer) {
  const int n = std::clamp(static_cast<int>(layer.Distance() / 100 * 256), 0, 256);
  DropDistance->setListIndex(256 - n);
}

// ---- undo

void cvIconDesignView::AddToHistory() {
  qds::AddToHistory(App());
  SetMenuCanvasEnabledState();
  ShowStatus();
}

void cvIconDesignView::SetHistory(int mode) {
  // A rebuilt stack reaches the list through LayersRestored.
  qds::SetHistory(App(), mode);
  Refresh();
  ShowStatus();
}

// ---- what is enabled

void cvIconDesignView::Refresh() {
  if (!tbarLayers) return;
  SetMenuLayerEnabledState();
  SetMenuCanvasEnabledState();
  SetWidgetEnabledStates();
}

void cvIconDesignView::SetMenuLayerEnabledState() {
  AppContext& app = App();
  auto enable = [this](const char* key, bool on) {
    if (auto* item = tbarLayers->Item(key)) item->setEnabled(on);
  };
  const int row = SelectedRow();
  enable("Save", !app.Layers.Empty());
  enable("Open", true);
  if (row < 0) {
    for (const char* key : {"Minus", "DeleteAll", "Config", "Overlay", "ArrowUp", "ArrowDown"})
      enable(key, false);
    return;
  }
  const cSVGItem& layer = *app.Layers.Item(row);
  enable("Minus", true);
  enable("DeleteAll", true);
  enable("Config", CreateSettingsMenu() > 0);
  enable("Overlay", layer.IsOverlay() && !layer.Style().empty());
  enable("ArrowDown", row < app.Layers.Count() - 1);
  enable("ArrowUp", row >= 1);
}

void cvIconDesignView::SetMenuCanvasEnabledState() {
  AppContext& app = App();
  auto item = [this](const char* key) { return tbarCanvas2->Item(key); };
  auto enable = [&](const char* key, bool on) {
    if (auto* i = item(key)) i->setEnabled(on);
  };
  enable("Undo", app.UndoRedo.UndoEnabled());
  enable("Redo", app.UndoRedo.RedoEnabled());
  const int row = SelectedRow();
  const SVGItemPtr layer = row >= 0 ? app.Layers.Item(row) : nullptr;
  if (!layer || !layer->Visible()) {
    for (const char* key :
         {"FillOptions", "Line", "ClipWithForm", "ClipWithIcon", "Effects", "Rotation", "btnPipette"})
      enable(key, false);
    return;
  }
  enable("btnPipette", true);
  enable("Rotation", true);
  CheckShadowOptions();
  enable("FillOptions", !(row == app.Layers.Count() - 1 && app.Layers.Count() == 1));
  const bool line = IsFlatStyle(layer->Style(), layer->Theme(), layer->TextContent());
  enable("Line", line);
  if (auto* i = item("Line")) i->Checked = layer->EffIsLine();
  if (layer->EffType() != 0) enable("Rotation", false);
  enable("ClipWithForm", layer->ClipIBaseKey().empty() && layer->EffType() != 2);
  const bool backgroundElement =
      layer->Style() == "Design Elements" && layer->FriendlyName().find("Background") != std::string::npos;
  enable("ClipWithIcon", layer->ClipIBaseKey().empty() && !backgroundElement);
}

void cvIconDesignView::CheckShadowOptions() {
  const SVGItemPtr& layer = CurrentLayer;
  if (!layer) return;
  if (auto* i = tbarCanvas2->Item("Effects")) i->setEnabled(layer->EffType() == 0);
  const bool on =
      !(layer->Style() == "Design Elements" && layer->FriendlyName().find("Background") == std::string::npos);
  for (const char* key : {"ShadowLong", "WallShadow", "Mirroring", "Glow"})
    menu_->setItemEnabled(std::string("MenuEffects>") + key, on);
  menu_->setItemEnabled("MenuEffects>Blur", true);
}

void cvIconDesignView::SetWidgetEnabledStates() {
  const int row = SelectedRow();
  Widget* all[] = {tbarCanvas,   DropDistance, lblDistance_, PosQuad,       ColorAdjust_, ColorSettings_,
                   ColorThemes_, Opacity1,     lblOpacity_,  optCurrLayer_, optAllLayers_};
  if (row < 0) {
    for (Widget* w : all) w->setEnabled(false);
  } else {
    const cSVGItem& layer = *App().Layers.Item(row);
    const bool visible = layer.Visible();
    for (Widget* w : all) w->setEnabled(visible);
    ColorSettings_->setEnabled(true);
    const bool free = layer.Pos() == 5 || layer.Pos() == 0;
    DropDistance->setEnabled(visible && !free);
    lblDistance_->setEnabled(visible && !free);
  }
  for (Widget* w : all) w->Refresh();
}

}  // namespace qds
