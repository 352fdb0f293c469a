#include "Tools/PdfText.h"

#include "Core/ChildProcess.h"

#include <fstream>

namespace korvi::service {

PdfText::PdfText(asio::io_context& io)
    : io_(io)
    , program_(findProgram("pdftotext")) {}

std::shared_ptr<void> PdfText::read(
    const std::filesystem::path& pdf, std::size_t limit, std::function<void(std::string)> onEnd) {
    const auto folder = std::make_shared<ScratchFolder>();
    ChildCommand command;
    command.program = program_.value();
    command.arguments = {"-q", "-enc", "UTF-8", "-nopgbrk", "-l", "200", pdf.string(), "text"};
    command.environment = {"LC_ALL=C.UTF-8", "HOME=" + folder->path().string()};
    command.folder = folder->path();
    command.readable = {pdf};
    command.time = std::chrono::seconds(20);
    return runChild(io_, command, [folder, limit, onEnd = std::move(onEnd)](ChildEnd end) {
        std::string text(end == ChildEnd::succeeded ? limit : 0, '\0');
        std::ifstream stream(folder->path() / "text", std::ios::binary);
        stream.read(text.data(), static_cast<std::streamsize>(text.size()));
        text.resize(static_cast<std::size_t>(stream.gcount()));
        onEnd(std::move(text));
    });
}

}
