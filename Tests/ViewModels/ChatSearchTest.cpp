#include "Chat/ChatFilterModel.h"
#include "Chat/ChatQuickFindModel.h"
#include "Chat/FoundChat.h"
#include "Chat/FuzzyMatch.h"
#include "Chat/SearchText.h"
#include "Printing.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>

#include <gmock/gmock.h>

#include <ctime>
#include <random>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::ElementsAre;
using testing::IsEmpty;

// A list of chats that can do to its rows what a source may do.
class Names : public QAbstractListModel {
public:
    enum { ChatId = Qt::UserRole + 1, Name, UpdatedAt, IsFavorite };
    struct Row {
        qint64 id;
        QString name;
        QString updatedAt;
    };

    explicit Names(QStringList names = {}) {
        for (const QString& name : names)
            rows.push_back({static_cast<qint64>(rows.size()), name, {}});
    }
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        const Row& row = rows.at(static_cast<std::size_t>(index.row()));
        return role == ChatId   ? QVariant(row.id)
            : role == Name      ? QVariant(row.name)
            : role == UpdatedAt ? QVariant(row.updatedAt)
                                : QVariant();
    }
    QHash<int, QByteArray> roleNames() const override {
        return {{ChatId, "chatId"}, {Name, "name"}, {UpdatedAt, "updatedAt"}, {IsFavorite, "isFavorite"}};
    }

    void insert(int at, std::vector<Row> added) {
        beginInsertRows({}, at, at + static_cast<int>(added.size()) - 1);
        rows.insert(rows.begin() + at, added.begin(), added.end());
        endInsertRows();
    }
    void remove(int first, int last) {
        beginRemoveRows({}, first, last);
        rows.erase(rows.begin() + first, rows.begin() + last + 1);
        endRemoveRows();
    }
    void move(int first, int last, int destination) {
        if (!beginMoveRows({}, first, last, {}, destination))
            return;
        const auto at = [this](int row) { return rows.begin() + row; };
        if (destination < first)
            std::rotate(at(destination), at(first), at(last + 1));
        else
            std::rotate(at(first), at(last + 1), at(destination));
        endMoveRows();
    }
    void rename(int row, const QString& name) {
        rows.at(static_cast<std::size_t>(row)).name = name;
        emit dataChanged(index(row), index(row), {Name});
    }

    std::vector<Row> rows;
};

QStringList namesIn(const QAbstractItemModel& model) {
    QStringList names;
    for (int row = 0; row < model.rowCount(); ++row)
        names.append(model.index(row, 0).data(Names::Name).toString());
    return names;
}

QStringList marksIn(const QAbstractItemModel& model, int row) {
    const QString name = model.index(row, 0).data(Names::Name).toString();
    const QVariantList marks = model.index(row, 0).data(FoundChat::MarksRole).toList();
    QStringList marked;
    for (qsizetype i = 0; i + 1 < marks.size(); i += 2)
        marked.append(name.mid(marks[i].toInt(), marks[i + 1].toInt()));
    return marked;
}

TEST(SearchText, LooksPastCaseAndMarks) {
    for (const auto& [text, key] : std::initializer_list<std::pair<QString, QString>>{{u"Ёлка"_s, u"елка"_s},
             {u"Е\u0308лка"_s, u"елка"_s}, {u"Café"_s, u"cafe"_s}, {u"Мой"_s, u"мой"_s}, {u"Мои\u0306"_s, u"мой"_s},
             {u"Мои"_s, u"мои"_s}, {u"Їжак"_s, u"іжак"_s}, {u"а\u00a0б"_s, u"а б"_s}, {u"😀 Да"_s, u"😀 да"_s}})
        EXPECT_EQ(searchKey(text), key);
}

TEST(SearchText, MarksStandOnTheTextAsItIsWritten) {
    const auto marked = [](const QString& text, const QString& query) {
        QStringList pieces;
        for (const TextRange& range : findWords(text, searchWords(query)))
            pieces.append(text.mid(range.start, range.length));
        return pieces;
    };
    EXPECT_THAT(marked(u"Новогодняя Ёлка"_s, u"елк"_s), ElementsAre(u"Ёлк"_s));
    EXPECT_THAT(marked(u"Е\u0308лка"_s, u"елк"_s), ElementsAre(u"Е\u0308лк"_s));
    EXPECT_THAT(marked(u"зарплата и план"_s, u"пла"_s), ElementsAre(u"пла"_s));
    EXPECT_EQ(findWords(u"зарплата и план"_s, {u"пла"_s}).front().start, 11); // a word that begins so comes first
    EXPECT_THAT(marked(u"план отпуска"_s, u"отп план"_s), ElementsAre(u"план"_s, u"отп"_s));
    EXPECT_THAT(marked(u"план"_s, u"пла лан"_s), ElementsAre(u"план"_s));
}

