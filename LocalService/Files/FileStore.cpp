#include "Files/FileStore.h"

#include "Core/Limits.h"
#include "Core/Log.h"
#include "Core/Secrets.h"
#include "Core/Time.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace korvi::service {

using nlohmann::json;
using soci::into;
using soci::use;

namespace {

constexpr std::string_view marker = "korvi-file:";
constexpr std::string_view route = "/files/";
constexpr std::size_t idLength = 43;

bool isId(std::string_view text) {
    return text.size() == idLength && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
    });
}

/// The identifier behind `mark` at `at`, or empty.
std::string_view idAt(std::string_view text, std::size_t at, std::string_view mark) {
    const auto id = text.substr(std::min(text.size(), at + mark.size()), idLength);
    const std::size_t end = at + mark.size() + idLength;
    return isId(id) && end < text.size() && text[end] == '/' ? id : std::string_view();
}

void eachString(json& value, const std::function<void(std::string&)>& visit) {
    if (value.is_string())
        visit(value.get_ref<std::string&>());
    else if (value.is_structured())
        for (auto& each : value)
            eachString(each, visit);
}

FileError diskError() {
    return FileError("Не удалось сохранить файл: на диске службы нет места или он недоступен.");
}

}

FileDraft::FileDraft(const std::filesystem::path& folder) {
    std::string pattern = (folder / "draft-XXXXXX").string();
    descriptor_ = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (descriptor_ < 0)
        throw diskError();
    path_ = pattern;
}

FileDraft::~FileDraft() {
    if (descriptor_ >= 0)
        ::close(descriptor_);
    if (!path_.empty())
        ::unlink(path_.c_str());
}

