#pragma once
// A box that opens a pop-up under itself showing a content widget: the
// host that lists, colour pickers and the like drop down from. The pop-up
// closes on Escape, on a click anywhere else, or when its owner says.

#include <functional>
#include <memory>
#include <string>

#include "platform/ui/Property.h"
#include "platform/ui/Widget.h"

namespace qds {

class cfForm;

class cwDropDown : public Widget {
 public:
  cwDropDown();
  ~cwDropDown() override;

  Property<std::string> Caption{*this};
  double DropHeight = 160;
  // The widget the pop-up shows, kept between openings.
  Widget& setContent(std::unique_ptr<Widget> content);
  Widget* Content() const { return content_; }

  // A box built on this one readies its content here before it shows.
  virtual void OpenDropDown();
  void CloseDropDown();
  bool IsOpen() const;
  cfForm* PopupForm() const { return popup_.get(); }

  // Also bubbled by name.
  std::function<void()> DropDownOpened;
  std::function<void()> DropDownClosed;

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  bool W_MouseDown(int button, int shift, double x, double y) override;
  bool W_KeyDown(int keyCode, int shift) override;
  void W_ReportState(WidgetState& state) const override { state.caption = Caption; }
  // Rows and items of the content, while it shows.
  WidgetPoint W_RowPoint(int row) override;
  WidgetPoint W_ItemPoint(const std::string& key) override;

 protected:
  explicit cwDropDown(std::string typeName);
  // The box's ThemeState, and its arrow, for boxes that paint their own text.
  int BoxState() const;
  void DrawBoxArrow(DrawingContext& ctx, double w, double h, int state) const;

 private:
  friend class DropDownPopUp;
  void PopupGone();
  std::shared_ptr<cfForm> popup_;
  Widget* content_ = nullptr;
  unsigned long closedOnEvent_ = 0;
};

}  // namespace qds
