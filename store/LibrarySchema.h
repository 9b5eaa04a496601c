#pragma once
// The tables of the two databases, their file names under the application
// folder, and the program's version as stored in the library.

#include <string>

#include "platform/DbConnection.h"

namespace qds {

constexpr const char* kLibraryFile = "Database/Library.db";
constexpr const char* kResourcesFile = "Database/Resources.db";
// The one-row table that holds the library's schema version.
constexpr const char* kVersionTable = "DBVersion";

// The program's version as "major.minor.revision".
std::string ProgramVersion();

// Create every table; false (with the error on the connection) on failure.
bool CreateLibrarySchema(DbConnection& cnn);
bool CreateResourcesSchema(DbConnection& cnn);

}  // namespace qds
