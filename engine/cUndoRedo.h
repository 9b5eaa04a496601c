#pragma once
// A bounded stack of design states for undo and redo. The newest state is
// at position 1; Current is the position of the state in force (0: empty).
// The stack holds up to Max + 1 states: the bound is applied before a new
// state goes in.

#include <memory>
#include <vector>

#include "engine/cSVGItem.h"
#include "platform/KeyedCollection.h"

namespace qds {

// One state: the whole layer stack, cloned, with the design opacity.
struct cHistory {
  int DesignOpacity = 100;
  bool DesignOpacityOn = false;
  KeyedCollection<SVGItemPtr> Layers;
};

using HistoryPtr = std::shared_ptr<const cHistory>;

class cUndoRedo {
 public:
  void Clear() {
    states_.clear();
    current_ = 0;
  }
  void SaveState(HistoryPtr state);
  int Max() const { return max_; }
  void setMax(int max);
  HistoryPtr PreviousState();  // undo: null at the oldest state
  HistoryPtr NextState();      // redo: null at the newest state
  bool UndoEnabled() const { return current_ < HistoryCount() && HistoryCount() > 1; }
  bool RedoEnabled() const { return current_ >= 2; }
  int HistoryCount() const { return static_cast<int>(states_.size()); }
  int Current() const { return current_; }

 private:
  std::vector<HistoryPtr> states_;  // states_[0] is position 1
  int current_ = 0;
  int max_ = 0;
};

}  // namespace qds
