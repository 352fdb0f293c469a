#pragma once

#include <QTranslator>

namespace Korvi {

// In Russian what Qt itself says: in its file dialog, which is shown where the desktop has none, and on standard buttons.
class QtTexts : public QTranslator {
    Q_OBJECT

public:
    explicit QtTexts(QObject* parent = nullptr);

    QString translate(const char* context, const char* source, const char* disambiguation, int n) const override;
    bool isEmpty() const override { return false; }
};

}
