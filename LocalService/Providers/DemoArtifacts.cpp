#include "Providers/DemoArtifacts.h"

namespace korvi::service {

namespace {

constexpr std::string_view page = R"(<!doctype html>
<html lang="ru">
<head>
<meta charset="utf-8">
<title>Счётчик</title>
<style>
  body { font: 16px/1.5 sans-serif; display: grid; place-items: center; min-height: 90vh; margin: 0; }
  main { text-align: center; }
  output { display: block; font-size: 64px; font-variant-numeric: tabular-nums; }
  button { font: inherit; padding: 8px 20px; border-radius: 8px; border: 1px solid #bbb; background: #f4f4f2; }
</style>
</head>
<body>
<main>
  <h1>Счётчик</h1>
  <output id="value">0</output>
  <p>
    <button data-step="-1">Меньше</button>
    <button data-step="1">Больше</button>
  </p>
</main>
<script>
  const value = document.getElementById("value");
  for (const button of document.querySelectorAll("button")) {
    button.addEventListener("click", () => {
      value.textContent = Number(value.textContent) + Number(button.dataset.step);
    });
  }
</script>
</body>
</html>
)";

constexpr std::string_view drawing = R"svg(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 320 200" role="img">
  <title>Дом у реки</title>
  <defs>
    <linearGradient id="sky" x2="0" y2="1">
      <stop stop-color="#9ad0f5"/>
      <stop offset="1" stop-color="#eef8ff"/>
    </linearGradient>
  </defs>
  <rect width="320" height="200" fill="url(#sky)"/>
  <circle cx="262" cy="44" r="20" fill="#ffd166"/>
  <path d="M0 130 Q80 90 160 124 T320 112 V200 H0 Z" fill="#7fb685"/>
  <path d="M0 168 Q90 150 180 172 T320 162 V200 H0 Z" fill="#5aa9e6"/>
  <g transform="translate(96 84)">
    <rect y="28" width="64" height="46" fill="#f4efe6"/>
    <path d="M-8 30 L32 0 L72 30 Z" fill="#b5533c"/>
    <rect x="26" y="48" width="14" height="26" fill="#7a4b32"/>
    <rect x="6" y="38" width="14" height="12" fill="#8ecae6"/>
    <rect x="46" y="38" width="14" height="12" fill="#8ecae6"/>
  </g>
</svg>
)svg";

constexpr std::string_view program = R"(from dataclasses import dataclass, field
from heapq import heappop, heappush


@dataclass
class Graph:
    """Взвешенный граф: вершина — список пар (сосед, расстояние)."""

    edges: dict[str, list[tuple[str, float]]] = field(default_factory=dict)

    def connect(self, a: str, b: str, distance: float) -> None:
        self.edges.setdefault(a, []).append((b, distance))
        self.edges.setdefault(b, []).append((a, distance))

    def shortest(self, start: str, goal: str) -> tuple[float, list[str]]:
        queue = [(0.0, start, [start])]
        visited = set()
        while queue:
            distance, city, path = heappop(queue)
            if city == goal:
                return distance, path
            if city in visited:
                continue
            visited.add(city)
            for neighbour, step in self.edges.get(city, []):
                if neighbour not in visited:
                    heappush(queue, (distance + step, neighbour, path + [neighbour]))
        raise ValueError(f"Из «{start}» нельзя попасть в «{goal}»")


roads = Graph()
roads.connect("Москва", "Тверь", 180)
roads.connect("Тверь", "Новгород", 380)
roads.connect("Новгород", "Петербург", 190)
roads.connect("Москва", "Ярославль", 270)
roads.connect("Ярославль", "Петербург", 780)

distance, path = roads.shortest("Москва", "Петербург")
print(f"{distance:.0f} км: {' — '.join(path)}")
)";

constexpr std::string_view notes = R"(# План поездки на выходные

Этот документ можно **менять**: попросите новую версию, и прежняя сохранится.

## Суббота

1. Поезд в 8:15, два часа в пути.
2. Прогулка по кремлю и *смотровая площадка*.
3. Обед: рыбный суп и пирог с брусникой.

## Воскресенье

- [x] Купить билеты
- [ ] Забронировать лодку
- [ ] Проверить погоду

| Статья | Сумма |
|---|---:|
| Дорога | 2 400 ₽ |
| Ночлег | 3 900 ₽ |
| Еда | 2 700 ₽ |

> Возьмите плащ: у воды ветрено.
)";

constexpr std::string_view diagram = R"(flowchart TD
    question[Вопрос пользователя] --> known{Ответ известен?}
    known -->|да| text[Текст ответа]
    known -->|нет| search[Поиск в сети]
    search --> found{Нашлось?}
    found -->|да| cite[Ответ с источниками]
    found -->|нет| honest[Честное «не знаю»]
    text --> done((Готово))
    cite --> done
    honest --> done
)";

constexpr std::string_view paper = R"(\documentclass[12pt,a4paper]{article}
\usepackage{amsmath}
\title{Сумма обратных квадратов}
\author{Демонстрация Korvi}
\date{}
\begin{document}
\maketitle

\section{Постановка}
В XVII веке спросили, чему равна сумма
\[
  S = 1 + \frac{1}{4} + \frac{1}{9} + \dots = \sum_{n=1}^{\infty} \frac{1}{n^2}.
\]

\section{Ответ}
Эйлер разложил синус в бесконечное произведение:
\begin{equation}
  \frac{\sin x}{x} = \prod_{n=1}^{\infty} \left( 1 - \frac{x^2}{\pi^2 n^2} \right).
\end{equation}
Сравнив коэффициенты при $x^2$, получаем $S = \dfrac{\pi^2}{6} \approx 1{,}645$.

\end{document}
)";

}

const std::array<DemoArtifact, 6> demoArtifacts{
    DemoArtifact{"html страниц", "demo-counter", "html", "Счётчик", page},
    DemoArtifact{"svg рисун", "demo-house", "svg", "Дом у реки", drawing},
    DemoArtifact{"python питон программ", "demo-roads", "python", "Кратчайший путь", program},
    DemoArtifact{"markdown маркдаун план", "demo-trip", "markdown", "План поездки", notes},
    DemoArtifact{"mermaid диаграмм схем", "demo-answer", "mermaid", "Как рождается ответ", diagram},
    DemoArtifact{"latex латех стать", "demo-squares", "latex", "Сумма обратных квадратов", paper},
};

}
