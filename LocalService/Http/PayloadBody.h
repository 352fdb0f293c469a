#pragma once

#include "Core/Asio.h"
#include "Http/Message.h"

#include <algorithm>
#include <array>
#include <boost/beast/http/message.hpp>
#include <boost/optional.hpp>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <unistd.h>

namespace korvi::service {

/// How a Payload is written: bytes at once, a file part by part.
struct PayloadBody {
    using value_type = Payload;

    static std::uint64_t size(const value_type& payload) { return payload.file ? payload.size : payload.bytes.size(); }

    class writer {
    public:
        using const_buffers_type = asio::const_buffer;

        template <bool isRequest, class Fields>
        writer(const boost::beast::http::header<isRequest, Fields>&, const value_type& payload)
            : payload_(payload) {}

        void init(boost::system::error_code& error) { error = {}; }

        boost::optional<std::pair<const_buffers_type, bool>> get(boost::system::error_code& error) {
            error = {};
            if (!payload_.file)
                return {{asio::buffer(payload_.bytes), false}};
            if (sent_ == payload_.size)
                return boost::none;
            const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(part_.size(), payload_.size - sent_));
            const auto count =
                ::pread(payload_.file->descriptor(), part_.data(), wanted, static_cast<off_t>(payload_.offset + sent_));
            if (count <= 0) {
                // Shorter than it was: what has been promised cannot be kept, so the connection ends.
                error.assign(count < 0 ? errno : EIO, boost::system::system_category());
                return boost::none;
            }
            sent_ += static_cast<std::uint64_t>(count);
            return {{asio::buffer(part_.data(), static_cast<std::size_t>(count)), sent_ < payload_.size}};
        }

    private:
        const value_type& payload_;
        std::uint64_t sent_ = 0;
        std::array<char, std::size_t{64} * 1024> part_{};
    };
};

}
