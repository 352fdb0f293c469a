#include "Tools/ToolBox.h"

#include "Core/Json.h"
#include "Tools/DocumentRun.h"
#include "Tools/ImageRun.h"
#include "Tools/SearchRun.h"

#include <array>

namespace korvi::service {

using nlohmann::json;

namespace {

json parameter(const char* description) {
    return {{"type", "string"}, {"description", description}};
}

json definition(const char* name, const char* description, json properties, std::vector<std::string> required) {
    return {{"type", "function"},
        {"function",
            {{"name", name}, {"description", description},
                {"parameters",
                    {{"type", "object"}, {"properties", std::move(properties)}, {"required", std::move(required)}}}}}};
}

constexpr auto artifactHelp =
    "Show a document beside the conversation: a program, a page, a drawing, a diagram, a text of more than a few "
    "paragraphs. Give the members in the order id, title, kind, text. The user sees it while you write it; do not "
    "repeat "
    "it in your answer. To change a document that you have shown, give its id and the whole new text.";
constexpr auto kindHelp = "python, javascript, typescript, html, react, svg, mermaid, markdown, latex or code";

/// A call that cannot be carried out: the model is told why and may try again.
class RefusedRun : public ToolRun {
public:
    RefusedRun(asio::io_context& io, std::string why, ToolBox::Done done) {
        asio::post(io, [why = std::move(why), done = std::move(done), wanted = std::weak_ptr(alive_)] {
            if (!wanted.expired())
                done({why, false});
        });
    }

private:
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}

ToolBox::ToolBox(asio::io_context& io, CurlLoop& curl, FileStore& files, Typesetter& typesetter, ToolSettings settings)
    : io_(io)
    , curl_(curl)
    , files_(files)
    , typesetter_(typesetter)
    , settings_(std::move(settings)) {}

json ToolBox::definitions() const {
    json tools = json::array();
    if (!settings_.searchUrl.empty())
        tools.push_back(
            definition("web_search", "Search the web. Use it for what is recent or what you do not know for certain.",
                {{"query", parameter("What to search for, in the language in which it is written about")}}, {"query"}));
    if (!settings_.imageModel.empty())
        tools.push_back(definition("generate_image",
            "Draw a picture. The user sees it as soon as it is ready; do not give an address of it.",
            {{"prompt", parameter("A full description of the picture, in English")}}, {"prompt"}));
    tools.push_back(definition("create_document",
        typesetter_.isAvailable()
            ? "Give the user a file to keep. For a .pdf the text is a complete LaTeX document; otherwise it is what "
              "the file holds (.txt, .md, .csv, .html, .json and the like)."
            : "Give the user a file of text to keep (.txt, .md, .csv, .html, .json and the like).",
        {{"filename", parameter("With its extension")}, {"text", parameter("The whole content")}},
        {"filename", "text"}));
    tools.push_back(definition("artifact", artifactHelp,
        {{"id", parameter("Short, Latin letters and hyphens; that of the document to change")},
            {"title", parameter("A few words")}, {"kind", parameter(kindHelp)}, {"text", parameter("The whole text")}},
        {"id", "title", "kind", "text"}));
    return tools;
}

std::unique_ptr<ToolRun> ToolBox::run(const ToolCall& call, const ToolOwner& owner, Emit emit, Done done) {
    const auto arguments = parseJson(call.arguments.empty() ? "{}" : call.arguments);
    const auto refuse = [&](const std::string& why) { return std::make_unique<RefusedRun>(io_, why, std::move(done)); };
    if (!arguments || !arguments->is_object())
        return refuse("Error: the arguments are not a JSON object.");
    const auto need = [&](const char* key) {
        auto value = stringAt(*arguments, key).value_or("");
        std::erase(value, '\0');
        return value;
    };
    if (call.name == "web_search" && !settings_.searchUrl.empty()) {
        const std::string query = need("query");
        return query.empty()
            ? std::unique_ptr<ToolRun>(refuse("Error: \"query\" is missing."))
            : std::make_unique<SearchRun>(io_, curl_, settings_.searchUrl, query, std::move(emit), std::move(done));
    }
    if (call.name == "generate_image" && !settings_.imageModel.empty()) {
        const std::string prompt = need("prompt");
        return prompt.empty() ? std::unique_ptr<ToolRun>(refuse("Error: \"prompt\" is missing."))
                              : std::make_unique<ImageRun>(
                                    io_, curl_, files_, settings_, prompt, owner, std::move(emit), std::move(done));
    }
    if (call.name == "create_document") {
        const std::string text = need("text");
        return text.empty() ? std::unique_ptr<ToolRun>(refuse("Error: \"text\" is missing."))
                            : std::make_unique<DocumentRun>(io_, files_, typesetter_, need("filename"), text, owner,
                                  std::move(emit), std::move(done));
    }
    return refuse("Error: there is no tool \"" + call.name + "\".");
}

}
