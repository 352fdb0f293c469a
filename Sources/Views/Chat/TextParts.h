#pragma once

#include "SharedText.h"

#include <QAbstractListModel>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// A long text in parts that are laid out one by one: whole paragraphs, together about `partLength` characters. Drawing
// and changing a text item costs time in proportion to all of its text; so does none of this. A text that grows at its
// end changes the last part only.
class TextParts : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(int length READ length NOTIFY textChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    static constexpr qsizetype partLength = 4000;
    // A paragraph longer than this is broken between two words.
    static constexpr qsizetype longestPart = 4 * partLength;

    enum Role {
        PartRole = Qt::UserRole + 1, // "part", string: without the line feed that ends it
    };

    using QAbstractListModel::QAbstractListModel;

    QString text() const { return m_text.toString(); }
    void setText(const QString& text) { show(m_text.becoming(text)); }
    const SharedText& shown() const { return m_text; }
    void show(const SharedText& text);
    int length() const { return static_cast<int>(m_text.size()); }
    Q_INVOKABLE QString slice(int from, int to) const;
    int count() const { return static_cast<int>(m_starts.size()); }

    // The text from a character of one part up to a character of the same or a later one.
    Q_INVOKABLE QString between(int firstPart, int from, int lastPart, int to) const;
    Q_INVOKABLE int lengthOf(int part) const;
    // In the whole text, where a border that is not shown counts too.
    Q_INVOKABLE int startOf(int part) const;
    Q_INVOKABLE int partOf(int position) const; // the last one that begins there or before; -1 without parts

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void textChanged();
    void countChanged();

private:
    // Where a part that begins there ends: at its line feed, after its last word, or at the end of the text.
    qsizetype endOfPart(qsizetype start) const;
    std::vector<qsizetype> startsFrom(qsizetype start) const;
    QString part(int row) const;

    SharedText m_text;
    std::vector<qsizetype> m_starts; // of the parts in the text
};

}
