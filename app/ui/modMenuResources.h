#pragma once
// The menus the main window and the design view share, built into a menu
// widget under a root key.

#include <string>

namespace qds {

class cwMenu;

// Under "MenuHelp": the infographic, the manual, the website, the
// tutorials and the forum (items "MenuHelp>HelpInfographic", ...).
void AddMenuHelp(cwMenu& menu);
// The effect layers, with their pictures, under `root`.
void AddMenuEffectsTo(cwMenu& menu, const std::string& root);
// The blend operators of a layer, under `root`, keyed by the operator's number.
void AddMenuFillMetodsTo(cwMenu& menu, const std::string& root);

// What a chosen help item opens: the document or web address; empty for
// keys that are not help items.
std::string HelpTarget(const std::string& itemKey);

}  // namespace qds
