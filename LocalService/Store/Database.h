#pragma once

#include "Store/StoreError.h"

#include <exception>
#include <filesystem>
#include <soci/soci.h>
#include <type_traits>
#include <utility>

namespace korvi::service {

/// The one SQLite file, in WAL mode. Used from one thread.
///
/// Opening checks the file and brings an older schema up to date. A file that is damaged, foreign or newer than this
/// program is never touched: the constructor throws a StoreError that names it.
class Database {
public:
    static constexpr int schemaVersion = 3;

    explicit Database(const std::filesystem::path& file);

    soci::session& sql() { return sql_; }

    /// Runs `work` and turns a failure of the database into a StoreError.
    template <class Work>
    auto run(Work&& work) {
        try {
            return std::forward<Work>(work)(sql_);
        } catch (const soci::soci_error& error) {
            rethrow(error);
        }
    }

    /// The same as one transaction: all of it or nothing.
    template <class Work>
    auto transact(Work&& work) {
        return run([&](soci::session& sql) {
            soci::transaction transaction(sql);
            if constexpr (std::is_void_v<decltype(work(sql))>) {
                work(sql);
                transaction.commit();
            } else {
                auto result = work(sql);
                transaction.commit();
                return result;
            }
        });
    }

private:
    void migrate(const std::filesystem::path& file);
    [[noreturn]] static void rethrow(const soci::soci_error& error);

    soci::session sql_;
};

}
