#pragma once

#include "ColumnWidths.h"
#include "MarkdownTable.h"

#include <QAbstractListModel>
#include <QColor>
#include <QQmlParserStatus>

namespace Korvi {

// The rows of a table, the header first, and the widths of its columns. A table that grows at its end, or whose last
// row is not complete yet, keeps the rows before.
class TableRows : public QAbstractListModel, public QQmlParserStatus {
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(Korvi::MarkdownTable table READ table WRITE setTable NOTIFY tableChanged)
    Q_PROPERTY(int count READ count NOTIFY tableChanged) // of the rows, with the header
    Q_PROPERTY(QFont cellFont MEMBER m_cellFont WRITE setCellFont NOTIFY styleChanged)
    Q_PROPERTY(QFont headerFont MEMBER m_headerFont WRITE setHeaderFont NOTIFY styleChanged)
    Q_PROPERTY(QFont codeFont MEMBER m_codeFont WRITE setCodeFont NOTIFY styleChanged)
    Q_PROPERTY(QColor codeColor MEMBER m_codeColor NOTIFY styleChanged)
    Q_PROPERTY(QColor codeBackground MEMBER m_codeBackground NOTIFY styleChanged)
    // Pixels.
    Q_PROPERTY(qreal available MEMBER m_available NOTIFY measuresChanged) // the width there is for all columns
    Q_PROPERTY(qreal around MEMBER m_around NOTIFY measuresChanged)       // what a column has beside its text
    Q_PROPERTY(qreal readable MEMBER m_readable NOTIFY measuresChanged)   // words up to this width are not broken
    Q_PROPERTY(qreal widest MEMBER m_widest NOTIFY styleChanged)          // of a text that is not wrapped
    Q_PROPERTY(QList<qreal> columnWidths READ columnWidths NOTIFY columnWidthsChanged)
    Q_PROPERTY(QList<int> alignments READ alignments NOTIFY alignmentsChanged) // Qt::Alignment, for each column
    Q_PROPERTY(qreal totalWidth READ totalWidth NOTIFY columnWidthsChanged)

public:
    static constexpr qsizetype longestCell = 5'000; // characters that are shown; all of them are copied
    // The cells of a row that has more than these share the last column.
    static constexpr qsizetype mostColumns = 64;

    enum Role {
        CellsRole = Qt::UserRole + 1, // "cells", list of { text, isRich, plain }, one for each column
        IsHeaderRole,                 // "isHeader", bool
    };

    explicit TableRows(QObject* parent = nullptr);

    MarkdownTable table() const { return m_table; }
    void setTable(const MarkdownTable& table);
    int count() const { return m_count; }
    void setCellFont(const QFont& font);
    void setHeaderFont(const QFont& font);
    void setCodeFont(const QFont& font);
    QList<qreal> columnWidths() const { return m_columnWidths; }
    QList<int> alignments() const { return m_alignments; }
    qreal totalWidth() const;

    QStringList cellsOf(int row) const; // as many as it has, in Markdown
    // Tab-separated lines from one row up to another.
    Q_INVOKABLE QString asText(int firstRow, int endRow) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    void classBegin() override { m_isComplete = false; }
    void componentComplete() override;

signals:
    void tableChanged();
    void styleChanged();
    void measuresChanged();
    void columnWidthsChanged();
    void alignmentsChanged();

private:
    void restyle();
    void resetWidths();
    void measureFrom(int firstRow);
    void addToWidths(int firstRow);
    void fitColumns();
    void align();

    MarkdownTable m_table;
    int m_count = 0;
    ColumnWidths m_widths;
    QList<qreal> m_columnWidths;
    QList<int> m_alignments;
    QFont m_cellFont;
    QFont m_headerFont;
    QFont m_codeFont;
    QColor m_codeColor;
    QColor m_codeBackground;
    qreal m_available = 0;
    qreal m_around = 0;
    qreal m_readable = 0;
    qreal m_widest = 0;
    bool m_isComplete = true;
};

}
