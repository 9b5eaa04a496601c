#include "platform/stock/cwMenu.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/Form.h"
#include "platform/ui/WidgetRegistry.h"

namespace qds {

namespace {
constexpr double kRowHeight = 24;
constexpr double kPictureSide = 16;
}  // namespace

// The pop-up form: one row per item, the hovered or keyed one lit. An item
// with items under it opens them in a pop-up of its own beside it.
class MenuPopUp : public cfForm {
 public:
  // Null when `root` has no items. The point is in screen pixels.
  // Where it does not fit, it ends at (flipRight, flipBottom) instead.
  static std::shared_ptr<MenuPopUp> Open(cwMenu& menu, const std::string& root, MenuPopUp* parent, double x,
                                         double y, double flipRight, double flipBottom, double zoom) {
    std::vector<cwMenu::MenuItem> rows;
    for (const cwMenu::MenuItem* item : menu.ItemsUnder(root)) rows.push_back(*item);
    if (rows.empty()) return nullptr;
    // As wide as the longest caption needs.
    double width = 120;
    for (const cwMenu::MenuItem& row : rows)
      width = std::max(width, MeasureUiText(ShownCaption(row.caption)).width + kPictureSide + 40);
    auto popup = std::make_shared<MenuPopUp>(menu, parent, std::move(rows));
    popup->setZoom(zoom);
    popup->Resize(width, static_cast<double>(popup->rows_.size()) * kRowHeight);
    popup->PlacePopUp(x, y, flipBottom, flipRight);
    popup->Show();
    return popup;
  }

  MenuPopUp(cwMenu& menu, MenuPopUp* parent, std::vector<cwMenu::MenuItem> rows)
      : cfForm("MenuPopUp"), menu_(&menu), parent_(parent), rows_(std::move(rows)) {
    PopUp = true;
    OpenedFrom = parent;
    BackColor = StockColor(Palette::Face);
    for (const cwMenu::MenuItem& row : rows_) hasItems_.push_back(!menu.ItemsUnder(row.key).empty());
  }

  void W_Paint(DrawingContext& ctx, double w, double) override {
    for (size_t i = 0; i < rows_.size(); ++i) {
      const double top = static_cast<double>(i) * kRowHeight;
      if (static_cast<int>(i) == lit_ && rows_[i].enabled) {
        ctx.SetSourceColor(StockColor(Palette::Accent));
        ctx.Rectangle(0, top, w, kRowHeight);
        ctx.Fill();
      }
      DrawPicture(ctx, rows_[i].pictureKey, 4, top + (kRowHeight - kPictureSide) / 2, kPictureSide,
                  kPictureSide);
      ctx.SelectFont(UiFont(), kUiFontSize,
                     rows_[i].enabled ? StockColor(Palette::Text) : StockColor(Palette::Disabled));
      int accessAt = -1;
      const std::string shown = ShownCaption(rows_[i].caption, &accessAt);
      ctx.DrawText(kPictureSide + 10, top, w - kPictureSide - 26, kRowHeight, shown, true, TextAlign::Left,
                   TextAlign::Middle, accessAt);
      if (hasItems_[i])
        ctx.DrawText(w - 18, top, 12, kRowHeight, "▸", true, TextAlign::Left, TextAlign::Middle);
    }
    ctx.SetSourceColor(StockColor(Palette::Border));
    ctx.SetLineWidth(1);
    ctx.Rectangle(0.5, 0.5, w - 1, Height() - 1);
    ctx.Stroke();
  }
  bool W_MouseMove(int, int, double, double y) override {
    const int row = RowAt(y);
    HighlightRow(row);
    // Resting on an item with items opens them; on another, closes them.
    if (row >= 0 && hasItems_[row] && rows_[row].enabled) {
      OpenChild(row);
    } else if (row >= 0) {
      CloseChild();
    }
    return true;
  }
  bool W_MouseUp(int button, int, double, double y) override {
    if (button == Button::Left) Choose(RowAt(y));
    return true;
  }
  bool Form_KeyDown(int keyCode, int) override {
    const int n = static_cast<int>(rows_.size());
    if (keyCode == Key::Escape || (keyCode == Key::Left && parent_)) {
      Close();  // a sub-menu goes back to its parent
    } else if ((keyCode == Key::Down || keyCode == Key::Up) && n > 0) {
      // Skip the disabled rows, wrapping round; stay put when all are.
      const int step = keyCode == Key::Down ? 1 : n - 1;
      int at = lit_ < 0 ? (keyCode == Key::Down ? n - 1 : 0) : lit_;
      for (int tries = 0; tries < n; ++tries) {
        at = (at + step) % n;
        if (rows_[at].enabled) {
          HighlightRow(at);
          break;
        }
      }
    } else if (keyCode == Key::Return || (keyCode == Key::Right && lit_ >= 0 && hasItems_[lit_])) {
      Choose(lit_);
    } else if (const int row = RowOfLetter(keyCode); row >= 0) {
      // An item's marked letter chooses it, with Alt or without.
      HighlightRow(row);
      Choose(row);
    } else {
      return false;
    }
    return true;
  }
  void Form_Unload() override {
    CloseChild();
    if (!parent_ && menu_) menu_->PopupGone(chosen_);
  }
  // The menu is going: nobody to tell any more.
  void Detach() {
    menu_ = nullptr;
    if (child_) child_->Detach();
  }
  MenuPopUp* Child() const { return child_.get(); }
  // The middle of the row of `key` here or in a sub-menu open from here.
  WidgetPoint ItemPoint(const std::string& key) {
    if (!Showing()) return {};
    for (size_t i = 0; i < rows_.size(); ++i) {
      if (rows_[i].key == key) return {this, Width() / 2, (static_cast<double>(i) + 0.5) * kRowHeight};
    }
    return child_ ? child_->ItemPoint(key) : WidgetPoint{};
  }

