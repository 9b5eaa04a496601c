#pragma once
// A pop-up menu. Items are keyed "root>item"; showing a root lists the
// items directly under it in a pop-up form beside the owner, which closes
// on a choice, on Escape, or on a click anywhere else. An item with items
// of its own ("root>item>sub") opens them beside it.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ui/Widget.h"

namespace qds {

class cfForm;

class cwMenu : public Widget {
 public:
  cwMenu() : Widget("cwMenu") { setVisible(false); }
  ~cwMenu() override;

  struct MenuItem {
    std::string key;  // "root>item"
    std::string caption;
    std::string pictureKey;
    bool enabled = true;
  };
  void AddItem(const std::string& key, const std::string& caption, const std::string& pictureKey = {},
               bool enabled = true);
  void setItemEnabled(const std::string& key, bool enabled);
  void Clear() { items_.clear(); }
  // Takes away the items under `root` ("root>..."), leaving the others.
  void RemoveItemsUnder(const std::string& root);
  // The items directly under `root`, in the order they were added.
  std::vector<const MenuItem*> ItemsUnder(const std::string& root) const;

  // Opens the items of `root` at a point of the owner form (logical units).
  // Where the menu does not fit below the point, it ends at `aboveY` (the
  // top of the button it drops from), or at the point when none is given.
  void ShowPopup(const std::string& root, double x, double y, std::optional<double> aboveY = std::nullopt);
  bool IsOpen() const;
  void ClosePopup();
  cfForm* PopupForm() const { return popup_.get(); }
  // The items of an item of the pop-up, when open.
  cfForm* SubPopupForm() const;

  // The chosen item's key; also bubbled as "Click" with the key.
  std::function<void(const std::string& key)> Click;
  // The pop-up has gone, chosen or not; also bubbled as "MenuDestroyed".
  std::function<void()> MenuDestroyed;

  void W_ReportState(WidgetState& state) const override;
  // An item of the open pop-up or of a sub-menu it opened.
  WidgetPoint W_ItemPoint(const std::string& key) override;

 private:
  friend class MenuPopUp;
  void PopupGone(const std::string& chosen);

  std::vector<MenuItem> items_;
  std::shared_ptr<cfForm> popup_;
};

}  // namespace qds
