#pragma once

#include <QImage>
#include <QList>
#include <QUrl>

namespace Korvi {

// What the user has copied somewhere.
class Clipboard {
public:
    virtual ~Clipboard() = default;

    virtual bool hasText() const = 0;      // that is not empty
    virtual QImage image() const = 0;      // null without one
    virtual QList<QUrl> files() const = 0; // of this machine; empty when anything else was copied
};

}
