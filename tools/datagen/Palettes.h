#pragma once
// The two built-in colour themes of the library.

#include "platform/DbConnection.h"

namespace qds::datagen {

// "Office Themes" (ID 1): ten named theme colours (type "H") and five rows of
// their tints and shades (type "S"). "Web": the 216 web-safe colours as an
// ordinary theme (type "C").
void WritePalettes(DbConnection& cnn);

}  // namespace qds::datagen
