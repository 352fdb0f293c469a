#pragma once

#include <QStringList>

namespace Korvi::Test {

// Of every kind that looks different.
inline QStringList sampleFormulas() {
    return {
        QStringLiteral(R"(x = \frac{-b \pm \sqrt{b^2 - 4ac}}{2a} \qquad \sqrt[3]{\frac{1}{1+\sqrt{x}}})"),
        QStringLiteral(
            R"(\begin{pmatrix} a & b \\ c & d \end{pmatrix} \begin{bmatrix} 1 & 0 & 0 \\ 0 & 1 & 0 \\ 0 & 0 & 1 \end{bmatrix} \begin{vmatrix} x_1 & x_2 \\ y_1 & y_2 \end{vmatrix})"),
        QStringLiteral(
            R"(\sum_{n=1}^{\infty} \frac{1}{n^2} = \frac{\pi^2}{6} \qquad \int_0^\infty e^{-x^2}\,dx \qquad \prod_{p} \oint_{\partial D})"),
        QStringLiteral(
            R"(\overbrace{a + b + \dots + z}^{26} \quad \underbrace{1 + 2 + \dots + n}_{\frac{n(n+1)}{2}} \quad \overline{AB} \quad \underline{xyz})"),
        QStringLiteral(
            R"(\hat{x}\;\bar{y}\;\vec{v}\;\dot{q}\;\ddot{q}\;\tilde{n}\;\widehat{ABC}\;\widetilde{xyz}\;\overrightarrow{AB}\;\acute{e})"),
        QStringLiteral(
            R"(\textcolor{red}{a^2} + \textcolor{#1a6dc8}{b^2} = \colorbox{yellow}{$c^2$} \quad \boxed{E = mc^2} \quad \cancel{xy})"),
        QStringLiteral(
            R"(v = \frac{\text{путь}}{\text{время}}, \quad \text{где } v \text{ — скорость, } \textbf{жирно})"),
        QStringLiteral(R"(\begin{aligned} (a+b)^2 &= (a+b)(a+b) \\ &= a^2 + 2ab + b^2 \end{aligned})"),
        QStringLiteral(R"(|x| = \begin{cases} x, & x \ge 0 \\ -x, & x < 0 \end{cases})"),
        QStringLiteral(
            R"(\left( \frac{\partial^2 f}{\partial x^2} \right)_{\!y} \left\{ \sum_{i} \left[ \frac{a}{\frac{b}{c}} \right] \right\} \Bigl\langle \psi \Bigm| \phi \Bigr\rangle)"),
        QStringLiteral(
            R"(\mathbb{R} \subset \mathbb{C},\ \mathcal{L}\{f\},\ \mathfrak{g},\ \mathscr{H},\ \mathsf{S},\ \mathtt{code},\ \mathbf{v},\ \boldsymbol{\alpha})"),
        QStringLiteral(
            R"(\begin{array}{c|c} x & f(x) \\ \hline 1 & 2 \\ \hdashline 3 & 4 \end{array} \quad A \xrightarrow{\text{f}} B \xleftarrow[g]{} C)"),
        QStringLiteral(
            R"(\frac{1}{2} + \undefinedcommand + \alpha \beta \gamma \Gamma \Omega \nabla \forall \exists \in \notin \emptyset \ne)"),
        QStringLiteral(R"(e^{i\pi} + 1 = 0 \tag{1})"),
        QStringLiteral(
            R"(a_1 x_1 + a_2 x_2 + a_3 x_3 + a_4 x_4 + a_5 x_5 + a_6 x_6 + a_7 x_7 + a_8 x_8 + a_9 x_9 + a_{10} x_{10} + a_{11} x_{11} + a_{12} x_{12} + a_{13} x_{13} = b)"),
    };
}

inline QStringList sampleDiagrams() {
    return {
        QStringLiteral(
            "flowchart LR\n  A[Запрос] --> B{Есть в кэше?}\n  B -->|да| C[Ответ]\n  B -->|нет| D[(База)]\n  D --> C\n"
            "  subgraph Сервис\n    B\n    D\n  end"),
        QStringLiteral("sequenceDiagram\n  participant К as Клиент\n  participant С as Сервис\n  К->>С: Вопрос\n"
                       "  activate С\n  С-->>К: Ответ\n  deactivate С\n  Note over К,С: Всё хорошо"),
        QStringLiteral(
            "classDiagram\n  class Фигура {\n    +float площадь()\n  }\n  Фигура <|-- Круг\n  Фигура <|-- Квадрат\n"
            "  class Круг {\n    -float радиус\n  }"),
        QStringLiteral(
            "stateDiagram-v2\n  [*] --> Ожидание\n  Ожидание --> Работа: вопрос\n  Работа --> Ожидание: ответ\n"
            "  Работа --> [*]: ошибка"),
        QStringLiteral("gantt\n  title План\n  dateFormat YYYY-MM-DD\n  section Работа\n  Проект :a1, 2026-01-01, 10d\n"
                       "  Сборка :after a1, 20d\n  section Проверка\n  Тесты :2026-01-20, 12d"),
        QStringLiteral("pie title Языки\n  \"C++\" : 60\n  \"QML\" : 30\n  \"Прочее\" : 10"),
        QStringLiteral("mindmap\n  root((Проект))\n    Клиент\n      Экраны\n      Сеть\n    Сервис\n      База"),
        QStringLiteral("это не диаграмма\n  а просто текст"),
    };
}

}
