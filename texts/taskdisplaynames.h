#pragma once

#include <map>
#include <string>

#include <QString>

// The readable names of the server's task methods ("BuildModel" shows as
// "Build Mesh"), translated in the "Monitor" context when the table is filled.
// GUI thread only.

// Assigns all entries in the language loaded now.
void initTaskDisplayNames();

// The display name of a method, or an empty text when there is none; the
// caller then shows the method name itself. An unknown name is remembered
// with an empty text.
QString taskDisplayName(const std::string& method);

// The table as it stands: the names filled in, and every unknown name looked
// up since, with its empty text.
const std::map<std::string, QString>& taskDisplayNameTable();
