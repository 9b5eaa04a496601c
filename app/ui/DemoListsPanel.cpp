#include "app/ui/DemoListsPanel.h"

#include <algorithm>

#include "app/AppContext.h"
#include "browser/IconPictures.h"
#include "platform/DbRecordset.h"
#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "widgets/cwVListNew.h"

namespace qds {

DemoListsPanel::DemoListsPanel() : Widget("DemoListsPanel") {
  setBoxLayout(BoxDirection::Column, 10, 10);

  auto& rows = Children().Add<cwVListNew>("lstDemo");
  rows_ = &rows;
  rows.setBoxHint(0, 1);
  rows.setMultiSelect(2);
  rows.AllowDrag = true;
  rows.DeselectOutsideClick = true;
  rows.setAlternateRowColor(StockColor(Palette::Face));
  rows.setListCount(kRows);
  rows.OwnerDrawItem = [](int index, DrawingContext& cc, double dx, double dy, double alpha) {
    cc.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
    cc.DrawText(6, 0, dx - 12, dy, "Row " + std::to_string(index), true, TextAlign::Left, TextAlign::Center);
    (void)alpha;
  };

  auto& icons = Children().Add<cwVListNew>("grdIcons");
  icons_ = &icons;
  icons.setBoxHint(0, 1.6);
  icons.setImageView(true);
  icons.setColWidth(kCell);
  icons.setRowHeight(kCell);
  icons.setMultiSelect(2);
  icons.AllowDrag = true;
  LoadIcons();
  icons.setListCount(static_cast<int>(library_.size()));
  icons.OwnerDrawItem = [this](int index, DrawingContext& cc, double dx, double dy, double alpha) {
    const Icon& icon = library_.at(index);
    const int side = static_cast<int>(std::min(dx, dy)) - 6;
    if (side > 0)
      cc.DrawSurface(IconPicture(App(), icon.id, icon.svg, side), 3, 3, side, side, Filter::Good, alpha);
  };
  icons.MouseMoveOnListItem = [this](int index, double, double) {
    icons_->ToolTip = index >= 0 ? library_.at(index).name : std::string();
  };

  // Scripts turn dragging off to make ranges and auto-scroll with the mouse.
  auto& drag = Children().Add<cwCheckBox>("chkDrag");
  drag.Caption = "Drag rows";
  drag.Checked = true;
  drag.setBoxHint(18, 0);
  drag.Click = [this, &drag] { rows_->AllowDrag = icons_->AllowDrag = drag.Checked; };

  for (cwVListNew* list : {rows_, icons_}) {
    list->DblClick = [this, list] {
      Say("Double click on row " + std::to_string(list->ListIndex()) + " of " + list->Key());
    };
    list->DeleteKeyPressed = [this, list] { Say("Delete: " + Count(*list) + " of " + list->Key()); };
    list->DragStartSrc = [this, list] { Say("Dragging " + Count(*list) + " of " + list->Key()); };
    list->DragDropDst = [this, list](const std::string& dataKey, Widget& source, double, double) {
      const auto* from = dynamic_cast<const cwVListNew*>(&source);
      Say("Dropped " + (from ? Count(*from) : std::string("nothing")) + " of " + dataKey + " on " +
          list->Key() + " at row " + std::to_string(list->ListIndex()));
    };
  }
}

std::string DemoListsPanel::Count(const cwVListNew& list) const {
  const std::size_t n = list.GetSelections().size();
  return std::to_string(n) + (n == 1 ? " row" : " rows");
}

void DemoListsPanel::LoadIcons() {
  if (!HasApp() || !App().Cnn.IsOpen()) return;
  try {
    DbRecordset rs = App().Cnn.Query("Select ID, Name, SVG From Images Order By Name, ID");
    library_.reserve(rs.RecordCount());
    for (; !rs.Eof(); rs.MoveNext())
      library_.push_back({static_cast<int>(rs.FieldValue(0).AsLong()), rs.FieldValue(1).AsString(),
                          rs.FieldValue(2).AsBytes()});
  } catch (const AppError&) {
    // A library that cannot be read leaves the grid empty; the rest of the form still works.
    library_.clear();
  }
}

}  // namespace qds
