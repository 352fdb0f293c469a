#pragma once

#include <QString>

namespace Korvi {

// What the desktop does with files on its user's behalf. Nothing here starts what the file itself may contain.
class Desktop {
public:
    virtual ~Desktop() = default;

    // Shows the file in the program that the desktop has for its kind; false when there is none. Callers keep programs
    // and starters of programs from it, see FileNames.h.
    virtual bool openFile(const QString& path) = 0;
    // Opens the file's folder with the file marked, or as well as the desktop can.
    virtual void showInFolder(const QString& path) = 0;
};

}
