#include "app/ui/cfMain.h"

#include <algorithm>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modTexts.h"
#include "app/ui/cvIconHelpView.h"
#include "app/ui/cvIconSettingsView.h"
#include "app/ui/cwFormButtons.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/cwTabItem.h"
#include "app/ui/cwTitleBar.h"
#include "app/ui/modMenuResources.h"
#include "app/ui/modMessages.h"
#include "browser/cvIconSelectView.h"
#include "design/cvIconDesignView.h"
#include "export/ui/cvIconExportView.h"
#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/ImageList.h"
#include "platform/stock/StockDrawing.h"
#include "platform/ui/PlatformRoot.h"

namespace qds {

namespace {

// A panel of a layout: a sheet a shade off the window's background, so
// that the layout shows while a view's panels are still empty.
class cwPanel : public Widget {
 public:
  cwPanel() : Widget("cwPanel") {}
  void W_Paint(DrawingContext& ctx, double w, double h) override {
    ctx.SetSourceColor(StockColor(Palette::Border));
    ctx.Rectangle(0, 0, w, h);
    ctx.Fill();
    ctx.SetSourceColor(StockColor(Palette::Back));
    ctx.Rectangle(1, 1, w - 2, h - 2);
    ctx.Fill();
  }
};

constexpr double kTabBarHeight = 30;
constexpr double kStatusBarHeight = 16;

struct PanelRule {
  const char* key;
  Dock dock;
  double size;  // width for Left and Right, height for Top and Bottom
};

// The panels of each layout, in the order they take their room: the status
// line first, so that the columns end above it.
std::vector<PanelRule> PanelsOf(const std::string& layout) {
  if (layout == "IconDesignView")
    return {{"pnlStatusBar", Dock::Bottom, kStatusBarHeight},
            {"pnlLeft00", Dock::Left, 10},
            {"pnlLeft", Dock::Left, 190},
            {"pnlLeft01", Dock::Left, 10},
            {"pnlLeft2", Dock::Left, 240},
            {"pnlRight", Dock::Right, 225},
            {"pnlMain", Dock::Fill, 0}};
  if (layout == "IconExportView")
    return {{"pnlStatusBar", Dock::Bottom, kStatusBarHeight},
            {"pnlTop", Dock::Top, 120},
            {"pnlMain", Dock::Fill, 0}};
  return {{"pnlStatusBar", Dock::Bottom, kStatusBarHeight}, {"pnlMain", Dock::Fill, 0}};
}

}  // namespace

Widget& AddViewLayout(Widget& parent, const std::string& viewName) {
  Widget& layout = parent.Children().Add<Widget>(viewName);
  layout.setDock(Dock::Fill);
  for (const PanelRule& p : PanelsOf(viewName)) {
    Widget& panel = layout.Children().Add<cwPanel>(p.key);
    const bool across = p.dock == Dock::Left || p.dock == Dock::Right;
    panel.Move(0, 0, across ? p.size : 0, across ? 0 : p.size);
    panel.setDock(p.dock);
  }
  return layout;
}

cfMain::~cfMain() = default;

cfMain::cfMain() : cfForm("cfMain") {
  CreateTwoPanelLayoutViews();
  Caption = "Quillaron Design Studio";
  setIconKey("Logo");
  Borderless = true;
  Sizable = true;
  MinWidth = kMainMinWidth, MinHeight = kMainMinHeight;
  BackColor = StockColor(Palette::Back);
  if (HasApp() && App().Config && App().Config->ShowAppBG()) PictureKey = "Background";
  if (PlatformRoot* root = PlatformRoot::Current();
      root && root->Images() && root->Images()->Exists("Titlebar"))
    titleBar_->PictureKey = "Titlebar";
  Resize(kMainDefaultWidth, kMainDefaultHeight);
  // The design view is the one on screen when the window first shows.
  SwitchToView("IconDesignView");
}

void cfMain::CreateTwoPanelLayoutViews() {
  titleBar_ = &Children().Add<cwTitleBar>("TitleBar");
  titleBar_->Move(0, 0, 0, cwTitleBar::kHeight);
  titleBar_->setDock(Dock::Top);
  tabBar_ = &Children().Add<Widget>("pnlTabBar");
  tabBar_->Move(0, 0, 0, kTabBarHeight);
  tabBar_->setDock(Dock::Top);
  AddTabs();

  selectView_ = std::make_unique<cvIconSelectView>();
  designView_ = std::make_unique<cvIconDesignView>();
  exportView_ = std::make_unique<cvIconExportView>();
  settingsView_ = std::make_unique<cvIconSettingsView>();
  helpView_ = std::make_unique<cvIconHelpView>();
  designView_->SelectView = selectView_.get();
  SaveDesign = [this] { return designView_->ShowSaveTemplate(); };
  for (const char* name : kViewNames) {
    Widget& layout = AddViewLayout(*this, name);
    layout.setVisible(false);
    cvView& view = View(name);
    const std::string key = name;
    view.Activate = [this, key] { ActivateLayout(key); };
    view.WidgetInit(layout);
  }
}

void cfMain::AddTabs() {
  // The captions come from the texts, except the help view's.
  static const char* const captions[] = {"Icons", "Design", "Export", "Settings", nullptr};
  double x = 8;
  for (std::size_t i = 0; i < std::size(kViewNames); ++i) {
    auto& tab = tabBar_->Children().Add<cwTabItem>(std::string("Tab") + kViewNames[i]);
    tab.SetCaption(captions[i] ? LanguageText(captions[i]).Text : "?");
    tab.ViewName = kViewNames[i];
    const double w = tab.PreferredWidth();
    tab.Move(x, 0, w, kTabBarHeight);
    x += w + 2;
    tabs_.push_back(&tab);
  }
}

cvView& cfMain::View(const std::string& name) {
  if (name == "IconSelectView") return *selectView_;
  if (name == "IconDesignView") return *designView_;
  if (name == "IconExportView") return *exportView_;
  if (name == "IconSettingsView") return *settingsView_;
  if (name == "IconHelpView") return *helpView_;
  Raise(ErrNo::InvalidArgument, "No view " + name, "cfMain:View");
}

Widget& cfMain::Layout(const std::string& name) {
  return Children().Item(name);
}

void cfMain::TitleBarVersion(const std::string& text) {
  titleBar_->Version(text);
}

void cfMain::SwitchToView(const std::string& name) {
  designView_->PreviousView = active_;
  View(name).SwitchToView();
}

void cfMain::ActivateLayout(const std::string& name) {
  for (const char* view : kViewNames) Layout(view).setVisible(name == view);
  for (cwTabItem* tab : tabs_) tab->Selected = tab->ViewName == name;
  active_ = name;
  View(name).HandleResize(Width(), Height());
}

void cfMain::setMaximized(bool maximized) {
  if (maximized == (State() == WindowState::Maximized)) return;
  // Moves tell nobody; the place the window is restored to is taken now.
  KeepWindowRect();
  setState(maximized ? WindowState::Maximized : WindowState::Normal);
  titleBar_->FormButtons->setMaximize(maximized);
  KeepWindowRect();
}

void cfMain::ToggleMaximize() {
  setMaximized(State() != WindowState::Maximized);
}

void cfMain::KeepWindowRect() {
  if (!HasApp()) return;
  AppContext& app = App();
  if (State() == WindowState::Normal && Showing()) {
    app.WindowLeft = static_cast<int>(ScreenX()), app.WindowTop = static_cast<int>(ScreenY());
    app.WindowWidth = static_cast<int>(ScreenWidth()), app.WindowHeight = static_cast<int>(ScreenHeight());
  }
}

void cfMain::W_Resize() {
  KeepWindowRect();
  if (!active_.empty()) View(active_).HandleResize(Width(), Height());
}

void cfMain::Form_BubblingEvent(Widget& source, const std::string& name, const std::vector<Value>& args) {
  (void)args;
  const std::string& key = source.Key();
  if (name == "W_Click") {
    if (auto* tab = dynamic_cast<cwTabItem*>(&source)) {
      SwitchToView(tab->ViewName);
    } else if (key == "btnMin") {
      Minimize();
    } else if (key == "btnMax") {
      ToggleMaximize();
    } else if (key == "btnFormClose") {
      Close(UnloadMode::Code);
    }
  } else if (name == "TitleBarDblClick") {
    ToggleMaximize();
  } else if (name == "Click" && key == "MenuHelp" && !args.empty()) {
    // "MenuHelp>HelpPDFDoc": the item behind the menu's name.
    const std::string item = args[0].AsString();
    const std::string target = HelpTarget(item.substr(item.find('>') + 1));
    if (!target.empty() && !PlatformRoot::ShellOpen(target))
      ShowMsgBox(target, MsgStyle::Critical, LanguageText("Explorer").Text);
  }
}

bool cfMain::Form_KeyDown(int keyCode, int shift) {
  // Alt+R enters the shown view anew, as if its tab were clicked.
  if ((shift & Shift::Alt) && keyCode == 'R') {
    SwitchToView(active_);
    return true;
  }
  if (active_ == "IconDesignView" && designView_->Form_KeyDown(keyCode, shift)) return true;
  // The manual opens when one is installed beside the program.
  if (keyCode == Key::F1 && shift == Shift::None && HasApp() && FileExists(App().DocManual)) {
    PlatformRoot::ShellOpen(App().DocManual);
    return true;
  }
  return false;
}

bool cfMain::Form_QueryUnload(int unloadMode) {
  (void)unloadMode;
  if (!HasApp() || !App().DesignModified) return true;
  const int answer =
      ShowMsgBox(LanguageText("SaveDesign").Text, MsgStyle::YesNoCancel, Caption(), "MsgSaveDesign");
  if (answer == MsgResult::Cancel) return false;
  if (answer == MsgResult::Yes) return SaveDesign ? SaveDesign() : true;
  return true;
}

void cfMain::Form_Unload() {
  if (!HasApp()) return;
  AppContext& app = App();
  KeepWindowRect();
  // The window's place is kept for the next start with the other settings.
  if (app.Config && app.WindowWidth > 0) {
    app.Config->setWindowLeft(app.WindowLeft);
    app.Config->setWindowTop(app.WindowTop);
    app.Config->setWindowWidth(app.WindowWidth);
    app.Config->setWindowHeight(app.WindowHeight);
    app.Config->setWindowMaximized(State() == WindowState::Maximized);
    try {
      app.Config->Save();
    } catch (const AppError& e) {
      // A library that cannot be written loses only the window's place.
      ErrorMessage(e.Number(), e.Description(), "cfMain:Form_Unload");
    }
  }
}

}  // namespace qds
