#pragma once

#include "Async.h"

#include <QByteArray>
#include <QString>

#include <stdexcept>

namespace Korvi {

// Nothing came of a PDF.
class PrintError : public std::runtime_error {
public:
    explicit PrintError(QString text)
        : std::runtime_error(text.toStdString())
        , description(std::move(text)) {}

    QString description; // localized, for a reader
};

// Makes a PDF of a document.
class PdfPrinter {
public:
    virtual ~PdfPrinter() = default;

    // The file's bytes. `kind` is that of an artifact, in lower case; any may come. Throws PrintError.
    virtual Async<QByteArray> print(QString kind, QString title, QString text) = 0;
};

}
