#include "Defaults.h"
#include "Printing.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::Optional;

class DefaultsTest : public testing::Test {
protected:
    // One answer of the file itself, asked past Defaults.
    QVariant ask(const QString& statement) {
        QVariant answer;
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"test"_s);
            database.setDatabaseName(path);
            EXPECT_TRUE(database.open());
            QSqlQuery query(database);
            EXPECT_TRUE(query.exec(statement)) << statement.toStdString();
            if (query.next())
                answer = query.value(0);
        }
        QSqlDatabase::removeDatabase(u"test"_s);
        return answer;
    }
    QStringList files() const { return QDir(QFileInfo(path).path()).entryList(QDir::Files); }

    QTemporaryDir folder;
    QString path = folder.filePath(u"config/korvi/defaults.sqlite"_s);
};

TEST_F(DefaultsTest, ValuesComeBackAsTheyWereAlsoAfterARestart) {
    const QString cyrillic = u"Ключ с пробелом 😀"_s;
    const QByteArray binary("\0\xff\0x", 4);
    {
        Defaults defaults(path);
        defaults.setString(cyrillic, u"Значение\n\"'"_s);
        defaults.setString(u"empty"_s, u""_s);
        defaults.setString(u"null"_s, QString());
        defaults.setData(u"binary"_s, binary);
        defaults.setBoolean(u"yes"_s, true);
        defaults.setBoolean(u"no"_s, false);
        defaults.setInteger(u"large"_s, std::numeric_limits<qint64>::min());
        defaults.setString(u"twice"_s, u"one"_s);
        defaults.setString(u"twice"_s, u"two"_s);
        defaults.setString(u"removed"_s, u"x"_s);
        defaults.remove(u"removed"_s);
        defaults.remove(u"never there"_s);
    }
    const Defaults defaults(path);
    EXPECT_THAT(defaults.string(cyrillic), Optional(u"Значение\n\"'"_s));
    EXPECT_THAT(defaults.string(u"empty"_s), Optional(QString()));
    EXPECT_THAT(defaults.string(u"null"_s), Optional(QString()));
    EXPECT_THAT(defaults.data(u"binary"_s), Optional(binary));
    EXPECT_THAT(defaults.boolean(u"yes"_s), Optional(true));
    EXPECT_THAT(defaults.boolean(u"no"_s), Optional(false));
    EXPECT_THAT(defaults.integer(u"large"_s), Optional(std::numeric_limits<qint64>::min()));
    EXPECT_THAT(defaults.string(u"twice"_s), Optional(u"two"_s));
    EXPECT_EQ(defaults.data(u"removed"_s), std::nullopt);
    EXPECT_EQ(defaults.integer(u"twice"_s), std::nullopt) << "a text is not a number";
    EXPECT_EQ(defaults.data(u"never there"_s), std::nullopt);
    EXPECT_EQ(defaults.problem(), QString());
}

TEST_F(DefaultsTest, EachKeyIsARowOfAWalDatabaseThatOthersCannotRead) {
    Defaults defaults(path);
    defaults.setString(u"a"_s, u"1"_s);
    defaults.setString(u"b"_s, u"2"_s);
    defaults.setString(u"a"_s, u"3"_s);
    EXPECT_EQ(ask(u"SELECT count(*) FROM defaults"_s).toInt(), 2);
    EXPECT_EQ(ask(u"PRAGMA journal_mode"_s).toString(), u"wal"_s);
    const auto owner = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
    for (const QString& name : files())
        EXPECT_EQ(QFileInfo(QFileInfo(path).path() + u'/' + name).permissions(), owner) << name.toStdString();
    EXPECT_EQ(QFileInfo(QFileInfo(path).path()).permissions(), owner | QFile::ExeOwner | QFile::ExeUser);
}

TEST_F(DefaultsTest, RightsOfOthersAreTakenFromAnOldFile) {
    Defaults(path).setString(u"a"_s, u"1"_s);
    ASSERT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
    const Defaults defaults(path);
    EXPECT_FALSE(QFileInfo(path).permissions() & QFile::ReadOther);
    EXPECT_THAT(defaults.string(u"a"_s), Optional(u"1"_s));
}

TEST_F(DefaultsTest, ADamagedFileIsMovedAsideAndTheNextStartIsClean) {
    for (const QByteArray& content :
        {QByteArray(5000, 'x'), QByteArray("SQLite format 3\0garbage", 23) + QByteArray(4000, 'y')}) {
        QDir(QFileInfo(path).path()).removeRecursively();
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        {
            Defaults defaults(path);
            EXPECT_TRUE(defaults.problem().contains(u"повреждён"_s)) << defaults.problem().toStdString();
            defaults.setString(u"a"_s, u"1"_s);
            EXPECT_TRUE(defaults.problem().contains(u"повреждён"_s)) << "a later success does not hide it";
        }
        const QStringList aside = files().filter(u".damaged-"_s);
        ASSERT_EQ(aside.size(), 1) << files().join(u' ').toStdString();
        QFile kept(QFileInfo(path).path() + u'/' + aside.first());
        ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
        EXPECT_EQ(kept.readAll(), content);
        const Defaults defaults(path);
        EXPECT_THAT(defaults.string(u"a"_s), Optional(u"1"_s));
        EXPECT_EQ(defaults.problem(), QString());
    }
}

