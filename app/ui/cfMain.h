#pragma once
// The one main window: a frameless form with the title bar, the row of
// tabs and the five views, each in its own layout of panels. Every event of
// every widget ends in Form_BubblingEvent, the one place that switches
// views and answers the window's buttons.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ui/Form.h"

namespace qds {

class cvView;
class cvIconSelectView;
class cvIconDesignView;
class cvIconExportView;
class cvIconSettingsView;
class cvIconHelpView;
class cwTabItem;
class cwTitleBar;

class cfMain : public cfForm {
 public:
  cfMain();
  ~cfMain() override;

  void TitleBarVersion(const std::string& text);
  cwTitleBar& TitleBar() { return *titleBar_; }

  // The views, by the names of their layouts and tabs.
  static constexpr const char* kViewNames[] = {"IconSelectView", "IconDesignView", "IconExportView",
                                               "IconSettingsView", "IconHelpView"};
  cvIconSelectView& SelectView() { return *selectView_; }
  cvIconDesignView& DesignView() { return *designView_; }
  cvView& View(const std::string& name);
  Widget& Layout(const std::string& name);
  const std::string& ActiveView() const { return active_; }
  // Enters a view through its own SwitchToView, as a tab click does.
  void SwitchToView(const std::string& name);

  // Maximised to the work area, or back to the kept rectangle; the title
  // bar's button follows.
  void ToggleMaximize();
  void setMaximized(bool maximized);

  // Saves the design when the user says so before closing; false keeps the
  // window open. Set by the design view; none closes without saving.
  std::function<bool()> SaveDesign;

  void Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) override;
  bool Form_KeyDown(int keyCode, int shift) override;
  bool Form_QueryUnload(int unloadMode) override;
  void Form_Unload() override;
  void W_Resize() override;

 private:
  void CreateTwoPanelLayoutViews();
  void AddTabs();
  void ActivateLayout(const std::string& name);
  // The kept rectangle follows every move and size of the normal window.
  void KeepWindowRect();

  cwTitleBar* titleBar_ = nullptr;
  Widget* tabBar_ = nullptr;
  std::vector<cwTabItem*> tabs_;
  std::unique_ptr<cvIconSelectView> selectView_;
  std::unique_ptr<cvIconDesignView> designView_;
  std::unique_ptr<cvIconExportView> exportView_;
  std::unique_ptr<cvIconSettingsView> settingsView_;
  std::unique_ptr<cvIconHelpView> helpView_;
  std::string active_;
};

// The layout of a view's panels, named as the view, filling `parent`.
Widget& AddViewLayout(Widget& parent, const std::string& viewName);

// The main window's size when none was kept, and the smallest it may be,
// in logical units.
constexpr double kMainDefaultWidth = 1200, kMainDefaultHeight = 760;
constexpr double kMainMinWidth = 780, kMainMinHeight = 520;

}  // namespace qds
