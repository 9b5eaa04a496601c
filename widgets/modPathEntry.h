#pragma once
// What the file and folder dialogs share: paths as a user types them, and
// the dialogs' words.

#include <string>

namespace qds {

// A typed folder made absolute: "~" and "~/..." start at the home folder,
// a relative one at `base`.
std::string ExpandTypedPath(const std::string& typed, const std::string& base);
// `folder` + "/" + `name`, with the "/" only when the folder lacks one.
std::string JoinFolder(const std::string& folder, const std::string& name);
// The text of `key` in the user's language; `fallback` when no texts are
// open, so that a refusal never shows an empty line.
std::string DialogText(const std::string& key, const std::string& fallback);

}  // namespace qds
