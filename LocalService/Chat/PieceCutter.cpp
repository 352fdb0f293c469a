#include "Chat/PieceCutter.h"

#include "Core/Text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utf8proc.h>
#include <utility>

namespace korvi::service {

namespace {

struct Residue {
    std::string_view written;
    char meant;
};

constexpr std::array residues{
    Residue{"\\134n", '\n'}, Residue{"\\n", '\n'}, Residue{"\\134t", '\t'}, Residue{"\\134\"", '"'}};

/// True if the next characters could complete a residue that begins in `text`.
bool endsInsideResidue(std::string_view text) {
    text.remove_prefix(text.size() - std::min<std::size_t>(text.size(), 4));
    const auto start = text.rfind('\\');
    if (start == std::string_view::npos)
        return false;
    const auto tail = text.substr(start);
    for (const auto& residue : residues)
        if (tail.size() < residue.written.size() && residue.written.starts_with(tail))
            return true;
    return false;
}

/// Parts of at most `PieceCutter::alwaysAppended` UTF-16 units, cut between grapheme clusters.
std::vector<std::string> shortParts(std::string_view text) {
    std::vector<std::string> parts(1);
    std::string cluster;
    std::int32_t previous = -1;
    std::int32_t state = 0;
    const auto flush = [&] {
        if (!parts.back().empty() && utf16Length(parts.back()) + utf16Length(cluster) > PieceCutter::alwaysAppended)
            parts.emplace_back();
        parts.back() += std::exchange(cluster, {});
    };
    for (std::size_t i = 0; i < text.size();) {
        std::int32_t point = 0;
        const auto used = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data() + i),
            static_cast<utf8proc_ssize_t>(text.size() - i), &point);
        if (used <= 0)
            break;
        if (previous >= 0 && utf8proc_grapheme_break_stateful(previous, point, &state))
            flush();
        cluster.append(text, i, static_cast<std::size_t>(used));
        previous = point;
        i += static_cast<std::size_t>(used);
    }
    flush();
    return parts;
}

}

std::string asShown(std::string_view text) {
    std::string result(text);
    if (text.find('\\') == std::string_view::npos)
        return result;
    for (const auto& [written, meant] : residues) {
        for (std::size_t at = 0; (at = result.find(written, at)) != std::string::npos; ++at)
            result.replace(at, written.size(), 1, meant);
    }
    return result;
}

std::vector<Piece> PieceCutter::add(PieceKind kind, std::string_view delta) {
    std::vector<Piece> out;
    if (delta.empty())
        return out;
    if (kind != kind_) {
        closeRun(out);
        kind_ = kind;
    }
    pending_ += delta;
    advanceBorders();
    tryCut(out);
    return out;
}

std::vector<Piece> PieceCutter::finish() {
    std::vector<Piece> out;
    closeRun(out);
    return out;
}

void PieceCutter::advanceBorders() {
    while (scanned_ < pending_.size()) {
        std::int32_t point = 0;
        const auto used = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(pending_.data() + scanned_),
            static_cast<utf8proc_ssize_t>(pending_.size() - scanned_), &point);
        if (used <= 0)
            break;
        if (previousPoint_ < 0 || utf8proc_grapheme_break_stateful(previousPoint_, point, &breakState_)) {
            lastClusterStart_ = scanned_;
            ++clusters_;
        }
        hasBackslash_ = hasBackslash_ || point == '\\';
        previousPoint_ = point;
        scanned_ += static_cast<std::size_t>(used);
    }
}

void PieceCutter::tryCut(std::vector<Piece>& out) {
    // The last cluster stays: a combining mark or a joiner may still come to it.
    if (clusters_ <= minimumClusters)
        return;
    const auto candidate = std::string_view(pending_).substr(0, lastClusterStart_);
    if (endsInsideResidue(candidate))
        return;
    const std::string translated = hasBackslash_ ? asShown(candidate) : std::string();
    const std::string_view visible = hasBackslash_ ? std::string_view(translated) : candidate;
    if ((hasBackslash_ && utf16Length(visible) < minimumClusters) || isRepeat(visible))
        return;
    if (!held_.empty())
        out.push_back({kind_, std::move(held_)});
    held_ = candidate;
    shown() += visible;
    pending_.erase(0, lastClusterStart_);
    resetScan();
    advanceBorders();
}

bool PieceCutter::isRepeat(std::string_view shownPiece) {
    const std::string& text = shown();
    if (kind_ == PieceKind::thinking)
        return text.ends_with(shownPiece);
    // While a repetition grows, most of it has been compared already.
    if (matched_ > 0 && matched_ <= shownPiece.size() &&
        std::string_view(text).substr(searchFrom_ + matched_).starts_with(shownPiece.substr(matched_))) {
        matched_ = shownPiece.size();
        return true;
    }
    // memmem rather than find(): in Cyrillic text every second byte is the same, on which find() stumbles.
    const void* match =
        memmem(text.data() + searchFrom_, text.size() - searchFrom_, shownPiece.data(), shownPiece.size());
    searchFrom_ = match ? static_cast<std::size_t>(static_cast<const char*>(match) - text.data()) : 0;
    matched_ = match ? shownPiece.size() : 0;
    return match != nullptr;
}

void PieceCutter::closeRun(std::vector<Piece>& out) {
    if (!held_.empty() && !isSuffixTogether()) {
        // What joins a new text makes it no less new.
        shown() += asShown(pending_);
        out.push_back({kind_, std::move(held_) + pending_});
    } else {
        if (!held_.empty())
            out.push_back({kind_, std::move(held_)});
        closePending(out);
    }
    held_.clear();
    pending_.clear();
    resetScan();
}

bool PieceCutter::isSuffixTogether() {
    if (kind_ == PieceKind::text)
        return false;
    const std::size_t before = shown().size() - asShown(held_).size();
    return std::string_view(shown()).substr(0, before).ends_with(asShown(held_ + pending_));
}

void PieceCutter::closePending(std::vector<Piece>& out) {
    if (pending_.empty())
        return;
    const std::string visible = asShown(pending_);
    searchFrom_ = matched_ = 0;
    if (utf16Length(visible) > alwaysAppended && isRepeat(visible)) {
        for (auto& part : shortParts(pending_))
            out.push_back({kind_, std::move(part)});
    } else {
        out.push_back({kind_, pending_});
    }
    shown() += visible;
}

void PieceCutter::resetScan() {
    scanned_ = lastClusterStart_ = clusters_ = searchFrom_ = matched_ = 0;
    previousPoint_ = -1;
    breakState_ = 0;
    hasBackslash_ = false;
}

}
