#include "MessageFiles.h"

#include "Chat/MessageHandle.h"

namespace Korvi {

using namespace Qt::Literals;

void MessageFiles::setContent(const QVariant& content) {
    m_content = content;
    QStringList images;
    QVariantList files;
    const ChatMessage* message = content.value<MessageHandle>().message();
    for (const MessageContent& block :
        message ? message->content.value_or(std::vector<MessageContent>()) : std::vector<MessageContent>()) {
        if (const auto* image = block.as<MessageContent::Image>())
            images.append(image->url);
        else if (const auto* file = block.as<MessageContent::File>())
            files.append(
                QVariantMap{{u"url"_s, file->url}, {u"filename"_s, file->filename}, {u"mimetype"_s, file->mimetype}});
    }
    emit contentChanged();
    if (images == m_images && files == m_files)
        return; // their items stay
    m_images = std::move(images);
    m_files = std::move(files);
    emit filesChanged();
}

}
