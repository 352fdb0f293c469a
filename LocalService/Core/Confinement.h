#pragma once

#include <filesystem>

namespace korvi::service {

/// The part of the file system that a child may touch, by the kernel's Landlock: programs and their libraries for reading,
/// and what it is given. Made before the fork, put on by the child.
class Confinement {
public:
    Confinement();
    ~Confinement();
    Confinement(const Confinement&) = delete;
    Confinement& operator=(const Confinement&) = delete;

    /// A file or a folder with all that is in it. What does not exist is passed over.
    void allowReading(const std::filesystem::path& path) const;
    void allowWriting(const std::filesystem::path& path) const;

    /// For this thread and what it starts; system calls only. False if it cannot be had although the kernel knows it.
    bool enter() const;

    /// Whether the kernel knows it.
    static bool isAvailable();

private:
    void allow(const std::filesystem::path& path, unsigned long long access) const;

    int ruleset_ = -1;
};

}
