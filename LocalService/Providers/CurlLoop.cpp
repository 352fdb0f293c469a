#include "Providers/CurlLoop.h"

#include <atomic>
#include <curl/curl.h>
#include <list>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace korvi::service {

namespace {

/// One request. The curl thread reads and writes everything but `post`'s functions, which belong to the io thread.
struct Transfer {
    asio::io_context& io;
    HttpPost post;
    std::atomic<bool> wanted = true;

    CURL* easy = nullptr;
    curl_slist* headers = nullptr;
    bool statusTold = false;
    char error[CURL_ERROR_SIZE] = {};

    Transfer(asio::io_context& context, HttpPost request)
        : io(context)
        , post(std::move(request)) {}
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() {
        curl_slist_free_all(headers);
        curl_easy_cleanup(easy);
    }
};
using TransferPtr = std::shared_ptr<Transfer>;

template <class Call>
void tell(const TransferPtr& transfer, Call call) {
    asio::post(transfer->io, [transfer, call = std::move(call)]() mutable {
        if (transfer->wanted)
            call(transfer->post);
    });
}

std::string header(CURL* easy, const char* name) {
    curl_header* found = nullptr;
    return curl_easy_header(easy, name, 0, CURLH_HEADER, -1, &found) == CURLHE_OK ? found->value : "";
}

void tellStatus(const TransferPtr& transfer) {
    if (std::exchange(transfer->statusTold, true))
        return;
    long status = 0;
    curl_easy_getinfo(transfer->easy, CURLINFO_RESPONSE_CODE, &status);
    if (status == 0)
        return;
    tell(transfer,
        [status, type = header(transfer->easy, "Content-Type"), retry = header(transfer->easy, "Retry-After")](
            HttpPost& post) { post.onStatus(status, type, retry); });
}

std::size_t receive(char* data, std::size_t, std::size_t size, void* user) {
    const TransferPtr& transfer = *static_cast<TransferPtr*>(user);
    if (!transfer->wanted)
        return CURL_WRITEFUNC_ERROR;
    tellStatus(transfer);
    tell(transfer, [bytes = std::string(data, size)](HttpPost& post) mutable { post.onBytes(std::move(bytes)); });
    return size;
}

void prepare(TransferPtr& transfer) {
    CURL* easy = transfer->easy = curl_easy_init();
    const HttpPost& post = transfer->post;
    for (const auto& line : post.headers)
        transfer->headers = curl_slist_append(transfer->headers, line.c_str());
    curl_easy_setopt(easy, CURLOPT_URL, post.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_NOPROXY, "localhost,127.0.0.1,::1");
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer->headers);
    if (!post.isGet) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(post.body.size()));
        curl_easy_setopt(easy, CURLOPT_POSTFIELDS, post.body.c_str());
    }
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, static_cast<long>(post.connectTimeout.count()));
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, static_cast<long>(post.idleTimeout.count()));
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer->error);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, receive);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer);
}

HttpOutcome outcomeOf(CURLcode code, const Transfer& transfer) {
    using Kind = HttpOutcome::Kind;
    const std::string detail = transfer.error[0] ? transfer.error : curl_easy_strerror(code);
    switch (code) {
    case CURLE_OK: return {Kind::answered, {}};
    case CURLE_OPERATION_TIMEDOUT: {
        double connected = 0;
        curl_easy_getinfo(transfer.easy, CURLINFO_CONNECT_TIME, &connected);
        return {connected > 0 ? Kind::timedOut : Kind::unreachable, detail};
    }
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
    case CURLE_COULDNT_CONNECT: return {Kind::unreachable, detail};
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR: return {Kind::untrusted, detail};
    default: return {Kind::cut, detail};
    }
}

}

struct CurlLoop::Impl {
    asio::io_context& io;
    CURLM* multi = nullptr;
    std::mutex mutex;
    // Guarded by the mutex.
    std::vector<TransferPtr> arriving;
    std::atomic<bool> stopping = false;
    // Of the curl thread. A list: libcurl keeps the address of each element.
    std::list<TransferPtr> transfers;
    std::thread thread;

    explicit Impl(asio::io_context& context)
        : io(context) {}

    void run() {
        while (!stopping) {
            take();
            int active = 0;
            curl_multi_perform(multi, &active);
            finish();
            curl_multi_poll(multi, nullptr, 0, 60'000, nullptr);
        }
        while (!transfers.empty())
            drop(transfers.begin());
    }

    void take() {
        std::vector<TransferPtr> fresh;
        {
            const std::lock_guard lock(mutex);
            fresh.swap(arriving);
        }
        for (auto& transfer : fresh) {
            transfers.push_back(std::move(transfer));
            prepare(transfers.back());
            curl_multi_add_handle(multi, transfers.back()->easy);
        }
        for (auto each = transfers.begin(); each != transfers.end();)
            each = (*each)->wanted ? std::next(each) : drop(each);
    }

    void finish() {
        int left = 0;
        while (CURLMsg* message = curl_multi_info_read(multi, &left)) {
            if (message->msg != CURLMSG_DONE)
                continue;
            for (auto each = transfers.begin(); each != transfers.end(); ++each) {
                if ((*each)->easy != message->easy_handle)
                    continue;
                tellStatus(*each);
                tell(*each,
                    [outcome = outcomeOf(message->data.result, **each)](HttpPost& post) { post.onEnd(outcome); });
                drop(each);
                break;
            }
        }
    }

    std::list<TransferPtr>::iterator drop(std::list<TransferPtr>::iterator each) {
        curl_multi_remove_handle(multi, (*each)->easy);
        return transfers.erase(each);
    }
};

CurlLoop::CurlLoop(asio::io_context& io)
    : impl_(std::make_shared<Impl>(io)) {
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    impl_->multi = curl_multi_init();
    if (ready != CURLE_OK || !impl_->multi)
        throw std::runtime_error("libcurl не запускается");
    impl_->thread = std::thread([impl = impl_.get()] { impl->run(); });
}

CurlLoop::~CurlLoop() {
    impl_->stopping = true;
    curl_multi_wakeup(impl_->multi);
    impl_->thread.join();
    curl_multi_cleanup(impl_->multi);
    impl_->multi = nullptr;
}

std::shared_ptr<void> CurlLoop::start(HttpPost post) {
    auto transfer = std::make_shared<Transfer>(impl_->io, std::move(post));
    {
        const std::lock_guard lock(impl_->mutex);
        impl_->arriving.push_back(transfer);
    }
    curl_multi_wakeup(impl_->multi);
    return {nullptr, [transfer, weak = std::weak_ptr(impl_)](void*) {
                transfer->wanted = false;
                if (const auto impl = weak.lock(); impl && impl->multi)
                    curl_multi_wakeup(impl->multi);
            }};
}

}
