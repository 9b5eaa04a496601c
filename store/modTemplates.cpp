#include "store/modTemplates.h"

#include "app/AppContext.h"
#include "engine/cLayersEntries.h"
#include "platform/Collection.h"
#include "platform/Error.h"
#include "platform/JsonBag.h"
#include "platform/TextUtil.h"

namespace qds {

namespace {

bool IsLayerEntry(const std::string& content) {
  cLayersEntries entry;
  return entry.setContent(content);
}

}  // namespace

int FindDesign(AppContext& app, const std::string& name) {
  DbRecordset rs = app.Cnn.Query("Select ID From Layer Where Name = '" +
                                 SqlText(std::string(TrimBlanks(name))) + "' COLLATE NOCASE");
  return rs.Eof() ? 0 : static_cast<int>(rs.Fields(0).AsLong());
}

std::optional<DesignFile> ReadDesign(AppContext& app, int layerId) {
  DbRecordset layer = app.Cnn.Query("Select * From Layer where ID = " + std::to_string(layerId));
  if (layer.Eof()) return std::nullopt;
  DesignFile d;
  d.Name = layer.Fields("Name").AsString();
  d.Description = layer.Fields("Description").AsString();
  d.Image = layer.Fields("Thumbnail").AsBytes();
  d.Opacity = layer.Fields("Opacity").IsNull() ? 100 : static_cast<int>(layer.Fields("Opacity").AsLong());
  d.UseOpacity = layer.Fields("UseOpacity").AsBool();
  DbRecordset entries = app.Cnn.Query("Select * From LayerEntries Where Layer_ID=" + std::to_string(layerId) +
                                      " Order By OrdIndex");
  for (; !entries.Eof(); entries.MoveNext()) d.Contents.push_back(entries.Fields("Content").AsString());
  return d;
}

Bytes TemplateBytes(const DesignFile& d) {
  Collection c(KeyMode::AllowDuplicates);
  c.Add(Value(d.Image), "Image");
  c.Add(Value(d.Description), "Description");
  c.Add(Value(d.Opacity), "Opacity");
  c.Add(Value(d.UseOpacity), "UseOpacity");
  for (const std::string& content : d.Contents) c.Add(Value(content), "Content");
  return SerializeCollection(c);
}

std::optional<DesignFile> ReadTemplateBytes(const Bytes& bytes) {
  try {
    const Collection c = DeserializeCollection(bytes);
    if (!c.Exists("Image") || !c.Exists("Content") || !c.Exists("Description")) return std::nullopt;
    DesignFile d;
    d.Image = c.Item("Image").AsBytes();
    d.Description = c.Item("Description").AsString();
    if (c.Exists("Opacity")) d.Opacity = static_cast<int>(c.Item("Opacity").AsLong());
    if (c.Exists("UseOpacity")) d.UseOpacity = c.Item("UseOpacity").AsBool();
    for (const auto& e : c) {
      if (e.Key != "Content") continue;
      const std::string content = e.Item.AsString();
      if (!IsLayerEntry(content)) return std::nullopt;
      d.Contents.push_back(content);
    }
    return d;
  } catch (const AppError&) {
    return std::nullopt;  // damaged, or a value of the wrong kind
  }
}

std::string DesignJson(const DesignFile& d, bool pretty) {
  JsonBag::Json j = JsonBag::Json::object();
  j["Name"] = d.Name;
  j["Description"] = d.Description;
  j["Opacity"] = d.Opacity;
  j["UseOpacity"] = d.UseOpacity;
  j["Entries"] = JsonBag::Json::array();
  for (const std::string& content : d.Contents) {
    JsonBag entry;
    entry.Parse(content);
    j["Entries"].push_back(entry.Raw());
  }
  JsonBag bag;
  bag.Raw() = j;
  return bag.ToString(pretty ? 2 : -1);
}

std::optional<DesignFile> ReadDesignJson(const std::string& text) {
  JsonBag bag;
  if (!bag.Parse(text)) return std::nullopt;
  const JsonBag::Json& j = bag.Raw();
  if (!j.contains("Entries") || !j["Entries"].is_array() || !j.contains("Description")) return std::nullopt;
  DesignFile d;
  d.Name = bag.GetString("Name");
  d.Description = bag.GetString("Description");
  d.Opacity = static_cast<int>(bag.GetLong("Opacity", 100));
  d.UseOpacity = bag.GetBool("UseOpacity", false);
  for (const auto& entry : j["Entries"]) {
    if (!entry.is_object()) return std::nullopt;
    JsonBag e;
    e.Raw() = entry;
    d.Contents.push_back(e.ToString());
  }
  return d;
}

int StoreDesign(AppContext& app, const std::string& name, const DesignFile& d) {
  DbConnection& cnn = app.Cnn;
  if (!cnn.BeginTrans()) return 0;
  try {
    const std::string trimmed(TrimBlanks(name));
    DbRecordset layer =
        cnn.Query("Select * From Layer Where Name = '" + SqlText(trimmed) + "' COLLATE NOCASE");
    if (layer.Eof()) layer.AddNew();
    layer.Fields("Name") = trimmed;
    layer.Fields("Description") = d.Description;
    layer.Fields("Thumbnail") = d.Image;
    layer.Fields("Opacity") = d.Opacity;
    layer.Fields("UseOpacity") = d.UseOpacity;
    layer.Update();
    const int id = static_cast<int>(layer.Fields("ID").AsLong());
    if (!cnn.Execute("Delete From LayerEntries Where Layer_ID=" + std::to_string(id))) {
      Raise(cnn.ErrorNumber(), cnn.ErrorText());
    }
    DbRecordset entries = cnn.Query("Select * From LayerEntries Where 1=0");
    int position = 0;
    for (const std::string& content : d.Contents) {
      entries.AddNew();
      entries.Fields("Layer_ID") = id;
      entries.Fields("OrdIndex") = position++;
      entries.Fields("Content") = content;
      entries.Update();
    }
    if (!cnn.CommitTrans()) Raise(cnn.ErrorNumber(), cnn.ErrorText());
    return id;
  } catch (const AppError&) {
    cnn.RollbackTrans();
    return 0;
  }
}

bool DeleteDesign(AppContext& app, int layerId) {
  DbConnection& cnn = app.Cnn;
  if (!cnn.BeginTrans()) return false;
  if (cnn.Execute("Delete From LayerEntries Where Layer_ID=" + std::to_string(layerId)) &&
      cnn.Execute("Delete From Layer Where ID=" + std::to_string(layerId)) && cnn.CommitTrans()) {
    return true;
  }
  cnn.RollbackTrans();
  return false;
}

}  // namespace qds
