#pragma once
// Snapshots of the design for undo and redo.

namespace qds {

struct AppContext;

namespace HistoryMode {
constexpr int Redo = 0, Undo = 1, Clear = 2;
}

// Stores the whole stack as a new state, unless a state is being applied.
void AddToHistory(AppContext& app);
// Undo, redo, or a fresh start of the history with the present design.
void SetHistory(AppContext& app, int mode);

}  // namespace qds
