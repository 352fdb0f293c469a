#pragma once

#include <QVariant>

#include <memory>

namespace Korvi {

// A text that is written at its end while others read it: what it had is shared, so a piece costs its own length only,
// whoever holds the text as it was, and whether one text continues another is mostly known without reading them. Values,
// each of which changes by itself only; may be held on several threads. In QML, String(text) is what it holds.
class SharedText {
public:
    SharedText() = default;
    SharedText(const QString& text); // implicit: any text may grow
    // A SharedText as it is, or a string, as a continuation of this text if it is one.
    SharedText becoming(const QVariant& text) const;

    qsizetype size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    QStringView view() const; // until this changes
    QString toString() const; // a copy of all of it, once it has grown

    void append(QStringView piece);
    // Whether it is `earlier` with something or nothing behind it. Read only when one did not grow from the other.
    bool continues(const SharedText& earlier) const;

    friend bool operator==(const SharedText& a, const SharedText& b);

private:
    struct Buffer;

    std::shared_ptr<Buffer> m_buffer; // of which it is the beginning; null when it is empty
    qsizetype m_size = 0;
};

}
