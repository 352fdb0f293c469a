#pragma once

#include <chrono>
#include <cstddef>

namespace korvi::service::limits {

using namespace std::chrono_literals;

constexpr std::size_t body = std::size_t{1024} * 1024;
/// Decimal, as the client counts them: any file, and video and audio.
constexpr std::size_t upload = 10'000'000;
constexpr std::size_t mediaUpload = 20'000'000;
/// What a multipart body may hold beside its file.
constexpr std::size_t uploadFrame = std::size_t{64} * 1024;
constexpr std::size_t userFiles = std::size_t{2} * 1024 * 1024 * 1024;
/// An upload that has become part of no chat by then is removed with the next start.
constexpr auto unusedFileLife = 24h;
constexpr std::size_t frame = std::size_t{1024} * 1024;
constexpr std::size_t messageText = std::size_t{256} * 1024;
constexpr std::size_t messageParts = 256;
constexpr std::size_t answer = std::size_t{4} * 1024 * 1024;
constexpr std::size_t chatName = 200;
constexpr std::size_t titleLength = 48;
/// When a model is asked for a title: how much of the question it is told (code points), how much it may say (bytes),
/// how long that may take.
constexpr std::size_t titleQuestion = 2000;
constexpr std::size_t titleAnswer = std::size_t{16} * 1024;
constexpr std::size_t titlesAtOnce = 8;
constexpr auto titleTime = 60s;

constexpr std::size_t httpConnections = 256;
constexpr std::size_t socketsPerUser = 8;
constexpr std::size_t answersPerUser = 4;
constexpr std::size_t answersInAll = 32;
/// Undelivered frames of refusal: a peer that causes more without reading them is disconnected.
constexpr std::size_t noticesPerSession = 64;

constexpr auto codeLife = 10min;
constexpr int codeTries = 5;
constexpr std::size_t codesPerEmail = 5;
constexpr std::size_t codesInAll = 60;
constexpr auto codeWindow = 10min;
constexpr auto ticketLife = 60s;
constexpr std::size_t ticketsPerSession = 16;

/// How long an ended answer waits for its session to come back.
constexpr auto replayLife = 120s;
/// After a stop no longer than this, that time begins with the next start for the answers that the stop interrupted.
constexpr auto restartPause = 10min;
/// New pieces of all answers are committed together, at most this often.
constexpr auto storeInterval = 20ms;
/// A peer that neither sends nor answers pings for this long is gone.
constexpr auto socketIdle = 90s;

}
