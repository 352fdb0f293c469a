#pragma once

#include "Files/FileTypes.h"
#include "Http/Message.h"
#include "Store/Database.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace korvi::service {

/// A file could not be kept; `what()` says so in words for the user.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct FileRow {
    /// Random, and the whole secret of the address.
    std::string id;
    std::string userId;
    std::string name;
    /// MIME type as it is delivered.
    std::string type;
    std::uint64_t size = 0;
};

/// A file that is being written. Gone without a trace unless it is handed to FileStore::keep().
class FileDraft {
public:
    explicit FileDraft(const std::filesystem::path& folder);
    ~FileDraft();
    FileDraft(const FileDraft&) = delete;
    FileDraft& operator=(const FileDraft&) = delete;

    /// Throws FileError if the disk does not take it.
    void write(std::string_view bytes);
    std::uint64_t size() const { return size_; }

private:
    friend class FileStore;
    std::filesystem::path path_;
    int descriptor_ = -1;
    std::uint64_t size_ = 0;
};

/// Files of the users: what they upload and what answers make. A file lies in its user's folder under a random name; who
/// knows its address may read it, since a picture or a player fetches it without a token.
///
/// In the database an address stands as "korvi-file:ID/NAME", without host and port, which may be others after a
/// restart. `published` and `stored` lead from one form to the other.
class FileStore {
public:
    /// `folder` is created. Throws std::runtime_error.
    FileStore(Database& database, std::filesystem::path folder);

    /// The origin at which the files are reached, such as "http://127.0.0.1:8787".
    void setOrigin(std::string origin) { origin_ = std::move(origin); }

    std::unique_ptr<FileDraft> begin() const;
    /// Throws FileError, also when the user's files become too many.
    FileRow keep(FileDraft& draft, const std::string& userId, const std::string& name, const std::string& type);
    /// The same for bytes in memory, of a file that belongs to a chat.
    FileRow keep(std::string_view bytes, const std::string& userId, long long chatId, const std::string& name,
        const std::string& type);

    std::optional<FileRow> find(const std::string& id);
    /// Null if it is gone.
    std::shared_ptr<const OpenFile> open(const FileRow& file) const;
    /// At most `limit` bytes from the beginning.
    std::string read(const FileRow& file, std::size_t limit) const;
    std::filesystem::path pathOf(const FileRow& file) const;

    static std::string storedAddress(const FileRow& file);
    std::string publicAddress(const FileRow& file) const;
    /// With every stored address in any string of it made public.
    nlohmann::json published(nlohmann::json content) const;
    std::string publishedText(std::string text) const;
    /// A user's message with the addresses of the user's own files in the stored form; the files belong to the chat then.
    nlohmann::json stored(nlohmann::json content, const std::string& userId);
    /// The file that a stored address names.
    std::optional<FileRow> fileAt(std::string_view storedAddress);
    void attach(const nlohmann::json& storedContent, long long chatId);

    /// Files of the chat that no other one uses: to be asked before the chat goes, and to be removed after it.
    std::vector<FileRow> onlyUsedBy(long long chatId);
    void remove(const std::vector<FileRow>& files);
    void userRemoved(const std::string& userId);
    /// At start-up: uploads that never became part of a chat, and what a crash has left on the disk.
    void sweep();

private:
    std::vector<FileRow> select(const std::string& condition, long long value);
    std::uint64_t bytesOf(const std::string& userId);

    Database& db_;
    std::filesystem::path folder_;
    std::string origin_;
};

}
