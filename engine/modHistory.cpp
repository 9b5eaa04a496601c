#include "engine/modHistory.h"

#include <vector>

#include "app/AppContext.h"
#include "engine/modFunctions.h"
#include "platform/DbConnection.h"
#include "store/modDB.h"

namespace qds {

void AddToHistory(AppContext& app) {
  if (app.ApplyingHistory) return;
  auto state = std::make_shared<cHistory>();
  state->DesignOpacity = app.DesignOpacity;
  state->DesignOpacityOn = app.DesignOpacityOn;
  for (const auto& e : app.Layers) state->Layers.Add(e.Item->Clone(false), e.Key);
  app.UndoRedo.SaveState(state);
  app.PendingHistory = false;
  app.DesignModified = app.UndoRedo.UndoEnabled() && app.Layers.Count() >= 1;
}

void SetHistory(AppContext& app, int mode) {
  HistoryPtr state;
  if (mode == HistoryMode::Undo) {
    state = app.UndoRedo.PreviousState();
  } else if (mode == HistoryMode::Redo) {
    state = app.UndoRedo.NextState();
  } else {
    app.UndoRedo.Clear();
    app.DesignModified = false;
    AddToHistory(app);
    return;
  }
  if (!state) return;

  // What the step changes, to be put back when it fails half-way: a design
  // half restored, or a flag left set that silences every later snapshot,
  // would be worse than the error itself.
  ItemCollection oldLayers = app.Layers, oldOverlays = app.OverlayLayers;
  const int oldOpacity = app.DesignOpacity, oldBaseIndex = app.BaseIndex, oldOverlayIndex = app.OverlayIndex;
  const bool oldOpacityOn = app.DesignOpacityOn, oldModified = app.DesignModified;
  struct Applying {
    AppContext& app;
    explicit Applying(AppContext& a) : app(a) { app.ApplyingHistory = true; }
    ~Applying() { app.ApplyingHistory = false; }
  } applying(app);
  try {
    app.DesignOpacity = state->DesignOpacity;
    app.DesignOpacityOn = state->DesignOpacityOn;
    app.Layers.Clear();
    std::vector<std::string> derived;
    for (const auto& e : state->Layers) {
      SVGItemPtr layer = e.Item->Clone();  // the stored state stays as it is
      if (e.Key == "_BaseIco") layer->setSelectionIndex(0);
      if (layer->UseAsOverlay()) {
        app.OverlayLayers.Clear();
        AddBaseSVGs(app, 0, 0, "Overlay=-1 and [Styles].Name='" + SqlText(layer->Style()) + "'",
                    app.OverlayLayers);
        layer->setSelectionIndex(0);
      }
      app.Layers.Add(layer, e.Key);
      if (layer->EffType() != 0 || !layer->TextContent().empty()) derived.push_back(e.Key);
    }
    // Effects whose symbol has gone go with it; a background that has gone
    // no longer bounds its effect. What stays is drawn anew.
    for (const std::string& key : derived) {
      if (!app.Layers.Exists(key)) continue;
      const SVGItemPtr layer = app.Layers.Item(key);
      if (!layer->EffSymbolKey().empty()) {
        if (!app.Layers.Exists(layer->EffBGKey())) layer->setEffBGKey("");
        if (!app.Layers.Exists(layer->EffSymbolKey())) {
          app.Layers.Remove(key);
          continue;
        }
      }
      layer->SettingsRefresh();
    }
    // Snapshots hold no traced cuts: trace them for the restored stack.
    RefreshIconClips(app);
    if (app.LayersRestored) app.LayersRestored();
    app.DesignModified = app.UndoRedo.UndoEnabled() && !app.Layers.Empty();
  } catch (...) {
    app.Layers = std::move(oldLayers);
    app.OverlayLayers = std::move(oldOverlays);
    app.DesignOpacity = oldOpacity;
    app.DesignOpacityOn = oldOpacityOn;
    app.BaseIndex = oldBaseIndex;
    app.OverlayIndex = oldOverlayIndex;
    app.DesignModified = oldModified;
    // The history stays at the state in force.
    if (mode == HistoryMode::Undo) {
      app.UndoRedo.NextState();
    } else {
      app.UndoRedo.PreviousState();
    }
    throw;
  }
}

}  // namespace qds
