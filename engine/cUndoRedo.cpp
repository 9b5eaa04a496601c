#include "engine/cUndoRedo.h"

#include <algorithm>

namespace qds {

void cUndoRedo::SaveState(HistoryPtr state) {
  // States newer than the one in force are dropped.
  for (int i = 1; i < current_ && !states_.empty(); ++i) states_.erase(states_.begin());
  while (HistoryCount() > max_) states_.pop_back();
  states_.insert(states_.begin(), std::move(state));
  current_ = 1;
}

void cUndoRedo::setMax(int max) {
  // A negative bound would leave nothing to drop from an empty stack.
  max_ = std::max(max, 0);
  while (HistoryCount() > max_ + 1) states_.pop_back();
  if (current_ > max_) current_ = max_;
}

HistoryPtr cUndoRedo::PreviousState() {
  if (states_.empty() || current_ >= HistoryCount()) return nullptr;
  ++current_;
  return states_[current_ - 1];
}

HistoryPtr cUndoRedo::NextState() {
  if (states_.empty() || current_ <= 1) return nullptr;
  --current_;
  return states_[current_ - 1];
}

}  // namespace qds
