#include "ArtifactPrinter.h"

#include "ArtifactPages.h"
#include "PreviewProcess.h"

#include <QBuffer>
#include <QPageLayout>
#include <QPdfWriter>
#include <QTextCursor>
#include <QTextDocument>
#include <QTimer>

namespace Korvi {

using namespace Qt::Literals;

Async<QByteArray> ArtifactPrinter::print(QString kind, QString title, QString text) {
    Resolver<QByteArray> resolver;
    const ArtifactPages::Printable printable = ArtifactPages::printPage(kind, title, text);
    if (printable.page.isEmpty()) {
        resolver.resolve(textPdf(title, text));
        return resolver.async();
    }
    auto* process = new PreviewProcess(this);
    const auto end = [process] { process->deleteLater(); };
    auto fail = [resolver, end](const QString& reason) mutable {
        end();
        resolver.fail(PrintError(reason));
    };
    connect(process, &PreviewProcess::received, this, [resolver, end, fail](const QJsonObject& message) mutable {
        const QByteArray pdf = QByteArray::fromBase64(message["pdf"_L1].toString().toLatin1());
        if (pdf.isEmpty())
            return fail(u"Не удалось сделать PDF: страница не получилась."_s);
        end();
        resolver.resolve(pdf);
    });
    connect(process, &PreviewProcess::ended, this,
        [fail]() mutable { fail(u"Не удалось сделать PDF: программа печати завершилась."_s); });
    QTimer::singleShot(patience, process, [fail]() mutable { fail(u"Не удалось сделать PDF вовремя."_s); });
    resolver.onCancel(end);
    if (process->start())
        process->send({{u"print"_s, printable.page}, {u"isReady"_s, printable.isReady}});
    else
        fail(u"Не удалось сделать PDF: программы печати нет."_s);
    return resolver.async();
}

QByteArray ArtifactPrinter::textPdf(const QString& title, const QString& text) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(title);
    writer.setPageLayout(QPageLayout(
        QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter));

    QTextDocument document;
    document.setDocumentMargin(0);
    QTextCursor cursor(&document);
    QTextCharFormat heading;
    heading.setFontFamilies({u"Inter"_s, u"sans-serif"_s});
    heading.setFontPointSize(15);
    heading.setFontWeight(QFont::DemiBold);
    QTextBlockFormat below;
    below.setBottomMargin(12);
    cursor.setBlockFormat(below);
    cursor.insertText(title, heading);
    QTextCharFormat code;
    code.setFontFamilies({u"JetBrains Mono"_s, u"monospace"_s});
    code.setFontPointSize(9);
    cursor.insertBlock(QTextBlockFormat(), code);
    cursor.insertText(text, code);
    document.print(&writer);
    return bytes;
}

}
