#pragma once
// The top of the frameless main window: the logo, the program's name and
// version, the help menu's button and the window buttons. A press on it
// moves the window and a double click maximises or restores it.

#include <string>

#include "platform/ui/Widget.h"

namespace qds {

class cwFormButtons;
class cwImage;
class cwLabel;
class cwButton;
class cwMenu;

class cwTitleBar : public Widget {
 public:
  cwTitleBar();
  static constexpr double kHeight = 34;
  void Version(const std::string& text);
  cwImage* imgLogo = nullptr;
  cwLabel* lblQuillaron = nullptr;
  cwLabel* lblVersion = nullptr;
  cwButton* btnHelp = nullptr;
  cwMenu* MenuHelp = nullptr;
  cwFormButtons* FormButtons = nullptr;
  // The picture stretched behind it, when the image cache has one.
  std::string PictureKey;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  void W_Resize() override;
  // A double click anywhere but on a button goes up as "TitleBarDblClick".
  bool W_DblClick(int button, int shift, double x, double y) override;
};

}  // namespace qds