void FileDraft::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(descriptor_, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            throw diskError();
        size_ += static_cast<std::uint64_t>(count);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

FileStore::FileStore(Database& database, std::filesystem::path folder)
    : db_(database)
    , folder_(std::move(folder)) {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    if (error)
        throw std::runtime_error("Не удаётся создать папку файлов " + folder_.string() + ": " + error.message());
}

std::unique_ptr<FileDraft> FileStore::begin() const {
    return std::make_unique<FileDraft>(folder_);
}

FileRow FileStore::keep(FileDraft& draft, const std::string& userId, const std::string& name, const std::string& type) {
    if (bytesOf(userId) + draft.size() > limits::userFiles)
        throw FileError("Место для ваших файлов закончилось. Удалите чаты с большими файлами.");
    FileRow row{randomToken(), userId, name, type, draft.size()};
    const auto path = pathOf(row);
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    // Closing tells of errors that writing has not.
    const bool closed = ::close(std::exchange(draft.descriptor_, -1)) == 0;
    if (error || !closed || ::rename(draft.path_.c_str(), path.c_str()) != 0)
        throw diskError();
    draft.path_.clear();
    const auto size = static_cast<long long>(row.size);
    const long long now = toMillis(WallClock::now());
    try {
        db_.run([&](soci::session& sql) {
            sql << "INSERT INTO files(id, user_id, name, type, size, created_at) VALUES(:i, :u, :n, :t, :s, :c)",
                use(row.id), use(row.userId), use(row.name), use(row.type), use(size), use(now);
        });
    } catch (const StoreError&) {
        ::unlink(path.c_str());
        throw;
    }
    return row;
}

FileRow FileStore::keep(std::string_view bytes, const std::string& userId, long long chatId, const std::string& name,
    const std::string& type) {
    FileDraft draft(folder_);
    draft.write(bytes);
    FileRow row = keep(draft, userId, name, type);
    attach(json(storedAddress(row)), chatId);
    return row;
}

std::vector<FileRow> FileStore::select(const std::string& condition, long long value) {
    return db_.run([&](soci::session& sql) {
        FileRow row;
        long long size = 0;
        soci::statement query = (sql.prepare << "SELECT id, user_id, name, type, size FROM files WHERE " + condition,
            into(row.id), into(row.userId), into(row.name), into(row.type), into(size), use(value));
        query.execute();
        std::vector<FileRow> rows;
        while (query.fetch()) {
            row.size = static_cast<std::uint64_t>(size);
            rows.push_back(row);
        }
        return rows;
    });
}

std::optional<FileRow> FileStore::find(const std::string& id) {
    if (!isId(id))
        return std::nullopt;
    return db_.run([&](soci::session& sql) -> std::optional<FileRow> {
        FileRow row;
        long long size = 0;
        sql << "SELECT id, user_id, name, type, size FROM files WHERE id = :i", into(row.id), into(row.userId),
            into(row.name), into(row.type), into(size), use(id);
        row.size = static_cast<std::uint64_t>(size);
        return sql.got_data() ? std::optional(row) : std::nullopt;
    });
}

std::filesystem::path FileStore::pathOf(const FileRow& file) const {
    return folder_ / file.userId / file.id;
}

std::shared_ptr<const OpenFile> FileStore::open(const FileRow& file) const {
    const int descriptor = ::open(pathOf(file).c_str(), O_RDONLY | O_CLOEXEC);
    return descriptor < 0 ? nullptr : std::make_shared<const OpenFile>(descriptor);
}

std::string FileStore::read(const FileRow& file, std::size_t limit) const {
    const auto opened = open(file);
    std::string bytes(opened ? std::min<std::size_t>(limit, static_cast<std::size_t>(file.size)) : 0, '\0');
    std::size_t got = 0;
    while (got < bytes.size()) {
        const auto count = ::read(opened->descriptor(), bytes.data() + got, bytes.size() - got);
        if (count <= 0)
            break;
        got += static_cast<std::size_t>(count);
    }
    bytes.resize(got);
    return bytes;
}

// Addresses

std::string FileStore::storedAddress(const FileRow& file) {
    return std::string(marker) + file.id + "/" + percentEncoded(file.name);
}

std::string FileStore::publicAddress(const FileRow& file) const {
    return publishedText(storedAddress(file));
}

std::string FileStore::publishedText(std::string text) const {
    const std::string prefix = origin_ + std::string(route);
    for (std::size_t at = 0; (at = text.find(marker, at)) != std::string::npos;) {
        if (idAt(text, at, marker).empty()) {
            at += marker.size();
            continue;
        }
        text.replace(at, marker.size(), prefix);
        at += prefix.size();
    }
    return text;
}

json FileStore::published(json content) const {
    eachString(content, [this](std::string& text) {
        if (text.find(marker) != std::string::npos)
            text = publishedText(std::move(text));
    });
    return content;
}

json FileStore::stored(json content, const std::string& userId) {
    for (json& part : content) {
        for (const char* key : {"imageUrl", "fileUrl"}) {
            if (!part.contains(key) || !part[key].is_string())
                continue;
            auto& address = part[key].get_ref<std::string&>();
            const auto at = address.find(route);
            const auto id = at == std::string::npos ? std::string_view() : idAt(address, at, route);
            if (const auto file = find(std::string(id)); file && file->userId == userId)
                address = storedAddress(*file);
        }
    }
    return content;
}

std::optional<FileRow> FileStore::fileAt(std::string_view address) {
    return address.starts_with(marker) ? find(std::string(idAt(address, 0, marker))) : std::nullopt;
}

void FileStore::attach(const json& content, long long chatId) {
    std::set<std::string> ids;
    json copy = content;
    eachString(copy, [&](std::string& text) {
        if (text.starts_with(marker))
            if (const auto id = idAt(text, 0, marker); !id.empty())
                ids.emplace(id);
    });
    for (const std::string& id : ids)
        db_.run([&](soci::session& sql) {
            sql << "INSERT OR IGNORE INTO file_uses(file_id, chat_id) SELECT id, :c FROM files WHERE id = :i",
                use(chatId), use(id);
        });
}

// Removal

std::vector<FileRow> FileStore::onlyUsedBy(long long chatId) {
    return select("id IN (SELECT file_id FROM file_uses WHERE chat_id = :v) AND "
                  "(SELECT count(*) FROM file_uses u WHERE u.file_id = files.id) = 1",
        chatId);
}

void FileStore::remove(const std::vector<FileRow>& files) {
    for (const FileRow& file : files) {
        db_.run([&](soci::session& sql) { sql << "DELETE FROM files WHERE id = :i", use(file.id); });
        std::error_code ignored;
        std::filesystem::remove(pathOf(file), ignored);
    }
}

void FileStore::userRemoved(const std::string& userId) {
    std::error_code ignored;
    if (!userId.empty())
        std::filesystem::remove_all(folder_ / userId, ignored);
}

std::uint64_t FileStore::bytesOf(const std::string& userId) {
    return db_.run([&](soci::session& sql) {
        long long bytes = 0;
        sql << "SELECT coalesce(sum(size), 0) FROM files WHERE user_id = :u", into(bytes), use(userId);
        return static_cast<std::uint64_t>(bytes);
    });
}

void FileStore::sweep() {
    const long long oldest = toMillis(WallClock::now()) - std::chrono::milliseconds(limits::unusedFileLife).count();
    remove(select("created_at < :v AND NOT EXISTS(SELECT 1 FROM file_uses u WHERE u.file_id = files.id)", oldest));
    std::set<std::filesystem::path> known;
    for (const FileRow& row : select("size >= :v", 0))
        known.insert(pathOf(row));
    std::error_code error;
    std::vector<std::filesystem::path> strays;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_, error))
        if (entry.is_regular_file(error) && !known.contains(entry.path()))
            strays.push_back(entry.path());
    for (const auto& path : strays)
        std::filesystem::remove(path, error);
}

}
