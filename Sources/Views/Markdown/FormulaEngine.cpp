#include "FormulaEngine.h"

#include <QJsonArray>
#include <QLoggingCategory>
#include <QQmlEngine>

namespace Korvi {

using namespace Qt::Literals;

namespace {

Q_LOGGING_CATEGORY(formulaLog, "korvi.formulas")

constexpr char servedBy[] = "korviFormulaEngine";
constexpr std::size_t batch = 24; // formulas; the first ones are shown while the next are laid out
constexpr qsizetype formulaBytes = 16 << 20;
constexpr qsizetype diagramBytes = 96 << 20;

template <class Job>
bool isWanted(const Job& job) {
    return std::ranges::any_of(job.waiters, [](const auto& waiter) { return !waiter.context.isNull(); });
}

template <class Job, class Result>
void tell(Job& job, const Result& result) {
    for (auto& waiter : job.waiters) {
        if (waiter.context)
            waiter.done(result);
    }
}

}

FormulaEngine::FormulaEngine(const QString& program, const QString& bundle, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler)
    , m_fonts(bundle + u"/npm/katex@0.16.9/dist/fonts"_s)
    , m_process(program, bundle, scheduler)
    , m_formulas(formulaBytes)
    , m_diagrams(diagramBytes) {}

FormulaEngine::~FormulaEngine() {
    // The process answers what waits with nothing when it ends; nobody is left to hear it.
    m_formulaJobs.clear();
    m_diagramJobs.clear();
    m_formulasUnderWay.clear();
    m_diagramUnderWay.reset();
}

void FormulaEngine::serve(QQmlEngine& scenes) {
    scenes.setProperty(servedBy, QVariant::fromValue<QObject*>(this));
}

FormulaEngine* FormulaEngine::of(const QQmlEngine* scenes) {
    return scenes ? qobject_cast<FormulaEngine*>(scenes->property(servedBy).value<QObject*>()) : nullptr;
}

FormulaEngine::Formula FormulaEngine::cachedFormula(const QString& tex, bool isBlock) const {
    const Formula* known = m_formulas.object({tex, isBlock});
    return known ? *known : nullptr;
}

FormulaEngine::Picture FormulaEngine::cachedDiagram(const DiagramRequest& request) const {
    const Picture* known = m_diagrams.object(diagramKey(request));
    return known ? *known : nullptr;
}

void FormulaEngine::requestFormula(
    const QString& tex, bool isBlock, QObject* context, std::function<void(const Formula&)> done) {
    const FormulaKey key(tex, isBlock);
    Waiter<Formula> waiter{context, std::move(done)};
    for (FormulaJob& job : m_formulasUnderWay) {
        if (job.key == key) {
            job.waiters.push_back(std::move(waiter));
            return;
        }
    }
    auto job = std::ranges::find(m_formulaJobs, key, &FormulaJob::key);
    if (job == m_formulaJobs.end())
        job = m_formulaJobs.insert(m_formulaJobs.end(), {key, {}, false});
    job->waiters.push_back(std::move(waiter));
    schedule();
}

void FormulaEngine::requestDiagram(
    const DiagramRequest& request, QObject* context, std::function<void(const Picture&)> done) {
    Waiter<Picture> waiter{context, std::move(done)};
    if (m_diagramUnderWay && m_diagramUnderWay->key == request) {
        m_diagramUnderWay->waiters.push_back(std::move(waiter));
        return;
    }
    auto job = std::ranges::find(m_diagramJobs, request, &DiagramJob::key);
    if (job == m_diagramJobs.end())
        job = m_diagramJobs.insert(m_diagramJobs.end(), {request, {}, false});
    job->waiters.push_back(std::move(waiter));
    schedule();
}

void FormulaEngine::schedule() {
    if (std::exchange(m_isScheduled, true))
        return;
    m_scheduler.post([self = QPointer(this)] {
        if (self) {
            self->m_isScheduled = false;
            self->pump();
        }
    });
}

void FormulaEngine::pump() {
    if (m_pause.isActive()) {
        for (auto jobs = std::exchange(m_formulaJobs, {}); FormulaJob & job : jobs)
            tell(job, Formula());
        for (auto jobs = std::exchange(m_diagramJobs, {}); DiagramJob & job : jobs)
            tell(job, Picture());
        return;
    }
    pumpFormulas();
    pumpDiagrams();
}

void FormulaEngine::pumpFormulas() {
    if (!m_formulasUnderWay.empty())
        return;
    QJsonArray formulas;
    while (!m_formulaJobs.empty() && m_formulasUnderWay.size() < batch) {
        FormulaJob& first = m_formulaJobs.front();
        if (first.alone && !m_formulasUnderWay.empty())
            break;
        FormulaJob job = std::move(first);
        m_formulaJobs.pop_front();
        if (!isWanted(job))
            continue;
        if (job.key.first.size() > longestFormula) {
            keep(job.key,
                std::make_shared<FormulaDrawing>(FormulaDrawing::fromJson({{u"error"_s, u"too long"_s}}, m_fonts)));
            tell(job, cachedFormula(job.key.first, job.key.second));
            continue;
        }
        formulas.append(QJsonObject{{u"tex"_s, job.key.first}, {u"block"_s, job.key.second}});
        m_formulasUnderWay.push_back(std::move(job));
        if (m_formulasUnderWay.back().alone)
            break;
    }
    if (!formulas.isEmpty())
        m_process.request({{u"formulas"_s, formulas}}, [this](const QJsonValue& answer) { formulasCame(answer); });
}

void FormulaEngine::formulasCame(const QJsonValue& answer) {
    auto jobs = std::exchange(m_formulasUnderWay, {});
    if (jobs.empty())
        return;
    const QJsonArray drawings = answer.toArray();
    if (drawings.size() == static_cast<qsizetype>(jobs.size())) {
        for (std::size_t i = 0; i < jobs.size(); ++i) {
            const auto drawing = std::make_shared<const FormulaDrawing>(
                FormulaDrawing::fromJson(drawings[static_cast<qsizetype>(i)].toObject(), m_fonts));
            keep(jobs[i].key, drawing);
            tell(jobs[i], Formula(drawing));
        }
    } else if (processIsUseless()) {
        for (FormulaJob& job : jobs)
            tell(job, Formula());
    } else if (jobs.size() == 1) {
        // It was this one. It stays text and is not tried again.
        const auto failed = std::make_shared<const FormulaDrawing>(
            FormulaDrawing::fromJson({{u"error"_s, u"not laid out"_s}}, m_fonts));
        keep(jobs.front().key, failed);
        tell(jobs.front(), Formula(failed));
    } else {
        for (auto job = jobs.rbegin(); job != jobs.rend(); ++job) {
            job->alone = true;
            m_formulaJobs.push_front(std::move(*job));
        }
    }
    schedule();
}

void FormulaEngine::pumpDiagrams() {
    while (!m_diagramUnderWay && !m_diagramJobs.empty()) {
        DiagramJob job = std::move(m_diagramJobs.front());
        m_diagramJobs.pop_front();
        if (!isWanted(job))
            continue;
        if (job.key.code.size() > longestDiagram) {
            tell(job, std::make_shared<const Diagram>(Diagram{{}, {}, u"too long"_s}));
            continue;
        }
        const DiagramRequest wanted = job.key;
        m_diagramUnderWay = std::move(job);
        m_process.request({{u"code"_s, wanted.code}, {u"dark"_s, wanted.isDark}, {u"width"_s, wanted.width},
                              {u"scale"_s, wanted.scale}, {u"ratio"_s, wanted.ratio}},
            [this](const QJsonValue& answer) { diagramCame(answer); });
    }
}

void FormulaEngine::diagramCame(const QJsonValue& answer) {
    auto job = std::exchange(m_diagramUnderWay, std::nullopt);
    if (!job)
        return;
    const QJsonObject object = answer.toObject();
    Picture picture;
    if (!object.isEmpty() || (!processIsUseless() && job->alone)) {
        Diagram diagram;
        diagram.error = object.isEmpty() ? u"not drawn"_s : object.value("error"_L1).toString();
        diagram.size = QSizeF(object.value("width"_L1).toDouble(), object.value("height"_L1).toDouble());
        diagram.image.loadFromData(QByteArray::fromBase64(object.value("png"_L1).toString().toLatin1()), "PNG");
        diagram.image.setDevicePixelRatio(job->key.ratio);
        if (diagram.image.isNull() && diagram.error.isEmpty())
            diagram.error = u"no picture"_s;
        const qsizetype bytes = diagram.image.sizeInBytes() + 256;
        picture = std::make_shared<const Diagram>(std::move(diagram));
        m_diagrams.insert(diagramKey(job->key), new Picture(picture), bytes);
    } else if (!m_pause.isActive()) {
        // A formula may have taken the process down: once more.
        job->alone = true;
        m_diagramJobs.push_front(std::move(*job));
        schedule();
        return;
    }
    tell(*job, picture);
    schedule();
}

// A process that ended before it had answered anything will not do better at once.
bool FormulaEngine::processIsUseless() {
    if (m_pause.isActive())
        return true;
    if (m_process.hasAnswered())
        return false;
    qCWarning(formulaLog, "⚠️ [FormulaEngine] Formulas and diagrams stay text: the renderer does not start");
    m_pause = m_scheduler.after(pause, [] {});
    return true;
}

void FormulaEngine::keep(const FormulaKey& key, const Formula& formula) {
    m_formulas.insert(key, new Formula(formula), formula->cost() + key.first.size() * 2 + 64);
}

QString FormulaEngine::diagramKey(const DiagramRequest& request) {
    return u"%1 %2 %3 %4 "_s.arg(request.isDark).arg(request.width).arg(request.scale).arg(request.ratio) +
        request.code;
}

}
