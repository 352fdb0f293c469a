#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

class QAbstractItemModel;

namespace Korvi {

// What a row of a VirtualColumn is taken to be high before it was ever laid out. The better the guess, the calmer the
// scroll bar; correctness does not hang on it.
class RowEstimate : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("abstract")

public:
    using QObject::QObject;

    virtual double heightOf(const QAbstractItemModel& model, int row) const = 0; // pixels

signals:
    void changed(); // every answer may be another one now
};

}
