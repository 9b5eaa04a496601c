#include "design/modTemplateDialogs.h"

#include <algorithm>

#include "app/AppContext.h"
#include "app/cConfig.h"
#include "app/modTexts.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "cli/CommandLine.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "widgets/cfToolDialog.h"

namespace qds {

namespace {

// Most library icons are dark and would vanish on the studio's dark lists.
constexpr std::int64_t kPictureTile = 0xE4E4E4;

}  // namespace

std::string TemplateText(const std::string& key) {
  return HasApp() ? LanguageText(key).Text : std::string();
}

std::string TemplateTip(const std::string& key) {
  return HasApp() ? LanguageText(key).Tooltip : std::string();
}

void ReportTemplateProblem(const std::string& key, const std::string& why, const std::string& title) {
  ShowMsgBox(WithReason(TemplateText(key), why), MsgStyle::Critical, title);
}

bool AskReplaceTemplate(const std::string& title) {
  return ShowMsgBox(TemplateText("NameExists"), MsgStyle::YesNo, title) == MsgResult::Yes;
}

std::string TemplateFolder() {
  if (HasApp() && App().Config) {
    const std::string kept = App().Config->TemplatePath();
    if (!kept.empty() && FolderExists(kept)) return WithTrailingSlash(kept);
  }
  return WithTrailingSlash(HomeFolder());
}

void KeepTemplateFolder(const std::string& folder) {
  if (!HasApp() || !App().Config || folder.empty()) return;
  App().Config->setTemplatePath(WithTrailingSlash(folder));
  // Only a convenience for the next time: a settings row that cannot be
  // written now (another program holds the library) must not spoil the
  // file that was written or read.
  try {
    App().Config->Save();
  } catch (const AppError&) {
  }
}

int ShowTemplateTool(std::unique_ptr<Widget> widget, const std::string& title, double width, double height,
                     const std::function<void(Widget& shown, int result)>& after) {
  cfToolDialog dialog;
  dialog.ImageKey = "Logo";
  double x = 0, y = 0;
  dialog.CentredPosition(width, height, x, y);
  int result = ToolResult::Cancel;
  Widget& shown = dialog.ShowWidget(std::move(widget), title, x, y, width, height, result);
  if (after) after(shown, result);
  return result;
}

SurfacePtr TemplatePicture(const Bytes& png) {
  if (png.empty()) return nullptr;
  try {
    return DrawingSurface::FromPngBytes(png);
  } catch (const AppError&) {
    return nullptr;
  }
}

void DrawTemplatePicture(DrawingContext& cc, const SurfacePtr& picture, double x, double y, double side,
                         double alpha) {
  if (side <= 0) return;
  cc.SetSourceColor(kPictureTile, alpha);
  cc.RoundedRectangle(x, y, side, side, 4);
  cc.Fill();
  if (!picture || picture->Width() <= 0 || picture->Height() <= 0) return;
  const double inner = side - 4;
  const double scale = std::min(inner / picture->Width(), inner / picture->Height());
  const double w = picture->Width() * scale, h = picture->Height() * scale;
  cc.DrawSurface(picture, x + (side - w) / 2, y + (side - h) / 2, w, h, Filter::Good, alpha);
}

void cwTemplatePicture::setPicture(const Bytes& png) {
  picture_ = TemplatePicture(png);
  Refresh();
}

void cwTemplatePicture::W_Paint(DrawingContext& ctx, double w, double h) {
  const double side = std::min(w, h);
  DrawTemplatePicture(ctx, picture_, (w - side) / 2, (h - side) / 2, side, Enabled() ? 1 : 0.5);
}

void cwTemplatePicture::W_ReportState(WidgetState& state) const {
  state.caption = picture_ ? std::to_string(picture_->Width()) + " x " + std::to_string(picture_->Height())
                           : std::string();
}

}  // namespace qds
