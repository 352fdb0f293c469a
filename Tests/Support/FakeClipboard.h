#pragma once

#include "Clipboard.h"

namespace Korvi::Test {

class FakeClipboard : public Clipboard {
public:
    bool text = false;
    QImage picture;
    QList<QUrl> copied;

    bool hasText() const override { return text; }
    QImage image() const override { return picture; }
    QList<QUrl> files() const override { return copied; }
};

}
