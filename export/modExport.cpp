#include "export/modExport.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>
#include <vector>

#include "app/AppContext.h"
#include "engine/modColorRewrite.h"
#include "engine/modFunctions.h"
#include "engine/modPixelOps.h"
#include "export/cIcoResWriter.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/TextUtil.h"
#include "platform/Value.h"

namespace qds {

namespace {

bool Filled(const std::string& format) {
  return format == "JPG" || format == "BMP" || format == "GIF";
}

void Fill(const SurfacePtr& s, std::int64_t colour) {
  DrawingContext ctx(s);
  ctx.SetSourceColor(colour, 1.0);
  ctx.Paint();
}

// Takes the entry's icon into the layer that stands for it.
void Substitute(cSVGItem& layer, const cSVGItem& entry) {
  layer.setID(entry.ID());
  layer.setStyle(entry.Style());
  layer.setTheme(entry.Theme());
  layer.setXML(ToString(entry.SvgBytes()));  // the bytes as they are; coloured below
  layer.setFriendlyName(entry.FriendlyName());
  if (layer.EffIsLine()) layer.SettingsRefresh();
  if (layer.Filter() != cSVGItem::FilterOriginal) layer.setColorItem(layer.ColorItem());
}

// The clip paths this layer draws with, which an SVG file must keep.
bool NeedsClips(const cSVGItem& layer) {
  return !layer.ClipIOverlayKey().empty() || (layer.ClipExists() && layer.ClipVisible()) ||
         (layer.EffType() == 2 && !layer.EffBGKey().empty());
}

// A failure of one file that leaves the rest of the run to go on.
struct FileFailure {
  std::string Reason;
};

// One image as its format needs it.
struct Picture {
  SurfacePtr Surface;  // raster formats: the picture at its final size
  Bytes Svg;           // vector formats: the document drawn on the square
  int Side = 0;        // of the square
  bool Reshape = false;
  double Left = 0, Top = 0;            // vector formats: the part of the square shown
  std::int64_t Width = 0, Height = 0;  // of the written picture
  bool KeepClips = false;
};

// Turns a picture into the bytes of one format's file. Naming and writing
// the file is the run's, the same for every format.
class FormatWriter {
 public:
  virtual ~FormatWriter() = default;
  virtual Bytes Encode(const Picture& p) const = 0;
};

class PngWriter final : public FormatWriter {
 public:
  Bytes Encode(const Picture& p) const override { return p.Surface->ToPngBytes(); }
};

class JpgWriter final : public FormatWriter {
 public:
  explicit JpgWriter(int quality) : quality_(quality) {}
  Bytes Encode(const Picture& p) const override { return p.Surface->ToJpegBytes(quality_); }

 private:
  int quality_;
};

// "GIF" files have always held a bitmap.
class BmpWriter final : public FormatWriter {
 public:
  Bytes Encode(const Picture& p) const override { return p.Surface->ToBmpBytes(); }
};

class IcoWriter final : public FormatWriter {
 public:
  explicit IcoWriter(std::vector<std::string> sizes) : sizes_(std::move(sizes)) {}
  Bytes Encode(const Picture& p) const override { return cIcoResWriter::AlphaIcoBytes(p.Surface, sizes_); }

 private:
  std::vector<std::string> sizes_;
};

// The document as drawn, without the text steps of SVG.
class SvgzWriter final : public FormatWriter {
 public:
  Bytes Encode(const Picture& p) const override { return GzipCompress(p.Svg); }
};

class SvgWriter final : public FormatWriter {
 public:
  SvgWriter(double alpha, bool colorsInPercent, bool removeClipPaths)
      : alpha_(alpha), colorsInPercent_(colorsInPercent), removeClipPaths_(removeClipPaths) {}
  Bytes Encode(const Picture& p) const override {
    std::string text = ToString(p.Svg);
    if (alpha_ < 1) text = AddAlphaToSVG(text, alpha_);
    const std::string S = std::to_string(p.Side);
    if (p.Reshape) {
      ReplaceEvery(text, "viewBox=\"0 0 " + S + " " + S + "\"",
                   "viewBox=\"" + FormatDouble(p.Left) + " " + FormatDouble(p.Top) + " " +
                       std::to_string(p.Width) + " " + std::to_string(p.Height) + "\"");
    }
    ReplaceEvery(text, "width=\"" + S + "pt", "width=\"" + std::to_string(p.Width));
    ReplaceEvery(text, "height=\"" + S + "pt", "height=\"" + std::to_string(p.Height));
    if (!colorsInPercent_) text = RGBPercentToRGBValues(text);
    if (removeClipPaths_ && !p.KeepClips) text = RemoveClipPaths(text);
    return ToBytes(text);
  }

