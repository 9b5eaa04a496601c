#pragma once
// Questions and reports in the program's message box, and the error report
// every reporting event handler ends in.

#include <string>

namespace qds {

// Shows `prompt` with the buttons of `style` (MsgStyle) under `title`, and
// answers the button pressed (MsgResult).
//
// A Yes/No question with a confirmation flag of the settings (a name longer
// than 3 characters) is not asked while the flag is off: it answers Yes at
// once, except "MsgSaveDesign", which answers No, so the design is never
// saved unasked. Any flag name shows the "do not show again" box; ticked,
// it turns the flag off and saves the settings. `ignoreFlag` asks without
// the flag. With `useForAll` the box offers to answer for all at once.
int ShowMsgBox(const std::string& prompt, int style = 0, const std::string& title = {},
               const std::string& flagName = {}, bool ignoreFlag = false, bool useForAll = false);

// "Err#: " + number + " " + description + line break + source, in a box
// titled "Error" with Ok.
void ErrorMessage(int number, const std::string& description, const std::string& source);

// Makes the event handlers' errors end in ErrorMessage while a window
// system and the program's context are there (else they are printed).
// An error while one report is open is printed rather than shown, so that a
// failing timer cannot stack up boxes and the studio stays usable.
void InstallErrorMessages();

}  // namespace qds