 private:
  int RowOfLetter(int keyCode) const {
    if (keyCode <= 0 || keyCode > 127) return -1;
    for (size_t i = 0; i < rows_.size(); ++i) {
      if (rows_[i].enabled && AccessLetter(rows_[i].caption) == keyCode) return static_cast<int>(i);
    }
    return -1;
  }
  int RowAt(double y) const {
    const int row = static_cast<int>(y / kRowHeight);
    return y >= 0 && row < static_cast<int>(rows_.size()) ? row : -1;
  }
  void HighlightRow(int row) {
    if (row == lit_) return;
    lit_ = row;
    Refresh();
  }
  void Choose(int row) {
    if (row < 0 || !rows_[row].enabled) return;
    if (hasItems_[row]) {
      OpenChild(row);
      return;
    }
    // The choice is the whole menu's: its first pop-up closes, and with it the rest.
    MenuPopUp* top = this;
    while (top->parent_) top = top->parent_;
    top->chosen_ = rows_[row].key;
    top->Close();
  }
  void OpenChild(int row) {
    if (childRow_ == row && child_ && child_->Showing()) return;
    CloseChild();
    if (!menu_) return;
    // Beside the row; at the screen's edges, left of this menu or up from the row's foot.
    const double rowTop = ScreenY() + static_cast<double>(row) * kRowHeight * Zoom();
    child_ = Open(*menu_, rows_[row].key, this, ScreenX() + ScreenWidth() - 4, rowTop, ScreenX() + 4,
                  rowTop + kRowHeight * Zoom(), Zoom());
    childRow_ = row;
  }
  void CloseChild() {
    DisposeForm(std::move(child_));
    childRow_ = -1;
  }

  cwMenu* menu_;
  MenuPopUp* parent_;
  std::vector<cwMenu::MenuItem> rows_;
  std::vector<bool> hasItems_;
  std::shared_ptr<MenuPopUp> child_;
  int childRow_ = -1;
  std::string chosen_;
  int lit_ = -1;
};

cwMenu::~cwMenu() {
  if (popup_) static_cast<MenuPopUp&>(*popup_).Detach();
  DisposeForm(std::move(popup_));
}

void cwMenu::AddItem(const std::string& key, const std::string& caption, const std::string& pictureKey,
                     bool enabled) {
  items_.push_back({key, caption, pictureKey, enabled});
}

void cwMenu::RemoveItemsUnder(const std::string& root) {
  const std::string prefix = root + ">";
  std::erase_if(items_,
                [&](const MenuItem& item) { return item.key.compare(0, prefix.size(), prefix) == 0; });
}

void cwMenu::setItemEnabled(const std::string& key, bool enabled) {
  for (MenuItem& item : items_) {
    if (item.key == key) item.enabled = enabled;
  }
}

std::vector<const cwMenu::MenuItem*> cwMenu::ItemsUnder(const std::string& root) const {
  std::vector<const MenuItem*> found;
  const std::string prefix = root + ">";
  for (const MenuItem& item : items_) {
    if (item.key.size() > prefix.size() && item.key.compare(0, prefix.size(), prefix) == 0 &&
        item.key.find('>', prefix.size()) == std::string::npos) {
      found.push_back(&item);
    }
  }
  return found;
}

void cwMenu::ShowPopup(const std::string& root, double x, double y, std::optional<double> aboveY) {
  DisposeForm(std::move(popup_));
  const cfForm* owner = Form();
  const double zoom = owner ? owner->Zoom() : 1;
  // A form's place is in screen pixels; the point is in the owner's units.
  const double ox = owner ? owner->ScreenX() : 0, oy = owner ? owner->ScreenY() : 0;
  const double sx = ox + x * zoom, sy = oy + y * zoom;
  const double flipBottom = aboveY ? oy + *aboveY * zoom : sy;
  popup_ = MenuPopUp::Open(*this, root, nullptr, sx, sy, sx, flipBottom, zoom);
}

cfForm* cwMenu::SubPopupForm() const {
  return popup_ ? static_cast<MenuPopUp&>(*popup_).Child() : nullptr;
}

bool cwMenu::IsOpen() const {
  return popup_ && popup_->Showing();
}

void cwMenu::ClosePopup() {
  if (IsOpen()) popup_->Close();
}

void cwMenu::PopupGone(const std::string& chosen) {
  if (!chosen.empty()) RaiseEvent(Click, "Click", chosen);
  RaiseEvent(MenuDestroyed, "MenuDestroyed");
}

void cwMenu::W_ReportState(WidgetState& state) const {
  std::vector<WidgetState::Item> items;
  for (const MenuItem& item : items_) items.push_back({item.key, item.caption, item.enabled, false});
  state.items = std::move(items);
}

WidgetPoint cwMenu::W_ItemPoint(const std::string& key) {
  return popup_ ? static_cast<MenuPopUp&>(*popup_).ItemPoint(key) : WidgetPoint{};
}

QDS_JOIN_WIDGET_REGISTRY(cwMenu);

}  // namespace qds
