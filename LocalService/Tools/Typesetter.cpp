#include "Tools/Typesetter.h"

#include "Core/Confinement.h"
#include "Core/Json.h"
#include "Core/Text.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <string_view>

namespace korvi::service {

namespace {

constexpr std::size_t atOnce = 4;
constexpr std::size_t longestPdf = std::size_t{32} << 20U;
constexpr int mostPasses = 3;

bool has(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool hasCyrillic(std::string_view text) {
    return text.find('\xD0') != std::string_view::npos || text.find('\xD1') != std::string_view::npos;
}

bool wantsUnicodeEngine(const std::string& source) {
    return has(source, "fontspec") || has(source, "unicode-math") || has(source, "polyglossia");
}

std::string preambleFor(const std::string& engine) {
    if (engine != "pdflatex")
        return "\\IfFileExists{fontspec.sty}{\\usepackage{fontspec}}{}\n";
    return "\\IfFileExists{t2aenc.def}{\\usepackage[T2A]{fontenc}}{}\n"
           "\\IfFileExists{russianb.ldf}{\\usepackage[russian]{babel}}{}\n";
}

/// A whole document: models often leave out the class, or what Cyrillic needs.
std::string documentFrom(const std::string& source, const std::string& engine) {
    const auto begin = source.find("\\documentclass");
    if (begin == std::string::npos)
        return "\\documentclass[12pt,a4paper]{article}\n" + preambleFor(engine) +
            "\\usepackage{amsmath,amssymb}\n\\begin{document}\n" + source + "\n\\end{document}\n";
    const auto line = source.find('\n', begin);
    if (engine != "pdflatex" || line == std::string::npos || !hasCyrillic(source) || has(source, "T2A"))
        return source;
    return source.substr(0, line + 1) + "\\IfFileExists{t2aenc.def}{\\usepackage[T2A]{fontenc}}{}\n" +
        source.substr(line + 1);
}

std::string contentOf(const std::filesystem::path& file, std::size_t limit) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    if (error || size > limit)
        return {};
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The folder that an installation of TeX lies in with all it needs; empty if that is not to be seen.
std::filesystem::path treeOf(const std::filesystem::path& program) {
    std::error_code error;
    for (auto folder = std::filesystem::canonical(program, error).parent_path(); folder.has_relative_path();
         folder = folder.parent_path())
        if (std::filesystem::is_directory(folder / "texmf-dist", error))
            return folder;
    return {};
}

/// The first complaint in the engine's log.
std::string complaintIn(const std::string& log) {
    const auto at = log.starts_with("!") ? 0 : log.find("\n!");
    if (at == std::string::npos)
        return {};
    const auto begin = log.find_first_not_of("\n! ", at);
    if (begin == std::string::npos)
        return {};
    return firstWords(std::string_view(log).substr(begin, log.find('\n', begin) - begin), 200);
}

}

struct Typesetter::Run : std::enable_shared_from_this<Run> {
    asio::io_context& io;
    Engine engine;
    std::function<void(Typeset)> onEnd;
    std::shared_ptr<std::size_t> running;
    std::chrono::steady_clock::time_point deadline;
    ScratchFolder folder;
    std::shared_ptr<void> child;
    int passes = 0;

    Run(asio::io_context& context, Engine chosen, std::function<void(Typeset)> told, std::shared_ptr<std::size_t> count,
        std::chrono::seconds limit)
        : io(context)
        , engine(std::move(chosen))
        , onEnd(std::move(told))
        , running(std::move(count))
        , deadline(std::chrono::steady_clock::now() + limit) {
        ++*running;
    }
    ~Run() { --*running; }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void start() {
        ++passes;
        ChildCommand command;
        command.program = engine.program;
        command.arguments = {"-interaction=nonstopmode", "-halt-on-error", "-no-shell-escape", "document.tex"};
        const std::string home = folder.path().string();
        // Paranoid: no path that leads out of the folder, and no hidden file.
        command.environment = {"PATH=" + engine.program.parent_path().string() + ":/usr/local/bin:/usr/bin:/bin",
            "HOME=" + home, "TEXMFHOME=" + home, "TEXMFVAR=" + home, "TEXMFCONFIG=" + home, "TMPDIR=" + home,
            "openin_any=p", "openout_any=p", "shell_escape=f", "max_print_line=1000", "LC_ALL=C.UTF-8"};
        command.folder = folder.path();
        command.readable = {engine.tree};
        const auto left = deadline - std::chrono::steady_clock::now();
        command.time = std::max(std::chrono::seconds(1), std::chrono::ceil<std::chrono::seconds>(left));
        // A pass must not keep the handle alive that owns it.
        child = runChild(io, command, [weak = weak_from_this()](ChildEnd end) {
            if (const auto self = weak.lock())
                self->ended(end);
        });
    }

    void ended(ChildEnd end) {
        const std::string log = contentOf(folder.path() / "document.log", longestPdf);
        if (end == ChildEnd::succeeded && passes < mostPasses &&
            (has(log, "Rerun to get") || (passes == 1 && std::filesystem::exists(folder.path() / "document.toc"))))
            return start();
        Typeset result;
        if (end == ChildEnd::succeeded)
            result.pdf = contentOf(folder.path() / "document.pdf", longestPdf);
        if (result.pdf.empty())
            result.error = faultOf(end, log);
        if (const auto tell = std::exchange(onEnd, nullptr))
            tell(std::move(result));
    }

    static std::string faultOf(ChildEnd end, const std::string& log) {
        if (end == ChildEnd::timedOut)
            return "Не удалось собрать PDF: документ собирается слишком долго.";
        if (end == ChildEnd::notStarted)
            return "Не удалось собрать PDF: программа LaTeX не запускается.";
        if (end == ChildEnd::succeeded)
            return "Не удалось собрать PDF: в документе нет ни одной страницы.";
        const std::string complaint = complaintIn(log);
        return "Не удалось собрать PDF: в документе ошибка LaTeX" + (complaint.empty() ? "." : " — " + complaint);
    }
};

Typesetter::Typesetter(asio::io_context& io, std::chrono::seconds time)
    : io_(io)
    , time_(time) {
    for (const std::string name : {"pdflatex", "xelatex", "lualatex"}) {
        // Its documents are programs.
        if (name == "lualatex" && !Confinement::isAvailable())
            continue;
        if (const auto program = findProgram(name))
            engines_.push_back({name, *program, treeOf(*program)});
    }
}

const Typesetter::Engine& Typesetter::engineFor(const std::string& source) const {
    if (wantsUnicodeEngine(source))
        for (const Engine& engine : engines_)
            if (engine.name != "pdflatex")
                return engine;
    return engines_.front();
}

std::shared_ptr<void> Typesetter::typeset(const std::string& source, std::function<void(Typeset)> onEnd) {
    std::string refusal;
    if (!isAvailable())
        refusal = "На компьютере службы нет LaTeX: установите, например, пакет texlive-latex-recommended.";
    else if (*running_ >= atOnce)
        refusal = "Не удалось собрать PDF: сейчас собирается слишком много документов. Повторите чуть позже.";
    if (!refusal.empty()) {
        asio::post(io_, [refusal, onEnd = std::move(onEnd)] { onEnd({{}, refusal}); });
        return nullptr;
    }
    const Engine& engine = engineFor(source);
    auto run = std::make_shared<Run>(io_, engine, std::move(onEnd), running_, time_);
    std::ofstream(run->folder.path() / "document.tex", std::ios::binary) << documentFrom(source, engine.name);
    run->start();
    return run;
}

}
