#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <random>
#include <vector>

namespace Korvi::Test {

// An answer as a service makes and stores it: pieces of text and reasoning, and what tools tell.
struct SimulatedPiece {
    enum class Kind { text, thinking, tool };

    Kind kind = Kind::text;
    QString text;      // of the first two
    QJsonObject frame; // of a tool: "event" and "data"

    static SimulatedPiece tool(const char* event, const QString& name, QJsonObject data = {}) {
        data.insert("tool", name);
        return {Kind::tool, {}, {{"event", event}, {"data", data}}};
    }
};

using SimulatedPieces = std::vector<SimulatedPiece>;

// The blocks that the first `count` of these pieces make, as a service of its own stores them. In an answer that is
// complete, citations have become a block of results.
class SimulatedContent {
public:
    static QJsonArray of(const SimulatedPieces& pieces, std::size_t count, bool isComplete) {
        SimulatedContent content;
        for (std::size_t i = 0; i < std::min(count, pieces.size()); ++i)
            content.take(pieces[i]);
        if (isComplete)
            content.gatherCitations();
        QJsonArray blocks;
        for (const QJsonObject& block : content.m_blocks) {
            const bool mayBeEmpty = !is(block, "text") && !is(block, "artifact");
            if (mayBeEmpty || !block["text"].toString().isEmpty())
                blocks.append(block);
        }
        return blocks;
    }

private:
    static bool is(const QJsonObject& block, const char* type) { return block["type"] == QLatin1String(type); }
    static void grow(QJsonObject& block, const QString& key, const QString& more) {
        block.insert(key, block[key].toString() + more);
    }
    void append(const char* type, QJsonObject block) {
        block.insert("type", type);
        m_blocks.push_back(block);
    }
    QJsonObject* lastOf(const char* type) {
        const auto block = std::find_if(
            m_blocks.rbegin(), m_blocks.rend(), [type](const QJsonObject& each) { return is(each, type); });
        return block == m_blocks.rend() ? nullptr : &*block;
    }

    void take(const SimulatedPiece& piece) {
        if (piece.kind == SimulatedPiece::Kind::tool)
            return takeTool(piece.frame["event"].toString(), piece.frame["data"].toObject());
        const char* type = piece.kind == SimulatedPiece::Kind::text ? "text" : "thinking";
        QJsonObject* open = is(m_blocks.back(), type) ? &m_blocks.back() : nullptr;
        if (const QJsonObject* search = lastOf("search"); search && piece.kind == SimulatedPiece::Kind::text) {
            const auto behind = std::find_if(m_blocks.begin() + (search - m_blocks.data()), m_blocks.end(),
                [](const QJsonObject& each) { return is(each, "text"); });
            open = behind == m_blocks.end() ? nullptr : &*behind;
        }
        if (open)
            grow(*open, QStringLiteral("text"), piece.text);
        else
            append(type, {{"text", piece.text}});
    }

    void takeTool(const QString& event, const QJsonObject& data) {
        const QString tool = data["tool"].toString();
        const QJsonObject content = data["content"].toObject();
        if (tool == QLatin1String("artifact")) {
            takeArtifact(event, event == QLatin1String("tool_end") ? content : data["args"].toObject());
        } else if (event != QLatin1String("tool_end") || !data.contains("content")) {
            return;
        } else if (tool.startsWith(QLatin1String("search"))) {
            append("search", content);
        } else if (tool == QLatin1String("video")) {
            if (content.contains("videoUrl"))
                append("video_url", content);
            else
                append("text", content);
        } else if (tool == QLatin1String("createDocument")) {
            if (content.contains("fileUrl"))
                append("file_url",
                    {{"fileUrl", content["fileUrl"]}, {"filename", content["filename"]},
                        {"mimetype", content["mimeType"]}});
        } else if (tool == QLatin1String("generateImage")) {
            if (!content.contains("imageUrl"))
                append("text", content);
            else
                grow(*lastOf("text"), QStringLiteral("text"),
                    QStringLiteral("\n\n![image](%1)").arg(content["imageUrl"].toString()));
        }
    }

    void takeArtifact(const QString& event, const QJsonObject& values) {
        if (event == QLatin1String("tool_start"))
            return append("artifact", {{"id", ""}, {"title", ""}, {"kind", ""}, {"text", ""}});
        QJsonObject& artifact = *lastOf("artifact");
        for (auto it = values.begin(); it != values.end(); ++it) {
            const bool grows = event == QLatin1String("tool_call_args") &&
                (it.key() == QLatin1String("title") || it.key() == QLatin1String("text"));
            if (grows)
                grow(artifact, it.key(), it.value().toString());
            else
                artifact.insert(it.key(), it.value());
        }
    }

    void gatherCitations() {
        static const QRegularExpression citation(QStringLiteral(R"(\[\[(\d)\]\]\((https://([^/)]+)[^)]*)\))"));
        std::vector<std::tuple<int, QString, QString>> sources; // index, address, host
        for (QJsonObject& block : m_blocks) {
            QString text = block["text"].toString();
            if (!is(block, "text") || !text.contains(citation))
                continue;
            for (auto matches = citation.globalMatch(text); matches.hasNext();) {
                const auto match = matches.next();
                if (std::none_of(sources.begin(), sources.end(),
                        [&](const auto& each) { return std::get<1>(each) == match.captured(2); }))
                    sources.emplace_back(match.captured(1).toInt(), match.captured(2), match.captured(3));
            }
            text.remove(citation);
            static const QRegularExpression gap(QStringLiteral("\n{3,}"));
            block.insert("text", text.replace(gap, QStringLiteral("\n\n")).trimmed());
        }
        std::stable_sort(sources.begin(), sources.end(),
            [](const auto& a, const auto& b) { return std::get<0>(a) < std::get<0>(b); });
        QJsonArray results;
        for (const auto& [index, address, host] : sources)
            results.append(QJsonObject{{"title", host}, {"url", address}, {"content", ""},
                {"favicon", QStringLiteral("https://www.google.com/s2/favicons?sz=32&domain=") + host}});
        if (!results.isEmpty())
            append("search", {{"results", results}});
    }

