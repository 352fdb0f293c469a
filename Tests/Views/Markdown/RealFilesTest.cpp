// Markdown that people wrote: whatever documents are installed. Of some packages that the project needs anyway the
// blocks are known; other versions of them may be installed, so what is expected belongs to a file's hash.
// KORVI_WRITE_GOLDEN=1 writes RealFiles.golden again.
#include "BlockParser.h"
#include "Segments.h"
#include "StreamingDocument.h"
#include "Written.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>
#include <QProcess>

#include <gmock/gmock.h>

#include <map>

using namespace Korvi::Markdown;

namespace {

// Comparing with the whole takes its time.
constexpr qsizetype streamedLength = 30'000;
constexpr qsizetype comparisons = 8;

constexpr const char* files[] = {"ccache/README.md", "fonts-inter/README.md.gz", "git/README.md",
    "git/contrib/vscode/README.md", "libfmt-dev/changelog.gz", "libsoci-dev/changelog.gz", "libssl-dev/changelog.gz",
    "libutf8proc-dev/changelog.gz", "nlohmann-json3-dev/README.md.gz", "nlohmann-json3-dev/changelog.gz",
    "procps/bugs.md"};

QString contents(const QString& path) {
    if (!path.endsWith(".gz")) {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    QProcess unpack;
    unpack.start("gzip", {"-dc", path});
    unpack.waitForFinished();
    return QString::fromUtf8(unpack.readAllStandardOutput());
}

QString digest(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().first(16);
}

// How many blocks of each kind, and a digest of them all.
QString summary(const std::vector<Block>& blocks) {
    std::map<QString, int> counts;
    QByteArray all;
    for (const Block& block : blocks) {
        const QString line = QString::fromStdString(written(block));
        ++counts[line.section(u'{', 0, 0).section(u':', 0, 0).trimmed().remove(QChar(u'0'))];
        all += line.toUtf8() + '\n';
    }
    QStringList parts;
    int numbered = 0;
    for (const auto& [kind, count] : counts) {
        bool isNumber = false;
        kind.toLongLong(&isNumber);
        if (isNumber)
            numbered += count;
        else
            parts += QString("%1=%2").arg(kind).arg(count);
    }
    parts += QString("numbered=%1").arg(numbered);
    return parts.join(' ') + ' ' + digest(all);
}

void expectSameWhenStreamed(const QString& text, const std::string& name) {
    StreamingDocument document;
    qsizetype next = 0;
    for (qsizetype at = 0; at < text.size(); at += 100) {
        document.append(QStringView(text).sliced(at, std::min<qsizetype>(100, text.size() - at)));
        if (at < next)
            continue;
        next = at + text.size() / comparisons;
        const Cleaned cleaned = clean(document.text());
        ASSERT_EQ(document.segments(), groupBlocksIntoSegments(cleaned.text)) << name << " up to " << at;
        ASSERT_EQ(document.citations(), cleaned.citations) << name;
    }
}

}

TEST(RealFiles, BecomeTheBlocksThatAreKnown) {
    const QString goldenPath = KORVI_TEST_FILES "/RealFiles.golden";
    QFile golden(goldenPath);
    std::map<QString, QString> known;
    if (golden.open(QFile::ReadOnly)) {
        for (const QString& line : QString::fromUtf8(golden.readAll()).split('\n', Qt::SkipEmptyParts))
            known[line.section(' ', 0, 0)] = line.section(' ', 2);
        golden.close();
    }
    QStringList lines;
    for (const char* name : files) {
        const QString text = contents(QString("/usr/share/doc/") + name);
        if (text.isEmpty())
            continue;
        const Cleaned cleaned = clean(text);
        const QString made = summary(parseBlocks(cleaned.text));
        const QString key = digest(text.toUtf8());
        lines += key + ' ' + name + ' ' + made;
        const auto entry = known.find(key);
        if (entry != known.end() && !qEnvironmentVariableIsSet("KORVI_WRITE_GOLDEN")) {
            EXPECT_EQ(made, entry->second) << name;
        }
    }
    if (qEnvironmentVariableIsSet("KORVI_WRITE_GOLDEN") && golden.open(QFile::WriteOnly))
        golden.write((lines.join('\n') + '\n').toUtf8());
}

TEST(RealFiles, AreReadInPiecesAsTheyAreAtOnce) {
    QDirIterator all("/usr/share/doc", {"*.md", "*.md.gz"}, QDir::Files, QDirIterator::Subdirectories);
    QStringList paths;
    while (all.hasNext())
        paths += all.next();
    for (const char* name : files)
        paths += QString("/usr/share/doc/") + name;
    paths.removeDuplicates();
    int read = 0;
    for (const QString& path : paths) {
        const QString text = contents(path);
        if (text.trimmed().isEmpty())
            continue;
        ++read;
        EXPECT_FALSE(parseBlocks(clean(text).text).empty()) << path.toStdString();
        expectSameWhenStreamed(text.left(streamedLength), path.toStdString());
    }
    EXPECT_GT(read, 0) << "packages are installed without their documents here";
    std::printf("%d documents\n", read);
}
