#pragma once

#include "MessageContent.h"

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// The search of an answer, for those who show it.
class SearchBlock : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QVariant block READ block WRITE setBlock NOTIFY blockChanged) // a MessageContent
    Q_PROPERTY(QString query READ query NOTIFY blockChanged)
    Q_PROPERTY(double responseTime READ responseTime NOTIFY blockChanged) // seconds; 0 when it is not known
    Q_PROPERTY(QStringList answer READ answer NOTIFY blockChanged)
    Q_PROPERTY(QVariantList results READ results NOTIFY blockChanged) // { title, url, content, favicon, domain }
    Q_PROPERTY(QVariantList images READ images NOTIFY blockChanged)   // { url, description }

public:
    using QObject::QObject;

    QVariant block() const { return m_block; }
    void setBlock(const QVariant& block);
    QString query() const { return m_content.query.value_or(QString()); }
    double responseTime() const { return m_content.responseTime.value_or(0); }
    QStringList answer() const;
    QVariantList results() const { return m_results; }
    QVariantList images() const { return m_images; }

signals:
    void blockChanged();

private:
    QVariant m_block;
    WebSearchContent m_content;
    QVariantList m_results;
    QVariantList m_images;
};

}
