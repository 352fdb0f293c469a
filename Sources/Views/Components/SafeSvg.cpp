#include "SafeSvg.h"

#include <QHash>
#include <QLoggingCategory>
#include <QPainter>
#include <QRegularExpression>
#include <QSet>
#include <QSvgRenderer>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Korvi::SafeSvg {

using namespace Qt::Literals;

namespace {

const QString xlink = u"http://www.w3.org/1999/xlink"_s;
constexpr qsizetype mostBytes = 512 * 1024;
constexpr int mostElements = 5000;
constexpr int deepest = 32;
constexpr qsizetype mostStyle = 8 * 1024; // characters
constexpr int mostCost = 200'000;
constexpr double mostWork = 6e9;  // cost times pixels: some seconds at the worst
constexpr double enlargement = 2; // sharp on a dense screen

// What each costs at the most, measured in nanoseconds for a pixel of the picture.
constexpr int costOfElement = 8;
constexpr int costOfLetter = 8;
constexpr qsizetype charactersOfOne = 2; // of a path: its shortest line

const QSet<QStringView> elements{u"svg", u"g", u"a", u"defs", u"use", u"path", u"rect", u"circle", u"ellipse", u"line",
    u"polyline", u"polygon", u"text", u"tspan", u"linearGradient", u"radialGradient", u"stop", u"style"};
const QSet<QStringView> geometry{u"d", u"points", u"x", u"y", u"x1", u"x2", u"y1", u"y2", u"dx", u"dy", u"cx", u"cy",
    u"r", u"rx", u"ry", u"fx", u"fy", u"width", u"height", u"viewBox", u"transform", u"gradientTransform", u"offset"};
// No dashes: a long line may have millions of them.
const QSet<QStringView> properties{u"fill", u"fill-opacity", u"fill-rule", u"stroke", u"stroke-opacity",
    u"stroke-width", u"stroke-linecap", u"stroke-linejoin", u"stroke-miterlimit", u"opacity", u"color", u"stop-color",
    u"stop-opacity", u"font-family", u"font-size", u"font-weight", u"font-style", u"text-anchor", u"display",
    u"visibility"};
const QSet<QStringView> names{u"id", u"class", u"gradientUnits", u"spreadMethod", u"preserveAspectRatio"};

// An element, or text where it has no name.
struct Node {
    QString name;
    std::vector<std::pair<QString, QString>> attributes;
    QString text;
    std::vector<Node> children;

    QString attribute(QStringView wanted) const {
        for (const auto& [key, value] : attributes) {
            if (key == wanted)
                return value;
        }
        return {};
    }
    bool isGradient() const { return name.endsWith(u"Gradient"_s); }
};

bool namesNothingOutside(QString value) {
    static const QRegularExpression inside(uR"(url\(\s*['"]?#[\w.:-]+['"]?\s*\))"_s);
    value.remove(inside);
    return !value.contains(u"url("_s, Qt::CaseInsensitive) && !value.contains(u'\\') && !value.contains(u'@') &&
        !value.contains(u'!') && !value.contains(u"/*"_s);
}

// Numbers that neither a size nor a loop runs away with.
bool isBounded(const QString& value, int digits) {
    static const QRegularExpression number(uR"((?<![\d.])(\d+)|[eE]\+?\d)"_s);
    for (auto match = number.globalMatch(value); match.hasNext();) {
        const auto found = match.next();
        if (found.capturedLength(1) == 0 || found.capturedLength(1) > digits)
            return false;
    }
    return true;
}

bool isHarmless(QStringView name, const QString& value) {
    if (geometry.contains(name))
        return isBounded(value, 6);
    if (!properties.contains(name))
        return false;
    const bool isMeasure = name == u"font-size" || name == u"stroke-width" || name == u"stroke-miterlimit";
    return namesNothingOutside(value) && (!isMeasure || isBounded(value, 3));
}

QString harmlessDeclarations(const QString& style) {
    QStringList kept;
    for (const QString& declaration : style.split(u';')) {
        const qsizetype colon = declaration.indexOf(u':');
        const QString name = declaration.left(colon).trimmed();
        if (colon > 0 && properties.contains(name) && isHarmless(name, declaration.mid(colon + 1)))
            kept.append(name + u':' + declaration.mid(colon + 1).trimmed());
    }
    return kept.join(u';');
}

QString harmlessStyle(const QString& css) {
    static const QRegularExpression selector(uR"(^[\w.#,\s-]+$)"_s);
    QString kept;
    for (const QString& rule : css.split(u'}')) {
        const qsizetype brace = rule.indexOf(u'{');
        if (brace > 0 && selector.match(rule.left(brace)).hasMatch())
            kept += rule.left(brace).trimmed() + u'{' + harmlessDeclarations(rule.mid(brace + 1)) + u'}';
    }
    return kept;
}

class Reader {
public:
    explicit Reader(const QByteArray& bytes)
        : m_reader(bytes) {}

