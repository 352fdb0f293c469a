#pragma once

#include "Clipboard.h"

namespace Korvi {

// The desktop's clipboard. Needs the application object of a program with windows.
class QtClipboard : public Clipboard {
public:
    bool hasText() const override;
    QImage image() const override;
    QList<QUrl> files() const override;
};

}