TEST_F(DefaultsTest, AFileThatAnotherProcessHoldsIsNotTakenForADamagedOne) {
    Defaults(path).setString(u"a"_s, u"1"_s);
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(path);
        ASSERT_TRUE(other.open());
        QSqlQuery query(other);
        ASSERT_TRUE(query.exec(u"PRAGMA locking_mode=EXCLUSIVE"_s));
        ASSERT_TRUE(query.exec(u"INSERT INTO defaults(key, value) VALUES('b', '2')"_s));
        Defaults defaults(path);
        EXPECT_FALSE(defaults.problem().isEmpty());
        EXPECT_EQ(files().filter(u".damaged-"_s), QStringList());
        query.finish();
        other.close();
        defaults.setString(u"c"_s, u"3"_s);
        EXPECT_THAT(defaults.string(u"a"_s), Optional(u"1"_s)) << "usable once the other has let go";
        EXPECT_EQ(defaults.problem(), QString());
    }
    QSqlDatabase::removeDatabase(u"other"_s);
    const Defaults defaults(path);
    EXPECT_THAT(defaults.string(u"b"_s), Optional(u"2"_s));
    EXPECT_THAT(defaults.string(u"c"_s), Optional(u"3"_s));
}

TEST_F(DefaultsTest, WithoutAPlaceToWriteValuesLiveInMemoryUntilThereIsOne) {
    // A file stands where the folder should be: refused for everybody, root as well.
    QFile blocker(folder.filePath(u"config"_s));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    {
        Defaults defaults(path);
        EXPECT_FALSE(defaults.problem().isEmpty());
        defaults.setString(u"a"_s, u"1"_s);
        defaults.setString(u"b"_s, u"2"_s);
        defaults.remove(u"b"_s);
        EXPECT_THAT(defaults.string(u"a"_s), Optional(u"1"_s));
        EXPECT_EQ(defaults.string(u"b"_s), std::nullopt);
        ASSERT_TRUE(blocker.remove());
        defaults.setString(u"c"_s, u"3"_s);
        EXPECT_EQ(defaults.problem(), QString());
    }
    const Defaults defaults(path);
    EXPECT_THAT(defaults.string(u"a"_s), Optional(u"1"_s));
    EXPECT_THAT(defaults.string(u"c"_s), Optional(u"3"_s));
}

// In a child process, whose files may not grow: a disk without room. Exit 0 when all held, else the failed step.
int onAFullDisk(const QString& path, bool alreadyThere) {
    std::signal(SIGXFSZ, SIG_IGN);
    if (alreadyThere)
        Defaults(path).setString(u"old"_s, u"kept"_s);
    const auto limit = [](rlim_t size) {
        rlimit value{};
        getrlimit(RLIMIT_FSIZE, &value);
        value.rlim_cur = size;
        return setrlimit(RLIMIT_FSIZE, &value) == 0;
    };
    if (!limit(alreadyThere ? 40 * 1024 : 1024))
        return 1;
    {
        Defaults defaults(path);
        if (alreadyThere && defaults.string(u"old"_s) != u"kept"_s)
            return 2;
        defaults.setData(u"large"_s, QByteArray(200 * 1024, 'x'));
        defaults.setString(u"small"_s, u"1"_s);
        if (defaults.problem().isEmpty())
            return 3;
        if (defaults.data(u"large"_s) != QByteArray(200 * 1024, 'x') || defaults.string(u"small"_s) != u"1"_s)
            return 4;
        if (!limit(RLIM_INFINITY))
            return 5;
        defaults.setString(u"after"_s, u"2"_s);
        if (!defaults.problem().isEmpty())
            return 6;
    }
    const Defaults defaults(path);
    if (defaults.data(u"large"_s) != QByteArray(200 * 1024, 'x'))
        return 7;
    if (defaults.string(u"small"_s) != u"1"_s || defaults.string(u"after"_s) != u"2"_s)
        return 8;
    if (alreadyThere && defaults.string(u"old"_s) != u"kept"_s)
        return 9;
    if (!QDir(QFileInfo(path).path()).entryList({u"*.damaged-*"_s}).isEmpty())
        return 10;
    return 0;
}

TEST_F(DefaultsTest, OnAFullDiskNothingIsLostAndItIsWrittenWhenThereIsRoomAgain) {
    for (const bool alreadyThere : {false, true}) {
        const QString file = path + (alreadyThere ? u"-1"_s : u"-2"_s);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            _exit(onAFullDisk(file, alreadyThere));
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
        EXPECT_EQ(WEXITSTATUS(status), 0) << "the step that failed; file was " << (alreadyThere ? "there" : "new");
    }
}

}
}
