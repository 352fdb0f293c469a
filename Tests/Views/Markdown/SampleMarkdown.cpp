#include "SampleMarkdown.h"

#include <array>

namespace Korvi::Markdown {

namespace {

constexpr std::array<QStringView, 78> pieces{u"\n", u"\n", u"\n", u"\n\n", u"\n\n\n", u"\r\n", u" ", u"  ", u"\t",
    u"слово", u"some words ", u"a", u"b-", u"Текст, и ещё. ", u"# ", u"\n## Заголовок", u"\n- ", u"\n* пункт", u"\n• ",
    u"\n12. ", u"\n1. раз", u"**", u"*", u"`", u"**жирный**", u"*курсив*", u"`код`", u"\n```", u"\n```\n",
    u"\n```python\n", u"```mermaid\n", u"``", u"$", u"$$", u"\n$$", u"\n$$\n", u"$x^2$", u"\n$$a+b$$\n", u"|", u"\n|",
    u"\n| a | b |", u"\n|---|:-:|", u"\n| 1 | 2 |", u"-", u"![", u"](", u")", u"![кот](https://a.b/c.png)", u"[", u"]",
    u"(", u"[1", u"[1](https://a.ru/x)", u"[[2]](http://www.b.org)", u"[3](http://", u"[[4]](https", u"![\n",
    u"<video>", u"<video a", u">", u"<source src=\"", u"<source\n src=\"http://v.mp4\"", u"\"", u"</video>",
    u"<video><source src=\"v.mp4\"/></video>", u"Файл готов к скачиванию:", u"[f](https://x.korvihub.ru/f)",
    u"](https://korvihub", u"korvihub", u"Генерирую видео", u"\nГенерирую видео...", u"\nСоздаю видео", u"...", u"😀",
    u"✅", u"⏳ Создаю", u"\u2028", u"\ufe0f"};

}

QString Chance::text(QStringView alphabet, qsizetype longest) {
    QString made;
    for (qsizetype length = below(longest + 1); length > 0; --length)
        made += alphabet[below(alphabet.size())];
    return made;
}

QString Chance::answer(qsizetype count) {
    QString made;
    for (qsizetype length = below(count + 1); length > 0; --length)
        made += pieces[std::size_t(below(qsizetype(pieces.size())))];
    return made;
}

}
