#pragma once

#include "Desktop.h"

namespace Korvi {

// xdg-open for files; the file manager over D-Bus (org.freedesktop.FileManager1) for folders, and xdg-open where there
// is none.
class XdgDesktop : public Desktop {
public:
    bool openFile(const QString& path) override;
    void showInFolder(const QString& path) override;
};

}
