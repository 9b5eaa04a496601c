#include "store/modTemplates.h"

#include <cmath>

#include "app/AppContext.h"
#include "engine/cLayersEntries.h"
#include "platform/Collection.h"
#include "platform/Error.h"
#include "platform/JsonBag.h"
#include "platform/TextUtil.h"

namespace qds {

namespace {

std::optional<DesignFile> Refused(std::string* why, std::string reason) {
  if (why) *why = std::move(reason);
  return std::nullopt;
}

// A value as a message shows it: texts quoted and cut short.
std::string Shown(const Value& v) {
  switch (v.GetKind()) {
    case Value::Kind::String: {
      const std::string& t = v.Get<std::string>();
      return "\"" + (t.size() > 40 ? t.substr(0, 40) + "..." : t) + "\"";
    }
    case Value::Kind::Bytes:
      return "binary data";
    case Value::Kind::Collection:
      return "a list or an object";
    case Value::Kind::Bool:
      return v.Get<bool>() ? "true" : "false";
    default:
      return v.AsString();
  }
}

// A JSON member as a value; lists and objects become a value of the
// collection kind, so that the reader refuses them by their kind.
std::optional<Value> JsonMember(const JsonBag::Json& j, const char* key) {
  const auto it = j.find(key);
  if (it == j.end()) return std::nullopt;
  if (it->is_structured()) return Value(CollectionPtr{});
  if (it->is_boolean()) return Value(it->get<bool>());
  if (it->is_number_integer()) return Value(static_cast<long long>(it->get<std::int64_t>()));
  if (it->is_number()) return Value(it->get<double>());
  if (it->is_string()) return Value(it->get<std::string>());
  return Value();
}

// An icon ID as the library has them: digits only, within range.
bool IsWholeNumber(std::string_view text) {
  text = TrimBlanks(text);
  if (text.empty() || text.size() > 18) return false;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

bool EndsWith(const std::string& s, const std::string& suffix) {
  return s.size() >= suffix.size() && s.compare(s.size() - suffix.size(), suffix.size(), suffix) == 0;
}

}  // namespace

std::string ReadDesignValues(const DesignValueSource& get, DesignFile& d) {
  const auto text = [&](const char* key, std::string& out, bool required) -> std::string {
    const std::optional<Value> v = get(key);
    out.clear();
    if (!v) return required ? std::string(key) + " is missing" : std::string();
    if (v->IsEmpty()) return {};
    if (v->GetKind() != Value::Kind::String) return std::string(key) + " is not a text but " + Shown(*v);
    out = v->Get<std::string>();
    return {};
  };
  if (std::string why = text("Name", d.Name, false); !why.empty()) return why;
  if (std::string why = text("Description", d.Description, true); !why.empty()) return why;

  d.Opacity = 100;
  if (const std::optional<Value> v = get("Opacity"); v && !v->IsEmpty()) {
    double o = 0;
    if (v->GetKind() == Value::Kind::Integer) {
      o = static_cast<double>(v->Get<std::int64_t>());
    } else if (v->GetKind() == Value::Kind::Double && !std::isnan(v->Get<double>())) {
      o = v->Get<double>();
    } else {
      return "Opacity is not a number but " + Shown(*v);
    }
    // Compared as a double so that no value is cut to an int on the way:
    // the largest int64 would otherwise arrive as -1.
    if (o < 0 || o > 100) {
      o = o < 0 ? 0 : 100;
      ++d.Clamped;
    }
    d.Opacity = static_cast<int>(RoundHalfEven(o));
  }

  d.UseOpacity = false;
  if (const std::optional<Value> v = get("UseOpacity"); v && !v->IsEmpty()) {
    // Rows hold -1 and 0, templates true and false.
    if (v->GetKind() == Value::Kind::Bool) {
      d.UseOpacity = v->Get<bool>();
    } else if (v->GetKind() == Value::Kind::Integer) {
      d.UseOpacity = v->Get<std::int64_t>() != 0;
    } else if (v->GetKind() == Value::Kind::Double && !std::isnan(v->Get<double>())) {
      d.UseOpacity = v->Get<double>() != 0;
    } else {
      return "UseOpacity is not true or false but " + Shown(*v);
    }
  }
  return {};
}

bool IsGeneratedKey(const std::string& key) {
  for (const char* kind : {"Text", "Long Shadow", "Wall Shadow", "Mirroring"}) {
    if (EndsWith(key, kind)) return true;
  }
  return false;
}

int CorrectDesign(DesignFile& design) {
  int corrected = design.Clamped;
  for (std::string& content : design.Contents) corrected += CheckEntryContent(content);
  return corrected;
}

std::string CheckLayerEntry(const std::string& content, cLayersEntries* out) {
  JsonBag bag;
  if (!bag.Parse(content)) return "is " + bag.LastError();
  const JsonBag::Json& j = bag.Raw();
  for (const char* key : {"Key", "ImageIDs", "IsBaseEntry"}) {
    const auto it = j.find(key);
    if (it != j.end() && it->is_structured()) return std::string("has a list or an object as ") + key;
  }
  cLayersEntries entry;
  entry.setContent(content);
  const std::string key = entry.Key();
  if (TrimBlanks(key).empty()) return "has no key";
  const std::string ids = entry.ImageIDs();
  if (entry.IsBaseEntry()) {
    // No icons at all is a base layer that is left out when loaded.
    for (std::size_t start = 0; !ids.empty();) {
      const std::size_t comma = ids.find(',', start);
      const std::string id =
          ids.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
      if (!IsWholeNumber(id))
        return "(" + key + ") has an icon ID that is not a whole number: \"" + id + "\"";
      if (comma == std::string::npos) break;
      start = comma + 1;
    }
  } else if (!IsGeneratedKey(key) && !IsWholeNumber(ids)) {
    return "(" + key + ") names no library icon: \"" + ids + "\"";
  }
  if (const auto it = j.find("Settings"); it != j.end() && !it->is_null() && !it->is_object()) {
    if (!it->is_string()) return "(" + key + ") has settings that are not a JSON object";
    const std::string& settings = it->get_ref<const std::string&>();
    JsonBag parsed;
    if (!TrimBlanks(settings).empty() && !parsed.Parse(settings)) {
      return "(" + key + ") has settings that are " + parsed.LastError();
    }
  }
  if (out) *out = std::move(entry);
  return {};
}

int FindDesign(AppContext& app, const std::string& name) {
  DbRecordset rs = app.Cnn.Query("Select ID From Layer Where Name = '" +
                                 SqlText(std::string(TrimBlanks(name))) + "' COLLATE NOCASE");
  return rs.Eof() ? 0 : static_cast<int>(rs.Fields(0).AsLong());
}

std::optional<DesignFile> ReadDesign(AppContext& app, int layerId) {
  DbRecordset layer = app.Cnn.Query("Select * From Layer where ID = " + std::to_string(layerId));
  if (layer.Eof()) return std::nullopt;
  DesignFile d;
  // An old library without the opacity columns reads with the defaults.
  const std::string problem = ReadDesignValues(
      [&](const char* key) -> std::optional<Value> {
        if (layer.FieldIndex(key) < 0) return std::nullopt;
        return layer.FieldValue(key);
      },
      d);
  if (!problem.empty()) {
    Raise(ErrNo::InvalidData,
          "The design \"" + layer.FieldValue("Name").AsString() + "\" (row " + std::to_string(layerId) +
              " of Layer) cannot be read: " + problem,
          "ReadDesign");
  }
  d.Image = layer.Fields("Thumbnail").AsBytes();
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

std::optional<DesignFile> ReadTemplateBytes(const Bytes& bytes, std::string* why) {
  Collection c;
  try {
    c = DeserializeCollection(bytes);
  } catch (const AppError& e) {
    return Refused(why, "not a template: " + e.Description());
  }
  for (const char* key : {"Image", "Description"}) {
    if (!c.Exists(key)) return Refused(why, std::string("not a template: \"") + key + "\" is missing");
  }
  if (!c.Exists("Content")) return Refused(why, "the template has no layer entries (\"Content\")");
  DesignFile d;
  const Value& image = c.Item("Image");
  if (image.GetKind() != Value::Kind::Bytes && !image.IsEmpty()) {
    return Refused(why, "Image is not a picture but " + Shown(image));
  }
  d.Image = image.AsBytes();
  // A template takes its name from its file.
  std::string problem = ReadDesignValues(
      [&](const char* key) -> std::optional<Value> {
        if (std::string_view(key) == "Name" || !c.Exists(key)) return std::nullopt;
        return c.Item(key);
      },
      d);
  if (!problem.empty()) return Refused(why, problem);
  int n = 0;
  for (const auto& e : c) {
    if (e.Key != "Content") continue;
    const std::string which = "layer entry " + std::to_string(++n);
    if (e.Item.GetKind() != Value::Kind::String) return Refused(why, which + " is not a text");
    const std::string& content = e.Item.Get<std::string>();
    problem = CheckLayerEntry(content);
    if (!problem.empty()) return Refused(why, which + " " + problem);
    d.Contents.push_back(content);
  }
  return d;
}

std::string TemplateProblem(const DesignFile& design) {
  // The file that would be written, read back by the importer itself.
  std::string why;
  return ReadTemplateBytes(TemplateBytes(design), &why) ? std::string() : why;
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
    if (entry.Parse(content)) {
      j["Entries"].push_back(entry.Raw());
    } else {
      j["Entries"].push_back(content);
    }
  }
  JsonBag bag;
  bag.Raw() = j;
  return bag.ToString(pretty ? 2 : -1);
}

std::optional<DesignFile> ReadDesignJson(const std::string& text, std::string* why) {
  JsonBag bag;
  if (!bag.Parse(text)) return Refused(why, bag.LastError());
  const JsonBag::Json& j = bag.Raw();
  const auto entries = j.find("Entries");
  if (entries == j.end()) return Refused(why, "Entries is missing");
  if (!entries->is_array()) return Refused(why, "Entries is not a list ([...])");
  DesignFile d;
  std::string problem = ReadDesignValues([&](const char* key) { return JsonMember(j, key); }, d);
  if (!problem.empty()) return Refused(why, problem);
  for (std::size_t i = 0; i < entries->size(); ++i) {
    const std::string which = "Entries[" + std::to_string(i) + "]";
    if (!(*entries)[i].is_object()) return Refused(why, which + " is not an object");
    JsonBag e;
    e.Raw() = (*entries)[i];
    d.Contents.push_back(e.ToString());
    problem = CheckLayerEntry(d.Contents.back());
    if (!problem.empty()) return Refused(why, which + " " + problem);
  }
  return d;
}

int StoreDesign(AppContext& app, const std::string& name, const DesignFile& d, bool replace, bool* existed) {
  if (existed) *existed = false;
  DbConnection& cnn = app.Cnn;
  if (!cnn.BeginTrans()) return 0;
  try {
    const std::string trimmed(TrimBlanks(name));
    DbRecordset layer =
        cnn.Query("Select * From Layer Where Name = '" + SqlText(trimmed) + "' COLLATE NOCASE");
    if (layer.Eof()) {
      layer.AddNew();
    } else if (!replace) {
      cnn.RollbackTrans();
      if (existed) *existed = true;
      return 0;
    }
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
