#pragma once

#include "AnswerParts.h"
#include "PlaceListModel.h"
#include "TextStyle.h"

#include <QHash>
#include <QPointer>
#include <QQmlParserStatus>
#include <QQuickTextDocument>

class QTextCursor;

namespace Korvi {

// Keeps the document of a TextEdit equal to the paragraphs of one part of an answer. Growth costs only the paragraphs
// that it touches, and of those what lies behind the first difference.
//
// A formula is one character, an image that is never drawn: it keeps room on the line, above and below the baseline, for
// the item that stands over it. So a paragraph with formulas stays one text, which is wrapped, selected and copied as any
// other.
class ParagraphDocument : public QObject, public QQmlParserStatus {
    Q_OBJECT
    QML_ELEMENT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(QQuickTextDocument* document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(Korvi::AnswerParts* parts MEMBER m_parts NOTIFY partsChanged)
    Q_PROPERTY(int row MEMBER m_row NOTIFY rowChanged)
    Q_PROPERTY(int revision READ revision WRITE setRevision NOTIFY revisionChanged)
    Q_PROPERTY(Korvi::TextStyle* style READ style WRITE setStyle NOTIFY styleChanged)
    // Where formulas stand; their rectangle ends on the baseline.
    Q_PROPERTY(Korvi::PlaceListModel* formulas READ formulas CONSTANT)
    Q_PROPERTY(Korvi::PlaceListModel* codePlaces READ codePlaces CONSTANT) // of inline code, a rectangle for each line

public:
    explicit ParagraphDocument(QObject* parent = nullptr);

    QQuickTextDocument* document() const { return m_document; }
    void setDocument(QQuickTextDocument* document);
    int revision() const { return m_revision; }
    void setRevision(int revision);
    TextStyle* style() const { return m_style; }
    void setStyle(TextStyle* style);
    PlaceListModel* formulas() { return &m_formulas; }
    PlaceListModel* codePlaces() { return &m_codePlaces; }

    void classBegin() override {}
    void componentComplete() override;

    // How much room a formula needs, in pixels; `ascent` and `descent` from the baseline. Room and place follow in
    // the next turn of the main loop.
    Q_INVOKABLE void setFormulaSize(int formula, qreal width, qreal ascent, qreal descent);
    // After the text was laid out anew.
    Q_INVOKABLE void findPlaces();

signals:
    void documentChanged();
    void partsChanged();
    void rowChanged();
    void revisionChanged();
    void styleChanged();
    void aboutToChange();
    void changed();

private:
    struct Size { // pixels
        double width = 0;
        double ascent = 0;
        double descent = 0;

        bool operator==(const Size&) const = default;
    };
    struct Formula {
        QString text;
        int position = 0; // in the document
        Size size;
        bool isNew = false; // it does not have that size there yet
    };

    void update();
    void setAll();
    void rewrite(const std::vector<Paragraph>& paragraphs, std::size_t first, qsizetype from);
    void insert(QTextCursor& cursor, const Paragraph& paragraph, qsizetype from) const;
    QTextBlockFormat blockFormat(const std::vector<Paragraph>& paragraphs, std::size_t number) const;
    QTextCharFormat formulaFormat(const Size& size) const;
    Size sizeOf(const QString& formula) const;
    void findFormulas();
    bool applySizes(); // whether there was any
    void tellPlaces();

    QPointer<QQuickTextDocument> m_document;
    QPointer<AnswerParts> m_parts;
    QPointer<TextStyle> m_style;
    std::vector<Paragraph> m_paragraphs; // in the document
    std::vector<Formula> m_found;        // formulas in it
    QHash<QString, Size> m_sizes;        // of those that were laid out
    PlaceListModel m_formulas;
    PlaceListModel m_codePlaces;
    int m_row = -1;
    int m_revision = -1;
    bool m_complete = false;
    bool m_hasCode = false;
    bool m_placesOld = false;
    bool m_rewriting = false;
};

}