 private:
  double alpha_;
  bool colorsInPercent_, removeClipPaths_;
};

std::unique_ptr<FormatWriter> WriterFor(const AppContext& app, const ExportOptions& o, double alpha) {
  if (o.Format == "ICO") return std::make_unique<IcoWriter>(SplitSizes(o.IcoSizes));
  if (o.Format == "JPG") return std::make_unique<JpgWriter>(o.JPGQuality);
  if (o.Format == "BMP" || o.Format == "GIF") return std::make_unique<BmpWriter>();
  if (o.Format == "SVG") return std::make_unique<SvgWriter>(alpha, o.ColorsinPerc, app.RemoveClipPath);
  if (o.Format == "SVGZ") return std::make_unique<SvgzWriter>();
  return std::make_unique<PngWriter>();
}

// Cuts the drawn square to W x H around its middle, or trims it to its ink
// with AdjustSize. A raster picture gets a surface of the new size; a vector
// document, already finished, a view box.
Picture Shape(AppContext& app, const ExportOptions& o, SurfacePtr surface, int W, int H, double alpha,
              bool keepClips) {
  const bool isRaster = o.Format != "SVG" && o.Format != "SVGZ";
  const int S = std::max(W, H);
  Picture p;
  p.Side = S;
  p.KeepClips = keepClips;
  p.Width = W;
  p.Height = H;
  if (alpha < 1 && isRaster) {
    SurfacePtr faded = DrawingSurface::Create(S, S);
    DrawingContext ctx(faded);
    ctx.DrawSurface(surface, 0, 0, S, S, Filter::Good, alpha);
    surface = faded;
  }
  p.Reshape = (o.Format != "ICO" && o.AdjustSize) || W != H;
  double right = 0, bottom = 0;
  const auto measure = [&](const SurfacePtr& picture) {
    double scale = 1;
    const Margins m = GetInnerDimensions(picture, {}, scale, 0, true);
    p.Left = m.Left, p.Top = m.Top, right = m.Right, bottom = m.Bottom;
  };
  if (!isRaster) p.Svg = surface->SvgDocumentBytes();
  if (!p.Reshape) {
    p.Surface = surface;
    return p;
  }
  if (o.AdjustSize) {
    if (isRaster) {
      measure(surface);
    } else {
      SurfacePtr picture = DrawingSurface::Create(S, S);
      DrawingContext ctx(picture);
      app.SvgRenderer->Render(ctx, p.Svg, 0, 0, S, S, 0);
      measure(picture);
    }
    p.Width = RoundHalfEven(S - p.Left - right);
    p.Height = RoundHalfEven(S - p.Top - bottom);
  } else {
    const double D = std::abs(W - H);
    p.Left = W < H ? D / 2 : 0;
    p.Top = H < W ? D / 2 : 0;
  }
  if (p.Width < 1 || p.Height < 1)
    throw FileFailure{"nothing is left to write: the picture is fully transparent"};
  if (!isRaster) return p;
  SurfacePtr cut = DrawingSurface::Create(static_cast<int>(p.Width), static_cast<int>(p.Height));
  if (Filled(o.Format)) Fill(cut, o.BackgroundColor);
  DrawingContext ctx(cut);
  ctx.DrawSurface(surface, -p.Left, -p.Top, S, S, Filter::Good, 1.0);
  p.Surface = cut;
  return p;
}

// Names a written file: the name, else with RenameDuplicates the first free
// "-DuplicateN", else with `replace` the name in place of the file that has
// it. Empty when the file got no name.
std::string ClaimName(NewFile& file, const ExportOptions& o, const std::string& name, bool replace) {
  if (file.Claim(name)) return name;
  if (o.RenameDuplicates) {
    for (int c = 1; c <= kMaxDuplicate; ++c) {
      const std::string candidate = DuplicateName(name, c);
      if (file.Claim(candidate)) return candidate;
    }
    throw FileFailure{"every name from " + DuplicateName(name, 1) + " to " +
                      DuplicateName(name, kMaxDuplicate) + " is taken"};
  }
  if (!replace) return {};
  file.Replace(name);
  return name;
}

// Re-raises what was thrown with the file's path in front.
[[noreturn]] void RaiseForFile(const std::string& path, const std::string& what = {}) {
  const AppError e = CurrentError("RunExport");
  Raise(e.Number(), path + ": " + what + e.Description(), e.Source());
}

}  // namespace

std::string NamePartProblem(const std::string& part) {
  if (part.find('/') != std::string::npos) return "a part of a file name must not hold \"/\"";
  if (part == "." || part == "..") return "a part of a file name must not be \".\" or \"..\"";
  if (part.find('\0') != std::string::npos) return "a part of a file name must not hold a NUL character";
  return {};
}

std::string GetFolderName(const ExportOptions& o) {
  std::string folder = o.Folder;
  if (o.CreateFolderFormat) folder = JoinPath(folder, o.Format);
  if (o.Format != "ICO" && o.CreateFolderSize) {
    folder = JoinPath(folder, std::to_string(o.Width) + "x" + std::to_string(o.Height));
  }
  return folder;
}

std::string DuplicateName(const std::string& fileName, int counter) {
  const std::size_t dot = fileName.rfind('.');
  const std::string base = dot == std::string::npos ? fileName : fileName.substr(0, dot);
  const std::string ext = dot == std::string::npos ? std::string() : fileName.substr(dot + 1);
  return base + "-Duplicate" + std::to_string(counter) + "." + ext;
}

std::string UniqueName(const std::string& folder, const std::string& fileName) {
  const std::string dir = WithTrailingSlash(folder.empty() ? ExecutableFolder() : folder);
  for (int c = 1; c <= kMaxDuplicate; ++c) {
    const std::string name = DuplicateName(fileName, c);
    if (!FileExists(dir + name)) return name;
  }
  Raise(ErrNo::Overflow,
        dir + fileName + ": every name from " + DuplicateName(fileName, 1) + " to " +
            DuplicateName(fileName, kMaxDuplicate) + " is taken",
        "UniqueName");
}

std::string ComposeName(const ExportOptions& o, const std::string& baseName, const std::string& overlayName) {
  using Part = ExportOptions::Part;
  const auto part = [&](Part p, const std::string& text) {
    switch (p) {
      case Part::Base:
        return baseName;
      case Part::Overlay:
        return overlayName;
      case Part::None:
        return std::string();
      default:
        return text;
    }
  };
  std::string name = part(o.NamePart, o.NameText);
  if (o.NamePart == Part::Text && name.empty()) name = "Name";
  const std::string ext = part(o.ExtPart, o.ExtText);
  std::string size;
  if (o.SizeExt && o.Format != "ICO") {
    size = o.Width == o.Height ? std::to_string(o.Width)
                               : std::to_string(o.Width) + "x" + std::to_string(o.Height);
  }
  std::string result = o.Prefix;
  if (!o.Prefix.empty()) result += o.Delimiter;
  result += name;
  if (!ext.empty()) result += o.Delimiter + ext;
  if (!size.empty()) result += o.Delimiter + size;
  if (o.RemoveBlank) result.erase(std::remove(result.begin(), result.end(), ' '), result.end());
  return result + "." + AsciiLower(o.Format);
}

std::string Update_Name(const ExportOptions& o, const std::string& baseName, const std::string& overlayName,
                        const std::string& folder) {
  const std::string name = ComposeName(o, baseName, overlayName);
  if (o.RenameDuplicates && FileExists(JoinPath(folder, name))) return UniqueName(folder, name);
  return name;
}

std::string AddAlphaToSVG(const std::string& svg, double alpha) {
  const std::size_t at = svg.find("<g id=\"surface");
  if (at == std::string::npos) return svg;
  const std::size_t gt = svg.find('>', at);
  if (gt == std::string::npos) return svg;
  std::string value = FormatDouble(alpha);
  std::replace(value.begin(), value.end(), ',', '.');
  std::string out = svg;
  out.insert(gt, " opacity=\"" + value + "\"");
  return out;
}

ExportResult RunExport(AppContext& app, const ExportOptions& o, ExportObserver& observer) {
  // Pictures cached at this run's size are of little use afterwards, and
  // at large sizes they are hundreds of megabytes: give them back.
  struct ReleaseCaches {
    AppContext& app;
    ~ReleaseCaches() {
      app.RenderCache.Clear();
      app.BlurCache.Clear();
    }
  } releaseCaches{app};
  ExportResult result;
  if (app.Layers.Empty()) {
    result.Completed = true;
    return result;
  }
  // Base icons asked for and none there (all gone from the library, say):
  // drawing anyway would write one file named by the size alone.
  if (o.ExportHasBaseIcons && app.BaseIcons.Empty()) {
    observer.Message("NothingToExport", "");
    result.Error = "NothingToExport";
    return result;
  }
  const double A = app.DesignOpacityOn ? app.DesignOpacity / 100.0 : 1.0;
  if (!FolderExists(o.Folder)) {
    observer.Message("FolderMissing", o.Folder);
    result.Error = "FolderMissing";
    return result;
  }
  const auto makeFolder = [&](const std::string& folder) {
    if (!FolderExists(folder)) CreateDirectories(folder);
    if (!FolderExists(folder)) observer.Message("ErrorCreateFolder", folder);
  };
  if (o.CreateFolderFormat) makeFolder(JoinPath(o.Folder, o.Format));
  if (o.CreateFolderSize && o.Format != "ICO") makeFolder(GetFolderName(o));
  const std::string target = GetFolderName(o);

  const bool ico = o.Format == "ICO";
  const int W = ico ? 256 : (o.AdjustSize ? std::max(o.Width, o.Height) : o.Width);
  const int H = ico ? 256 : (o.AdjustSize ? std::max(o.Width, o.Height) : o.Height);
  const int S = std::max(W, H);
  const bool isRaster = o.Format != "SVG" && o.Format != "SVGZ";
  const bool hasBase = o.ExportHasBaseIcons && app.Layers.Exists("_BaseIco") && !app.BaseIcons.Empty();
  const bool hasOverlay =
      o.ExportHasOverlayIcons && app.Layers.Exists(o.ExportOverlayKey) && !app.OverlayLayers.Empty();
  int N = hasBase ? app.BaseIcons.Count() : 1;
  if (hasOverlay) N *= app.OverlayLayers.Count();
  const std::unique_ptr<FormatWriter> writer = WriterFor(app, o, A);
  observer.Progress(0, N, "0 %");

  // The names of this run's images so far: a second image of one name is
  // another icon of that name, never a file to ask about or to replace.
  std::set<std::string> names;
  bool overwriteAll = false;
  int I = 0;
  for (; I < N; ++I) {
    if (observer.DoEventsAndCheckStop()) break;
    const auto progress = [&] {
      observer.Progress(I + 1, N, std::to_string(RoundHalfEven((I + 1) * 100.0 / N)) + "%");
    };
    SurfacePtr surface = DrawingSurface::Create(S, S, isRaster ? SurfaceKind::Image : SurfaceKind::Svg);
    {
      DrawingContext ctx(surface);
      ctx.SetOperator(Op::Clear);
      ctx.Paint(1.0);
    }
    const int baseIndex = hasBase ? I % app.BaseIcons.Count() : 0;
    const int overlayIndex = hasBase ? I / app.BaseIcons.Count() : I;
    std::string baseName, overlayName;
    if (hasBase) {
      const SVGItemPtr entry = app.BaseIcons.Item(baseIndex);
      Substitute(*app.Layers.Item("_BaseIco"), *entry);
      baseName = entry->FriendlyName();
    }
    if (hasOverlay) {
      const SVGItemPtr layer = app.Layers.Item(o.ExportOverlayKey);
      layer->setSelectionIndex(overlayIndex);
      const SVGItemPtr entry = app.OverlayLayers.Item(overlayIndex);
      Substitute(*layer, *entry);
      overlayName = entry->FriendlyName();
    }
    const std::string name = ComposeName(o, baseName, overlayName);
    const std::string path = JoinPath(target, name);
    const bool collision = !names.insert(name).second && !o.RenameDuplicates;
    bool replace = overwriteAll, skip = collision;
    if (!collision && !overwriteAll && !o.RenameDuplicates && FileExists(path)) {
      const int answer = observer.AskOverwrite(name);
      if (answer == Answer::Cancel) break;
      overwriteAll = answer == Answer::YesToAll;
      replace = answer == Answer::Yes || overwriteAll;
      skip = !replace;
    }
    if (!o.AdjustSize && Filled(o.Format)) Fill(surface, o.BackgroundColor);

    bool keepClips = false;
    try {
      DrawingContext ctx(surface);
      for (int i = app.Layers.Count() - 1; i >= 0; --i) {
        const SVGItemPtr layer = app.Layers.Item(i);
        if (!layer->Visible()) continue;
        if (app.RemoveClipPath && NeedsClips(*layer)) keepClips = true;
        try {
          // A picture that follows the substituted icon is made anew.
          if (layer->EffSymbolKey() == "_BaseIco" || layer->EffSymbolKey() == o.ExportOverlayKey) {
            layer->SettingsRefresh();
          } else if (!layer->ClipIOverlayKey().empty()) {
            layer->RefreshClipWithIcon();  // traced once, and again for each new cutting icon
          }
          layer->RenderTo(ctx, S, S);
        } catch (...) {
          RaiseForFile(path, "the layer \"" + app.Layers.KeyByIndex(i) + "\" cannot be drawn: ");
        }
      }
    } catch (...) {
      // The same layers are drawn for every image: the next would fail too.
      observer.Message("SaveError", CurrentError("RunExport").Description());
      result.Error = "SaveError";
      break;
    }
    ++result.Images;
    if (skip) {
      ++(collision ? result.Collisions : result.Skipped);
      observer.ImageDone(path, false);
      progress();
      continue;
    }
    std::string written;
    bool failed = false;
    try {
      Bytes bytes;
      try {
        bytes = writer->Encode(Shape(app, o, surface, W, H, A, keepClips));
      } catch (const FileFailure&) {
        throw;
      } catch (...) {
        RaiseForFile(path);
      }
      NewFile file(target, bytes);
      written = ClaimName(file, o, name, replace);
    } catch (const FileFailure& f) {
      failed = true;
      observer.Message("SaveError", path + ": " + f.Reason);
    } catch (...) {
      // Files already written stay, and the one that failed was never half
      // written. A name that cannot be used fails that file alone; anything
      // else (no memory, a full disk, a folder that takes no files) would
      // fail the next file too.
      const AppError e = CurrentError("RunExport");
      observer.Message("SaveError", e.Description());
      if (e.Number() != ErrNo::BadFileName) {
        result.Error = "SaveError";
        break;
      }
      failed = true;
    }
    // A name taken in the meantime, by another run into this folder, is a
    // file that existed.
    ++(failed ? result.Failed : written.empty() ? result.Skipped : result.Written);
    observer.ImageDone(written.empty() ? path : JoinPath(target, written), !written.empty());
    progress();
  }
  if (result.Failed > 0) result.Error = "SaveError";
  result.Completed = I == N;
  return result;
}

}  // namespace qds
