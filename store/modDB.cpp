#include "store/modDB.h"

#include "engine/cSVGItem.h"
#include "engine/modFunctions.h"
#include "platform/Error.h"
#include "platform/TextUtil.h"
#include "store/modTemplates.h"

namespace qds {

namespace {

Value ChannelValue(const Channel& c) {
  return c ? Value(static_cast<long long>(RoundHalfEven(*c))) : Value();
}

Channel ValueChannel(const Value& v) {
  return v.IsEmpty() ? Channel() : Channel(v.AsDouble());
}

SVGItemPtr ItemFromRow(DbRecordset& rs) {
  auto item = std::make_shared<cSVGItem>();
  item->Init(rs.Fields("ID").Value(), rs.Fields("SVG").AsBytes(), rs.Fields("Name").AsString());
  item->setIsOverlay(rs.Fields("Overlay").AsBool());
  item->setZoomPercent(rs.Fields("Zoom").IsNull() ? 100 : rs.Fields("Zoom").AsDouble());
  item->setOffSetx(rs.Fields("OffsetX").AsDouble());
  item->setOffSetY(rs.Fields("OffsetY").AsDouble());
  item->setStyle(rs.Fields("Styles_Name").AsString());
  item->setTheme(rs.Fields("Themes_Name").AsString());
  return item;
}

// A layer takes the stored colour, filter, settings, operator and visibility.
void ApplyEntry(cSVGItem& item, const cLayersEntries& entry) {
  const cColorItem colour = EntryColor(entry);
  item.Init(item.ID(), item.SvgBytes(), item.FriendlyName(), &colour, entry.Visible(), entry.ColorFilter(),
            entry.FillOptions(), entry.Settings(), true, item.InitPath());
}

}  // namespace

cColorItem EntryColor(const cLayersEntries& entry) {
  cColorItem c;
  c.setr(ValueChannel(entry.r()));
  c.setG(ValueChannel(entry.G()));
  c.setB(ValueChannel(entry.B()));
  c.setH(ValueChannel(entry.H()));
  c.sets(ValueChannel(entry.s()));
  c.setl(ValueChannel(entry.l()));
  return c;
}

int WriteLayer(AppContext& app, const std::string& name, const std::string& description,
               const Bytes& thumbnail) {
  try {
    const std::string trimmedName(TrimBlanks(name));
    DbRecordset rs =
        app.Cnn.Query("Select * From Layer Where Name = '" + SqlText(trimmedName) + "' COLLATE NOCASE");
    if (rs.Eof()) rs.AddNew();
    rs.Fields("Name") = trimmedName;
    rs.Fields("Description") = std::string(TrimBlanks(description));
    rs.Fields("Thumbnail") = thumbnail;
    rs.Fields("Opacity") = app.DesignOpacity;
    rs.Fields("UseOpacity") = app.DesignOpacityOn;
    rs.Update();
    return static_cast<int>(rs.Fields("ID").AsLong());
  } catch (const AppError&) {
    return 0;
  }
}

bool WriteCurrentLayerList(AppContext& app, const std::string& name, const std::string& description,
                           const Bytes& thumbnail) {
  const int id = WriteLayer(app, name, description, thumbnail);
  if (id == 0) return false;
  if (!app.Cnn.Execute("Delete From LayerEntries Where Layer_ID=" + std::to_string(id))) return false;
  for (int i = 0; i < app.Layers.Count(); ++i) {
    const std::string& key = app.Layers.KeyByIndex(i);
    if (!WriteLayerEntry(app, id, i, key, *app.Layers.Item(i), key == "_BaseIco")) return false;
  }
  return true;
}

bool WriteLayerEntry(AppContext& app, int layerId, int position, const std::string& key, const cSVGItem& item,
                     bool isBaseEntry) {
  try {
    cLayersEntries entry;
    DbRecordset rs = app.Cnn.Query("Select * From LayerEntries Where 1=0");
    rs.AddNew();
    rs.Fields("Layer_ID") = layerId;
    rs.Fields("OrdIndex") = position;
    entry.setKey(key);
    entry.setIsBaseEntry(isBaseEntry);
    if (isBaseEntry) {
      std::string ids;
      for (const auto& e : app.BaseIcons) {
        if (!ids.empty()) ids += ",";
        ids += e.Item->ID().AsString();
      }
      entry.setImageIDs(ids);
    } else {
      entry.setImageIDs(item.ID().AsString());
    }
    entry.setSettings(item.Settings());
    entry.setVisible(item.Visible());
    entry.setColorFilter(item.Filter());
    entry.setFillOptions(item.FillOptions());
    const cColorItem& c = item.ColorItem();
    entry.setr(ChannelValue(c.r()));
    entry.setG(ChannelValue(c.G()));
    entry.setB(ChannelValue(c.B()));
    entry.setH(ChannelValue(c.H()));
    entry.sets(ChannelValue(c.s()));
    entry.setl(ChannelValue(c.l()));
    rs.Fields("Content") = entry.Content();
    rs.Update();
    return true;
  } catch (const AppError&) {
    return false;
  }
}

int ValidateImageIDs(AppContext& app, cLayersEntries& entry) {
  const std::string ids = entry.ImageIDs();
  if (ids.empty()) return 0;
  int replaced = 0;
  std::string out;
  std::size_t start = 0;
  for (;;) {
    const std::size_t comma = ids.find(',', start);
    std::string id(
        TrimBlanks(ids.substr(start, comma == std::string::npos ? std::string::npos : comma - start)));
    bool present = false;
    if (IsNumericID(Value(id))) {
      present =
          !app.Cnn.Query("Select ID From Images Where ID = " + std::to_string(Value(id).AsLong())).Eof();
    }
    if (!present) {
      id = std::to_string(app.DummyID);
      ++replaced;
    }
    if (!out.empty()) out += ",";
    out += id;
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  entry.setImageIDs(out);
  return replaced;
}

std::string CreateSQLSelectImages(const std::string& condition) {
  return std::string(
             "Select [Images].ID, [Images].Name, SVG,[Styles].Name as Styles_Name,[Styles].ID as Styles_ID, "
             "[Themes].Name as Themes_Name,[Themes].ID as Themes_ID, Overlay, Zoom, OffsetX, OffsetY From "
             "Images ") +
         "join Themes on [Images].Themes_ID=[Themes].ID " + "join Styles on [Images].Styles_ID=[Styles].ID " +
         condition;
}

void AddBaseSVGs(AppContext& app, int styleId, int themeId, const std::string& condition,
                 ItemCollection& target, bool keyByNameAndId) {
  std::string where;
  const auto add = [&](const std::string& part) { where += (where.empty() ? "" : " And ") + part; };
  if (styleId != 0) add("Styles_ID = " + std::to_string(styleId));
  if (themeId != 0) add("Themes_ID = " + std::to_string(themeId));
  if (!condition.empty()) add(condition);
  DbRecordset rs = app.Cnn.Query(
      CreateSQLSelectImages((where.empty() ? "" : "where " + where) + " order by [Images].Name"));
  for (; !rs.Eof(); rs.MoveNext()) {
    SVGItemPtr item = ItemFromRow(rs);
    const std::string key =
        keyByNameAndId ? item->FriendlyName() + item->ID().AsString() : item->ID().AsString();
    if (!target.Exists(key)) target.Add(item, key);
  }
}

DbRecordset QueryStylesAndThemes(AppContext& app) {
  return app.Cnn.Query(
      "SELECT Distinct [Styles].Name as Styles_Name, Styles_ID, [Themes].Name as Themes_Name, Themes_ID from "
      "Images "
      "join Themes on [Images].Themes_ID=[Themes].ID "
      "join Styles on [Images].Styles_ID=[Styles].ID "
      "where [Styles].Name<>'Quillaron' "
      "order by Styles_Name, Themes_Name");
}

bool FillCurrentLayerList(AppContext& app, int layerId, DesignLoadReport* report) {
  DesignLoadReport local;
  DesignLoadReport& r = report ? *report : local;
  std::vector<std::string> contents;
  try {
    DbRecordset rs = app.Cnn.Query("Select * From LayerEntries Where Layer_ID=" + std::to_string(layerId) +
                                   " Order By OrdIndex");
    for (; !rs.Eof(); rs.MoveNext()) contents.push_back(rs.Fields("Content").AsString());
  } catch (const AppError& e) {
    r.Error = e.Description();
    return false;
  }
  return FillLayersFromEntries(app, contents, &r);
}

bool FillLayersFromEntries(AppContext& app, const std::vector<std::string>& contents,
                           DesignLoadReport* report) {
  DesignLoadReport local;
  DesignLoadReport& r = report ? *report : local;
  r = {};
  // Every entry is read before anything changes: a design that cannot be
  // read leaves the one on screen as it is.
  std::vector<cLayersEntries> entries(contents.size());
  for (std::size_t i = 0; i < contents.size(); ++i) {
    const std::string problem = CheckLayerEntry(contents[i], &entries[i]);
    if (!problem.empty()) {
      r.Error = "layer entry " + std::to_string(i + 1) + " " + problem;
      return false;
    }
    r.Corrected += entries[i].Corrected();
  }

  ItemCollection layers, baseIcons;
  std::vector<std::string> derived;
  try {
    for (cLayersEntries& entry : entries) {
      const std::string key = entry.Key();
      SVGItemPtr item;
      if (entry.IsBaseEntry()) {
        r.MissingIcons += ValidateImageIDs(app, entry);
        if (!entry.ImageIDs().empty()) {
          AddBaseSVGs(app, 0, 0, "[Images].ID In (" + entry.ImageIDs() + ")", baseIcons);
        }
        if (baseIcons.Empty()) {
          ++r.SkippedEntries;
          continue;
        }
        item = baseIcons.Item(0)->Clone();
      } else if (IsGeneratedKey(key)) {
        item = std::make_shared<cSVGItem>();
        item->setID(Value(key));
        item->setFriendlyName(key);
      } else {
        r.MissingIcons += ValidateImageIDs(app, entry);
        DbRecordset row = app.Cnn.Query(
            CreateSQLSelectImages("where [Images].ID = " + std::to_string(Value(entry.ImageIDs()).AsLong())));
        if (row.Eof()) {
          ++r.SkippedEntries;  // not even the stand-in icon is there
          continue;
        }
        item = ItemFromRow(row);
      }
      ApplyEntry(*item, entry);
      r.Corrected += item->CorrectedSettings();
      if (layers.Exists(key)) {
        ++r.SkippedEntries;  // a damaged design: the first entry of a key wins
        continue;
      }
      layers.Add(item, key);
      if (item->EffType() != 0 || !item->TextContent().empty() || item->EffIsLine()) derived.push_back(key);
    }
  } catch (const AppError& e) {
    r.Error = e.Description();
    return false;
  }

  // Pictures that derive from other layers are made once all are there, on
  // the new stack; a failure there puts the old design back.
  ItemCollection oldLayers = std::move(app.Layers), oldBase = std::move(app.BaseIcons),
                 oldOverlays = std::move(app.OverlayLayers);
  const int oldIndex = app.BaseIndex;
  app.Layers = std::move(layers);
  app.BaseIcons = std::move(baseIcons);
  app.OverlayLayers = ItemCollection();
  app.BaseIndex = 0;
  try {
    for (const std::string& key : derived) {
      if (app.Layers.Exists(key)) app.Layers.Item(key)->SettingsRefresh();
    }
    RefreshIconClips(app);
  } catch (const std::exception& e) {
    app.Layers = std::move(oldLayers);
    app.BaseIcons = std::move(oldBase);
    app.OverlayLayers = std::move(oldOverlays);
    app.BaseIndex = oldIndex;
    const auto* appError = dynamic_cast<const AppError*>(&e);
    r.Error = appError ? appError->Description() : e.what();
    return false;
  }
  return true;
}

int WriteColorSettings(AppContext& app, const std::string& name, const std::string& description, int layers,
                       const cSVGItem& item) {
  try {
    DbRecordset rs =
        app.Cnn.Query("Select * From ColorFilter Where Name = '" + SqlText(name) + "' COLLATE NOCASE");
    if (rs.Eof()) rs.AddNew();
    rs.Fields("Name") = name;
    rs.Fields("Description") = description;
    rs.Fields("ColorFilter") = item.Filter();
    rs.Fields("OldColors") = item.RCOldColorString();
    rs.Fields("NewColors") = item.RCNewColorString();
    rs.Fields("Gradient") = item.Settings();
    const cColorItem& c = item.ColorItem();
    rs.Fields("R") = ChannelValue(c.r());
    rs.Fields("G") = ChannelValue(c.G());
    rs.Fields("B") = ChannelValue(c.B());
    rs.Fields("H") = ChannelValue(c.H());
    rs.Fields("S") = ChannelValue(c.s());
    rs.Fields("L") = ChannelValue(c.l());
    rs.Fields("Layers") = layers;
    rs.Fields("UseGlobalOpacity") = app.DesignOpacityOn;
    rs.Fields("Opacity") = app.DesignOpacity;
    rs.Update();
    return static_cast<int>(rs.Fields("ID").AsLong());
  } catch (const AppError&) {
    return 0;
  }
}

int WriteSettings(AppContext& app, int templateTypeId, const std::string& name,
                  const std::string& description, const std::string& settings, const Bytes& thumbnail) {
  try {
    DbRecordset rs =
        app.Cnn.Query("Select * From Templates Where TemplateTypes_ID = " + std::to_string(templateTypeId) +
                      " and Name = '" + SqlText(name) + "' COLLATE NOCASE");
    if (rs.Eof()) rs.AddNew();
    rs.Fields("TemplateTypes_ID") = templateTypeId;
    rs.Fields("Name") = name;
    rs.Fields("Description") = description;
    rs.Fields("Settings") = settings;
    rs.Fields("Thumbnail") = thumbnail;
    rs.Update();
    return static_cast<int>(rs.Fields("ID").AsLong());
  } catch (const AppError&) {
    return 0;
  }
}

}  // namespace qds
