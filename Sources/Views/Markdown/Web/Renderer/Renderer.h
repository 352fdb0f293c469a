#pragma once

#include "BundleHandler.h"
#include "RenderPage.h"
#include "RequestGate.h"

#include <QJsonArray>
#include <QWebEngineProfile>

#include <memory>

namespace Korvi {

// Draws formulas and diagrams with at most two pages: one for all formulas, one for all diagrams of a colour scheme.
// Needs a QGuiApplication, and BundleHandler::registerScheme() before that.
class Renderer : public QObject {
    Q_OBJECT

public:
    explicit Renderer(const QString& bundle, QObject* parent = nullptr);
    ~Renderer() override;

    // {"formulas": [{"tex", "block"}]}: a drawing or an {"error"} for each.
    // {"code", "dark", "width", "scale", "ratio"}: {"width", "height", "png"} or {"error"}.
    // The answer is JSON; empty when the page is broken.
    void run(const QJsonObject& request, RenderPage::Answer answer);

    QWebEngineProfile& profile() { return m_profile; }
    BundleHandler& bundle() { return m_bundle; }

private:
    RenderPage& pageOfFormulas();
    RenderPage& pageOfDiagrams(bool isDark);

    QWebEngineProfile m_profile; // keeps nothing on disk
    BundleHandler m_bundle;
    RequestGate m_gate;
    std::unique_ptr<RenderPage> m_formulas;
    std::unique_ptr<RenderPage> m_diagrams;
    bool m_isDark = false; // the scheme of m_diagrams
};

}
