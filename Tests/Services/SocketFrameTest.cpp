#include "Chat/SocketFrame.h"
#include "Match.h"
#include "Printing.h"

#include <QJsonDocument>

#include <gmock/gmock.h>

namespace Korvi::Test {
namespace {

using namespace Qt::Literals;

QString json(const QJsonObject& object) {
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QString words(const SocketEvent& event) {
    return match(
        event.value, [](const SocketEvent::Disconnected&) { return u"disconnected"_s; },
        [](const SocketEvent::TextChunk& e) { return u"text "_s + e.content; },
        [](const SocketEvent::ThinkingChunk& e) { return u"thinking "_s + e.content; },
        [](const SocketEvent::ToolStart& e) { return u"start "_s + e.tool; },
        [](const SocketEvent::ToolEnd& e) {
            return u"end-of "_s + e.tool + u' ' + (e.content ? json(*e.content) : u"nothing"_s);
        },
        [](const SocketEvent::Creation& e) { return u"chat %1 %2"_s.arg(e.chat.id).arg(e.chat.name); },
        [](const SocketEvent::ArtifactChunk& e) { return u"args "_s + e.tool + u' ' + json(e.args); },
        [](const SocketEvent::Message&) { return u"message"_s; },
        [](const SocketEvent::Error& e) {
            return u"error "_s + (e.chatId ? QString::number(*e.chatId) : u"-"_s) + u' ' + e.message;
        },
        [](const SocketEvent::Connected&) { return u"connected"_s; },
        [](const SocketEvent::StreamEnd&) { return u"end"_s; });
}

QString parsed(const QByteArray& frame) {
    QStringList all;
    for (const SocketEvent& event : SocketFrame::parse(frame))
        all.append(words(event));
    return all.join(u" | "_s);
}

TEST(SocketFrame, AFrameBecomesItsEvents) {
    struct Row {
        const char* frame;
        const char* events;
    };
    for (const Row& row :
        {
            Row{R"({"event":"chunk","data":{"content":"Привет"}})", "text Привет"},
            Row{R"({"data":{"content":""},"event":"chunk","extra":1})", "text "},
            Row{R"({"event":"chunk","data":{"content":"\ud83d\ude00"}})", "text 😀"},
            Row{R"({"event":"thinking","data":{"content":"хм"}})", "thinking хм"},
            Row{R"({"event":"create","data":{"id":7,"name":"Н","mode":"m","createdAt":"t","updatedAt":"t","userId":"u"}})",
                "chat 7 Н"},
            Row{R"({"event":"tool_call","data":{"tool":"webSearch"}})", "start webSearch"},
            Row{R"({"event":"tool_start","data":{"tool":"generateImage"}})",
                "start generateImage | args generateImage {}"},
            Row{R"({"event":"tool_start","data":{"tool":"DALLE-3"}})", "start DALLE-3 | args DALLE-3 {}"},
            Row{R"({"event":"tool_start","data":{"tool":"editIMAGEs"}})", "start editIMAGEs | args editIMAGEs {}"},
            Row{R"({"event":"tool_start","data":{"tool":"imagination"}})", "start imagination"},
            Row{R"({"event":"tool_call_args","data":{"tool":"t","args":{"a":[1]}}})", "args t {\"a\":[1]}"},
            Row{R"({"event":"end","data":{}})", "end"},
            Row{R"({"event":"end","data":{"x":1}})", "end"},
            Row{R"({"event":"error","data":{}})", "error - Unknown error"},
            Row{R"({"event":"error","data":{"message":"м","error":"э","chatId":3}})", "error 3 м"},
            Row{R"({"event":"error","data":{"message":5,"error":"э","chatId":"3"}})", "error - э"},
            Row{R"({"event":"error","data":{"message":"м","chatId":1.5}})", "error - м"},
            Row{R"({"event":"error","data":{"message":"м","chatId":1e30}})", "error - м"},
        }) {
        EXPECT_EQ(parsed(row.frame), QString::fromUtf8(row.events)) << row.frame;
    }
}

TEST(SocketFrame, TheContentOfAToolEndIsTheFirstShapeThatApplies) {
    struct Row {
        const char* data;
        const char* content;
    };
    for (const Row& row : {
             Row{R"({"tool":"x"})", "nothing"},
             Row{R"({"tool":"x","loading":true,"content":{"a":1}})", R"({"loading":true})"},
             Row{R"({"tool":"x","loading":"yes","content":{"a":1}})", R"({"a":1})"},
             Row{R"({"tool":"x","content":{},"url":"u"})", "{}"},
             Row{R"({"tool":"x","content":"text","url":"u"})", R"({"imageUrl":"u"})"},
             Row{R"({"tool":"x","url":"c","imageUrl":"b","image_url":"a"})", R"({"imageUrl":"a"})"},
             Row{R"({"tool":"x","url":"c","imageUrl":"b","image_url":1})", R"({"imageUrl":"b"})"},
             Row{R"({"tool":"x","result":{"url":"u"},"output":{"b":2}})", R"({"imageUrl":"u"})"},
             Row{R"({"tool":"x","result":{"a":1},"output":{"b":2}})", R"({"a":1})"},
             Row{R"({"tool":"x","result":[1],"output":{"b":2}})", R"({"b":2})"},
             Row{R"({"tool":"x","output":"b"})", "nothing"},
         }) {
        EXPECT_EQ(parsed(QByteArray(R"({"event":"tool_end","data":)") + row.data + "}"),
            u"end-of x "_s + QString::fromUtf8(row.content))
            << row.data;
    }
}

TEST(SocketFrame, WhatIsNotAFrameIsDropped) {
    for (const char* frame : {"", "{", "[]", "null", "7", "\"chunk\"", R"({"event":"end"})",
             R"({"event":"end","data":null})", R"({"event":"end","data":[]})", R"({"event":"end","data":"x"})",
             R"({"event":7,"data":{}})", R"({"data":{}})", R"({"event":"END","data":{}})",
             R"({"event":"unheard-of","data":{}})", R"({"event":"chunk","data":{}})",
             R"({"event":"chunk","data":{"content":5}})", R"({"event":"thinking","data":{"content":null}})",
             R"({"event":"create","data":{"id":"7","name":"n"}})", R"({"event":"tool_call","data":{"tool":1}})",
             R"({"event":"tool_call_args","data":{"tool":"t","args":"a"}})",
             R"({"event":"tool_call_args","data":{"args":{}}})", R"({"event":"tool_end","data":{"content":{}}})",
             "{\"event\":\"chunk\",\"data\":{\"content\":\"\xff\"}}", R"({"event":"end","data":{}} trailing)"}) {
        EXPECT_EQ(parsed(frame), QString()) << frame;
    }
    EXPECT_EQ(parsed(QByteArray(R"({"event":"end","data":{"a":)") + QByteArray(200000, '[')), QString());
}

TEST(SocketFrame, OutgoingFramesHaveTheirLiteralForm) {
    using File = SocketFrame::File;
    struct Row {
        QString frame;
        const char* literal;
    };
    const File page{u"https://f/1"_s, u"отчёт \"1\".pdf"_s, u"application/pdf"_s};
    const File film{u"https://f/2"_s, u"a.mp4"_s, u"video/mp4"_s};
    for (const Row& row :
        {
            Row{SocketFrame::abort(9007199254740993), R"({"data":{"chatId":9007199254740993},"event":"abort"})"},
            Row{SocketFrame::send(5, u"Привет\n"_s, {}, {}),
                R"({"data":{"chatId":5,"content":[{"text":"Привет\n","type":"text"}]},"event":"send"})"},
            Row{SocketFrame::send(5, {}, {}, {}), R"({"data":{"chatId":5,"content":[]},"event":"send"})"},
            Row{SocketFrame::send(5, {}, {}, {page}),
                R"({"data":{"chatId":5,"content":[{"fileUrl":"https://f/1","filename":"отчёт \"1\".pdf","mimetype":"application/pdf","type":"file_url"}]},"event":"send"})"},
            Row{SocketFrame::send(5, u"t"_s, {u"https://i/1"_s}, {page}),
                R"({"data":{"chatId":5,"content":[{"imageUrl":"https://i/1","type":"image_url"},{"fileUrl":"https://f/1","filename":"отчёт \"1\".pdf","mimetype":"application/pdf","type":"file_url"},{"text":"t","type":"text"}],"flags":{"vision":true}},"event":"send"})"},
            Row{SocketFrame::create(u"auto"_s, u"t"_s, {}, {}, std::nullopt),
                R"({"data":{"content":[{"text":"t","type":"text"}],"mode":"auto"},"event":"create"})"},
            Row{SocketFrame::create(u"auto"_s, {}, {}, {film}, 12),
                R"({"data":{"content":[{"fileUrl":"https://f/2","filename":"a.mp4","mimetype":"video/mp4","type":"file_url"}],"flags":{"vision":true},"mode":"auto","projectId":12},"event":"create"})"},
        }) {
        EXPECT_EQ(row.frame, QString::fromUtf8(row.literal));
    }
}

}
}
