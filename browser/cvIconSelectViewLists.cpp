// The select view's two lists: what they draw, taking icons into the
// selection and out of it, and renaming and deleting icons of the library.

#include <algorithm>
#include <climits>
#include <memory>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modTexts.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "browser/IconPictures.h"
#include "browser/cvIconSelectView.h"
#include "platform/DbConnection.h"
#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwRename.h"
#include "widgets/cwVListNew.h"

namespace qds {

namespace {

// The library ID an item stands for; an item of no row raises, so that
// nothing is ever changed in the library under a made-up ID.
int LibraryId(const cSVGItem& item) {
  const Value& v = item.ID();
  const std::int64_t id = v.IsNumber() ? v.AsLong() : 0;
  if (id <= 0 || id > INT_MAX)
    Raise(ErrNo::InvalidArgument, "\"" + v.AsString() + "\" is no icon of the library");
  return static_cast<int>(id);
}

// The icon's ID as a key; 0 for an item of no row.
int IdOf(const cSVGItem& item) {
  const Value& v = item.ID();
  const std::int64_t id = v.IsNumber() ? v.AsLong() : 0;
  return id > 0 && id <= INT_MAX ? static_cast<int>(id) : 0;
}

// Removes the items of `ids` from a collection, whatever its keys.
void RemoveIds(ItemCollection& items, const std::vector<int>& ids) {
  for (int i = items.Count() - 1; i >= 0; --i) {
    if (std::find(ids.begin(), ids.end(), IdOf(*items.Item(i))) != ids.end()) items.RemoveAt(i);
  }
}

// What stands behind an icon: the chess board of transparency when the
// settings ask for it, else a light tile, since most library icons are
// dark and would vanish on the studio's dark lists.
constexpr std::int64_t kIconTile = 0xE4E4E4;

void DrawIconBackground(DrawingContext& cc, const char* key, double x, double y, double side, double alpha) {
  if (App().Config->ShowIconBG()) {
    if (const SurfacePtr pattern = App().ImageList().Get(key))
      cc.DrawSurface(pattern, x, y, side, side, Filter::Good, alpha);
    return;
  }
  cc.SetSourceColor(kIconTile, alpha);
  cc.RoundedRectangle(x - 2, y - 2, side + 4, side + 4, 4);
  cc.Fill();
}

}  // namespace

// ---- taking icons into the selection and out of it

void cvIconSelectView::Update_SelectedIcons(const std::vector<int>& indexes) {
  ItemCollection& results = App().SelectIcons;
  ItemCollection& selection = App().IconSelection;
  bool added = false;
  for (int index : indexes) {
    if (index < 0 || index >= results.Count()) continue;
    const cSVGItem& icon = *results.Item(index);
    const std::string key = icon.ID().AsString();
    if (selection.Exists(key)) continue;  // an icon is chosen once
    auto chosen = std::make_shared<cSVGItem>();
    chosen->Init(icon.ID(), icon.SvgBytes(), icon.FriendlyName());
    chosen->setStyle(icon.Style());
    chosen->setTheme(icon.Theme());
    selection.Add(chosen, key);
    added = true;
  }
  if (!added) return;
  SelectionChanged = true;
  vlstSelectedIcons->setListCount(selection.Count());
  vlstSelectedIcons->Refresh();
  RefreshStatus();
}

void cvIconSelectView::vlstIcons_DblClick() {
  Update_SelectedIcons({vlstIcons->ListIndex()});
}

void cvIconSelectView::vlstIcons_MouseUpClick() {
  RefreshButtons();
}

void cvIconSelectView::vlstSelectedIcons_DragDropDst(const std::string& dataKey, Widget& source) {
  if (dataKey != kDragKey || &source != vlstIcons) return;
  Update_SelectedIcons(vlstIcons->GetSelections());
}

void cvIconSelectView::vlstSelectedIcons_DblClick() {
  const int index = vlstSelectedIcons->ListIndex();
  if (index >= 0) RemoveSelected({index});
}

void cvIconSelectView::vlstSelectedIcons_DeleteKeyPressed() {
  RemoveSelected(vlstSelectedIcons->GetSelections());
}

void cvIconSelectView::RemoveSelected(std::vector<int> indexes) {
  ItemCollection& selection = App().IconSelection;
  std::sort(indexes.rbegin(), indexes.rend());
  bool removed = false;
  for (int index : indexes) {
    if (index < 0 || index >= selection.Count()) continue;
    selection.RemoveAt(index);
    removed = true;
  }
  vlstSelectedIcons->ClearSelections();
  vlstSelectedIcons->setListIndex(-1);
  vlstSelectedIcons->setListCount(selection.Count());
  vlstSelectedIcons->Refresh();
  if (removed) SelectionChanged = true;
  RefreshStatus();
}

void cvIconSelectView::tbarSelectedIcons_Click(const std::string& key) {
  cwVListNew& list = *vlstSelectedIcons;
  if (key == "Minus") {
    RemoveSelected(list.GetSelections());
  } else if (key == "RemoveAllIcons") {
    if (!App().IconSelection.Empty()) SelectionChanged = true;
    App().IconSelection.Clear();
    list.ClearSelections();
    list.setListIndex(-1);
    list.setListCount(0);
  } else if (key == "SelectAll") {
    if (!list.GetSelections().empty()) list.ClearSelections();
    for (int i = 0; i < list.ListCount(); ++i) list.setSelected(i, true);
  } else if (key == "DeselectAll") {
    list.ClearSelections();
  }
  list.Refresh();
  RefreshStatus();
}

void cvIconSelectView::btnSelectAll_Click() {
  vlstIcons->ClearSelections();
  for (int i = 0; i < vlstIcons->ListCount(); ++i) vlstIcons->setSelected(i, true);
  vlstIcons->Refresh();
  RefreshButtons();
}

// ---- renaming and deleting in the library

void cvIconSelectView::btnRename_Click() {
  const std::vector<int> selected = vlstIcons->GetSelections();
  if (selected.size() != 1 || selected[0] >= App().SelectIcons.Count()) return;
  const cSVGItem& icon = *App().SelectIcons.Item(selected[0]);
  const int id = LibraryId(icon);

  auto rename = std::make_unique<cwRename>();
  rename->setName(icon.FriendlyName());
  rename->NameChanged = [this, id](const std::string& newName) {
    Handle("Rename_NameChanged", [&] { Rename_NameChanged(id, newName); });
  };
  cfToolDialog dialog;
  dialog.ImageKey = "Logo";
  double x = 0, y = 0;
  dialog.CentredPosition(cwRename::kWidth, cwRename::kHeight, x, y);
  int result = ToolResult::Cancel;
  dialog.ShowWidget(std::move(rename), LanguageText("Rename").Text, x, y, cwRename::kWidth, cwRename::kHeight,
                    result);
}

void cvIconSelectView::Rename_NameChanged(int id, const std::string& newName) {
  if (newName.empty()) return;  // the dialog refuses it; nothing reaches the library
  DbConnection& cnn = App().Cnn;
  if (!cnn.Execute("Update Images Set Name = '" + SqlText(newName) + "' Where ID = " + std::to_string(id)))
    Raise(cnn.ErrorNumber(), cnn.ErrorText());
  if (cnn.Changes() == 0) Raise(ErrNo::OutOfRange, "The icon is no longer in the library");
  for (ItemCollection* items : {&App().SelectIcons, &App().IconSelection, &App().OverlayIcons}) {
    for (auto& entry : *items) {
      if (IdOf(*entry.Item) == id) entry.Item->setFriendlyName(newName);
    }
  }
  vlstIcons->Refresh();
  vlstSelectedIcons->Refresh();
}

void cvIconSelectView::btnDeleteIcons_Click() {
  const std::vector<int> selected = vlstIcons->GetSelections();
  if (selected.empty()) return;
  std::vector<int> ids;
  std::string list;
  for (int index : selected) {
    if (index >= App().SelectIcons.Count()) continue;
    const int id = LibraryId(*App().SelectIcons.Item(index));
    ids.push_back(id);
    list += (list.empty() ? "" : ",") + std::to_string(id);
  }
  if (ids.empty()) return;
  if (ShowMsgBox(LanguageText("DeleteIcon").Text, MsgStyle::YesNo, LanguageText("DeleteIcons").Text,
                 "MsgDelIcons") != MsgResult::Yes)
    return;
  DbConnection& cnn = App().Cnn;
  // Nothing leaves the lists unless the library has let the icons go.
  if (!cnn.Execute("Delete from Images where ID in (" + list + ")"))
    Raise(cnn.ErrorNumber(), cnn.ErrorText());
  RemoveIds(App().SelectIcons, ids);
  RemoveIds(App().IconSelection, ids);
  RemoveIds(App().OverlayIcons, ids);
  vlstIcons->ClearSelections();
  vlstIcons->setListIndex(-1);
  vlstSelectedIcons->ClearSelections();
  vlstSelectedIcons->setListIndex(-1);
  RefreshLists();
}

// ---- painting

void cvIconSelectView::vlstIcons_OwnerDrawItem(int index, DrawingContext& cc, double dx, double dy,
                                               double alpha) {
  const ItemCollection& results = App().SelectIcons;
  if (index < 0 || index >= results.Count()) return;
  const cSVGItem& icon = *results.Item(index);
  const double side = std::min({dx, dy, static_cast<double>(kCellPicture)});
  const double x = (dx - side) / 2, y = (dy - side) / 2;
  DrawIconBackground(cc, "BasePat64", x, y, side, alpha);
  cc.DrawSurface(IconPicture(App(), IdOf(icon), icon.SvgBytes(), static_cast<int>(side)), x, y, side, side,
                 Filter::Good, alpha);
}

void cvIconSelectView::vlstSelectedIcons_OwnerDrawItem(int index, DrawingContext& cc, double dx, double dy,
                                                       double alpha) {
  const ItemCollection& selection = App().IconSelection;
  if (index < 0 || index >= selection.Count()) return;
  const cSVGItem& icon = *selection.Item(index);
  const double side = std::min(dy - 6, static_cast<double>(kRowPicture));
  if (side <= 0) return;
  const double top = (dy - side) / 2;
  DrawIconBackground(cc, "BasePat48", 3, top, side, alpha);
  cc.DrawSurface(IconPicture(App(), IdOf(icon), icon.SvgBytes(), static_cast<int>(side)), 3, top, side, side,
                 Filter::Good, alpha);
  const double left = side + 10, line = side / 3;
  cc.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  const std::string lines[] = {styleCaption_ + ": " + icon.Style(), themeCaption_ + ": " + icon.Theme(),
                               nameCaption_ + ": " + icon.FriendlyName()};
  for (int i = 0; i < 3; ++i)
    cc.DrawText(left, top + i * line, dx - left - 2, line, lines[i], true, TextAlign::Left,
                TextAlign::Middle);
}

// ---- the selection in the design

void cvIconSelectView::UpdateSelection() {
  AppContext& app = App();
  ItemCollection& layers = app.Layers;
  const bool hadBase = layers.Exists("_BaseIco");
  const int filter = hadBase ? layers.Item("_BaseIco")->Filter() : -1;
  app.DesignModified = false;

  app.BaseIcons.Clear();
  for (const auto& entry : app.IconSelection) {
    const SVGItemPtr& icon = entry.Item;
    app.BaseIcons.Add(icon->Clone(), icon->ID().AsString());
  }

  if (!app.BaseIcons.Empty()) {
    SVGItemPtr base = app.BaseIcons.Item(0)->Clone();
    // In place, so the base layer keeps its position in the stack.
    if (hadBase) {
      layers.Replace("_BaseIco", base);
    } else {
      layers.Add(base, "_BaseIco");
    }
    base->setSelectionIndex(0);
    if (filter != -1) base->setFilter(filter);
  } else if (hadBase) {
    // The base layer goes, and with it the effect drawn from it.
    for (int i = layers.Count() - 1; i >= 0; --i) {
      if (layers.KeyByIndex(i) != "_BaseIco" && layers.Item(i)->EffSymbolKey() == "_BaseIco")
        layers.RemoveAt(i);
    }
    layers.Remove("_BaseIco");
  }
}

}  // namespace qds
