#include "Tools/SearchRun.h"

#include "Core/Json.h"
#include "Core/Text.h"

#include <cmath>

namespace korvi::service {

using nlohmann::json;
using Phase = ProviderTool::Phase;

namespace {

constexpr std::size_t mostResults = 10;
constexpr std::size_t mostImages = 12;
constexpr std::size_t mostAnswers = 3;
constexpr std::size_t longestText = 600; // code points
constexpr std::size_t longestAnswer = std::size_t{4} << 20U;
constexpr std::size_t longestAddress = 2000;

bool isWebAddress(const std::string& url) {
    return (url.starts_with("http://") || url.starts_with("https://")) && url.size() <= longestAddress &&
        url.find_first_of(" \r\n\t\"<>") == std::string::npos;
}

/// A web address under `key`, or empty. "//host/path" has the scheme of the page it stands on.
std::string addressAt(const json& object, const char* key) {
    std::string url = stringAt(object, key).value_or("");
    if (url.starts_with("//"))
        url.insert(0, "https:");
    return isWebAddress(url) ? url : std::string();
}

std::string originOf(const std::string& url) {
    return url.substr(0, url.find_first_of("/?#", url.find("//") + 2));
}

const json& listAt(const json& object, const char* key) {
    static const json none = json::array();
    const auto found = object.is_object() ? object.find(key) : object.end();
    return object.is_object() && found != object.end() && found->is_array() ? *found : none;
}

void takeResult(const json& result, json& results, json& images, std::string& told) {
    const std::string url = addressAt(result, "url");
    const std::string title = firstWords(stringAt(result, "title").value_or(""), longestText);
    const std::string text = firstWords(stringAt(result, "content").value_or(""), longestText);
    if (const std::string image = addressAt(result, "img_src"); !image.empty()) {
        if (images.size() < mostImages)
            images.push_back({{"url", image}, {"description", title}});
        return;
    }
    if (url.empty() || title.empty() || results.size() == mostResults)
        return;
    results.push_back({{"title", title}, {"url", url}, {"content", text}, {"favicon", originOf(url) + "/favicon.ico"}});
    told += "[" + std::to_string(results.size()) + "] " + title + "\n" + url + "\n" + text + "\n\n";
    if (const std::string image = addressAt(result, "thumbnail"); !image.empty() && images.size() < mostImages)
        images.push_back({{"url", image}, {"description", title}});
}

}

SearchFindings searchFindings(const std::string& query, const json& answer, double seconds) {
    json results = json::array();
    json images = json::array();
    json answers = json::array();
    std::string told;
    for (const json& each : listAt(answer, "results"))
        takeResult(each, results, images, told);
    for (const json& each : listAt(answer, "answers")) {
        // A string in older versions, an object with its source in newer ones.
        const std::string text =
            firstWords(each.is_string() ? each.get<std::string>() : stringAt(each, "answer").value_or(""), longestText);
        if (text.empty() || answers.size() == mostAnswers)
            continue;
        json item{{"text", text}};
        if (const std::string url = addressAt(each, "url"); !url.empty())
            item["sources"] = {{{"url", url}, {"index", answers.size() + 1}}};
        answers.push_back(std::move(item));
        told.insert(0, text + "\n\n");
    }
    SearchFindings findings;
    findings.content = {{"query", query}, {"results", results}, {"responseTime", std::round(seconds * 100) / 100}};
    if (!answers.empty())
        findings.content["answer"] = answers;
    if (!images.empty())
        findings.content["images"] = images;
    findings.forModel = told.empty() ? "Nothing was found."
                                     : told +
            "The user sees these results. Cite those that you rely on behind the sentence, in this form: "
            "[[1]](https://address), with the number and the address of the result.";
    return findings;
}

SearchRun::SearchRun(asio::io_context& io, CurlLoop& curl, const std::string& url, std::string query,
    ToolBox::Emit emit, ToolBox::Done done)
    : query_(firstWords(query, longestText))
    , emit_(std::move(emit))
    , done_(std::move(done)) {
    HttpPost get;
    get.isGet = true;
    get.url = url + (url.find('?') == std::string::npos ? "?" : "&") + "format=json&q=" + percentEncoded(query_);
    get.headers = {"Accept: application/json"};
    get.idleTimeout = std::chrono::seconds(20);
    get.onStatus = [this](long status, const std::string&, const std::string&) { status_ = status; };
    get.onBytes = [this](const std::string& bytes) {
        if (body_.size() + bytes.size() <= longestAnswer)
            body_ += bytes;
    };
    get.onEnd = [this](const HttpOutcome& outcome) { end(outcome); };
    asio::post(io, [this, &curl, get = std::move(get), wanted = std::weak_ptr(alive_)]() mutable {
        if (!wanted.expired())
            begin(curl, std::move(get));
    });
}

void SearchRun::begin(CurlLoop& curl, HttpPost get) {
    const auto wanted = std::weak_ptr(alive_);
    emit_({Phase::start, "web_search"});
    if (wanted.expired())
        return;
    emit_({Phase::arguments, "web_search", {{"query", query_}}});
    if (wanted.expired())
        return;
    started_ = std::chrono::steady_clock::now();
    transfer_ = curl.start(std::move(get));
}

void SearchRun::end(const HttpOutcome& outcome) {
    const auto wanted = std::weak_ptr(alive_);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - started_;
    const auto answer = outcome.kind == HttpOutcome::Kind::answered && status_ == 200 ? parseJson(body_) : std::nullopt;
    SearchFindings findings;
    if (answer && answer->is_object()) {
        findings = searchFindings(query_, *answer, time.count());
    } else {
        findings.content = {{"query", query_},
            {"answer", {{{"text", "Поиск не удался: сервер поиска недоступен или ответил ошибкой."}}}}};
        findings.forModel = "Error: the search failed. Answer without it, and say so.";
    }
    const auto done = done_;
    emit_({Phase::end, "web_search", std::move(findings.content)});
    if (!wanted.expired())
        done({std::move(findings.forModel), false});
}

}
