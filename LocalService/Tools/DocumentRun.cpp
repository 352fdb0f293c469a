#include "Tools/DocumentRun.h"

#include "Core/Text.h"
#include "Http/MultipartParser.h"

namespace korvi::service {

using nlohmann::json;
using Phase = ProviderTool::Phase;

namespace {

constexpr std::string_view pdf = "application/pdf";

}

DocumentRun::DocumentRun(asio::io_context& io, FileStore& files, Typesetter& typesetter, const std::string& filename,
    std::string text, ToolOwner owner, ToolBox::Emit emit, ToolBox::Done done)
    : files_(files)
    , typesetter_(typesetter)
    , name_(safeFilename(filename))
    , text_(std::move(text))
    , owner_(std::move(owner))
    , emit_(std::move(emit))
    , done_(std::move(done)) {
    FileType type = fileTypeOf(name_, {});
    if (type.mime != pdf && type.kind != FileKind::text) {
        name_ += ".txt";
        type = fileTypeOf(name_, {});
    }
    type_ = type.mime;
    asio::post(io, [this, wanted = std::weak_ptr(alive_)] {
        if (!wanted.expired())
            begin();
    });
}

void DocumentRun::begin() {
    const auto wanted = std::weak_ptr(alive_);
    emit_({Phase::start, "createDocument"});
    if (wanted.expired())
        return;
    if (type_ != pdf)
        return keep(text_);
    typesetting_ = typesetter_.typeset(text_, [this, wanted](const Typeset& result) {
        if (wanted.expired())
            return;
        if (result.error.empty())
            keep(result.pdf);
        else
            finish(json::object(), "Error: no PDF could be made of it: " + result.error);
    });
}

void DocumentRun::keep(std::string_view bytes) {
    try {
        const FileRow file = files_.keep(bytes, owner_.userId, owner_.chatId, name_, type_);
        finish({{"fileUrl", FileStore::storedAddress(file)}, {"filename", name_},
                   {"mimeType", type_.substr(0, type_.find(';'))}},
            "The user has got the file. Do not give an address of it.");
    } catch (const std::runtime_error& error) {
        finish(json::object(), std::string("Error: the file could not be kept: ") + error.what());
    }
}

void DocumentRun::finish(json content, std::string forModel) {
    const auto wanted = std::weak_ptr(alive_);
    const auto done = done_;
    emit_({Phase::end, "createDocument", std::move(content)});
    if (!wanted.expired())
        done({std::move(forModel), false});
}

}
