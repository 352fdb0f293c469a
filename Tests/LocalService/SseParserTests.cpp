#include "Providers/SseParser.h"

#include <gmock/gmock.h>

namespace korvi::service {
namespace {

using testing::ElementsAre;

TEST(SseParser, EventsComeOutTheSameHoweverTheBytesAreSplit) {
    const std::string stream = ": hello\r\n\r\ndata: {\"a\":\"п\"}\n\nevent: x\nid: 5\ndata:one\rdata: two\r\rdata: "
                               "три\r\n\r\ndata: unfinished\n";
    for (std::size_t size = 1; size <= stream.size(); ++size) {
        SseParser parser;
        std::vector<std::string> events;
        for (std::size_t at = 0; at < stream.size(); at += size)
            for (auto& event : parser.feed(std::string_view(stream).substr(at, size)))
                events.push_back(event);
        ASSERT_THAT(events, ElementsAre("{\"a\":\"п\"}", "one\ntwo", "три")) << "parts of " << size;
    }
}

TEST(SseParser, AnEventWithoutEndIsNotCollectedForEver) {
    SseParser parser;
    parser.feed("data: ");
    for (int i = 0; i < 2000 && !parser.overflowed(); ++i)
        parser.feed(std::string(1024, 'x'));
    EXPECT_TRUE(parser.overflowed());
}

}
}
