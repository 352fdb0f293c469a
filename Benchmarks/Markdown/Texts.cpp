#include "Texts.h"

namespace Korvi {

namespace {

constexpr const char* sections[] = {
    "## Сортировка слиянием\n\nМассив делится **пополам**, каждая половина сортируется *отдельно*, затем они "
    "сливаются функцией `merge`. Это занимает время порядка n log n, какими бы ни были данные "
    "[1](https://example.org/a)"
    ".\n\n",
    "- делим массив на две части\n- сортируем **каждую** из них\n- сливаем в один\n\n1. первый шаг\n2. второй шаг "
    "подлиннее, со словами\n3. третий\n\n",
    "```python\ndef merge(a, b):\n    result = []\n    while a and b:\n        result.append(a.pop(0) if a[0] < b[0] "
    "else b.pop(0))\n    return result + a + b\n```\n\n",
    "| Алгоритм | Время | Память |\n|:---|:---:|---:|\n| слияние | n log n | n |\n| быстрая | n log n | log n |\n| "
    "пузырёк | n² | 1 |\n\n",
    "Сложность равна $O(n \\log n)$, потому что глубина рекурсии $\\log n$.\n\n$$\nT(n) = 2 T(n/2) + n\n$$\n\n",
    "Обычный абзац без всяких знаков: слова идут одно за другим, запятые и точки стоят на своих местах, и так до "
    "самого конца, пока не кончится мысль.\nВторая строка того же абзаца 😀 с картинкой в тексте.\n\n",
};

}

QString mixedAnswer(qsizetype length) {
    QString text;
    while (text.size() < length) {
        for (const char* section : sections)
            text += QString::fromUtf8(section);
    }
    text.truncate(length);
    return text;
}

std::vector<HostileText> hostileTexts() {
    return {{"stars", "", "*"}, {"star pairs", "", "**a"}, {"backticks", "", "`"}, {"code marks", "", "`a"},
        {"brackets", "", "["}, {"image starts", "", "!["}, {"images", "", "![]("}, {"pipes", "", "|"},
        {"cells", "", "|a"}, {"table rows", "|a|b|\n|-|-|\n", "|1|2|\n"}, {"video tags", "", "<video"},
        {"videos, open", "", "<video><source src=\"a\">"}, {"fences", "", "```\n"},
        {"open fence", "```c\n", "int x;\n"}, {"formula in a fence", "```c\n", "a\n$$x$$\n"},
        {"open formula", "$$\n", "x = 1\n"}, {"open diagram", "```mermaid\n", "A --> B\n"}, {"formulas", "", "$x"},
        {"inline formulas", "", "$x$ и "}, {"hashes", "", "#"}, {"headings", "", "# a\n"},
        {"open citation", "[1](http://", "слово "}, {"citations", "", "[1](http://a)"}, {"spaces", "", " \n"},
        {"new lines", "a", "\n"}, {"status", "Генерирую видео", "...a"}, {"a paragraph", "", "слово и "},
        {"a paragraph, marked", "", "**слово** и "}, {"lines of a paragraph", "", "слово и\nещё "},
        {"underscores", "", "_"}, {"dollars", "", "$"}, {"dollar pairs", "", "$$"}, {"angles", "", "<"},
        {"ampersands", "", "&"}, {"quotes, nested", "", "> "}, {"lists, nested", "", "- "}, {"a word", "", "слово"},
        {"formulas in lines", "", "$$x$$\n"}, {"nested fractions", "$$\n", "\\frac{1}{"},
        {"inline fractions", "", "$\\frac{1}{2}$"}, {"lines of images", "", "![вид](https://a.b/1.png)\n"},
        {"bold, open", "**", "слово "}, {"code, open", "`", "слово "}, {"formula, open", "$", "слово "},
        {"lists", "", "- пункт **один**\n"}, {"indented lists", "", "   - a\n"},
        {"fences in a formula", "$$\n", "```\n"}, {"wide table", "|a|\n|-|\n|", "a|"},
        {"a row", "|a|b|\n|-|-|\n", "|1"}, {"emojis", "", "😀"}, {"code of a line", "```c\n", "int x; "},
        {"diagrams", "", "```mermaid\nA\n```\n"}};
}

}
