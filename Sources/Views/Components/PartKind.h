#pragma once

#include <QObject>
#include <QQmlComponent>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// What the parts of one kind look like in a PartColumn.
class PartKind : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_CLASSINFO("DefaultProperty", "delegate")
    Q_PROPERTY(QString name MEMBER m_name REQUIRED)
    Q_PROPERTY(QQmlComponent* delegate MEMBER m_delegate REQUIRED)

public:
    using QObject::QObject;

    QString name() const { return m_name; }
    QQmlComponent* delegate() const { return m_delegate; }

private:
    QString m_name;
    QQmlComponent* m_delegate = nullptr;
};

}
