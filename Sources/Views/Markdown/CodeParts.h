#pragma once

#include "Chat/TextParts.h"
#include "CodeColouring.h"

#include <QQmlParserStatus>

namespace Korvi {

// A piece of code in parts of some hundred lines, with its colours. While it is open only lines that have come to their
// end are coloured.
class CodeParts : public Korvi::TextParts, public QQmlParserStatus { // qualified, for qmllint to know it
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(QVariant code READ code WRITE setCode NOTIFY codeChanged) // a SharedText, or a string
    Q_PROPERTY(QString language READ language WRITE setLanguage NOTIFY languageChanged)
    Q_PROPERTY(bool isOpen READ isOpen WRITE setOpen NOTIFY isOpenChanged)
    Q_PROPERTY(int columns READ columns NOTIFY columnsChanged) // of the longest line, roughly; wide characters are two

public:
    static constexpr int tabColumns = 4;

    using TextParts::TextParts;

    QVariant code() const { return QVariant::fromValue(m_code); }
    void setCode(const QVariant& code);
    QString language() const { return m_language; }
    void setLanguage(const QString& language);
    bool isOpen() const { return m_isOpen; }
    void setOpen(bool open);
    int columns() const { return m_columns; }

    // Of the text that the parts show.
    std::vector<SyntaxHighlighter::Range> colours(qsizetype from, qsizetype to) const {
        return m_colouring.ranges(from, to);
    }

    void classBegin() override { m_isComplete = false; }
    void componentComplete() override;

signals:
    void codeChanged();
    void languageChanged();
    void isOpenChanged();
    void columnsChanged();
    void recoloured(qsizetype from); // from there on, in the text as it was shown before

private:
    void colour(QStringView text);
    void measure(QStringView added);

    SharedText m_code;
    QString m_language;
    bool m_isOpen = false;
    bool m_isComplete = true;
    bool m_isShownAsIs = true; // the text is the code
    CodeColouring m_colouring;
    int m_columns = 0;
    int m_lastColumns = 0; // of the last line
};

}