TEST(ChatFilterModel, ShowsNamesWithEveryWordAndMarksThem) {
    Names names({u"План отпуска"_s, u"Ёжик"_s, u"Отпуск и планы"_s, u"Рецепт"_s});
    ChatFilterModel model;
    model.setSource(&names);
    EXPECT_EQ(model.count(), 4);
    EXPECT_THAT(marksIn(model, 0), IsEmpty());
    model.setQuery(u"план ОТПУСК"_s);
    EXPECT_THAT(namesIn(model), ElementsAre(u"План отпуска"_s, u"Отпуск и планы"_s));
    EXPECT_THAT(marksIn(model, 1), ElementsAre(u"Отпуск"_s, u"план"_s));
    model.setQuery(u"ежик"_s);
    EXPECT_THAT(namesIn(model), ElementsAre(u"Ёжик"_s));
    EXPECT_EQ(model.rowOf(1), 0);
    EXPECT_EQ(model.rowOf(0), -1);
    model.setQuery(u"нет такого"_s);
    EXPECT_EQ(model.count(), 0);
    model.setQuery(u"  "_s);
    EXPECT_EQ(model.count(), 4);
}

TEST(ChatFilterModel, ANewQueryLeavesTheRowsThatStay) {
    Names names({u"аб"_s, u"б"_s, u"ав"_s, u"абв"_s, u"в"_s});
    ChatFilterModel model;
    model.setSource(&names);
    const QPersistentModelIndex kept = model.index(3);
    int resets = 0;
    QObject::connect(&model, &QAbstractItemModel::modelReset, &model, [&] { ++resets; });
    model.setQuery(u"аб"_s);
    EXPECT_EQ(kept.row(), 1);
    model.setQuery(u"в"_s);
    EXPECT_EQ(kept.row(), 1);
    model.setQuery(QString());
    EXPECT_EQ(kept.row(), 3);
    EXPECT_EQ(resets, 0);
}

TEST(ChatFilterModel, ALongListChangesInAFewSteps) {
    QStringList list;
    for (int i = 0; i < 2000; ++i)
        list.append(i % 2 == 0 ? u"чёт"_s : i % 3 == 0 ? u"нечет"_s : u"прочее"_s);
    Names names(list);
    ChatFilterModel model;
    model.setSource(&names);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    int steps = 0;
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, &model, [&] { ++steps; });
    QObject::connect(&model, &QAbstractItemModel::rowsRemoved, &model, [&] { ++steps; });
    for (const QString& query : {u"чет"_s, u"нечет"_s, u"п"_s, u""_s, u"нечет"_s, u"чет"_s}) {
        steps = 0;
        model.setQuery(query);
        EXPECT_EQ(namesIn(model), list.filter(QRegularExpression(query == u"чет"_s ? u"ч[её]т"_s : query)));
        EXPECT_LE(steps, ChatFilterModel::stepLimit + 2) << query.toStdString();
    }
}

// Whatever the source does, in whatever order: the rows are those that a plain filter would give, and what was
// announced leads there (the tester checks it).
TEST(ChatFilterModel, FollowsItsSource) {
    std::mt19937 dice(7);
    const auto roll = [&dice](int sides) { return static_cast<int>(dice() % static_cast<unsigned>(sides)); };
    const auto name = [&] { return QString(u"абвг"_s[roll(4)]) + u"абвг"_s[roll(4)]; };
    Names names;
    ChatFilterModel model;
    model.setSource(&names);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    qint64 nextId = 0;
    for (int step = 0; step < 4000; ++step) {
        const int size = names.rowCount();
        const int kind = size < 4 ? 0 : roll(5);
        const int first = size == 0 ? 0 : roll(size);
        const int last = size == 0 ? 0 : std::min(size - 1, first + roll(3));
        if (kind == 0 && size < 30) {
            std::vector<Names::Row> rows;
            for (int i = roll(3); i >= 0; --i)
                rows.push_back({nextId++, name(), {}});
            names.insert(roll(size + 1), rows);
        } else if (kind == 1) {
            names.remove(first, last);
        } else if (kind == 2) {
            names.move(first, last, roll(size + 1));
        } else if (kind == 3) {
            names.rename(first, name());
        } else {
            model.setQuery(QStringList{u""_s, u"а"_s, u"б"_s, u"аб"_s, u"а в"_s}.at(roll(5)));
        }
        QStringList expected;
        std::vector<qint64> ids;
        for (const Names::Row& row : names.rows) {
            if (containsWords(searchKey(row.name), searchWords(model.query()))) {
                expected.append(row.name);
                ids.push_back(row.id);
            }
        }
        ASSERT_EQ(namesIn(model), expected) << "step " << step << ", kind " << kind;
        for (int row = 0; row < model.count(); ++row)
            ASSERT_EQ(model.chatIdAt(row), ids[static_cast<std::size_t>(row)]);
    }
}

