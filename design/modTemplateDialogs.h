#pragma once
// What the four template dialogs share: their words, the questions they
// ask, and the picture of a template.

#include <functional>
#include <memory>
#include <string>

#include "platform/Bytes.h"
#include "platform/Drawing.h"
#include "platform/ui/Widget.h"

namespace qds {

class DrawingContext;

// The text and the tool tip of a key; empty without a program context, so
// that the widgets can be made anywhere.
std::string TemplateText(const std::string& key);
std::string TemplateTip(const std::string& key);

// A message of the texts with the reason after it: "Invalid file: ...".
void ReportTemplateProblem(const std::string& key, const std::string& why, const std::string& title);
// Asks whether the template (or file) of that name may be replaced; true for Yes.
bool AskReplaceTemplate(const std::string& title);

// Where template files are looked for and written: the folder of the
// settings (TemplatePath) while it exists, else the home folder.
std::string TemplateFolder();
// Keeps the folder a template file was written to or read from in the settings.
void KeepTemplateFolder(const std::string& folder);

// Shows `widget` in a tool dialog of its own, centred over the window, and
// answers what it closed with (ToolResult). `after` may read the widget
// before the dialog lets it go.
int ShowTemplateTool(std::unique_ptr<Widget> widget, const std::string& title, double width, double height,
                     const std::function<void(Widget& shown, int result)>& after = {});

// A template's picture from its PNG bytes; null for none or bytes that are
// no PNG, which a damaged or foreign library may hold.
SurfacePtr TemplatePicture(const Bytes& png);
// The picture in a square of `side` at (x, y), on a light tile, kept in
// shape; the tile alone without a picture.
void DrawTemplatePicture(DrawingContext& cc, const SurfacePtr& picture, double x, double y, double side,
                         double alpha = 1);

// Shows a template's picture.
class cwTemplatePicture : public Widget {
 public:
  cwTemplatePicture() : Widget("cwTemplatePicture") {}
  void setPicture(const Bytes& png);
  bool HasPicture() const { return picture_ != nullptr; }

  void W_Paint(DrawingContext& ctx, double w, double h) override;
  // "W x H" of the picture; empty without one.
  void W_ReportState(WidgetState& state) const override;

 private:
  SurfacePtr picture_;
};

}  // namespace qds
