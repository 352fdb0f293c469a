#include "OtherPrograms.h"

#include <QDesktopServices>
#include <QFile>

namespace Korvi::Test {

using namespace Qt::Literals;

OtherPrograms::OtherPrograms()
    : m_path(qgetenv("PATH")) {
    QDesktopServices::setUrlHandler(u"https"_s, this, "openPage");
    QFile program(m_folder.filePath(u"xdg-open"_s));
    program.open(QIODevice::WriteOnly);
    program.write("#!/bin/sh\nprintf '%s\\n' \"$1\" >>'" + m_folder.filePath(u"opened"_s).toUtf8() + "'\n");
    program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PATH", m_folder.path().toUtf8() + ':' + m_path);
}

OtherPrograms::~OtherPrograms() {
    qputenv("PATH", m_path);
    QDesktopServices::unsetUrlHandler(u"https"_s);
}

QStringList OtherPrograms::files() const {
    QFile opened(m_folder.filePath(u"opened"_s));
    if (!opened.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(opened.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

}
