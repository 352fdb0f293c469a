#include "Artifacts/ArtifactPrinter.h"
#include "Running.h"
#include "WaitFor.h"

#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using namespace std::chrono_literals;

// What a reader finds in it.
QString textOf(const QByteArray& pdf) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a.pdf"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size())
        return {};
    file.close();
    QProcess reader;
    reader.start(u"pdftotext"_s, {u"-layout"_s, file.fileName(), u"-"_s});
    reader.waitForFinished(10'000);
    return QString::fromUtf8(reader.readAllStandardOutput()).simplified();
}

QString printed(const QString& kind, const QString& title, const QString& text) {
    ArtifactPrinter printer;
    const Running<QByteArray> pdf([&]() -> Task<QByteArray> {
        const QByteArray bytes = co_await printer.print(kind, title, text);
        co_return QByteArray(bytes);
    });
    if (!waitFor([&] { return pdf.isDone(); }, 45s))
        return u"(nothing came)"_s;
    return textOf(pdf.value());
}

TEST(PdfTest, CodeAndTextAreThereToTheLastLine) {
    QString code;
    for (int line = 1; line <= 300; ++line)
        code += u"строка %1 = \"<b>&amp;\"\n"_s.arg(line);
    const QString text = printed(u"python"_s, u"Скрипт"_s, code);
    EXPECT_TRUE(text.startsWith(u"Скрипт"_s));
    EXPECT_TRUE(text.contains(u"строка 1 = \"<b>&amp;\""_s)) << qPrintable(text.left(200));
    EXPECT_TRUE(text.contains(u"строка 300"_s));
}

TEST(PdfTest, APageIsPrintedAsItsScriptHasMadeItAndFetchesNothing) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    qputenv("KORVI_PREVIEW_OPTIONS", "--keep-network");
    const QString text =
        printed(u"html"_s, u"Страница"_s, uR"(<!-- a comment --><!DOCTYPE html><html lang="ru"><head><title>t</title>
<script src="http://127.0.0.1:%1/a.js"></script></head><body><h1>Отчёт</h1><p id="p"></p>
<img src="http://127.0.0.1:%1/a.png"><script>p.textContent = 'из скрипта ' + (document.compatMode === 'CSS1Compat')
fetch('http://127.0.0.1:%1/fetch'); location = 'http://127.0.0.1:%1/away'; window.open('http://127.0.0.1:%1/')
alert('x')</script></body></html>)"_s.arg(server.serverPort()));
    qunsetenv("KORVI_PREVIEW_OPTIONS");
    EXPECT_TRUE(text.contains(u"Отчёт"_s)) << qPrintable(text);
    EXPECT_TRUE(text.contains(u"из скрипта true"_s)) << qPrintable(text);
    EXPECT_FALSE(server.hasPendingConnections());
}

TEST(PdfTest, MarkdownIsPrintedWithItsFormulasTablesAndMarkup) {
    const QString text = printed(u"markdown"_s, u"Записка"_s,
        u"# Заголовок\n\nАбзац с **жирным** и `code <b>`, формула $x^2$.\n\n- раз\n- два\n\n3. три\n\n"
        "| Имя | Число |\n|---|---:|\n| альфа | 42 |\n\n```python\nprint(\"<script>\")\n```\n\n$$\\frac{a}{b}$$\n"_s);
    for (const QString& part : {u"Заголовок"_s, u"жирным"_s, u"code <b>"_s, u"раз"_s, u"3. три"_s, u"альфа"_s, u"42"_s,
             u"print(\"<script>\")"_s})
        EXPECT_TRUE(text.contains(part)) << qPrintable(part) << " is not in: " << qPrintable(text);
    EXPECT_FALSE(text.contains(u"**"_s));
    EXPECT_FALSE(text.contains(u"\\frac"_s)) << "the formula was not drawn: " << qPrintable(text);
}

TEST(PdfTest, ADiagramAndAPictureArePrinted) {
    EXPECT_TRUE(printed(u"mermaid"_s, u"Схема"_s, u"graph TD\n  A[Начало] --> B[Конец]"_s).contains(u"Начало"_s));
    EXPECT_TRUE(printed(u"svg"_s, u"Рисунок"_s,
        u"<svg xmlns='http://www.w3.org/2000/svg' width='200' height='100'><text x='10' y='50'>Надпись</text></svg>"_s)
                    .contains(u"Надпись"_s));
}

TEST(PdfTest, WithoutTheProgramAClearErrorComes) {
    const QByteArray program = qgetenv("KORVI_PREVIEW");
    qputenv("KORVI_PREVIEW", "/nonexistent/korvi-preview");
    ArtifactPrinter printer;
    const Running<QByteArray> pdf([&]() -> Task<QByteArray> {
        const QByteArray bytes = co_await printer.print(u"html"_s, u"a"_s, u"b"_s);
        co_return QByteArray(bytes);
    });
    qputenv("KORVI_PREVIEW", program);
    ASSERT_TRUE(pdf.error<PrintError>().has_value());
    EXPECT_EQ(pdf.error<PrintError>()->description, u"Не удалось сделать PDF: программы печати нет."_s);
}

}
}
