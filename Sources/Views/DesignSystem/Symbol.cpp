#include "Symbol.h"

#include <QFile>
#include <QLoggingCategory>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>

namespace Korvi {

namespace {

struct Entry {
    QLatin1StringView symbol;
    QLatin1StringView file;
};

constexpr Entry symbols[] = {
    {QLatin1StringView("arrow.clockwise"), QLatin1StringView("rotate-cw")},
    {QLatin1StringView("arrow.down"), QLatin1StringView("arrow-down")},
    {QLatin1StringView("arrow.down.doc"), QLatin1StringView("file-down")},
    {QLatin1StringView("arrow.down.to.line"), QLatin1StringView("download")},
    {QLatin1StringView("arrow.triangle.branch"), QLatin1StringView("git-branch")},
    {QLatin1StringView("arrow.up"), QLatin1StringView("arrow-up")},
    {QLatin1StringView("arrow.up.left.and.arrow.down.right"), QLatin1StringView("maximize")},
    {QLatin1StringView("arrow.up.right.square"), QLatin1StringView("external-link")},
    {QLatin1StringView("bolt.fill"), QLatin1StringView("zap")},
    {QLatin1StringView("brain"), QLatin1StringView("brain")},
    {QLatin1StringView("checklist"), QLatin1StringView("list-checks")},
    {QLatin1StringView("checkmark"), QLatin1StringView("check")},
    {QLatin1StringView("checkmark.circle"), QLatin1StringView("circle-check")},
    {QLatin1StringView("checkmark.circle.fill"), QLatin1StringView("circle-check")},
    {QLatin1StringView("chevron.down"), QLatin1StringView("chevron-down")},
    {QLatin1StringView("chevron.left"), QLatin1StringView("chevron-left")},
    {QLatin1StringView("chevron.left.forwardslash.chevron.right"), QLatin1StringView("code")},
    {QLatin1StringView("chevron.right"), QLatin1StringView("chevron-right")},
    {QLatin1StringView("cpu"), QLatin1StringView("cpu")},
    {QLatin1StringView("cpu.fill"), QLatin1StringView("cpu")},
    {QLatin1StringView("cursorarrow"), QLatin1StringView("mouse-pointer-click")},
    {QLatin1StringView("doc"), QLatin1StringView("file")},
    {QLatin1StringView("doc.on.doc"), QLatin1StringView("copy")},
    {QLatin1StringView("doc.richtext"), QLatin1StringView("file-code")},
    {QLatin1StringView("doc.text"), QLatin1StringView("file-text")},
    {QLatin1StringView("doc.text.magnifyingglass"), QLatin1StringView("telescope")},
    {QLatin1StringView("ellipsis"), QLatin1StringView("ellipsis")},
    {QLatin1StringView("exclamationmark.triangle"), QLatin1StringView("triangle-alert")},
    {QLatin1StringView("eye"), QLatin1StringView("eye")},
    {QLatin1StringView("folder"), QLatin1StringView("folder")},
    {QLatin1StringView("folder.badge.plus"), QLatin1StringView("folder-plus")},
    {QLatin1StringView("gear"), QLatin1StringView("settings")},
    {QLatin1StringView("globe"), QLatin1StringView("globe")},
    {QLatin1StringView("graduationcap"), QLatin1StringView("graduation-cap")},
    {QLatin1StringView("hand.raised"), QLatin1StringView("hand")},
    {QLatin1StringView("info.circle"), QLatin1StringView("info")},
    {QLatin1StringView("internaldrive"), QLatin1StringView("hard-drive")},
    {QLatin1StringView("keyboard"), QLatin1StringView("keyboard")},
    {QLatin1StringView("lightbulb"), QLatin1StringView("lightbulb")},
    {QLatin1StringView("magnifyingglass"), QLatin1StringView("search")},
    {QLatin1StringView("mic"), QLatin1StringView("mic")},
    {QLatin1StringView("music.note"), QLatin1StringView("music")},
    {QLatin1StringView("paintbrush"), QLatin1StringView("paintbrush")},
    {QLatin1StringView("paperclip"), QLatin1StringView("paperclip")},
    {QLatin1StringView("pause"), QLatin1StringView("pause")},
    {QLatin1StringView("pencil"), QLatin1StringView("pencil")},
    {QLatin1StringView("person.crop.circle"), QLatin1StringView("circle-user-round")},
    {QLatin1StringView("photo"), QLatin1StringView("image")},
    {QLatin1StringView("photo.badge.exclamationmark"), QLatin1StringView("image-off")},
    {QLatin1StringView("pin"), QLatin1StringView("pin")},
    {QLatin1StringView("pin.slash"), QLatin1StringView("pin-off")},
    {QLatin1StringView("play"), QLatin1StringView("play")},
    {QLatin1StringView("plus"), QLatin1StringView("plus")},
    {QLatin1StringView("plus.message"), QLatin1StringView("message-circle-plus")},
    {QLatin1StringView("rectangle.portrait.and.arrow.right"), QLatin1StringView("log-out")},
    {QLatin1StringView("sidebar"), QLatin1StringView("panel-left")},
    {QLatin1StringView("sidebar.right"), QLatin1StringView("panel-right")},
    {QLatin1StringView("slider"), QLatin1StringView("sliders-horizontal")},
    {QLatin1StringView("sparkles"), QLatin1StringView("sparkles")},
    {QLatin1StringView("star.fill"), QLatin1StringView("star")},
    {QLatin1StringView("stop"), QLatin1StringView("square")},
    {QLatin1StringView("terminal"), QLatin1StringView("terminal")},
    {QLatin1StringView("text.append"), QLatin1StringView("wrap-text")},
    {QLatin1StringView("text.bubble"), QLatin1StringView("message-square-text")},
    {QLatin1StringView("trash"), QLatin1StringView("trash-2")},
    {QLatin1StringView("video"), QLatin1StringView("video")},
    {QLatin1StringView("wand.and.stars"), QLatin1StringView("wand-sparkles")},
    {QLatin1StringView("waveform"), QLatin1StringView("audio-lines")},
    {QLatin1StringView("wifi.slash"), QLatin1StringView("wifi-off")},
    {QLatin1StringView("xmark"), QLatin1StringView("x")},
    {QLatin1StringView("xmark.circle"), QLatin1StringView("circle-x")},
};

QByteArray load(const QString& name) {
    const auto* entry = std::ranges::find(symbols, name, &Entry::symbol);
    if (entry == std::end(symbols)) {
        qWarning("⚠️ [Symbol] Unknown symbol '%s'", qUtf8Printable(name));
        return {};
    }
    QFile file(QStringLiteral(":/korvi/symbols/") + entry->file + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning("⚠️ [Symbol] No drawing for '%s'", qUtf8Printable(name));
        return {};
    }
    return file.readAll().replace(
        "stroke-width=\"2\"", "stroke-width=\"" + QByteArray::number(Symbol::strokeWidth) + '"');
}

}

Symbol::Symbol(QQuickItem* parent)
    : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    setImplicitSize(m_size, m_size);
}

void Symbol::setName(const QString& name) {
    if (name == m_name)
        return;
    m_name = name;
    m_svg = name.isEmpty() ? QByteArray() : load(name);
    emit nameChanged();
    update();
}

void Symbol::setSize(qreal size) {
    if (size == m_size)
        return;
    m_size = size;
    setImplicitSize(size, size);
    emit sizeChanged();
}

void Symbol::setColor(const QColor& color) {
    if (color == m_color)
        return;
    m_color = color;
    emit colorChanged();
    update();
}

void Symbol::paint(QPainter* painter) {
    if (m_svg.isEmpty())
        return;
    QSvgRenderer renderer(QByteArray(m_svg).replace("currentColor", m_color.name(QColor::HexRgb).toLatin1()));
    painter->setOpacity(m_color.alphaF());
    renderer.render(painter, boundingRect());
}

}