    std::vector<QJsonObject> m_blocks{{{"type", "text"}, {"text", ""}}}; // an answer begins with an empty text
};

// Tools at work, one run at a time: with results, with signs of life, failing, or never telling of an end.
class SimulatedTools {
public:
    explicit SimulatedTools(std::mt19937& chance)
        : m_chance(chance) {}

    SimulatedPieces run() {
        m_pieces.clear();
        m_number = ++m_runs;
        switch (m_chance() % 6) {
        case 0: search(); break;
        case 1: image(); break;
        case 2: video(); break;
        case 3: document(); break;
        case 4: artifact(); break;
        default: other(); break;
        }
        return std::move(m_pieces);
    }

private:
    bool oneOf(unsigned count) { return m_chance() % count == 0; }
    QString address(const QString& name) const {
        return QStringLiteral("https://files.example/%1/%2").arg(m_number).arg(name);
    }
    void start(const QString& tool) { m_pieces.push_back(SimulatedPiece::tool("tool_start", tool)); }
    void args(const QString& tool, const QJsonObject& args) {
        m_pieces.push_back(SimulatedPiece::tool("tool_call_args", tool, {{"args", args}}));
    }
    void end(const QString& tool, const QJsonObject& content) {
        m_pieces.push_back(SimulatedPiece::tool("tool_end", tool, {{"content", content}}));
    }
    void endWithNothing(const QString& tool) { m_pieces.push_back(SimulatedPiece::tool("tool_end", tool)); }

    void search() {
        const QString tool = oneOf(2) ? QStringLiteral("search_web") : QStringLiteral("searchWeb");
        const QString query = QStringLiteral("запрос %1").arg(m_number);
        start(tool);
        if (!oneOf(4))
            args(tool, {{"query", query}});
        if (oneOf(6))
            return endWithNothing(tool);
        if (oneOf(8))
            return; // no end
        QJsonObject body{{"query", query}, {"responseTime", 0.5}};
        QJsonArray results;
        for (auto i = m_chance() % 3; i > 0; --i)
            results.append(QJsonObject{{"title", QStringLiteral("Находка %1").arg(i)},
                {"url", address(QString::number(i))}, {"content", "…"}});
        body.insert("results", results);
        if (oneOf(2))
            body.insert("answer",
                QJsonArray{QJsonObject{{"text", QStringLiteral("Итог [[1]](https://a.example/)")},
                    {"sources", QJsonArray{QJsonObject{{"url", "https://a.example/"}, {"index", 1}}}}}});
        if (oneOf(2))
            body.insert("images", QJsonArray{QJsonObject{{"url", address(QStringLiteral("i.png"))}}});
        end(tool, body);
    }

    void image() {
        const auto tool = QStringLiteral("generateImage");
        start(tool);
        if (oneOf(3))
            args(tool, {{"prompt", QStringLiteral("кот")}});
        for (auto signs = m_chance() % 3; signs > 0; --signs) // all alike
            m_pieces.push_back(SimulatedPiece::tool("tool_end", tool, {{"loading", true}}));
        if (oneOf(8))
            return; // no end
        if (oneOf(4))
            end(tool, {{"text", QStringLiteral("Не вышло %1").arg(m_number)}});
        else
            end(tool, {{"imageUrl", address(QStringLiteral("a.png"))}});
    }

    void video() {
        const auto tool = QStringLiteral("video");
        start(tool);
        if (oneOf(4))
            end(tool, {{"text", QStringLiteral("Видео не снято %1").arg(m_number)}});
        else if (!oneOf(8))
            end(tool, {{"videoUrl", address(QStringLiteral("v.webm"))}});
    }

    void document() {
        const auto tool = QStringLiteral("createDocument");
        start(tool);
        if (oneOf(5))
            endWithNothing(tool);
        else if (!oneOf(8))
            end(tool,
                {{"fileUrl", address(QStringLiteral("d.pdf"))}, {"filename", "d.pdf"},
                    {"mimeType", "application/pdf"}});
    }

    void artifact() {
        const auto tool = QStringLiteral("artifact");
        const QString id = QStringLiteral("doc-%1").arg(m_number);
        QString text;
        start(tool);
        args(tool, {{"id", id}, {"kind", "html"}, {"version", 1}});
        for (const auto* part : {"Стра", "ница"})
            args(tool, {{"title", QString::fromUtf8(part)}});
        for (auto parts = 1 + m_chance() % 4; parts > 0; --parts) {
            const QString part = oneOf(2) ? QStringLiteral("<p></p>") : QStringLiteral("<p>%1</p>").arg(parts);
            args(tool, {{"text", part}});
            text += part;
        }
        if (oneOf(8))
            return; // no end
        end(tool, {{"id", id}, {"title", "Страница"}, {"kind", "html"}, {"text", text}, {"version", 1}});
    }

    void other() {
        const auto tool = QStringLiteral("python");
        start(tool);
        args(tool, {{"code", "1 + 1"}});
        if (!oneOf(4))
            end(tool, {{"output", "2"}});
    }

    std::mt19937& m_chance;
    SimulatedPieces m_pieces;
    int m_runs = 0;
    int m_number = 0;
};

}
