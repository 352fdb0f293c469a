#pragma once

#include <QString>

namespace Korvi {

// A name that came from outside, as a name of a file here: one path component, no control characters, not hidden, of a
// bounded length, its extension kept. `fallback` where nothing is left of it.
QString safeFileName(const QString& name, const QString& fallback);

// A path in the folder that no file has yet: "report.pdf", "report (2).pdf", ...
QString freePath(const QString& folder, const QString& name);

// Whether opening a file of that name could start a program: scripts, starters, packages, binaries. These are shown in
// their folder instead.
bool mayStartSomething(const QString& name);

// "PDF", "ZIP", "Текст" ...: what a reader is told of a file. Told from the name, then from the type.
QString fileKind(const QString& name, const QString& mimetype);

}
