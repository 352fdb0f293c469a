#pragma once

#include "Async.h"

namespace Korvi {

// Work that would hold up the main thread. It gets what it needs by value and touches nothing else.
class Workers {
public:
    using Work = std::function<void()>;

    virtual ~Workers() = default;

    // Runs `work` elsewhere, and then `done` on the main thread unless the workers have ended.
    virtual void run(Work work, Work done) = 0;

    // What `work` returns; what it throws is thrown.
    template <class Function>
    auto compute(Function work) -> Async<std::invoke_result_t<Function>> {
        using T = std::invoke_result_t<Function>;
        struct Outcome {
            std::optional<T> value;
            std::exception_ptr error;
        };
        auto outcome = std::make_shared<Outcome>();
        Resolver<T> resolver;
        run(
            [outcome, work = std::move(work)] {
                try {
                    outcome->value.emplace(work());
                } catch (...) {
                    outcome->error = std::current_exception();
                }
            },
            [outcome, resolver]() mutable {
                if (outcome->error)
                    resolver.reject(outcome->error);
                else
                    resolver.resolve(std::move(*outcome->value));
            });
        return resolver.async();
    }
};

}
