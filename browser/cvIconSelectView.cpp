#include "browser/cvIconSelectView.h"

#include <algorithm>
#include <climits>
#include <utility>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modTexts.h"
#include "platform/DbConnection.h"
#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/TextUtil.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "platform/stock/cwScrollBar.h"
#include "platform/ui/PlatformRoot.h"
#include "store/modDB.h"
#include "widgets/cwDropDownList.h"
#include "widgets/cwOptionButton.h"
#include "widgets/cwTextBox.h"
#include "widgets/cwToolBar.h"
#include "widgets/cwVListNew.h"

namespace qds {

namespace {

constexpr const char* kHiddenStyle = "Design Elements";
constexpr double kLineHeight = 26, kFirstRow = 6, kSecondRow = 38, kMargin = 8;

std::string TextOf(const char* key) {
  return LanguageText(key).Text;
}

// A row's ID: a whole number above 0 that fits an int, or 0 for anything
// else (null, text, a fraction), which no row of the library has.
int RowId(const Value& v) {
  if (v.GetKind() != Value::Kind::Integer) return 0;
  const auto id = v.Get<std::int64_t>();
  return id > 0 && id <= INT_MAX ? static_cast<int>(id) : 0;
}

std::string RowText(const Value& v) {
  return v.GetKind() == Value::Kind::String ? v.Get<std::string>() : std::string();
}

}  // namespace

cvIconSelectView::cvIconSelectView() = default;
cvIconSelectView::~cvIconSelectView() = default;

void cvIconSelectView::Handle(const char* name, const std::function<void()>& body) {
  const std::string source = std::string("cvIconSelectView:") + name;
  RunHandler(source, HandlerMode::Report, [&] {
    try {
      body();
    } catch (const AppError& e) {
      // The report names the handler the user was in, not the layer below.
      throw AppError(e.Number(), e.Description(), source);
    }
  });
}

std::function<void()> cvIconSelectView::On(const char* name, void (cvIconSelectView::*handler)()) {
  return [this, name, handler] { Handle(name, [this, handler] { (this->*handler)(); }); };
}

void cvIconSelectView::WidgetInit(Widget& layout) {
  layout_ = &layout;
  pnlMain_ = layout.Find("pnlMain");
  Widget* pnlStatusBar = layout.Find("pnlStatusBar");
  if (!pnlMain_ || !pnlStatusBar)
    Raise(ErrNo::InvalidArgument, "The layout has no pnlMain or pnlStatusBar", "cvIconSelectView:WidgetInit");
  styleCaption_ = TextOf("Style");
  themeCaption_ = TextOf("Theme");
  nameCaption_ = TextOf("Name");

  // Docked in this order: the strip across the top, the selection down the
  // right below it, and the results in all the room that is left.
  auto& strip = pnlMain_->Children().Add<Widget>("pnlSearch");
  strip.setDock(Dock::Top);
  strip.Move(0, 0, 0, kTopHeight);
  CreateSearchStrip(strip);
  CreateLists(*pnlMain_);

  Statusbar_ = &pnlStatusBar->Children().Add<cwStatusBar>("Statusbar");
  Statusbar_->setDock(Dock::Fill);
  Statusbar_->OwnerDraw = [this](DrawingContext& cc, double w, double h) {
    Handle("Statusbar_OwnerDrawOnTop", [&] { Statusbar_OwnerDraw(cc, w, h); });
  };
  tmrActivate_ = std::make_unique<Timer>(*Statusbar_);
  tmrActivate_->Interval = kActivateMs;
  tmrActivate_->OnTimer = On("tmrActivate_Timer", &cvIconSelectView::tmrActivate_Timer);

  Handle("Init_DropStyles", [this] {
    Init_DropStyles();
    BrowseTheme();
  });
  RefreshLists();
}

void cvIconSelectView::CreateSearchStrip(Widget& strip) {
  lblStyles_ = &Place<cwLabel>(strip, "lblStyles", kMargin, kFirstRow, 44, kLineHeight);
  lblStyles_->Caption = TextOf("Style");
  DropStyles = &Place<cwDropDownList>(strip, "DropStyles", 54, kFirstRow, 170, kLineHeight);
  DropStyles->Click = On("DropStyles_Click", &cvIconSelectView::DropStyles_Click);
  lblThemes_ = &Place<cwLabel>(strip, "lblThemes", 234, kFirstRow, 50, kLineHeight);
  lblThemes_->Caption = TextOf("Theme");
  DropThemes = &Place<cwDropDownList>(strip, "DropThemes", 286, kFirstRow, 190, kLineHeight);
  DropThemes->Click = On("DropThemes_Click", &cvIconSelectView::DropThemes_Click);

  txtSearch = &Place<cwTextBox>(strip, "txtSearch", 492, kFirstRow, 180, kLineHeight);
  txtSearch->CueBannerText = TextOf("SearchText");
  txtSearch->KeyDown = [this](int& keyCode, int shift) {
    Handle("txtSearch_KeyPress", [&] { txtSearch_KeyDown(keyCode, shift); });
  };
  btnSearch_ = &Place<cwButton>(strip, "btnSearch", 678, kFirstRow, 110, kLineHeight);
  btnSearch_->PictureKey = "Magnifier";
  btnSearch_->Caption = TextOf("StartSearch");
  btnSearch_->ToolTip = LanguageText("StartSearch").Tooltip;
  btnSearch_->Click = On("btnSearch_Click", &cvIconSelectView::btnSearch_Click);

  // The scope of a search, beside the search text.
  double x = 798;
  const struct {
    cwOptionButton** option;
    const char* key;
    const char* caption;
  } scopes[] = {{&optSearchAll_, "optSearchAll", "All"},
                {&optSearchStyle_, "optSearchStyle", "Style"},
                {&optSearchThemes_, "optSearchThemes", "Theme"}};
  for (const auto& s : scopes) {
    *s.option = &Place<cwOptionButton>(strip, s.key, x, kFirstRow, 90, kLineHeight);
    (*s.option)->Group = "SearchScope";
    (*s.option)->Caption = TextOf(s.caption);
    x += 94;
  }
  optSearchAll_->ToolTip = LanguageText("All").Tooltip;
  optSearchAll_->Choose();

  btnSelectAll_ = &Place<cwButton>(strip, "btnSelectAll", kMargin, kSecondRow, 130, kLineHeight);
  btnSelectAll_->PictureKey = "Select_All";
  btnSelectAll_->Caption = TextOf("SelectAll");
  btnSelectAll_->Click = On("btnSelectAll_Click", &cvIconSelectView::btnSelectAll_Click);
  btnRename_ = &Place<cwButton>(strip, "btnRename", 144, kSecondRow, 130, kLineHeight);
  btnRename_->PictureKey = "Text";
  btnRename_->Caption = TextOf("RenameImage");
  btnRename_->ToolTip = LanguageText("RenameImage").Tooltip;
  btnRename_->Click = On("btnRename_Click", &cvIconSelectView::btnRename_Click);
  btnDeleteIcons_ = &Place<cwButton>(strip, "btnDeleteIcons", 280, kSecondRow, 140, kLineHeight);
  btnDeleteIcons_->PictureKey = "Trash";
  btnDeleteIcons_->Caption = TextOf("DeleteIcons");
  btnDeleteIcons_->ToolTip = LanguageText("DeleteIcons").Tooltip;
  btnDeleteIcons_->Click = On("btnDeleteIcons_Click", &cvIconSelectView::btnDeleteIcons_Click);

  // Importing and the exchange database come with a later version: the
  // buttons are in their places, but they do nothing yet and say so.
  const std::string later = TipOf("NotAvailableYet");
  btnImport_ = &Place<cwButton>(strip, "btnImport", 436, kSecondRow, 120, kLineHeight);
  btnImport_->PictureKey = "Folder_Open";
  btnImport_->Caption = TextOf("Import");
  btnImportIconsDB_ = &Place<cwButton>(strip, "btnImportIconsDB", 562, kSecondRow, 200, kLineHeight);
  btnImportIconsDB_->PictureKey = "Database_Open";
  btnImportIconsDB_->Caption = TextOf("ImportIconsFromDB");
  btnExportToIconsDB_ = &Place<cwButton>(strip, "btnExportToIconsDB", 768, kSecondRow, 160, kLineHeight);
  btnExportToIconsDB_->Caption = std::string("Copy to NewIcons.DB");
  for (cwButton* b : {btnImport_, btnImportIconsDB_, btnExportToIconsDB_}) {
    b->ToolTip = later;
    b->setEnabled(false);
  }
}

void cvIconSelectView::CreateLists(Widget& main) {
  pnlSelection_ = &main.Children().Add<Widget>("pnlSelection");
  pnlSelection_->setDock(Dock::Right);
  pnlSelection_->Move(0, 0, kSelectionWidth, 0);
  tbarSelectedIcons_ = &pnlSelection_->Children().Add<cwToolBar>("tbarSelectedIcons");
  tbarSelectedIcons_->setDock(Dock::Top);
  tbarSelectedIcons_->Move(0, 0, kSelectionWidth, kToolBarHeight);
  tbarSelectedIcons_->AddItem("Minus", "Minus", TipOf("RemoveIcons"));
  tbarSelectedIcons_->AddItem("RemoveAllIcons", "RemoveAllIcons", TipOf("RemoveAllIcons"));
  tbarSelectedIcons_->AddItem("SelectAll", "Select_All", TipOf("SelectAll"));
  tbarSelectedIcons_->AddItem("DeselectAll", "Deselect_All", TipOf("DeselectAll"));
  tbarSelectedIcons_->Click = [this](const std::string& key) {
    Handle("tbarSelectedIcons_Click", [&] { tbarSelectedIcons_Click(key); });
  };

  vlstSelectedIcons = &pnlSelection_->Children().Add<cwVListNew>("vlstSelectedIcons");
  vlstSelectedIcons->setDock(Dock::Fill);
  vlstSelectedIcons->setRowHeight(kRowHeight);
  vlstSelectedIcons->setMultiSelect(2);
  vlstSelectedIcons->CanFocus = true;
  vlstSelectedIcons->OwnerDrawItem = [this](int index, DrawingContext& cc, double dx, double dy,
                                            double alpha) {
    Handle("vlstSelectedIcons_OwnerDrawItem",
           [&] { vlstSelectedIcons_OwnerDrawItem(index, cc, dx, dy, alpha); });
  };
  vlstSelectedIcons->DblClick =
      On("vlstSelectedIcons_DblClick", &cvIconSelectView::vlstSelectedIcons_DblClick);
  vlstSelectedIcons->DeleteKeyPressed =
      On("vlstSelectedIcons_DeleteKeyPressed", &cvIconSelectView::vlstSelectedIcons_DeleteKeyPressed);
  vlstSelectedIcons->DragDropDst = [this](const std::string& dataKey, Widget& source, double, double) {
    Handle("vlstSelectedIconsW_DragDropDst", [&] { vlstSelectedIcons_DragDropDst(dataKey, source); });
  };

  vlstIcons = &main.Children().Add<cwVListNew>("vlstIcons");
  vlstIcons->setDock(Dock::Fill);
  vlstIcons->setImageView(true);
  vlstIcons->setColWidth(kCell);
  vlstIcons->setRowHeight(kCell);
  vlstIcons->setMultiSelect(2);
  vlstIcons->AllowDrag = true;
  vlstIcons->DragDataKey = kDragKey;
  vlstIcons->DragPictureKey = "Picture";
  vlstIcons->CanFocus = true;
  vlstIcons->OwnerDrawItem = [this](int index, DrawingContext& cc, double dx, double dy, double alpha) {
    Handle("vlstIcons_OwnerDrawItem", [&] { vlstIcons_OwnerDrawItem(index, cc, dx, dy, alpha); });
  };
  vlstIcons->DblClick = On("vlstIcons_DblClick", &cvIconSelectView::vlstIcons_DblClick);
  vlstIcons->MouseUpClick = On("vlstIcons_MouseUpClick", &cvIconSelectView::vlstIcons_MouseUpClick);
  // Keys change the selection too (Ctrl+A, the arrows): the buttons follow.
  vlstIcons->ChangeListIndex = On("vlstIcons_ChangeListIndex", &cvIconSelectView::RefreshButtons);
  vlstIcons->MouseMoveOnListItem = [this](int index, double, double) {
    Handle("vlstIcons_MouseMoveOnListItem", [&] {
      ItemCollection& icons = App().SelectIcons;
      vlstIcons->ToolTip =
          index >= 0 && index < icons.Count() ? icons.Item(index)->FriendlyName() : std::string();
    });
  };
}

void cvIconSelectView::HandleResize(double width, double height) {
  if (!layout_ || !pnlSelection_) return;
  (void)height;
  // A narrow window keeps room for the results: the selection takes at
  // most 40 percent of it.
  const double selection = std::clamp(width * 0.4, 120.0, kSelectionWidth);
  pnlSelection_->Move(pnlSelection_->Left(), pnlSelection_->Top(), selection, pnlSelection_->Height());
  // The lists hear their new size now, so their lines and columns follow
  // it: from the top, since the window may not have placed the layout yet.
  Widget* top = layout_;
  while (top->Parent()) top = top->Parent();
  top->LayoutNow();
}

void cvIconSelectView::SwitchToView() {
  cvView::SwitchToView();
  if (tmrActivate_) tmrActivate_->setEnabled(true);
}

void cvIconSelectView::tmrActivate_Timer() {
  tmrActivate_->setEnabled(false);
  RefreshLists();
}

// ---- styles, themes and the search

void cvIconSelectView::Init_DropStyles() {
  if (!haveStylesAndThemes_) {
    stylesAndThemes_ = QueryStylesAndThemes(App());
    haveStylesAndThemes_ = true;
  }
  DataRows rows;
  std::vector<int> seen;
  for (stylesAndThemes_.MoveFirst(); !stylesAndThemes_.Eof(); stylesAndThemes_.MoveNext()) {
    const int id = RowId(stylesAndThemes_.FieldValue("Styles_ID"));
    const std::string name = RowText(stylesAndThemes_.FieldValue("Styles_Name"));
    // A row whose ID is no ID cannot be browsed; it is left out.
    if (id == 0 || name == kHiddenStyle || std::find(seen.begin(), seen.end(), id) != seen.end()) continue;
    seen.push_back(id);
    rows.push_back({std::to_string(id), {{"ID", Value(id)}, {"Name", Value(name)}}});
  }
  DropStyles->SetDataSource(std::move(rows), "Name", "Styles");
  if (!DropStyles->setSelectedKey(std::to_string(App().Config->LastStyleID())))
    DropStyles->setListIndex(DropStyles->ListCount() > 0 ? 0 : -1);
  Init_DropThemes();
}

void cvIconSelectView::Init_DropThemes() {
  DataRows rows;
  const std::string style = DropStyles->SelectedKey();
  std::vector<int> seen;
  if (!style.empty()) {
    for (stylesAndThemes_.MoveFirst(); !stylesAndThemes_.Eof(); stylesAndThemes_.MoveNext()) {
      if (std::to_string(RowId(stylesAndThemes_.FieldValue("Styles_ID"))) != style) continue;
      const int id = RowId(stylesAndThemes_.FieldValue("Themes_ID"));
      if (id == 0 || std::find(seen.begin(), seen.end(), id) != seen.end()) continue;
      seen.push_back(id);
      rows.push_back(
          {std::to_string(id),
           {{"ID", Value(id)}, {"Name", Value(RowText(stylesAndThemes_.FieldValue("Themes_Name")))}}});
    }
  }
  DropThemes->SetDataSource(std::move(rows), "Name", "Themes");
  if (!DropThemes->setSelectedKey(std::to_string(App().Config->LastThemeID())))
    DropThemes->setListIndex(DropThemes->ListCount() > 0 ? 0 : -1);
}

void cvIconSelectView::DropStyles_Click() {
  const int id = std::atoi(DropStyles->SelectedKey().c_str());
  if (id <= 0) return;
  cConfig& config = *App().Config;
  config.setLastStyleID(id);
  Init_DropThemes();
  // The old theme is kept when the new style has it too; else the first.
  const int theme = std::atoi(DropThemes->SelectedKey().c_str());
  if (theme != config.LastThemeID()) config.setLastThemeID(theme);
  config.Save();
  BrowseTheme();
}

void cvIconSelectView::DropThemes_Click() {
  const int id = std::atoi(DropThemes->SelectedKey().c_str());
  if (id <= 0) return;
  App().Config->setLastThemeID(id);
  App().Config->Save();
  BrowseTheme();
}

void cvIconSelectView::BrowseTheme() {
  const int style = std::atoi(DropStyles->SelectedKey().c_str());
  const int theme = std::atoi(DropThemes->SelectedKey().c_str());
  if (style > 0 && theme > 0) {
    FillResults(style, theme, {});
    return;
  }
  // A style without themes shows nothing.
  App().SelectIcons.Clear();
  vlstIcons->ClearSelections();
  vlstIcons->setListCount(0);
  RefreshButtons();
  RefreshStatus();
}

void cvIconSelectView::txtSearch_KeyDown(int& keyCode, int shift) {
  if (keyCode != Key::Return || shift != 0) return;
  keyCode = 0;  // taken: Return in the box searches and goes no further
  btnSearch_Click();
}

void cvIconSelectView::btnSearch_Click() {
  const std::string text(TrimBlanks(txtSearch->Text()));
  if (text.empty()) return;
  // The text is looked for as it is: quotes, "%" and "_" stand for themselves.
  const std::string like = "'%" + SqlLikeText(text) + "%' escape '\\'";
  const std::string condition = "([Images].Name like " + like + " or [Images].Synonyms like " + like + ")";
  int style = std::atoi(DropStyles->SelectedKey().c_str());
  int theme = std::atoi(DropThemes->SelectedKey().c_str());
  if (optSearchAll_->Checked) style = theme = 0;
  if (optSearchStyle_->Checked) theme = 0;
  FillResults(std::max(style, 0), std::max(theme, 0), condition);
}

void cvIconSelectView::FillResults(int styleId, int themeId, const std::string& condition) {
  ItemCollection found;
  AddBaseSVGs(App(), styleId, themeId, condition, found);
  App().SelectIcons = std::move(found);
  vlstIcons->ClearSelections();
  vlstIcons->setListIndex(-1);
  vlstIcons->setListCount(App().SelectIcons.Count());
  vlstIcons->setScrollIndex(0);
  vlstIcons->Refresh();
  RefreshButtons();
  RefreshStatus();
}

// ---- what the view shows

void cvIconSelectView::RefreshLists() {
  if (!vlstIcons) return;
  vlstIcons->setListCount(App().SelectIcons.Count());
  vlstSelectedIcons->setListCount(App().IconSelection.Count());
  vlstIcons->Refresh();
  vlstSelectedIcons->Refresh();
  RefreshButtons();
  RefreshStatus();
}

void cvIconSelectView::RefreshButtons() {
  const std::size_t selected = vlstIcons->GetSelections().size();
  btnRename_->setEnabled(selected == 1);
  btnDeleteIcons_->setEnabled(selected >= 1);
  btnSelectAll_->setEnabled(vlstIcons->ListCount() > 0);
}

void cvIconSelectView::RefreshStatus() {
  const std::string line = std::to_string(App().SelectIcons.Count()) + " Icons  " + TextOf("Selection") +
                           ": " + std::to_string(App().IconSelection.Count()) + " Icons";
  Statusbar_->Caption = line;
  Statusbar_->Refresh();
}

void cvIconSelectView::Statusbar_OwnerDraw(DrawingContext& cc, double w, double h) {
  // Drawn over the bar's own caption, which the automation reads.
  cc.SetSourceColor(StockColor(Palette::Border));
  cc.Paint();
  cc.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  cc.DrawText(6, 0, w - 12, h, Statusbar_->Caption(), true, TextAlign::Left, TextAlign::Middle);
}

}  // namespace qds
