#pragma once

#include "FormulaDrawing.h"
#include "FormulaFonts.h"
#include "RenderProcess.h"

#include <QCache>
#include <QHash>
#include <QImage>
#include <QPointer>

class QQmlEngine;

namespace Korvi {

// A diagram as it is asked for.
struct DiagramRequest {
    QString code;
    bool isDark = false;
    int width = 0;   // pixels that there are for it
    qreal scale = 1; // of its own size, when there is room enough
    qreal ratio = 1; // device pixels in a pixel

    bool operator==(const DiagramRequest&) const = default;
};

// A diagram as it came: a picture, or the reason why there is none.
struct Diagram {
    QImage image; // with the ratio of its request
    QSizeF size;  // pixels
    QString error;
};

// Formulas and diagrams for all who show them, made in one other process and kept here: what comes into view again is
// there at once. Formulas that are asked for in one turn of the main loop are laid out together; what nobody waits for
// any more, a row that was scrolled past, is left out. The scenes of a QML engine find it by of().
class FormulaEngine : public QObject {
    Q_OBJECT

public:
    using Formula = std::shared_ptr<const FormulaDrawing>;
    using Picture = std::shared_ptr<const Diagram>;

    static constexpr qsizetype longestFormula = 20'000; // characters; a longer one is not tried
    static constexpr qsizetype longestDiagram = 50'000;
    static constexpr std::chrono::seconds pause{30}; // after a process that could not even start

    // Absolute paths of the renderer and its bundle.
    FormulaEngine(const QString& program, const QString& bundle, Scheduler& scheduler, QObject* parent = nullptr);
    ~FormulaEngine() override;

    // From now on this is the one of all scenes of that QML engine, which it outlives.
    void serve(QQmlEngine& scenes);
    // Null where nothing serves: formulas stay text there.
    static FormulaEngine* of(const QQmlEngine* scenes);

    // Null when it is not at hand. One that cannot be drawn has an error.
    Formula cachedFormula(const QString& tex, bool isBlock) const;
    Picture cachedDiagram(const DiagramRequest& request) const;

    // Calls back later, once, unless the context is gone by then. Null when the process did not get there; asking again
    // may help.
    void requestFormula(const QString& tex, bool isBlock, QObject* context, std::function<void(const Formula&)> done);
    void requestDiagram(const DiagramRequest& request, QObject* context, std::function<void(const Picture&)> done);

    FormulaFonts& fonts() { return m_fonts; }
    const RenderProcess& process() const { return m_process; }
    Scheduler& scheduler() { return m_scheduler; }

private:
    using FormulaKey = std::pair<QString, bool>;

    template <class Result>
    struct Waiter {
        QPointer<QObject> context;
        std::function<void(const Result&)> done;
    };
    template <class Key, class Result>
    struct Job {
        Key key;
        std::vector<Waiter<Result>> waiters;
        bool alone = false; // it may be the one that the process did not survive
    };
    using FormulaJob = Job<FormulaKey, Formula>;
    using DiagramJob = Job<DiagramRequest, Picture>;

    void schedule();
    void pump();
    void pumpFormulas();
    void pumpDiagrams();
    void formulasCame(const QJsonValue& answer);
    void diagramCame(const QJsonValue& answer);
    bool processIsUseless();
    void keep(const FormulaKey& key, const Formula& formula);
    static QString diagramKey(const DiagramRequest& request);

    Scheduler& m_scheduler;
    FormulaFonts m_fonts;
    RenderProcess m_process;
    std::deque<FormulaJob> m_formulaJobs;
    std::deque<DiagramJob> m_diagramJobs;
    std::vector<FormulaJob> m_formulasUnderWay;
    std::optional<DiagramJob> m_diagramUnderWay;
    bool m_isScheduled = false;
    Timer m_pause; // active: the process is not tried
    mutable QCache<FormulaKey, Formula> m_formulas;
    mutable QCache<QString, Picture> m_diagrams;
};

}
