#include "export/modExport.h"

#include <algorithm>
#include <cmath>

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

}  // namespace

std::string GetFolderName(const ExportOptions& o) {
  std::string folder = o.Folder;
  if (o.CreateFolderFormat) folder = JoinPath(folder, o.Format);
  if (o.Format != "ICO" && o.CreateFolderSize) {
    folder = JoinPath(folder, std::to_string(o.Width) + "x" + std::to_string(o.Height));
  }
  return folder;
}

std::string UniqueName(const std::string& folder, const std::string& fileName) {
  const std::string dir = WithTrailingSlash(folder.empty() ? ExecutableFolder() : folder);
  const std::size_t dot = fileName.rfind('.');
  const std::string base = dot == std::string::npos ? fileName : fileName.substr(0, dot);
  const std::string ext = dot == std::string::npos ? std::string() : fileName.substr(dot + 1);
  for (int c = 1; c <= 32767; ++c) {
    const std::string name = base + "-Duplicate" + std::to_string(c) + "." + ext;
    if (!FileExists(dir + name)) return name;
  }
  Raise(ErrNo::Overflow, "No free name for " + fileName, "UniqueName");
}

std::string Update_Name(const ExportOptions& o, const std::string& baseName, const std::string& overlayName,
                        const std::string& folder) {
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
  result += "." + AsciiLower(o.Format);
  if (o.RenameDuplicates && FileExists(JoinPath(folder, result))) result = UniqueName(folder, result);
  return result;
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
  const cIcoResWriter writer;
  observer.Progress(0, N, "0 %");

  bool overwriteAll = false;
  int I = 0;
  for (; I < N; ++I) {
    if (observer.DoEventsAndCheckStop()) break;
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
    const std::string name = Update_Name(o, baseName, overlayName, target);
    const std::string path = JoinPath(target, name);
    int answer = Answer::Yes;
    if (!overwriteAll && FileExists(path)) {
      answer = observer.AskOverwrite(name);
      if (answer == Answer::Cancel) break;
      if (answer == Answer::YesToAll) {
        overwriteAll = true;
        answer = Answer::Yes;
      }
    }
    if (!o.AdjustSize && Filled(o.Format)) Fill(surface, o.BackgroundColor);

    bool keepClips = false;
    {
      DrawingContext ctx(surface);
      for (int i = app.Layers.Count() - 1; i >= 0; --i) {
        const SVGItemPtr layer = app.Layers.Item(i);
        if (!layer->Visible()) continue;
        if (app.RemoveClipPath && NeedsClips(*layer)) keepClips = true;
        // A picture that follows the substituted icon is made anew.
        if (layer->EffSymbolKey() == "_BaseIco" || layer->EffSymbolKey() == o.ExportOverlayKey) {
          layer->SettingsRefresh();
        } else if (!layer->ClipIOverlayKey().empty()) {
          layer->RefreshClipWithIcon();  // traced once, and again for each new cutting icon
        }
        layer->RenderTo(ctx, S, S);
      }
    }
    ++result.Images;
    if (answer != Answer::Yes) {
      ++result.Skipped;
      observer.ImageDone(path, false);
      observer.Progress(I + 1, N, std::to_string(RoundHalfEven((I + 1) * 100.0 / N)) + "%");
      continue;
    }
    try {
      if (A < 1 && isRaster) {
        SurfacePtr faded = DrawingSurface::Create(S, S);
        DrawingContext ctx(faded);
        ctx.DrawSurface(surface, 0, 0, S, S, Filter::Good, A);
        surface = faded;
      }
      const bool reshape = (!ico && o.AdjustSize) || W != H;
      double left = 0, top = 0, right = 0, bottom = 0;
      const auto measure = [&](const SurfacePtr& picture) {
        double scale = 1;
        const Margins m = GetInnerDimensions(picture, {}, scale, 0, true);
        left = m.Left, top = m.Top, right = m.Right, bottom = m.Bottom;
      };
      const auto centred = [&] {
        const double D = std::abs(W - H);
        left = W < H ? D / 2 : 0;
        top = H < W ? D / 2 : 0;
        right = left, bottom = top;
      };
      Bytes svg;
      if (reshape && isRaster) {
        if (o.AdjustSize) {
          measure(surface);
        } else {
          centred();
        }
        const std::int64_t nw = o.AdjustSize ? RoundHalfEven(S - left - right) : W;
        const std::int64_t nh = o.AdjustSize ? RoundHalfEven(S - top - bottom) : H;
        if (nw < 1 || nh < 1) Raise(ErrNo::InvalidArgument, "Nothing is left to write", "RunExport");
        SurfacePtr cut = DrawingSurface::Create(static_cast<int>(nw), static_cast<int>(nh));
        if (Filled(o.Format)) Fill(cut, o.BackgroundColor);
        DrawingContext ctx(cut);
        ctx.DrawSurface(surface, -left, -top, S, S, Filter::Good, 1.0);
        surface = cut;
      } else if (!isRaster) {
        svg = surface->SvgDocumentBytes();
        if (reshape) {
          if (o.AdjustSize) {
            SurfacePtr picture = DrawingSurface::Create(S, S);
            DrawingContext ctx(picture);
            app.SvgRenderer->Render(ctx, svg, 0, 0, S, S, 0);
            measure(picture);
          } else {
            centred();
          }
        }
      }
      if (o.Format == "ICO") {
        writer.SaveSurfaceToAlphaIco(surface, path, SplitSizes(o.IcoSizes));
      } else if (o.Format == "PNG") {
        WriteAllBytes(path, surface->ToPngBytes());
      } else if (o.Format == "JPG") {
        surface->WriteJpeg(path, o.JPGQuality);
      } else if (o.Format == "BMP" || o.Format == "GIF") {
        surface->WriteBmp(path);
      } else if (o.Format == "SVGZ") {
        WriteAllBytes(path, GzipCompress(svg));
      } else {  // SVG
        std::string text = ToString(svg);
        if (A < 1) text = AddAlphaToSVG(text, A);
        std::int64_t nw = W, nh = H;
        if (reshape) {
          nw = RoundHalfEven(S - left - right);
          nh = RoundHalfEven(S - top - bottom);
          ReplaceEvery(text, "viewBox=\"0 0 " + std::to_string(S) + " " + std::to_string(S) + "\"",
                       "viewBox=\"" + FormatDouble(left) + " " + FormatDouble(top) + " " +
                           std::to_string(nw) + " " + std::to_string(nh) + "\"");
        }
        ReplaceEvery(text, "width=\"" + std::to_string(S) + "pt", "width=\"" + std::to_string(nw));
        ReplaceEvery(text, "height=\"" + std::to_string(S) + "pt", "height=\"" + std::to_string(nh));
        if (!o.ColorsinPerc) text = RGBPercentToRGBValues(text);
        if (app.RemoveClipPath && !keepClips) text = RemoveClipPaths(text);
        WriteUtf8Text(path, text);
      }
    } catch (...) {
      // Whatever the failure (no memory, no thread, a full disk), files
      // already written stay, and the one that failed was never half written.
      const AppError e = CurrentError("RunExport");
      observer.Message("SaveError", e.Description());
      result.Error = "SaveError";
      break;
    }
    ++result.Written;
    observer.ImageDone(path, true);
    observer.Progress(I + 1, N, std::to_string(RoundHalfEven((I + 1) * 100.0 / N)) + "%");
  }
  result.Completed = I == N;
  return result;
}

}  // namespace qds
