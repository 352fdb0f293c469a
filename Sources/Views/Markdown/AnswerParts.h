#pragma once

#include "LongParagraph.h"
#include "PartKinds.h"
#include "PartRange.h"
#include "Pipeline/StreamingDocument.h"

#include "Chat/MessageHandle.h"
#include "SharedText.h"

#include <QAbstractListModel>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace Korvi {

// What a message consists of where it is drawn, one part under the other: its Markdown in parts of text, code, tables,
// formulas ..., its other blocks one part each. While a message grows, only the parts that something came to change.
class AnswerParts : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    // A MessageHandle, or one text: a SharedText, or a string.
    Q_PROPERTY(QVariant content READ content WRITE setContent NOTIFY contentChanged)
    Q_PROPERTY(bool isStreaming READ isStreaming WRITE setStreaming NOTIFY isStreamingChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    // [{ index, url, domain }], of all texts.
    Q_PROPERTY(QVariantList citations READ citations NOTIFY citationsChanged)
    Q_PROPERTY(QString beginning READ beginning NOTIFY beginningChanged) // what is read first, 200 characters at most

public:
    enum Role {
        KindRole = Qt::UserRole + 1, // "kind", string, see PartKinds.h
        GapRole,                     // "gap", real: space above it, for text of 13 pixels
        IsOpenRole,                  // "isOpen", bool: the end of an answer that grows, unless it is closed
        RevisionRole,                // "revision", integer: another one whenever the part has changed
        LanguageRole,                // "language", string, of code; may be empty
        CodeRole,                    // "code", string, of code and diagrams
        FormulaRole,                 // "formula", string
        TableRole,                   // "table", MarkdownTable
        UrlRole,                     // "url", string, of images, videos, music and files
        AltRole,                     // "alt", string, of an image
        FilenameRole,                // "filename", string, of files and music
        MimetypeRole,                // "mimetype", string, of files and music
        QueryRole,                   // "query", string, of a search that is under way
        WhatRole,                    // "what", string: what is generated
        BlockRole,                   // "block", MessageContent, of what is no text
    };

    using QAbstractListModel::QAbstractListModel;

    QVariant content() const { return m_content; }
    void setContent(const QVariant& content);
    bool isStreaming() const { return m_isStreaming; }
    void setStreaming(bool streaming);
    int count() const { return static_cast<int>(m_parts.size()); }
    QVariantList citations() const;
    QString beginning() const { return m_beginning; }

    AnswerPartKind kind(int row) const { return m_parts[static_cast<std::size_t>(row)].kind; }
    // Of a part of the kind `text`.
    std::vector<Paragraph> paragraphs(int row) const;
    // Of a part that comes from Markdown and is no text; null for others.
    const Markdown::Block* special(int row) const;

    // What is read from a character of one part up to a character of the same or a later one: code as code, a table as
    // tab-separated lines, formulas, diagrams and images as they are written. A character is a row in a table; other
    // parts are one character, or none.
    Q_INVOKABLE QString between(int firstPart, int from, int lastPart, int to) const;
    Q_INVOKABLE int lengthOf(int part) const; // characters as drawn
    Q_INVOKABLE QString plainText() const;    // all that is read
    Q_INVOKABLE QString markdown() const;     // the texts as they came
    Q_INVOKABLE QVariantList images() const;  // [{ url, alt }], in their order

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

signals:
    void contentChanged();
    void isStreamingChanged();
    void countChanged();
    void citationsChanged();
    void beginningChanged();

private:
    // A block of the message, where it is text the document that its text grows in.
    struct Source {
        MessageContent block;
        std::optional<Markdown::StreamingDocument> document;
    };
    struct Part {
        AnswerPartKind kind = AnswerPartKind::text;
        int source = 0;
        int segment = 0; // of the source's document
        PartRange range; // of a text
        int revision = 0;

        bool isOfSame(const Part& other) const;
    };
    // From where on parts may be other ones.
    struct Begin {
        int source = 0;
        Markdown::Change change;
    };

    enum class Edge { top, bottom };

    void take(const std::vector<const MessageContent*>& blocks);
    void take(const SharedText& text);
    void rebuild(const Begin& begin);
    qsizetype charactersKept(const Begin& begin) const;
    void appendSegment(std::vector<Part>& parts, int source, int segment, int firstParagraph, qsizetype from);
    void appendSource(std::vector<Part>& parts, int source, int firstSegment);
    // The first `alike` characters of the paragraph m_long are drawn as before.
    void replaceParts(std::size_t kept, std::vector<Part> parts, const Begin& begin, qsizetype alike);
    void updateBeginning();
    bool isOpen(int row) const;
    void updateOpenEnd();

    // Null while the texts have changed and the parts are about to.
    const Markdown::Segment* segment(const Part& part) const;
    Paragraph outline(int row, Edge edge) const;
    double gap(int row) const;
    QString read(int row, qsizetype from, qsizetype to) const;
    QString separatorAbove(int row) const;

    QVariant m_content;
    SharedText m_text; // where that is one
    std::vector<Source> m_sources;
    std::vector<Part> m_parts;
    mutable std::optional<LongParagraph> m_long; // the last one that was looked at
    QString m_beginning;
    int m_revision = 0;
    bool m_isStreaming = false;
    bool m_isEndOpen = false; // as the view knows it
};

}
