#include <gtest/gtest.h>

#include "engine/cUndoRedo.h"
#include "engine/modHistory.h"
#include "platform/Error.h"
#include "tests/support/LibraryLayers.h"
#include "tests/support/StartedApp.h"

using namespace qds;

namespace {

HistoryPtr State(int n) {
  auto h = std::make_shared<cHistory>();
  h->DesignOpacity = n;
  return h;
}

}  // namespace

TEST(UndoRedo, KeepsMaxPlusOneStatesAndDropsRedoAfterANewState) {
  cUndoRedo u;
  u.setMax(3);
  for (int i = 1; i <= 5; ++i) u.SaveState(State(i));
  EXPECT_EQ(u.HistoryCount(), 4);  // Max + 1
  EXPECT_TRUE(u.UndoEnabled());
  EXPECT_FALSE(u.RedoEnabled());
  EXPECT_EQ(u.PreviousState()->DesignOpacity, 4);
  EXPECT_EQ(u.PreviousState()->DesignOpacity, 3);
  EXPECT_TRUE(u.RedoEnabled());
  EXPECT_EQ(u.NextState()->DesignOpacity, 4);
  EXPECT_EQ(u.PreviousState()->DesignOpacity, 3);
  u.SaveState(State(6));  // the two newer states go
  EXPECT_EQ(u.HistoryCount(), 3);
  EXPECT_FALSE(u.RedoEnabled());
  EXPECT_EQ(u.NextState(), nullptr);
  EXPECT_EQ(u.PreviousState()->DesignOpacity, 3);
  EXPECT_EQ(u.PreviousState()->DesignOpacity, 2);
  EXPECT_EQ(u.PreviousState(), nullptr);  // the oldest: nothing, and it stays
  EXPECT_EQ(u.Current(), 3);
  EXPECT_FALSE(u.UndoEnabled());

  cUndoRedo one;
  one.SaveState(State(1));
  EXPECT_FALSE(one.UndoEnabled());  // one state is nothing to undo
  one.setMax(2);
  for (int i = 2; i <= 4; ++i) one.SaveState(State(i));
  one.setMax(0);
  EXPECT_EQ(one.HistoryCount(), 1);

  // A negative bound is no bound below none: the stack keeps one state.
  cUndoRedo none;
  none.setMax(-3);
  EXPECT_EQ(none.Max(), 0);
  for (int i = 1; i <= 3; ++i) none.SaveState(State(i));
  EXPECT_EQ(none.HistoryCount(), 1);
  EXPECT_EQ(none.Current(), 1);
  EXPECT_EQ(none.PreviousState(), nullptr);
}

TEST(UndoRedo, UndoAndRedoRestoreTheDesignAndDropEffectsWithoutSymbol) {
  StartedApp s;
  ASSERT_TRUE(StartWithoutWindow(*s.app));
  AppContext& app = *s.app;
  app.UndoRedo.setMax(10);
  SetHistory(app, HistoryMode::Clear);  // the empty design
  SVGItemPtr star = LibraryLayer(app, "star", "Flat");
  app.Layers.Add(star, "star");
  AddToHistory(app);
  EXPECT_TRUE(app.DesignModified);
  star->setZoomPercent(50);
  app.DesignOpacity = 40;
  auto mirror = std::make_shared<cSVGItem>();
  mirror->Init(Value("231126000000Mirroring"), {}, "Mirroring");
  mirror->setEffType(4);
  mirror->setEffSymbolKey("star");
  mirror->setEffBGKey("gone");
  mirror->SettingsRefresh();
  app.Layers.Add(mirror, "231126000000Mirroring");
  AddToHistory(app);
  int restored = 0;
  app.LayersRestored = [&] { ++restored; };

  SetHistory(app, HistoryMode::Undo);
  ASSERT_EQ(app.Layers.Count(), 1);
  EXPECT_EQ(app.Layers.Item("star")->ZoomPercent(), 100);
  EXPECT_EQ(app.DesignOpacity, 100);
  EXPECT_NE(app.Layers.Item("star").get(), star.get());  // a clone: the state stays untouched
  SetHistory(app, HistoryMode::Redo);
  ASSERT_EQ(app.Layers.Count(), 2);
  EXPECT_EQ(app.DesignOpacity, 40);
  EXPECT_EQ(app.Layers.Item("231126000000Mirroring")->EffBGKey(), "");  // the background had gone
  EXPECT_EQ(restored, 2);
  EXPECT_FALSE(app.ApplyingHistory);

  // A snapshot whose effect lost its symbol comes back without the effect.
  app.Layers.Remove("star");
  AddToHistory(app);
  SetHistory(app, HistoryMode::Undo);
  SetHistory(app, HistoryMode::Redo);
  EXPECT_EQ(app.Layers.Count(), 0);
  EXPECT_FALSE(app.DesignModified);  // an empty stack is nothing to save
  SetHistory(app, HistoryMode::Clear);
  EXPECT_EQ(app.UndoRedo.HistoryCount(), 1);
}

TEST(History, AStepThatFailsHalfWayLeavesTheDesignAndTheHistoryWorking) {
  StartedApp s;
  ASSERT_TRUE(StartWithoutWindow(*s.app));
  AppContext& app = *s.app;
  app.UndoRedo.setMax(10);
  app.Layers.Add(LibraryLayer(app, "star", "Flat"), "a");
  SetHistory(app, HistoryMode::Clear);
  app.Layers.Add(LibraryLayer(app, "lock", "Flat"), "b");
  app.DesignOpacity = 60;
  AddToHistory(app);
  const SVGItemPtr b = app.Layers.Item("b");

  app.LayersRestored = [] { Raise(ErrNo::InvalidData, "the list could not be shown", "test"); };
  EXPECT_THROW(SetHistory(app, HistoryMode::Undo), AppError);
  EXPECT_FALSE(app.ApplyingHistory);
  EXPECT_EQ(app.Layers.Count(), 2);
  EXPECT_EQ(app.Layers.Item("b"), b);
  EXPECT_EQ(app.DesignOpacity, 60);
  EXPECT_EQ(app.UndoRedo.Current(), 1);

  // Snapshots are taken again, and undo works once the fault is gone.
  app.LayersRestored = nullptr;
  app.Layers.Item("a")->setOpacity(50);
  AddToHistory(app);
  EXPECT_EQ(app.UndoRedo.HistoryCount(), 3);
  SetHistory(app, HistoryMode::Undo);
  EXPECT_EQ(app.Layers.Item("a")->Opacity(), 100);
  EXPECT_EQ(app.Layers.Count(), 2);
}
