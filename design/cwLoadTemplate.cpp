#include "design/cwLoadTemplate.h"

#include <algorithm>

#include "app/AppContext.h"
#include "app/ui/cwMsgBox.h"
#include "app/ui/modMessages.h"
#include "design/cwExportTemplate.h"
#include "design/cwImportTemplate.h"
#include "design/modTemplateDialogs.h"
#include "platform/DrawingContext.h"
#include "platform/Error.h"
#include "platform/stock/StockDrawing.h"
#include "platform/stock/StockWidgets.h"
#include "platform/ui/WidgetRegistry.h"
#include "store/modDB.h"
#include "store/modTemplates.h"
#include "widgets/cfToolDialog.h"
#include "widgets/cwVListNew.h"

namespace qds {

namespace {

constexpr double kMargin = 10, kButtonHeight = 26, kGap = 5;

}  // namespace

cwLoadTemplate::cwLoadTemplate() : Widget("cwLoadTemplate") {
  vlstTemplates = &Children().Add<cwVListNew>("vlstTemplates");
  vlstTemplates->setRowHeight(kRowHeight);
  vlstTemplates->CanFocus = true;
  vlstTemplates->OwnerDrawItem = [this](int index, DrawingContext& cc, double dx, double dy, double alpha) {
    RunHandler("cwLoadTemplate:vlstTemplates_OwnerDrawItem", HandlerMode::Silent,
               [&] { vlstTemplates_OwnerDrawItem(index, cc, dx, dy, alpha); });
  };
  vlstTemplates->Click = [this] { RefreshButtons(); };
  vlstTemplates->DblClick = [this] {
    RunHandler("cwLoadTemplate:vlstTemplates_DblClick", HandlerMode::Report, [this] { btnLoad_Click(); });
  };
  const auto button = [this](const char* key, const char* text, void (cwLoadTemplate::*handler)(),
                             const char* source) {
    auto& b = Children().Add<cwButton>(key);
    b.Caption = TemplateText(text);
    b.ToolTip = TemplateTip(text);
    b.Click = [this, handler, source] {
      RunHandler(source, HandlerMode::Report, [&] { (this->*handler)(); });
    };
    return &b;
  };
  btnLoad_ = button("btnLoad", "Load", &cwLoadTemplate::btnLoad_Click, "cwLoadTemplate:btnLoad_Click");
  btnLoad_->Default = true;
  btnDelete_ =
      button("btnDelete", "Delete", &cwLoadTemplate::btnDelete_Click, "cwLoadTemplate:btnDelete_Click");
  btnExport_ =
      button("btnExport", "Export", &cwLoadTemplate::btnExport_Click, "cwLoadTemplate:btnExport_Click");
  btnImport_ =
      button("btnImport", "Import", &cwLoadTemplate::btnImport_Click, "cwLoadTemplate:btnImport_Click");
  // The tool tip of "Import" speaks of SVG files; this one imports templates.
  btnImport_->ToolTip = TemplateText("ImportTemplate");
  btnExport_->ToolTip = TemplateTip("ExportTemplate");
  btnClose_ = &Children().Add<cwButton>("btnClose");
  btnClose_->Caption = TemplateText("Close");
  btnClose_->Cancel = true;
  btnClose_->Click = [this] { Close(ToolResult::Cancel); };
  RefreshButtons();
}

cwLoadTemplate::~cwLoadTemplate() = default;

void cwLoadTemplate::Init() {
  const int keep = SelectedID();
  std::vector<Row> rows;
  for (DbRecordset rs = App().Cnn.Query("Select * From Layer Order By Name"); !rs.Eof(); rs.MoveNext()) {
    Row row;
    row.ID = static_cast<int>(rs.Fields("ID").AsLong());
    DesignFile values;
    // The one reader of a design's own values: an opacity out of range is
    // held to it, one that is no number is told when the row is loaded.
    row.Problem = ReadDesignValues(
        [&](const char* key) -> std::optional<Value> {
          if (rs.FieldIndex(key) < 0) return std::nullopt;
          return rs.FieldValue(key);
        },
        values);
    row.Name = rs.FieldValue("Name").AsString();
    row.Description = rs.FieldValue("Description").AsString();
    row.Opacity = values.Opacity;
    row.UseOpacity = values.UseOpacity;
    row.Thumbnail = rs.Fields("Thumbnail").AsBytes();
    rows.push_back(std::move(row));
  }
  rows_ = std::move(rows);
  vlstTemplates->setListCount(static_cast<int>(rows_.size()));
  if (!SelectID(keep)) vlstTemplates->setListIndex(rows_.empty() ? -1 : 0);
  vlstTemplates->Refresh();
  RefreshButtons();
}

int cwLoadTemplate::SelectedID() const {
  const Row* row = SelectedRow();
  return row ? row->ID : 0;
}

bool cwLoadTemplate::SelectID(int id) {
  for (std::size_t i = 0; id != 0 && i < rows_.size(); ++i) {
    if (rows_[i].ID != id) continue;
    vlstTemplates->setListIndex(static_cast<int>(i));
    vlstTemplates->EnsureVisibleSelection();
    RefreshButtons();
    return true;
  }
  return false;
}

const cwLoadTemplate::Row* cwLoadTemplate::SelectedRow() const {
  const int index = vlstTemplates->ListIndex();
  return index >= 0 && index < static_cast<int>(rows_.size()) ? &rows_[index] : nullptr;
}

void cwLoadTemplate::RefreshButtons() {
  const bool any = SelectedRow() != nullptr;
  for (cwButton* b : {btnLoad_, btnDelete_, btnExport_}) b->setEnabled(any);
}

void cwLoadTemplate::Close(int result) {
  cfToolDialog::CloseWith(*this, result);
  if (Closed) Closed();
}

void cwLoadTemplate::btnLoad_Click() {
  const Row* row = SelectedRow();
  if (!row) return;
  const std::string title = TemplateText("LoadTemplate");
  AppContext& app = App();
  // Another program may have deleted it since the list was read.
  if (app.Cnn.Query("Select ID From Layer Where ID = " + std::to_string(row->ID)).Eof()) {
    ReportTemplateProblem("LoadError", "\"" + row->Name + "\" is no longer in the library", title);
    Init();
    return;
  }
  if (!row->Problem.empty()) {
    ReportTemplateProblem("LoadError", row->Name + ": " + row->Problem, title);
    return;
  }
  DesignLoadReport report;
  if (!FillCurrentLayerList(app, row->ID, &report)) {
    ReportTemplateProblem("LoadError", row->Name + ": " + report.Error, title);
    return;
  }
  app.DesignOpacity = row->Opacity;
  app.DesignOpacityOn = row->UseOpacity;
  name_ = row->Name;
  description_ = row->Description;
  if (TemplateChanged) TemplateChanged();
  Close(ToolResult::Ok);
}

void cwLoadTemplate::btnDelete_Click() {
  const Row* row = SelectedRow();
  if (!row) return;
  if (ShowMsgBox(TemplateText("DeleteTemplate"), MsgStyle::YesNo, TemplateTip("DeleteTemplate"),
                 "MsgDelTemplate") != MsgResult::Yes)
    return;
  const int index = vlstTemplates->ListIndex();
  DbConnection& cnn = App().Cnn;
  if (!DeleteDesign(App(), row->ID)) {
    ReportTemplateProblem("SaveError", cnn.ErrorText(), TemplateTip("DeleteTemplate"));
    return;
  }
  Init();
  // The row that took the deleted one's place.
  vlstTemplates->setListIndex(std::min(index, static_cast<int>(rows_.size()) - 1));
  RefreshButtons();
}

void cwLoadTemplate::btnExport_Click() {
  const Row* row = SelectedRow();
  if (!row) return;
  auto exporter = std::make_unique<cwExportTemplate>();
  exporter->setLayer_ID(row->ID);
  ShowTemplateTool(std::move(exporter), TemplateText("ExportTemplate"), cwExportTemplate::kWidth,
                   cwExportTemplate::kHeight);
}

void cwLoadTemplate::btnImport_Click() {
  auto importer = std::make_unique<cwImportTemplate>();
  importer->Init();
  importer->Import = [this](int newId) {
    RunHandler("cwLoadTemplate:ImportTemplate_Import", HandlerMode::Report, [&] {
      Init();
      SelectID(newId);
    });
  };
  ShowTemplateTool(std::move(importer), TemplateText("ImportTemplate"), cwImportTemplate::kWidth,
                   cwImportTemplate::kHeight);
}

void cwLoadTemplate::vlstTemplates_OwnerDrawItem(int index, DrawingContext& cc, double dx, double dy,
                                                 double alpha) {
  if (index < 0 || index >= static_cast<int>(rows_.size())) return;
  Row& row = rows_[index];
  if (!row.PictureMade) {
    row.Picture = TemplatePicture(row.Thumbnail);
    row.PictureMade = true;
  }
  const double side = std::min(dy - 6, static_cast<double>(kRowPicture));
  if (side <= 0) return;
  const double top = (dy - side) / 2;
  DrawTemplatePicture(cc, row.Picture, 3, top, side, alpha);
  const double left = side + 10, width = dx - left - 4, line = side / 2;
  cc.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text), true);
  cc.DrawText(left, top, width, line, row.Name, true, TextAlign::Left, TextAlign::Middle);
  cc.SelectFont(UiFont(), kUiFontSize, StockColor(Palette::Text));
  cc.DrawText(left, top + line, width, line, row.Description, true, TextAlign::Left, TextAlign::Middle);
}

void cwLoadTemplate::W_Resize() {
  const double w = Width(), h = Height();
  if (w <= 0 || h <= 0) return;  // not placed yet
  const double buttonTop = h - kMargin - kButtonHeight;
  vlstTemplates->Move(kMargin, kMargin, w - 2 * kMargin, buttonTop - 2 * kMargin);
  const double width = (w - 2 * kMargin - 4 * kGap) / 5;
  double left = kMargin;
  for (cwButton* b : {btnLoad_, btnDelete_, btnExport_, btnImport_, btnClose_}) {
    b->Move(left, buttonTop, width, kButtonHeight);
    left += width + kGap;
  }
}

void cwLoadTemplate::W_ReportState(WidgetState& state) const {
  const Row* row = SelectedRow();
  state.caption = row ? row->Name : std::string();
  state.text = name_;
  state.listCount = static_cast<int>(rows_.size());
  state.listIndex = vlstTemplates->ListIndex();
}

QDS_JOIN_WIDGET_REGISTRY(cwLoadTemplate);

}  // namespace qds
