#include "ChatMessage.h"
#include "Printing.h"

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

QString stored(const MessageContent& block) {
    return QString::fromUtf8(QJsonDocument(block.toJson()).toJson(QJsonDocument::Compact));
}

// What comes in, and the form in which it is stored: read back to the same value, and stored the same way again.
TEST(MessageContent, ABlockIsStoredInItsFormAndComesBackEqual) {
    struct Row {
        const char* json;
        const char* form;
    };
    const char* unknown = R"({"type":"unknown"})";
    for (const Row& row : {
             Row{R"({"type":"text","text":"т\n\u0000\ud83d\ude00"})", nullptr},
             Row{R"({"type":"text","text":"\ud800"})", nullptr},
             Row{R"({"type":"text","text":""})", R"({"text":"","type":"text"})"},
             Row{R"({"type":"thinking","text":"r"})", R"({"text":"r","type":"thinking"})"},
             Row{R"({"type":"generating","text":"video"})", R"({"text":"video","type":"generating"})"},
             Row{R"({"type":"image","url":"x"})", R"({"image_url":"x","type":"image_url"})"},
             Row{R"({"type":"image_url","url":"c","image_url":"b","imageUrl":"a"})",
                 R"({"image_url":"a","type":"image_url"})"},
             Row{R"({"type":"image","url":"c","image_url":"b","imageUrl":{"url":"a"}})",
                 R"({"image_url":"b","type":"image_url"})"},
             Row{R"({"type":"image"})", unknown},
             Row{R"({"type":"image","url":null,"image_url":5})", unknown},
             Row{R"({"type":"video","url":"x"})", R"({"type":"video_url","video_url":"x"})"},
             Row{R"({"type":"video_url","videoUrl":"a","video_url":"b"})", R"({"type":"video_url","video_url":"a"})"},
             Row{R"({"type":"video_url","imageUrl":"a"})", unknown},
             Row{R"({"type":"audio","music_url":"x"})", R"({"music_url":"x","type":"music_url"})"},
             Row{R"({"type":"music","musicUrl":"x"})", R"({"music_url":"x","type":"music_url"})"},
             Row{R"({"type":"audio_url","url":"x"})", R"({"music_url":"x","type":"music_url"})"},
             Row{R"({"type":"music_url"})", unknown},
             Row{R"({"type":"file","url":"x"})",
                 R"({"fileUrl":"x","filename":"file","mimetype":"application/octet-stream","type":"file_url"})"},
             Row{R"({"type":"file_url","file_url":"x","filename":"я.pdf","mimetype":7})",
                 R"({"fileUrl":"x","filename":"я.pdf","mimetype":"application/octet-stream","type":"file_url"})"},
             Row{R"({"type":"file","filename":"f"})", unknown},
             Row{R"({"type":"artifact","id":"a","title":"t","kind":"code","text":"x","version":2})",
                 R"({"id":"a","kind":"code","text":"x","title":"t","type":"artifact","version":2})"},
             Row{R"({"type":"artifact","id":"a","title":"t","kind":"code","text":"x","version":null})",
                 R"({"id":"a","kind":"code","text":"x","title":"t","type":"artifact"})"},
             Row{R"({"type":"search"})", R"({"type":"search"})"},
             Row{R"({"type":"web_search","query":"q","responseTime":0.25})",
                 R"({"query":"q","responseTime":0.25,"type":"web_search"})"},
             Row{R"({"type":"searching","text":"q"})", R"({"query":"q","type":"search_in_progress"})"},
             Row{R"({"type":"search_in_progress","query":"a","text":"b"})",
                 R"({"query":"a","type":"search_in_progress"})"},
             Row{R"({"type":"searching"})", R"({"query":"","type":"search_in_progress"})"},
             Row{R"({"type":"chart","data":[1]})", unknown},
             Row{R"({"type":"Text","text":"x"})", unknown},
             Row{R"({"type":""})", unknown},
         }) {
        const MessageContent block = decodeJson<MessageContent>(row.json);
        if (row.form) {
            EXPECT_EQ(stored(block), QString::fromUtf8(row.form)) << row.json;
        }
        const MessageContent again = decodeJson<MessageContent>(stored(block).toUtf8());
        EXPECT_EQ(again, block) << row.json;
        EXPECT_EQ(stored(again), stored(block)) << row.json;
    }
}

TEST(MessageContent, ABlockWithoutWhatItNeedsFailsItsMessage) {
    struct Row {
        const char* block;
        const char* error;
    };
    for (const Row& row : {
             Row{"{}", "content[1].type: a string is required"},
             Row{R"({"type":7})", "content[1].type: a string is required"},
             Row{R"({"type":"text"})", "content[1].text: a string is required"},
             Row{R"({"type":"thinking","text":null})", "content[1].text: a string is required"},
             Row{R"({"type":"generating"})", "content[1].text: a string is required"},
             Row{R"({"type":"artifact","id":"a","title":"t","kind":"k"})", "content[1].text: a string is required"},
             Row{R"({"type":"artifact","id":"a","title":"t","kind":"k","text":"x","version":"1"})",
                 "content[1].version: an integer is required"},
             Row{"[]", "content[1]: an object is required"},
         }) {
        try {
            decodeJson<ChatMessage>(QByteArray(R"({"id":1,"createdAt":"t","chatId":7,"role":"ai","usageTokens":0,)") +
                R"("content":[{"type":"text","text":"ok"},)" + row.block + "]}");
            ADD_FAILURE() << row.block << " decoded";
        } catch (const DecodingError& error) {
            EXPECT_STREQ(error.what(), row.error) << row.block;
        }
    }
}

TEST(ChatMessage, ItsTextIsThatOfTheTextAndThinkingBlocksInOrder) {
    ChatMessage message;
    EXPECT_EQ(message.text(), QString());
    message.content.emplace();
    EXPECT_EQ(message.text(), QString());
    message.content = {{MessageContent::Thinking{u"думаю"_s}}, {MessageContent::Image{u"u"_s}},
        {MessageContent::Text{u"ответ"_s}}, {MessageContent::Text{QString()}}};
    EXPECT_EQ(message.text(), u"думаю\nответ\n"_s);
}

TEST(ChatMessage, AbsentAndEmptyContentStayApartInTheCache) {
    for (const char* content : {"", R"("content":[],)", R"("content":null,)"}) {
        const auto message = decodeJson<ChatMessage>(QByteArray("{") + content +
            R"("id":1,"createdAt":"t","chatId":7,"role":"user","usageTokens":0.1,"providerId":"p"})");
        EXPECT_EQ(decodeJson<ChatMessage>(QJsonDocument(message.toJson()).toJson()), message) << content;
        EXPECT_EQ(message.content.has_value(), QByteArray(content).contains("[]")) << content;
    }
}

}
}
