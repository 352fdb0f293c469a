#include "MessageHeights.h"

#include "Chat/MessageHandle.h"
#include "Markdown/MarkdownHeights.h"

#include <QAbstractItemModel>

#include <algorithm>
#include <cmath>

namespace Korvi {

namespace {

constexpr double raggedEdge = 0.96; // how much of a line is filled before a word moves to the next one

}

double MessageHeights::heightOf(const QAbstractItemModel& model, int row) const {
    const QHash<int, QByteArray> names = model.roleNames();
    const auto value = [&](const QByteArray& role) { return model.data(model.index(row, 0), names.key(role, -1)); };
    const QString text = value(m_textRole).toString();
    if (value("isUser").toBool()) {
        const double files = attached(value("content"));
        const double bubble = m_aroundQuestion + lines(text, m_questionWidth) * m_lineHeight;
        return files > 0 && text.isEmpty() ? files : files + bubble;
    }
    const double reasoning = value("thinking").toString().isEmpty() ? 0 : m_thinkingHeight;
    if (m_isPlain)
        return m_aroundAnswer + reasoning + lines(text, m_answerWidth) * m_lineHeight;
    constexpr double plainLine = 20; // what the table of heights is drawn for
    const double characters = m_answerWidth / std::max(1.0, m_characterWidth);
    return m_aroundAnswer + reasoning + MarkdownHeights::of(text, characters) * m_lineHeight / plainLine;
}

double MessageHeights::attached(const QVariant& content) const {
    const ChatMessage* message = content.value<MessageHandle>().message();
    if (!message || !message->content)
        return 0;
    const auto isImage = [](const MessageContent& block) { return block.as<MessageContent::Image>() != nullptr; };
    const auto isFile = [](const MessageContent& block) { return block.as<MessageContent::File>() != nullptr; };
    const double images = std::ranges::any_of(*message->content, isImage) ? m_imageHeight : 0;
    return images + static_cast<double>(std::ranges::count_if(*message->content, isFile)) * m_fileHeight;
}

double MessageHeights::lines(QStringView text, double width) const {
    const double inLine = std::max(1.0, width * raggedEdge / std::max(1.0, m_characterWidth));
    double count = 0;
    for (qsizetype from = 0; from <= text.size();) {
        qsizetype to = text.indexOf(u'\n', from);
        if (to < 0)
            to = text.size();
        count += std::max(1.0, std::ceil(static_cast<double>(to - from) / inLine));
        from = to + 1;
    }
    return count;
}

}
