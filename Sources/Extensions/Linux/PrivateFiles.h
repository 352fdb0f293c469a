#pragma once

#include <QString>

namespace Korvi {

// Makes the file's folder (mode 0700) and the file itself (mode 0600) when they are missing, and takes other
// users' rights from a file that is there. False when that cannot be done.
bool makePrivateFile(const QString& path);

}
