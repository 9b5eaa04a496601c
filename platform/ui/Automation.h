#pragma once
// Scripts that drive the open forms as a user would: click, type, press
// keys, wait, look (dump, screenshot) and check (expect). Each line runs
// when the loop is idle, in a modal form's loop too, so a line that opens a
// dialog is followed by lines acting in it.

#include <iosfwd>
#include <string>

namespace qds {

class PlatformRoot;

// Runs the script's text against the forms shown on `root` until its last
// line, then ends the loop. 0 when every line ran and every `expect` held;
// else 1, with "line N: <the line>: <why>" on `err`.
int RunAutomation(PlatformRoot& root, const std::string& script, std::ostream& err);

// Every open form and its widget tree as JSON:
// {"forms":[{"name","title","x","y","width","height","modal","active","widgets":[...]}]}.
// Places and sizes, of forms and widgets alike, are in screen pixels.
std::string DumpForms(PlatformRoot& root);

}  // namespace qds