TEST(FuzzyMatch, RanksWhatWasProbablyMeantFirst) {
    const auto score = [](const QString& query, const QString& name) {
        const auto match = fuzzyMatch(searchWords(query), searchKey(name));
        return match ? match->score : -1;
    };
    // Each name before the next one.
    const std::pair<QString, QStringList> rows[] = {
        {u"план"_s, {u"План запуска"_s, u"Мой план"_s, u"Аэроплан"_s, u"Пылесос лан"_s}},
        {u"сс"_s, {u"Кассета"_s, u"Сортировка слиянием"_s}},
    };
    for (const auto& [query, names] : rows) {
        for (qsizetype i = 0; i + 1 < names.size(); ++i)
            EXPECT_GT(score(query, names[i]), score(query, names[i + 1]))
                << query.toStdString() << ": " << names[i].toStdString() << ", " << names[i + 1].toStdString();
    }
    EXPECT_GT(score(u"запуск план"_s, u"План запуска"_s), 0);
    EXPECT_GT(score(u"гтве"_s, u"Готовые ответы"_s), -1);
    EXPECT_EQ(score(u"план рыба"_s, u"План запуска"_s), -1);
    EXPECT_EQ(score(u"рецепт"_s, u"Разговор о целях и сметах, потом"_s), -1); // letters too far apart
    EXPECT_EQ(score(u"планы"_s, u"план"_s), -1);
}

TEST(FuzzyMatch, SaysWhereTheLettersAre) {
    const auto match = fuzzyMatch({u"сорсли"_s}, u"сортировка слиянием"_s);
    ASSERT_TRUE(match);
    EXPECT_THAT(match->positions, ElementsAre(0, 1, 2, 11, 12, 13));
}

TEST(ChatQuickFindModel, RecentFirstWithoutTextThenTheBestFit) {
    Names names;
    names.rows = {{1, u"План"_s, u"2026-01-01"_s}, {2, u"Ёлка"_s, u"2026-01-03"_s}, {3, u"Мой план"_s, u"2026-01-02"_s},
        {4, u"Планы"_s, u"2026-01-04"_s}};
    ChatQuickFindModel model;
    model.setProperty("activeChatId", 4);
    model.setSource(&names);
    EXPECT_THAT(namesIn(model), ElementsAre(u"Ёлка"_s, u"Мой план"_s, u"План"_s)); // without the open one
    model.setQuery(u"план"_s);
    EXPECT_THAT(namesIn(model), ElementsAre(u"Планы"_s, u"План"_s, u"Мой план"_s)); // of equals the more recent
    EXPECT_THAT(marksIn(model, 2), ElementsAre(u"план"_s));
    EXPECT_EQ(model.chatIdAt(0), 4);
    model.setQuery(u"елк"_s);
    EXPECT_THAT(marksIn(model, 0), ElementsAre(u"Ёлк"_s));
    names.remove(1, 1);
    EXPECT_EQ(model.count(), 0);
}

// Not a check: what one key costs in a list of 2,000 chats, for the eyes of whoever changes this.
TEST(ChatSearch, TimePerKey) {
    const QStringList words{u"план"_s, u"отпуска"_s, u"сортировка"_s, u"слиянием"_s, u"рецепт"_s, u"без"_s,
        u"глютена"_s, u"письмо"_s, u"арендодателю"_s, u"про"_s, u"отопление"_s, u"ёлка"_s, u"нейтрино"_s};
    std::mt19937 dice(1);
    QStringList list;
    for (int i = 0; i < 2000; ++i) {
        QStringList name;
        for (int word = 0; word < 5; ++word)
            name.append(words.at(static_cast<qsizetype>(dice() % static_cast<unsigned>(words.size()))));
        list.append(name.join(u' '));
    }
    Names names(list);
    ChatFilterModel filter;
    filter.setSource(&names);
    ChatQuickFindModel finder;
    finder.setSource(&names);
    const QString text = u"сорт слия"_s;
    QStringList queries;
    for (qsizetype length = 1; length <= text.size(); ++length)
        queries.append(text.first(length));
    for (qsizetype length = text.size() - 1; length >= 0; --length)
        queries.append(text.first(length));
    double worstFilter = 0;
    double worstFinder = 0;
    const auto spent = [](std::clock_t since) {
        return 1e3 * static_cast<double>(std::clock() - since) / CLOCKS_PER_SEC;
    };
    for (const QString& query : queries) {
        std::clock_t begun = std::clock();
        filter.setQuery(query);
        worstFilter = std::max(worstFilter, spent(begun));
        begun = std::clock();
        finder.setQuery(query);
        worstFinder = std::max(worstFinder, spent(begun));
    }
    std::printf("2,000 chats, the slowest of %lld keys: %.2f ms to filter, %.2f ms to rank\n",
        static_cast<long long>(queries.size()), worstFilter, worstFinder);
}

}
}