    std::optional<Node> read() {
        while (!m_reader.atEnd()) {
            switch (m_reader.readNext()) {
            case QXmlStreamReader::DTD:
                if (m_reader.text().contains(u'['))
                    return std::nullopt; // entities and attributes of its own
                break;
            case QXmlStreamReader::StartElement: {
                if (m_reader.name() != u"svg")
                    return std::nullopt;
                Node root = element(1);
                return m_reader.hasError() || m_isTooMuch ? std::nullopt : std::optional(std::move(root));
            }
            default: break;
            }
        }
        return std::nullopt;
    }

private:
    Node element(int depth) {
        Node node;
        node.name = m_reader.name().toString();
        for (const QXmlStreamAttribute& attribute : m_reader.attributes())
            take(node, attribute.name(), attribute.value().toString());
        const bool holdsText = node.name == u"text" || node.name == u"tspan" || node.name == u"style";
        while (!m_isTooMuch && !m_reader.atEnd()) {
            const auto token = m_reader.readNext();
            if (token == QXmlStreamReader::EndElement)
                break;
            if (token == QXmlStreamReader::Characters && holdsText) {
                node.children.emplace_back();
                node.children.back().text = m_reader.text().toString();
            } else if (token == QXmlStreamReader::StartElement) {
                m_isTooMuch = ++m_count > mostElements;
                if (!elements.contains(m_reader.name()) || m_reader.name() == u"svg" || depth >= deepest)
                    m_reader.skipCurrentElement();
                else
                    node.children.push_back(element(depth + 1));
            }
        }
        if (node.name == u"style")
            settleStyle(node);
        else if (node.name == u"a")
            node.name = u"g"_s;
        return node;
    }

    void take(Node& node, QStringView name, const QString& value) {
        if (name == u"id" && (value.isEmpty() || m_ids.contains(value)))
            return; // it would not be clear which of them is meant
        if (name == u"id")
            m_ids.insert(value);
        if (name == u"style")
            node.attributes.emplace_back(name.toString(), harmlessDeclarations(value));
        else if (name == u"href" ? value.startsWith(u'#') && (node.name == u"use" || node.isGradient())
                                 : names.contains(name) || isHarmless(name, value))
            node.attributes.emplace_back(name.toString(), value);
    }

    void settleStyle(Node& node) {
        QString css;
        for (const Node& child : node.children)
            css += child.text;
        node.children.clear();
        node.attributes.clear();
        m_style += css.size();
        if (m_style <= mostStyle) {
            node.children.emplace_back();
            node.children.back().text = harmlessStyle(css);
        }
    }

    QXmlStreamReader m_reader;
    QSet<QString> m_ids;
    int m_count = 0;
    qsizetype m_style = 0;
    bool m_isTooMuch = false;
};

class Writer {
public:
    explicit Writer(const Node& root) {
        collect(root);
        m_writer.writeStartDocument();
        m_writer.writeDefaultNamespace(u"http://www.w3.org/2000/svg"_s);
        m_writer.writeNamespace(xlink, u"xlink"_s);
        m_drawing.cost = write(root);
        m_writer.writeEndDocument();
    }
    Drawing drawing() && { return std::move(m_drawing); }

private:
    void collect(const Node& node) {
        if (const QString id = node.attribute(u"id"); !id.isEmpty())
            m_byId.insert(id, &node);
        for (const Node& child : node.children)
            collect(child);
    }

