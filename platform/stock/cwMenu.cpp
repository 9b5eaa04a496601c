#include "platform/stock/cwMenu.h"

#include <algorithm>

#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/Form.h"
#include "platform/ui/PlatformRoot.h"

namespace qds {

namespace {
constexpr double kRowHeight = 24;
constexpr double kPictureSide = 16;
}  // namespace

// The pop-up form: one row per item, the hovered or keyed one lit.
class MenuPopUp : public cfForm {
 public:
  MenuPopUp(cwMenu& menu, std::vector<cwMenu::MenuItem> rows) : menu_(&menu), rows_(std::move(rows)) {
    PopUp = true;
    BackColor = StockColor(Palette::Face);
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
      ctx.SelectFont(kUiFont, kUiFontSize,
                     rows_[i].enabled ? StockColor(Palette::Text) : StockColor(Palette::Disabled));
      ctx.DrawText(kPictureSide + 10, top, w - kPictureSide - 16, kRowHeight, rows_[i].caption, true,
                   TextAlign::Left, TextAlign::Middle);
    }
    ctx.SetSourceColor(StockColor(Palette::Border));
    ctx.SetLineWidth(1);
    ctx.Rectangle(0.5, 0.5, w - 1, Height() - 1);
    ctx.Stroke();
  }
  bool W_MouseMove(int, int, double, double y) override {
    Light(RowAt(y));
    return true;
  }
  bool W_MouseUp(int button, int, double, double y) override {
    if (button == Button::Left) Choose(RowAt(y));
    return true;
  }
  void Form_KeyDown(int& keyCode, int) override {
    const int n = static_cast<int>(rows_.size());
    if (keyCode == Key::Escape) {
      Close();
    } else if ((keyCode == Key::Down || keyCode == Key::Up) && n > 0) {
      // Skip the disabled rows, wrapping round; stay put when all are.
      const int step = keyCode == Key::Down ? 1 : n - 1;
      int at = lit_ < 0 ? (keyCode == Key::Down ? n - 1 : 0) : lit_;
      for (int tries = 0; tries < n; ++tries) {
        at = (at + step) % n;
        if (rows_[at].enabled) {
          Light(at);
          break;
        }
      }
    } else if (keyCode == Key::Return) {
      Choose(lit_);
    } else {
      return;
    }
    keyCode = 0;
  }
  void Form_Unload() override {
    if (menu_) menu_->PopupGone(chosen_);
  }
  void Detach() { menu_ = nullptr; }

 private:
  int RowAt(double y) const {
    const int row = static_cast<int>(y / kRowHeight);
    return y >= 0 && row < static_cast<int>(rows_.size()) ? row : -1;
  }
  void Light(int row) {
    if (row == lit_) return;
    lit_ = row;
    Refresh();
  }
  void Choose(int row) {
    if (row < 0 || !rows_[row].enabled) return;
    chosen_ = rows_[row].key;
    Close();
  }

  cwMenu* menu_;
  std::vector<cwMenu::MenuItem> rows_;
  std::string chosen_;
  int lit_ = -1;
};

cwMenu::~cwMenu() {
  if (popup_) {
    // Destroyed from inside the pop-up's own handler, perhaps: let it finish.
    static_cast<MenuPopUp&>(*popup_).Detach();
    popup_->Close();
    if (PlatformRoot* root = PlatformRoot::Current()) root->DeferDelete(popup_);
  }
}

void cwMenu::AddItem(const std::string& key, const std::string& caption, const std::string& pictureKey,
                     bool enabled) {
  items_.push_back({key, caption, pictureKey, enabled});
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

void cwMenu::ShowPopup(const std::string& root, double x, double y) {
  ClosePopup();
  std::vector<MenuItem> rows;
  for (const MenuItem* item : ItemsUnder(root)) rows.push_back(*item);
  if (rows.empty()) return;

  // As wide as the longest caption needs.
  double width = 120;
  {
    DrawingContext measure(DrawingSurface::Create(1, 1));
    measure.SelectFont(kUiFont, kUiFontSize, 0);
    for (const MenuItem& row : rows)
      width = std::max(width, measure.MeasureText(row.caption).width + kPictureSide + 30);
  }
  const double height = static_cast<double>(rows.size()) * kRowHeight;
  if (popup_ && PlatformRoot::Current()) PlatformRoot::Current()->DeferDelete(popup_);
  popup_ = std::make_shared<MenuPopUp>(*this, std::move(rows));
  const cfForm* owner = Form();
  double ox = 0, oy = 0;
  if (owner) {
    ox = owner->Left();
    oy = owner->Top();
    popup_->setZoom(owner->Zoom());
  }
  // A form's place is in screen pixels; the point is in the owner's units.
  popup_->Move(ox + x * popup_->Zoom(), oy + y * popup_->Zoom(), width, height);
  popup_->Show();
}

bool cwMenu::IsOpen() const {
  return popup_ && popup_->Showing();
}

void cwMenu::ClosePopup() {
  if (IsOpen()) popup_->Close();
}

void cwMenu::PopupGone(const std::string& chosen) {
  if (!chosen.empty()) {
    if (Click) Click(chosen);
    RaiseBubblingEvent("Click", {Value(chosen)});
  }
  if (MenuDestroyed) MenuDestroyed();
  RaiseBubblingEvent("MenuDestroyed");
}

}  // namespace qds
