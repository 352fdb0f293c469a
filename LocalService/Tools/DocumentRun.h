#pragma once

#include "Tools/ToolBox.h"

namespace korvi::service {

/// A file with a text that the model has written, or a PDF of it.
class DocumentRun : public ToolRun {
public:
    DocumentRun(asio::io_context& io, FileStore& files, Typesetter& typesetter, const std::string& filename,
        std::string text, ToolOwner owner, ToolBox::Emit emit, ToolBox::Done done);

private:
    void begin();
    void keep(std::string_view bytes);
    void finish(nlohmann::json content, std::string forModel);

    FileStore& files_;
    Typesetter& typesetter_;
    std::string name_;
    std::string type_;
    std::string text_;
    ToolOwner owner_;
    ToolBox::Emit emit_;
    ToolBox::Done done_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::shared_ptr<void> typesetting_;
};

}