    const Node* target(const Node& node) const { return m_byId.value(node.attribute(u"href").mid(1)); }

    static bool repeats(const Node& node) { return node.name == u"use" || std::ranges::any_of(node.children, repeats); }

    int ownCost(const Node& node) const {
        const qsizetype length = node.attribute(u"d").size() + node.attribute(u"points").size();
        return static_cast<int>(costOfElement + length / charactersOfOne + node.text.trimmed().size() * costOfLetter);
    }
    int cost(const Node& node) const {
        int sum = ownCost(node);
        for (const Node& child : node.children)
            sum += cost(child);
        return sum;
    }

    // What it costs.
    int write(const Node& node) {
        int sum = ownCost(node);
        if (node.name.isEmpty()) {
            m_writer.writeCharacters(node.text);
            return sum;
        }
        const Node* meant = target(node);
        if (node.name == u"use") {
            if (meant && !m_costs.contains(meant))
                m_costs.insert(meant, repeats(*meant) ? -1 : cost(*meant));
            const int repeated = m_costs.value(meant, -1);
            if (repeated < 0) // no repetition of repetitions: they multiply, or never end
                return 0;
            sum += repeated;
        }
        m_writer.writeStartElement(node.name);
        for (const auto& [name, value] : node.attributes) {
            if (name == u"style" && (node.name == u"text" || node.name == u"tspan"))
                continue;
            if (name != u"href")
                m_writer.writeAttribute(name, value);
            else if (node.name == u"use" || (meant && meant->isGradient() && meant->attribute(u"href").isEmpty()))
                m_writer.writeAttribute(xlink, name, value);
        }
        if (node.name == u"text" || node.name == u"tspan")
            m_writer.writeAttribute(
                u"style"_s, node.attribute(u"style") + u";stroke:none"_s); // outlines cost ten times as much
        for (const Node& child : node.children) {
            const int ofChild = write(child);
            if (node.name != u"style")
                sum = std::min(sum + ofChild, mostCost + 1);
        }
        m_writer.writeEndElement();
        return sum;
    }

    Drawing m_drawing;
    QXmlStreamWriter m_writer{&m_drawing.svg};
    QHash<QString, const Node*> m_byId;
    QHash<const Node*, int> m_costs; // of what is repeated; -1 where that may not be
};

// Qt tells the log of all that it does not understand in a drawing, as often as it stands there.
void beSilent() {
    static QLoggingCategory::CategoryFilter before = nullptr;
    static const bool isSilent = [] {
        before = QLoggingCategory::installFilter([](QLoggingCategory* category) {
            if (before) // not yet while it is installed
                before(category);
            if (qstrcmp(category->categoryName(), "qt.svg") == 0)
                category->setEnabled(QtWarningMsg, false);
        });
        return true;
    }();
    Q_UNUSED(isSilent)
}

}

std::optional<Drawing> sanitized(const QByteArray& bytes) {
    if (bytes.size() > mostBytes)
        return std::nullopt;
    const std::optional<Node> root = Reader(bytes).read();
    if (!root)
        return std::nullopt;
    Drawing drawing = Writer(*root).drawing();
    return drawing.cost <= mostCost ? std::optional(std::move(drawing)) : std::nullopt;
}

QImage rendered(const QByteArray& bytes, const QSize& bounds, QSize& natural) {
    beSilent();
    const std::optional<Drawing> drawing = sanitized(bytes);
    QSvgRenderer renderer;
    if (!drawing || !renderer.load(drawing->svg))
        return {};
    natural = renderer.defaultSize();
    if (natural.isEmpty())
        return {};
    QSizeF size = QSizeF(natural) * enlargement;
    if (size.width() > bounds.width() || size.height() > bounds.height())
        size.scale(bounds, Qt::KeepAspectRatio);
    const double work = size.width() * size.height() * drawing->cost;
    if (work > mostWork)
        size *= std::sqrt(mostWork / work);
    QImage image(size.toSize().expandedTo({1, 1}), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(QPointF(), QSizeF(image.size())));
    return image;
}

}
