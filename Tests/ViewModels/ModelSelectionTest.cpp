#include "Chat/ModelSelection.h"
#include "Chat/ModelListModel.h"
#include "Defaults.h"
#include "Printing.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;
using testing::ElementsAre;

TEST(ModelCatalogue, EveryModelIsItselfAndOneIsTheDefault) {
    std::set<QString> ids;
    for (const ModelInfo& model : ModelCatalogue::allModels()) {
        EXPECT_TRUE(ids.insert(model.id.toString()).second) << model.id.toString().toStdString();
        EXPECT_EQ(ModelCatalogue::find(model.id)->displayName, model.name);
        EXPECT_EQ(model.isDefault, model.id == ModelCatalogue::defaultModelId);
    }
    EXPECT_EQ(ids.size(), 10U);
    EXPECT_EQ(ModelCatalogue::find(u"gpt"), nullptr);
}

TEST(ModelCatalogue, TheIdentifierTellsTheProvider) {
    struct Row {
        QStringView id;
        QStringView title;
    };
    for (const Row& row : std::initializer_list<Row>{
             {u"aiplus", u"Авто"},
             {u"aiplus-2", u"OpenAI"}, // not the automatic one
             {u"gpt-4", u"OpenAI"},
             {u"chatgpt", u"OpenAI"},
             {u"claude-opus", u"Claude"},
             {u"my-claude", u"OpenAI"},
             {u"deepseek-chat", u"DeepSeek"},
             {u"gemini-pro", u"Gemini"},
             {u"grok-2", u"Grok"},
             {u"xai-grok", u"Grok"},
             {u"nobody", u"OpenAI"},
             {u"", u"OpenAI"},
         }) {
        EXPECT_EQ(ModelCatalogue::title(ModelCatalogue::provider(row.id)), row.title)
            << row.id.toString().toStdString();
    }
}

TEST(ModelListModel, GroupsByProviderInTheOrderOfTheCatalogue) {
    ModelListModel models;
    const auto column = [&](int role) {
        QStringList values;
        for (int row = 0; row < models.count(); ++row)
            values.append(models.data(models.index(row), role).toString());
        return values;
    };
    QStringList groups = column(ModelListModel::ProviderRole);
    groups.erase(std::unique(groups.begin(), groups.end()), groups.end());
    EXPECT_EQ(groups, (QStringList{u"Авто"_s, u"OpenAI"_s, u"Claude"_s, u"Gemini"_s, u"DeepSeek"_s, u"Grok"_s}));
    EXPECT_EQ(column(ModelListModel::ModelIdRole).mid(6, 2), (QStringList{u"deepseek-chat"_s, u"deepseek-pro"_s}));

    models.setSelected(u"gemini-pro"_s);
    EXPECT_EQ(column(ModelListModel::IsSelectedRole).count(u"true"_s), 1);
    QSignalSpy changes(&models, &ModelListModel::dataChanged);
    models.setSelected(u"gemini-pro"_s);
    EXPECT_EQ(changes.count(), 0);
    models.setSelected(u"unlisted"_s);
    EXPECT_EQ(column(ModelListModel::IsSelectedRole).count(u"true"_s), 0);
}

class ModelSelectionTest : public testing::Test {
protected:
    static QStringList ids(const std::vector<ModelInfo>& models) {
        QStringList all;
        for (const ModelInfo& model : models)
            all.append(model.id.toString());
        return all;
    }

    QTemporaryDir folder;
    Defaults defaults{folder.filePath(u"defaults.sqlite"_s)};
};

TEST_F(ModelSelectionTest, TheModelUsedLastIsSelectedAgain) {
    ModelSelection fresh(defaults);
    EXPECT_EQ(fresh.selectedModel(), u"aiplus"_s);
    EXPECT_EQ(fresh.chatModelName(), u"Авто"_s);
    fresh.select(u"grok-2"_s);
    EXPECT_EQ(defaults.string(u"lastSelectedModel"_s), u"grok-2"_s);
    EXPECT_EQ(ModelSelection(defaults).chatModelName(), u"Grok 4.1 Fast"_s);

    defaults.setString(u"lastSelectedModel"_s, u"retired"_s); // by a former build
    const ModelSelection later(defaults);
    EXPECT_EQ(later.selectedModel(), u"retired"_s);
    EXPECT_EQ(later.selectedModelInfo(), nullptr);
    EXPECT_EQ(later.chatModelName(), u"Модель"_s);
}

TEST_F(ModelSelectionTest, ExtraModelsAreKeptAsTheyAreSwitched) {
    ModelSelection selection(defaults);
    EXPECT_EQ(ids(selection.availableModels()), QStringList(u"aiplus"_s));
    EXPECT_FALSE(selection.hasExtraModelsEnabled());
    EXPECT_EQ(selection.extraModelsForSettings().size(), 9U);

    selection.toggleExtraModel(u"grok-2"_s);
    selection.toggleExtraModel(u"gpt-4"_s);
    selection.toggleExtraModel(u"retired"_s); // kept, but there is nothing to show
    const ModelSelection next(defaults);
    EXPECT_TRUE(next.isExtraModelEnabled(u"retired"_s));
    EXPECT_EQ(ids(next.availableModels()), (QStringList{u"aiplus"_s, u"gpt-4"_s, u"grok-2"_s}));

    selection.toggleExtraModel(u"gpt-4"_s);
    selection.toggleExtraModel(u"grok-2"_s);
    EXPECT_EQ(defaults.data(u"enabledExtraModelIds"_s), R"(["retired"])");
    EXPECT_FALSE(selection.hasExtraModelsEnabled());
}

TEST_F(ModelSelectionTest, WhatDoesNotDecodeCountsAsNoExtraModels) {
    for (const QByteArray& stored : {QByteArray(), QByteArray("["), QByteArray(R"({"gpt-4":true})"),
             QByteArray(R"(["gpt-4",7])"), QByteArray("\xff")}) {
        defaults.setData(u"enabledExtraModelIds"_s, stored);
        ModelSelection selection(defaults);
        EXPECT_FALSE(selection.hasExtraModelsEnabled()) << stored.toStdString();
        selection.toggleExtraModel(u"gpt-4"_s);
        EXPECT_EQ(ids(selection.availableModels()), (QStringList{u"aiplus"_s, u"gpt-4"_s})) << stored.toStdString();
    }
}

}
}
