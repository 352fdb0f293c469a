#include "DataFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace korvi::service {

DataFolder::DataFolder(std::filesystem::path path)
    : path_(std::filesystem::absolute(path)) {
    // Conversations are nobody else's business.
    ::umask(0077);
    std::error_code error;
    std::filesystem::create_directories(path_, error);
    if (error)
        throw std::runtime_error("Не удаётся создать папку данных " + path_.string() + ": " + error.message());
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, error);

    const std::string file = (path_ / "lock").string();
    lock_ = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock_ < 0)
        throw std::runtime_error("Нет права записи в папку данных " + path_.string() + ": " +
            std::system_category().message(errno) + ". Укажите другую ключом --data.");
    if (::flock(lock_, LOCK_EX | LOCK_NB) != 0) {
        ::close(lock_);
        throw std::runtime_error("С папкой данных " + path_.string() +
            " уже работает другой экземпляр службы. Остановите его или укажите другую папку ключом --data.");
    }
}

DataFolder::~DataFolder() {
    ::close(lock_);
}

}
