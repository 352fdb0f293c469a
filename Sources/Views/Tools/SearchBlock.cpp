#include "SearchBlock.h"

namespace Korvi {

using namespace Qt::Literals;

void SearchBlock::setBlock(const QVariant& block) {
    const auto content = block.value<MessageContent>();
    const auto* search = content.as<WebSearchContent>();
    if (m_block.isValid() && search && *search == m_content)
        return;
    m_block = block;
    m_content = search ? *search : WebSearchContent();
    m_results.clear();
    for (const WebSearchResult& result : m_content.results.value_or(std::vector<WebSearchResult>())) {
        m_results.append(QVariantMap{{u"title"_s, result.title}, {u"url"_s, result.url}, {u"content"_s, result.content},
            {u"favicon"_s, result.favicon.value_or(QString())}, {u"domain"_s, result.domain()}});
    }
    m_images.clear();
    for (const WebSearchImage& image : m_content.images.value_or(std::vector<WebSearchImage>())) {
        m_images.append(QVariantMap{{u"url"_s, image.url}, {u"description"_s, image.description.value_or(QString())}});
    }
    emit blockChanged();
}

QStringList SearchBlock::answer() const {
    QStringList texts;
    for (const WebSearchAnswerItem& item : m_content.answer.value_or(std::vector<WebSearchAnswerItem>())) {
        if (!item.cleanedText.isEmpty())
            texts.append(item.cleanedText);
    }
    return texts;
}

}
