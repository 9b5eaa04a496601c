// The commands on the layer stack: the rows and their small buttons, the
// layer tool bar, copy and paste, the settings menu, new text and shape
// layers, and the templates.

#include <algorithm>
#include <chrono>
#include <ctime>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modTexts.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "browser/cvIconSelectView.h"
#include "design/cvIconDesignView.h"
#include "design/cwCanvas.h"
#include "design/cwLoadTemplate.h"
#include "design/cwSaveTemplate.h"
#include "design/modTemplateDialogs.h"
#include "engine/modFunctions.h"
#include "engine/modHistory.h"
#include "platform/DbConnection.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/ImageList.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwMenu.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/ui/PlatformRoot.h"
#include "store/modDB.h"
#include "widgets/cwSlider.h"
#include "widgets/cwToolBar.h"
#include "widgets/cwVListNew.h"

namespace qds {

namespace {

bool Contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

bool IsSetLayer(const std::string& key, const cSVGItem& layer) {
  return key == "_BaseIco" || layer.UseAsOverlay();
}

}  // namespace

std::string cvIconDesignView::Stamp() const {
  if (StampNow) return StampNow();
  // The loop's clock, which a scripted run moves on by its waits.
  PlatformRoot* root = PlatformRoot::Current();
  const auto elapsed = std::chrono::milliseconds(root ? static_cast<long long>(root->NowMs() - startMs_) : 0);
  const std::time_t now = std::chrono::system_clock::to_time_t(
      startWall_ + std::chrono::duration_cast<std::chrono::system_clock::duration>(elapsed));
  std::tm local{};
  localtime_r(&now, &local);
  char text[16];
  std::strftime(text, sizeof text, "%d%m%y%H%M%S", &local);
  return text;
}

std::string cvIconDesignView::CopyKey(const std::string& key) const {
  if (Contains(key, "Text")) return Stamp() + "Text";
  if (Contains(key, "Shapes")) return Stamp() + "Shapes";
  return key;
}

// ---- the rows

int cvIconDesignView::RowButtonAt(double x, double y, double w, double h) {
  if (y <= h - kButtonBand || y > h || x < w - 4 * kButton || x > w) return -1;
  return std::min(3, static_cast<int>((x - (w - 4 * kButton)) / kButton));
}

bool cvIconDesignView::RowButtonShown(const std::string& key, const cSVGItem& layer, int button) const {
  AppContext& app = App();
  switch (button) {
    case BtnMinus:
      return IsSetLayer(key, layer) && layer.SelectionIndex() > 0;
    case BtnPlus:
      return IsSetLayer(key, layer) &&
             layer.SelectionIndex() < (key == "_BaseIco" ? app.BaseIcons : app.OverlayLayers).Count() - 1;
    case BtnCut:
      return layer.ClipExists() || !layer.ClipIOverlayKey().empty();
    default:
      return true;
  }
}

void cvIconDesignView::vlstLayers_OwnerDrawItem(int index, DrawingContext& cc, double dx, double dy,
                                                double alpha) {
  AppContext& app = App();
  if (index < 0 || index >= app.Layers.Count()) return;
  const std::string& key = app.Layers.KeyByIndex(index);
  cSVGItem& layer = *app.Layers.Item(index);
  const double side = std::min(dy - 8, static_cast<double>(kRowPicture));
  const double top = (dy - side) / 2;
  cc.SetSourceColor(0xE4E4E4, alpha);
  cc.RoundedRectangle(2, top - 2, side + 4, side + 4, 4);
  cc.Fill();
  if (side > 0) {
    SurfacePtr picture = DrawingSurface::Create(static_cast<int>(side), static_cast<int>(side));
    {
      DrawingContext pc(picture);
      layer.RenderTo(pc, side, side);
    }
    cc.DrawSurface(picture, 4, top, side, side, Filter::Good, layer.Visible() ? alpha : alpha * 0.4);
  }
  const double left = side + 12;
  cc.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  // A text layer is known by what it says.
  std::string name = layer.TextContent().empty() ? layer.FriendlyName() : "\"" + layer.TextContent() + "\"";
  if (IsSetLayer(key, layer)) {
    const ItemCollection& set = key == "_BaseIco" ? app.BaseIcons : app.OverlayLayers;
    name += "  (" + std::to_string(layer.SelectionIndex() + 1) + "/" + std::to_string(set.Count()) + ")";
  }
  cc.DrawText(left, 2, dx - left - 2, dy - kButtonBand - 2, name, true, TextAlign::Left, TextAlign::Middle);

  // The small buttons along the bottom edge, each where RowButtonAt finds it.
  static const char* const shown[] = {"Minus", "Plus", "Cut", "Eye"};
  for (int b = BtnMinus; b <= BtnEye; ++b) {
    if (!RowButtonShown(key, layer, b)) continue;
    std::string picture = shown[b];
    if (b == BtnCut && !layer.ClipVisible()) picture = "Cut_Cancel";
    if (b == BtnEye && !layer.Visible()) picture = "Eye_Cancel";
    const double x = dx - (4 - b) * kButton, y = dy - kButtonBand + 1;
    // On the selected row's accent the accent pictures need a tile.
    if (index == vlstLayers->ListIndex()) {
      cc.SetSourceColor(0xE4E4E4, alpha);
      cc.RoundedRectangle(x + 1, y + 1, kButton - 2, kButton - 2, 3);
      cc.Fill();
    }
    if (const SurfacePtr icon = app.ImageList().Get(picture))
      cc.DrawSurface(icon, x + 2, y + 2, kButton - 4, kButton - 4, Filter::Good, alpha);
  }
}

void cvIconDesignView::vlstLayers_MouseUpClick() {
  if (rowDropped_) {
    rowDropped_ = false;
    return;
  }
  const int row = SelectedRow();
  if (row < 0 || row != rowMouseIndex_) return;
  CheckLayerItemBtn(row, rowMouseX_, rowMouseY_);
}

void cvIconDesignView::vlstLayers_DragDropDst(const std::string& dataKey, double x, double y) {
  (void)x, (void)y;
  if (dataKey != vlstLayers->DragDataKey) return;
  rowDropped_ = true;
  AppContext& app = App();
  const int from = dragRow_;
  dragRow_ = -1;
  const int to = vlstLayers->ListIndex();  // the row under the drop
  if (from < 0 || from >= app.Layers.Count() || to < 0 || to == from) return;
  MoveLayer(from, to);
}

void cvIconDesignView::CheckLayerItemBtn(int row, double x, double y) {
  AppContext& app = App();
  const std::string key = app.Layers.KeyByIndex(row);
  const SVGItemPtr layer = app.Layers.Item(row);
  const int button = RowButtonAt(x, y, vlstLayers->DrawWidth() - 1, kRowHeight);
  if (button < 0 || !RowButtonShown(key, *layer, button)) return;
  switch (button) {
    case BtnMinus:
      StepSelectionIndex(-1);
      return;
    case BtnPlus:
      StepSelectionIndex(1);
      return;
    case BtnCut:
      layer->setClipVisible(!layer->ClipVisible());
      if (!layer->ClipVisible()) {
        if (auto* item = tbarCanvas2->Item("ClipWithForm")) item->Checked = false;
      }
      UpdateShadow();
      AddToHistory();
      break;
    case BtnEye:
      layer->setVisible(!layer->Visible());
      AddToHistory();
      SetWidgetEnabledStates();
      SetMenuCanvasEnabledState();
      Canvas->setShowRulerPos(layer->Visible());
      break;
  }
  RedrawList();
  CanvasRedraw();
}

void cvIconDesignView::StepSelectionIndex(int delta) {
  AppContext& app = App();
  const int row = SelectedRow();
  if (row < 0) return;
  const std::string key = app.Layers.KeyByIndex(row);
  cSVGItem& layer = *app.Layers.Item(row);
  if (!IsSetLayer(key, layer)) return;
  const ItemCollection& set = key == "_BaseIco" ? app.BaseIcons : app.OverlayLayers;
  const int index = layer.SelectionIndex() + delta;
  if (index < 0 || index >= set.Count()) return;
  layer.setSelectionIndex(index);
  const cSVGItem& icon = *set.Item(index);
  layer.setID(icon.ID());
  layer.setStyle(icon.Style());
  layer.setTheme(icon.Theme());
  layer.setFriendlyName(icon.FriendlyName());
  layer.setSvgBytes(icon.SvgBytes());
  layer.setFilter(icon.Filter());
  if (icon.Filter() != -1) layer.setColorItem(icon.ColorItem());
  if (layer.EffIsLine()) layer.SettingsRefresh();
  UpdateShadow();
  UpdateClipWithIcon(false);
  RedrawList();
  CanvasRedraw();
}

void cvIconDesignView::vlstLayers_DblClick() {
  const SVGItemPtr layer = CurrentLayer;
  if (!layer || !layer->Visible()) return;
  const int row = SelectedRow();
  const std::string key = row >= 0 ? App().Layers.KeyByIndex(row) : std::string();
  static const char* const effects[] = {nullptr, "ShadowLong", "WallShadow", nullptr, "Mirroring", "Glow"};
  const int eff = layer->EffType();
  std::string tool;
  if (eff >= 1 && eff <= 5 && effects[eff]) {
    tool = effects[eff];
  } else if (layer->ClipExists() && layer->ClipVisible()) {
    tool = "ClipWithForm";
  } else if (!layer->ClipIOverlayKey().empty() && layer->ClipVisible()) {
    tool = "ClipWithIcon";
  } else if (layer->EffBlur() > 0) {
    tool = "Blur";
  } else if (!layer->TextContent().empty()) {
    tool = "Text";
  } else if (Contains(key, "Shapes")) {
    tool = "Shapes";
  } else if (layer->EffIsLine()) {
    tool = "Line";
  } else if (layer->Angle() != 0) {
    tool = "Rotation";
  }
  if (!tool.empty()) ShowToolWindow(tool);
}

// ---- the layer tool bar

void cvIconDesignView::tbarLayers_Click(const std::string& key) {
  const int row = SelectedRow();
  if (key == "ArrowUp" && row >= 1) {
    MoveLayer(row, row - 1);
  } else if (key == "ArrowDown" && row >= 0 && row < App().Layers.Count() - 1) {
    MoveLayer(row, row + 1);
  } else if (key == "Minus" && row >= 0) {
    DeleteLayer();
  } else if (key == "DeleteAll" && row >= 0) {
    DeleteAllLayers();
  } else if (key == "Config" && row >= 0) {
    if (CreateSettingsMenu() > 0) ShowMenu("MenuSettings", *tbarLayers->Item("Config"));
  } else if (key == "Save") {
    ShowSaveTemplate();
  } else if (key == "Open") {
    OpenTemplate();
  } else if (key == "Overlay" && row >= 0) {
    cSVGItem& layer = *App().Layers.Item(row);
    if (!layer.IsOverlay() || layer.Style().empty()) return;
    layer.setUseAsOverlay(!layer.UseAsOverlay());
    CreateOverlaySet();
    RedrawList();
  }
}

void cvIconDesignView::MoveLayer(int from, int to) {
  AppContext& app = App();
  const SVGItemPtr item = app.Layers.Item(from);
  const std::string key = app.Layers.KeyByIndex(from);
  app.Layers.RemoveAt(from);
  app.Layers.AddBefore(item, key, to);
  SyncListCount();
  vlstLayers->setListIndex(to);
  vlstLayers_Click();
  CanvasRedraw();
  Refresh();
  AddToHistory();
}

bool cvIconDesignView::ConfirmRemoveLayer() const {
  const cLanguage text = LanguageText("RemoveIcon");
  return ShowMsgBox(text.Text, MsgStyle::YesNo, text.Tooltip, "MsgDelLayer") == MsgResult::Yes;
}

void cvIconDesignView::ShowAfterRemoval(int row) {
  AppContext& app = App();
  SyncListCount();
  if (!app.Layers.Empty()) {
    vlstLayers->setListIndex(std::min(row, app.Layers.Count() - 1));
    vlstLayers_Click();
  } else {
    CurrentLayer = nullptr;
    app.DesignOpacity = 100;
    app.DesignOpacityOn = false;
    Opacity1->setValue(100);
  }
  CanvasRedraw();
  AddToHistory();
  Refresh();
}

void cvIconDesignView::DeleteLayer() {
  AppContext& app = App();
  const int row = SelectedRow();
  if (row < 0 || !ConfirmRemoveLayer()) return;
  const std::string key = app.Layers.KeyByIndex(row);
  const SVGItemPtr layer = app.Layers.Item(row);
  // The layers that cut this one, or that this one cuts, forget it.
  if (!layer->ClipIBaseKey().empty() && app.Layers.Exists(layer->ClipIBaseKey())) {
    const SVGItemPtr& base = app.Layers.Item(layer->ClipIBaseKey());
    base->setClipIOverlayKey("");
    base->setClipIPath(nullptr);
    layer->setClipIOverlayID(Value(0));
  }
  if (!layer->ClipIOverlayKey().empty() && app.Layers.Exists(layer->ClipIOverlayKey()))
    app.Layers.Item(layer->ClipIOverlayKey())->setClipIBaseKey("");
  if (layer->UseAsOverlay()) app.OverlayLayers.Clear();
  app.Layers.RemoveAt(row);
  DeleteEffectItems(app, key, true);
  ShowAfterRemoval(row);
}

void cvIconDesignView::vlstLayers_DeleteKeyPressed() {
  const int row = SelectedRow();
  if (row < 0 || !ConfirmRemoveLayer()) return;
  // Only the row goes: its effect layer and the clips that name it stay,
  // until an undo pass tidies them.
  App().Layers.RemoveAt(row);
  ShowAfterRemoval(row);
}

void cvIconDesignView::DeleteAllLayers() {
  AppContext& app = App();
  if (ShowMsgBox(LanguageText("RemoveIcons").Text, MsgStyle::YesNo, LanguageText("RemoveIcons").Tooltip,
                 "MsgDelAllLayer") == MsgResult::No)
    return;
  vlstLayers->setListIndex(-1);
  app.Layers.Clear();
  app.OverlayLayers.Clear();
  app.SpareItems.Clear();
  app.BaseIcons.Clear();
  app.IconSelection.Clear();
  if (SelectView && SelectView->vlstSelectedIcons) SelectView->vlstSelectedIcons->setListCount(0);
  CurrentLayer = nullptr;
  TemplateName.clear();
  TemplateDescription.clear();
  app.DesignOpacity = 100;
  app.DesignOpacityOn = false;
  SyncListCount();
  CanvasRedraw();
  SetHistory(HistoryMode::Clear);
  Refresh();
}

void cvIconDesignView::CreateOverlaySet() {
  AppContext& app = App();
  const int row = SelectedRow();
  if (row < 0) return;
  const SVGItemPtr layer = app.Layers.Item(row);
  if (layer->Style().empty() || !layer->IsOverlay()) return;
  app.OverlayLayers.Clear();
  const std::string oldKey = app.Layers.KeyByIndex(row);
  app.Layers.RemoveAt(row);
  std::string newKey;
  if (layer->UseAsOverlay()) {
    newKey = "_Overlay";
    AddBaseSVGs(app, 0, 0, "Overlay=-1 and [Styles].Name='" + SqlText(layer->Style()) + "'",
                app.OverlayLayers);
    app.Layers.AddBefore(layer, newKey, row);
    const int at = app.OverlayLayers.IndexByKey(layer->ID().AsString());
    layer->setSelectionIndex(std::max(at, 0));
  } else {
    newKey = layer->ID().AsString();
    app.Layers.AddBefore(layer, newKey, row);
  }
  SyncListCount();
  EffectReplaceSymbolKey(app, oldKey, newKey);
  if (!layer->ClipIBaseKey().empty() && app.Layers.Exists(layer->ClipIBaseKey()))
    app.Layers.Item(layer->ClipIBaseKey())->setClipIOverlayKey(newKey);
  AddToHistory();
}

// ---- copy, paste and duplicate

void cvIconDesignView::InsertLayer() {
  if (!LayerClipboard) return;
  AppContext& app = App();
  const int row = SelectedRow();
  // A failed add (a library overlay still in the stack) ends the handler
  // here, with the stack and the history as they were.
  app.Layers.AddBefore(LayerClipboard->Clone(), CopyKey(LayerClipboardKey), row);
  SyncListCount();
  if (row < 0) vlstLayers->setListIndex(0);
  vlstLayers_Click();
  CanvasRedraw();
  AddToHistory();
}

void cvIconDesignView::DuplicateLayer() {
  AppContext& app = App();
  const int row = SelectedRow();
  if (row < 0 || !CurrentLayer) return;
  app.Layers.AddBefore(CurrentLayer->Clone(), CopyKey(app.Layers.KeyByIndex(row)), row);
  SyncListCount();
  vlstLayers_Click();
  CanvasRedraw();
  AddToHistory();
}

void cvIconDesignView::ReplaceDesign() {
  if (!ColorClipboard || !CurrentLayer) return;
  const cSVGItem& from = *ColorClipboard;
  cSVGItem& to = *CurrentLayer;
  to.setFillOptions(from.FillOptions());
  to.setOpacity(from.Opacity());
  if (!from.RCOldColorString().empty()) {
    to.setRCOldColorString(from.RCOldColorString());
    to.setRCNewColorString(from.RCNewColorString());
  }
  while (to.GradStopsCount() > 0) to.GradStopsRemove(0);
  if (from.GradStopsCount() > 0) to.GradCloneIntoMeFrom(from);
  to.setFilter(from.Filter());
  to.setColorItem(from.ColorItem());
  vlstLayers_Click();
  UpdateShadow();
  CanvasRedraw();
  AddToHistory();
}

// ---- new layers

void cvIconDesignView::tbarCanvas2_Click(const std::string& key) {
  if (key == "Text") {
    AddTextLayer();
  } else if (key == "Shapes") {
    AddShapeLayer();
  } else if (key == "Undo") {
    SetHistory(HistoryMode::Undo);
  } else if (key == "Redo") {
    SetHistory(HistoryMode::Redo);
  } else if (key == "Effects") {
    ShowMenu("MenuEffects", *tbarCanvas2->Item(key));
  } else if (key == "Rotation" || key == "ClipWithForm" || key == "ClipWithIcon" || key == "Line" ||
             key == "FillOptions" || key == "btnPipette") {
    if (auto* item = tbarCanvas2->Item(key); item && key != "Line") item->Checked = false;
    ShowToolWindow(key);
  }
}

void cvIconDesignView::tbarCanvas2_ArrowClick(const std::string& key) {
  if (key == "Effects") ShowMenu("MenuEffects", *tbarCanvas2->Item(key));
  if (key == "FillOptions") ShowMenu("MenuFillOptions", *tbarCanvas2->Item(key));
}

void cvIconDesignView::AddTextLayer() {
  AppContext& app = App();
  auto layer = std::make_shared<cSVGItem>();
  const std::string key = Stamp() + "Text";
  layer->Init(Value(key), {}, "Text", nullptr, true, cSVGItem::FilterOriginal);
  layer->setTextContent("Text");
  const std::string saved = app.Config ? app.Config->TextSettings() : std::string();
  if (!saved.empty() && saved[0] == '{') {
    cSVGItem scratch;
    scratch.setSettings(saved);
    layer->setTextFontBold(scratch.TextFontBold());
    layer->setTextFontItalic(scratch.TextFontItalic());
    layer->setTextFontName(scratch.TextFontName());
    layer->setTextFontSize(scratch.TextFontSize());
    layer->setTextFontUnderline(scratch.TextFontUnderline());
  }
  layer->SettingsRefresh();
  const int row = SelectedRow();
  app.Layers.AddAfter(layer, key, row);
  SyncListCount();
  Refresh();
  vlstLayers->setListIndex(app.Layers.IndexByKey(key));
  vlstLayers_Click();
  app.PendingHistory = true;
  if (!ShowToolWindow("Text")) AddToHistory();
}

void cvIconDesignView::AddShapeLayer() {
  AppContext& app = App();
  if (app.ShapeItems.Empty()) return;
  const int shape = app.FilledCircleIndex >= 0 && app.FilledCircleIndex < app.ShapeItems.Count()
                        ? app.FilledCircleIndex
                        : 0;
  const std::string key = Stamp() + "Shapes";
  const int row = SelectedRow();
  app.Layers.AddBefore(app.ShapeItems.Item(shape)->Clone(), key, row);
  SyncListCount();
  CanvasRedraw();
  Refresh();
  vlstLayers->setListIndex(app.Layers.IndexByKey(key));
  vlstLayers_Click();
  app.PendingHistory = true;
  if (!ShowToolWindow("Shapes")) AddToHistory();
}

// ---- menus

void cvIconDesignView::ShowMenu(const std::string& root, Widget& near) {
  if (MenuOpen || menu_->ItemsUnder(root).empty()) return;
  double x = 0, y = 0;
  near.FormPosition(x, y);
  MenuOpen = true;
  menu_->ShowPopup(root, x, y + near.Height(), y);
}

int cvIconDesignView::CreateSettingsMenu() {
  AppContext& app = App();
  // The menu's own items go; the effects and blend operators stay.
  menu_->RemoveItemsUnder("MenuSettings");
  const int row = SelectedRow();
  if (row < 0) return 0;
  const std::string key = app.Layers.KeyByIndex(row);
  const cSVGItem& l = *app.Layers.Item(row);
  if (!l.Visible()) return 0;
  const int eff = l.EffType();
  const struct {
    bool rule;
    const char* key;
    const char* image;
    const char* text;
  } entries[] = {
      {eff == 1, "ShadowLong", "Shadow_Long", "ShadowLong"},
      {eff == 4, "Mirroring", "Reflection_Floor", "Mirroring"},
      {!l.TextContent().empty() && eff == 0, "Text", "Text", "Text"},
      {l.ClipExists(), "ClipWithForm", "Cut", "ClipWithForm"},
      {!l.ClipIOverlayKey().empty(), "ClipWithIcon", "Cut_Form", "ClipWithIcon"},
      {Contains(key, "Shapes"), "Shapes", "Shapes", "Shapes"},
      {l.Angle() != 0 && eff == 0, "Rotation", "Rotate", "Rotation"},
      {eff == 2, "WallShadow", "Shadow_Drop", "WallShadow"},
      {eff == 5, "Glow", "Glow", "Glow"},
      {l.EffBlur() > 0 && eff != 5 && eff != 2, "Blur", "Blur", "Blur"},
      {l.EffIsLine() && eff != 5, "Line", "Line", "OutLine"},
      {l.Filter() >= 0, "Copy", "Color_fill", "CopyColorSettings"},
      {ColorClipboard != nullptr, "Paste", "Replace", "PasteColorSettings"},
      {key != "_Overlay" && key != "_BaseIco" && eff == 0, "DuplicateLayer", "Pictures", "DuplicateLayer"},
  };
  int count = 0;
  for (const auto& e : entries) {
    if (!e.rule) continue;
    menu_->AddItem(std::string("MenuSettings>") + e.key, LanguageText(e.text).Text, e.image);
    ++count;
  }
  return count;
}

void cvIconDesignView::MenuPopUp_Click(const std::string& key) {
  const auto split = key.find('>');
  if (key.empty() || split == std::string::npos || !CurrentLayer || SelectedRow() < 0) return;
  const std::string root = key.substr(0, split), item = key.substr(split + 1);
  if (root == "MenuEffects") {
    // The effect layers arrive with their tools; until then a choice
    // leaves the design as it is.
    ShowToolWindow(item);
  } else if (root == "MenuFillOptions") {
    CurrentLayer->setFillOptions(std::atoi(item.c_str()));
    CanvasRedraw();
    AddToHistory();
    FocusCanvas();
  } else if (root == "MenuSettings") {
    if (item == "Copy") {
      ColorClipboard = CurrentLayer->Clone();
      Refresh();
    } else if (item == "Paste") {
      ReplaceDesign();
    } else if (item == "DuplicateLayer") {
      DuplicateLayer();
    } else {
      ShowToolWindow(item);
    }
  }
}

bool cvIconDesignView::ShowToolWindow(const std::string& key) {
  (void)key;
  // Each tool comes with its own work; until it does, the status line says
  // so rather than leaving the click unanswered.
  if (Statusbar_)
    Statusbar_->Caption = LanguageText(key.c_str()).Text + ": " + LanguageText("NotAvailableYet").Text;
  return false;
}

void cvIconDesignView::CollectClipItems() {
  AppContext& app = App();
  app.ClipItems.Clear();
  static const char* const shapes[] = {"Triangle",  "Marker", "Polygon",  "Border",    "Star",
                                       "Rectangle", "Circle", "Inner_BG", "Background"};
  for (const auto& e : app.Layers) {
    if (!e.Item->Visible()) continue;
    const std::string& name = e.Item->FriendlyName();
    if (std::any_of(std::begin(shapes), std::end(shapes), [&](const char* s) { return Contains(name, s); }))
      app.ClipItems.Add(e.Item->Clone(), e.Key);
  }
}

// ---- effects follow their symbols

void cvIconDesignView::UpdateShadow() {
  AppContext& app = App();
  const int row = SelectedRow();
  if (row < 0) return;
  const std::string key = app.Layers.KeyByIndex(row);
  for (const std::string& effect : {EffectKeyBySymbolKey(app, key), EffectKeyByBGKey(app, key)}) {
    if (effect.empty()) continue;
    app.Layers.Item(effect)->SettingsRefresh();
    RedrawList();
    CanvasRedraw();
  }
}

void cvIconDesignView::UpdateSymbolOfEffect() {
  AppContext& app = App();
  const SVGItemPtr glow = CurrentLayer;
  if (!glow || glow->EffType() != 5 || !app.Layers.Exists(glow->EffSymbolKey())) return;
  cSVGItem& symbol = *app.Layers.Item(glow->EffSymbolKey());
  if (glow->Pos() != 0) {
    symbol.setPos(glow->Pos());
  } else {
    symbol.setZoomPercent(glow->ZoomPercent());
    symbol.setOffSetx(glow->OffSetx());
    symbol.setOffSetY(glow->OffSetY());
  }
}

void cvIconDesignView::UpdateClipWithIcon(bool clear) {
  AppContext& app = App();
  if (!CurrentLayer || !app.Layers.Exists(CurrentLayer->ClipIBaseKey())) return;
  cSVGItem& cut = *app.Layers.Item(CurrentLayer->ClipIBaseKey());
  if (clear) cut.setClipIOverlayID(Value(0));
  cut.SettingsRefresh();
}

// ---- templates

bool cvIconDesignView::ShowSaveTemplate() {
  AppContext& app = App();
  if (app.Layers.Empty()) return false;
  // The thumbnail is the design as the canvas shows it, on a clear ground.
  const int side = std::max(16, static_cast<int>(Canvas->DrawingSide()));
  SurfacePtr picture = DrawingSurface::Create(side, side);
  {
    DrawingContext pc(picture);
    Canvas->RenderPreview(pc, side);
  }
  auto save = std::make_unique<cwSaveTemplate>();
  save->setName(TemplateName);
  save->setDescription(TemplateDescription);
  save->setThumbNail(picture->ToPngBytes());
  save->Init();
  bool saved = false;
  save->Saved = [this, &saved](const std::string& name, const std::string& description) {
    saved = true;
    Handle("SaveTemplate_Saved", [&] { SaveTemplate_Saved(name, description); });
  };
  ShowTemplateTool(std::move(save), LanguageText("SaveAsTemplate").Text, cwSaveTemplate::kWidth,
                   cwSaveTemplate::kHeight);
  return saved;
}

void cvIconDesignView::SaveTemplate_Saved(const std::string& name, const std::string& description) {
  TemplateName = name;
  TemplateDescription = description;
  App().DesignModified = false;
}

void cvIconDesignView::OpenTemplate() {
  AppContext& app = App();
  if (!app.Layers.Empty() && app.DesignModified &&
      ShowMsgBox(LanguageText("SaveDesign").Text, MsgStyle::YesNo, LanguageText("LoadTemplate").Text,
                 "MsgSaveDesign") == MsgResult::Yes)
    ShowSaveTemplate();
  auto load = std::make_unique<cwLoadTemplate>();
  load->Init();
  cwLoadTemplate* loader = load.get();
  load->TemplateChanged = [this, loader] {
    Handle("LoadTemplate_TemplateChanged",
           [&] { LoadTemplate_TemplateChanged(loader->Name(), loader->Description()); });
  };
  ShowTemplateTool(std::move(load), LanguageText("LoadTemplate").Text, cwLoadTemplate::kWidth,
                   cwLoadTemplate::kHeight);
}

void cvIconDesignView::LoadTemplate_TemplateChanged(const std::string& name, const std::string& description) {
  AppContext& app = App();
  TemplateName = name;
  TemplateDescription = description;
  // The loaded design's icons are the selection now.
  app.IconSelection.Clear();
  for (const auto& e : app.BaseIcons) app.IconSelection.Add(e.Item->Clone(), e.Key);
  if (SelectView && SelectView->vlstSelectedIcons)
    SelectView->vlstSelectedIcons->setListCount(app.IconSelection.Count());
  SyncListCount();
  vlstLayers->setListIndex(-1);
  if (!app.Layers.Empty()) {
    vlstLayers->SetFocus();
    SelectRow(0);
  } else {
    CurrentLayer = nullptr;
  }
  CanvasRedraw();
  // A load is a new start for undo.
  SetHistory(HistoryMode::Clear);
  Refresh();
}

}  // namespace qds
