#pragma once

#include <QDir>
#include <QFile>

namespace Korvi::Test {

struct ProcessFacts {
    qint64 id;
    qint64 parent;
    QString name;
    double resident; // MB
};

inline QList<ProcessFacts> processes() {
    QList<ProcessFacts> all;
    for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        QFile file(QStringLiteral("/proc/%1/status").arg(entry));
        if (entry.toLongLong() <= 0 || !file.open(QIODevice::ReadOnly))
            continue;
        ProcessFacts facts{entry.toLongLong(), 0, {}, 0};
        for (const QByteArray& line : file.readAll().split('\n')) {
            const QByteArray value = line.mid(line.indexOf(':') + 1).trimmed();
            if (line.startsWith("Name:"))
                facts.name = QString::fromLatin1(value);
            else if (line.startsWith("PPid:"))
                facts.parent = value.toLongLong();
            else if (line.startsWith("VmRSS:"))
                facts.resident = value.split(' ').first().toDouble() / 1024;
        }
        all.append(facts);
    }
    return all;
}

// A process and all that it has started; nothing for 0, the id of one that is not running yet.
inline QList<ProcessFacts> processTree(qint64 root) {
    if (root == 0)
        return {};
    const auto all = processes();
    QList<ProcessFacts> tree;
    QList<qint64> wanted{root};
    while (!wanted.isEmpty()) {
        const qint64 id = wanted.takeFirst();
        for (const ProcessFacts& facts : all) {
            if (facts.id == id)
                tree.append(facts);
            if (facts.parent == id)
                wanted.append(facts.id);
        }
    }
    return tree;
}

// Renderers of a web engine below that process: they are the children of its zygotes.
inline int countRenderers(qint64 root) {
    const auto tree = processTree(root);
    int count = 0;
    for (const ProcessFacts& facts : tree) {
        const auto parent = std::ranges::find(tree, facts.parent, &ProcessFacts::id);
        count += facts.name.startsWith(QStringLiteral("QtWebEngine")) && parent != tree.end() &&
            parent->name.startsWith(QStringLiteral("QtWebEngine"));
    }
    return count;
}

}
