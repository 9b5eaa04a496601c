#pragma once
// Everything that lives for the whole run, by the names the rest of the
// program uses. App() gives the current context; tests make their own with a
// private application folder through ScopedAppContext.

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "engine/cSVGItem.h"
#include "engine/cUndoRedo.h"
#include "platform/Collection.h"
#include "platform/DbConnection.h"
#include "platform/DbRecordset.h"
#include "platform/DrawingSurface.h"
#include "platform/ImageList.h"
#include "platform/KeyedCollection.h"
#include "platform/PictureCache.h"
#include "platform/SvgRenderer.h"

namespace qds {

class cConfig;

using ItemCollection = KeyedCollection<SVGItemPtr>;

struct AppContext {
  explicit AppContext(std::string appFolder);
  ~AppContext();
  AppContext(const AppContext&) = delete;
  AppContext& operator=(const AppContext&) = delete;

  // The application folder, without a trailing "/", and paths under it.
  std::string AppPath;
  std::string PathOf(const std::string& relative) const { return AppPath + "/" + relative; }

  // Objects and surfaces.
  std::unique_ptr<qds::SvgRenderer> SvgRenderer;
  std::unique_ptr<qds::DrawingRoot> DrawingRoot;
  qds::ImageList& ImageList() { return DrawingRoot->Images(); }
  DbConnection Cnn;
  DbConnection CnnResources;
  std::unique_ptr<cConfig> Config;
  DbRecordset rsTexts;
  SurfacePtr WorkSurface512;
  SurfacePtr WorkSurface256;

  // Keyed collections, in the order they are made.
  // Layer pictures by content and side. Bounded by bytes, since one
  // picture of a large export takes what a hundred canvas pictures take.
  PictureCache RenderCache{160u << 20};
  Collection FillOptions;
  ItemCollection SelectIcons;
  ItemCollection IconSelection;
  ItemCollection OverlayIcons;
  ItemCollection SpareItems;
  ItemCollection BaseIcons;
  ItemCollection OverlayLayers;
  ItemCollection Layers;
  ItemCollection ShapeItems;
  ItemCollection ClipItems;

  // Simple values.
  int DesignOpacity = 100;
  bool DesignOpacityOn = false;
  bool DesignModified = false;
  bool RemoveClipPath = false;
  int DummyID = 0;
  int FilledCircleIndex = -1;
  std::string DocInfographic, DocManual;
  std::string LinkHome, LinkTutorials, LinkForum;
  int WindowLeft = 0, WindowTop = 0, WindowWidth = 0, WindowHeight = 0;
  // The icon shown from BaseIcons and from OverlayLayers.
  int BaseIndex = 0;
  int OverlayIndex = 0;
  // The design canvas, in pixels.
  int CanvasWidth = 512;
  int CanvasHeight = 512;

  // Pure results kept between draws: margins by document, angle and size;
  // blurred pictures by picture and radius, with the pad they grew by.
  std::unordered_map<std::string, std::array<double, 5>> MarginCache;
  PictureCache BlurCache{96u << 20};
  // The global path field size of icon outlines (0: the default, 1024).
  int PathFieldSize = 0;
  // Hooks of the canvas: whether a layer shows its selection frame, and
  // where the selected layer's centre lies.
  std::function<bool(const cSVGItem& layer)> ShowsSelectionFrame;
  std::function<void(const cSVGItem& layer, double cx, double cy)> ShowCentre;

  // The undo history of the design, and its flags: a snapshot is being
  // applied; a tool opened for a new layer still owes its snapshot.
  cUndoRedo UndoRedo;
  bool ApplyingHistory = false;
  bool PendingHistory = false;
  // Told when the layer stack was rebuilt from a snapshot, so that the
  // layer list can show it and select its top row.
  std::function<void()> LayersRestored;

  // What the start-up shows or asks while there may be no window: the
  // studio puts its message box here, the command line prints.
  std::function<void(const std::string& text)> ShowMessage;
  // One turn of the event loop during long work; nothing without a window.
  std::function<void()> DoEvents;
};

AppContext& App();
bool HasApp();

// Makes a context current for its lifetime and restores the previous one.
class ScopedAppContext {
 public:
  explicit ScopedAppContext(std::string appFolder);
  ~ScopedAppContext();
  ScopedAppContext(const ScopedAppContext&) = delete;
  ScopedAppContext& operator=(const ScopedAppContext&) = delete;
  AppContext& operator*() { return *context_; }
  AppContext* operator->() { return context_.get(); }

 private:
  std::unique_ptr<AppContext> context_;
  AppContext* previous_;
};

}  // namespace qds
