#pragma once

#include <filesystem>

namespace korvi::service {

/// The folder that holds everything of one running service. Closed to other users of the machine and locked against a
/// second service for as long as this object lives.
class DataFolder {
public:
    /// Throws std::runtime_error with a message for the user.
    explicit DataFolder(std::filesystem::path path);
    ~DataFolder();
    DataFolder(const DataFolder&) = delete;
    DataFolder& operator=(const DataFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path database() const { return path_ / "korvi.db"; }

private:
    std::filesystem::path path_;
    int lock_ = -1;
};

}
