#pragma once
// The view in which icons are found and gathered: the library browsed by
// style and theme or searched by text into a grid of results (SelectIcons),
// and the icons chosen from it (IconSelection), which the design and export
// views take up. Icons are renamed and deleted in the library from here.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/DbRecordset.h"
#include "widgets/cvView.h"

namespace qds {

class DrawingContext;
class Timer;
class cwButton;
class cwDropDownList;
class cwLabel;
class cwOptionButton;
class cwStatusBar;
class cwTextBox;
class cwToolBar;
class cwVListNew;

class cvIconSelectView : public cvView {
 public:
  cvIconSelectView();
  ~cvIconSelectView() override;

  // Fills "pnlMain" and "pnlStatusBar" of `layout`.
  void WidgetInit(Widget& layout) override;
  void HandleResize(double width, double height) override;
  // Shows the view at once and brings its lists up to date a moment later.
  void SwitchToView() override;
  // Takes the selection into the design: BaseIcons is rebuilt from
  // IconSelection, and the layer "_BaseIco" shows the first of them, or
  // leaves the design when nothing is selected.
  void UpdateSelection();

  cwVListNew* vlstIcons = nullptr;
  cwVListNew* vlstSelectedIcons = nullptr;
  cwDropDownList* DropStyles = nullptr;
  cwDropDownList* DropThemes = nullptr;
  cwTextBox* txtSearch = nullptr;
  // Icons were added to IconSelection, or removed from it, since the flag
  // was last cleared by its reader.
  bool SelectionChanged = false;

  // The result grid's cells and their pictures; the selection's rows and
  // theirs, and the selection list's width.
  static constexpr int kCell = 72, kCellPicture = 64;
  static constexpr int kRowHeight = 54, kRowPicture = 48;
  static constexpr double kSelectionWidth = 260;
  // The strip of choices above the grid, and the selection's tool bar.
  static constexpr double kTopHeight = 70, kToolBarHeight = 30;
  static constexpr double kActivateMs = 10;
  // What a drag from the results carries.
  static constexpr const char* kDragKey = "Update_SelectedIcons";

 private:
  // Runs a handler so that any error ends in the error report, with this
  // view and the handler's name as its source.
  void Handle(const char* name, const std::function<void()>& body);
  std::function<void()> On(const char* name, void (cvIconSelectView::*handler)());

  void CreateSearchStrip(Widget& strip);
  void CreateLists(Widget& main);

  // The drop-downs, from the styles and themes that hold icons.
  void Init_DropStyles();
  void Init_DropThemes();
  void DropStyles_Click();
  void DropThemes_Click();
  // The results of the chosen style and theme; none without both.
  void BrowseTheme();
  void btnSearch_Click();
  void txtSearch_KeyDown(int& keyCode, int shift);
  // Puts the icons of a style, a theme (0: any) and a condition into
  // SelectIcons; on an error SelectIcons stays as it was.
  void FillResults(int styleId, int themeId, const std::string& condition);

  // Adds the results at `indexes` to IconSelection, each once.
  void Update_SelectedIcons(const std::vector<int>& indexes);
  void vlstIcons_DblClick();
  void vlstIcons_MouseUpClick();
  void vlstSelectedIcons_DragDropDst(const std::string& dataKey, Widget& source);
  void vlstSelectedIcons_DblClick();
  void vlstSelectedIcons_DeleteKeyPressed();
  void tbarSelectedIcons_Click(const std::string& key);
  // Removes the selection's entries at `indexes`, the highest first.
  void RemoveSelected(std::vector<int> indexes);
  void btnSelectAll_Click();
  void btnRename_Click();
  void Rename_NameChanged(int id, const std::string& newName);
  void btnDeleteIcons_Click();
  void tmrActivate_Timer();

  void vlstIcons_OwnerDrawItem(int index, DrawingContext& cc, double dx, double dy, double alpha);
  void vlstSelectedIcons_OwnerDrawItem(int index, DrawingContext& cc, double dx, double dy, double alpha);
  void Statusbar_OwnerDraw(DrawingContext& cc, double w, double h);

  // The list counts from the collections, the buttons and the status line.
  void RefreshLists();
  void RefreshButtons();
  void RefreshStatus();

  Widget* layout_ = nullptr;
  Widget* pnlMain_ = nullptr;
  Widget* pnlSelection_ = nullptr;
  cwLabel* lblStyles_ = nullptr;
  cwLabel* lblThemes_ = nullptr;
  cwButton* btnSearch_ = nullptr;
  cwOptionButton* optSearchAll_ = nullptr;
  cwOptionButton* optSearchStyle_ = nullptr;
  cwOptionButton* optSearchThemes_ = nullptr;
  cwButton* btnSelectAll_ = nullptr;
  cwButton* btnRename_ = nullptr;
  cwButton* btnDeleteIcons_ = nullptr;
  cwButton* btnImport_ = nullptr;
  cwButton* btnImportIconsDB_ = nullptr;
  cwButton* btnExportToIconsDB_ = nullptr;
  cwToolBar* tbarSelectedIcons_ = nullptr;
  cwStatusBar* Statusbar_ = nullptr;
  std::unique_ptr<Timer> tmrActivate_;

  // The styles and themes that hold icons, read once.
  DbRecordset stylesAndThemes_;
  bool haveStylesAndThemes_ = false;
  // Captions of the selection's rows, read once.
  std::string styleCaption_, themeCaption_, nameCaption_;
};

}  // namespace qds
