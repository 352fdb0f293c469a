#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// How much there is to see, and through how large a window; pixels. All zero until the first layout.
struct ScrollMetrics {
    Q_GADGET
    QML_VALUE_TYPE(scrollMetrics)
    Q_PROPERTY(qreal contentHeight MEMBER contentHeight)
    Q_PROPERTY(qreal containerHeight MEMBER containerHeight)

public:
    // Less than this does not make a jump worth while.
    static constexpr qreal slack = 10;

    qreal contentHeight = 0;
    qreal containerHeight = 0;

    bool known() const { return containerHeight > 0; }
    bool overflows() const { return contentHeight > containerHeight + slack; }
    bool operator==(const ScrollMetrics&) const = default;
};

}
