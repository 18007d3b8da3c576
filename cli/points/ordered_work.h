// Work on the pieces of a stream by many threads, with results in the order of the pieces.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace cli {

// Pieces are filled by one thread, worked on by any of several, and handed out one after the other in the order in
// which they were filled. There are never more of them than a few for each thread, whatever the length of the stream,
// and they are used again with the memory that they have.
template <typename Piece>
class OrderedWork {
  public:
    using Action = std::function<void(Piece&)>;

    // work: called for every piece, by any thread. handOut: called for one piece at a time. With one job all is done by
    // the caller's thread. What either throws comes out of next() or finish().
    OrderedWork(std::size_t jobs, Action work, Action handOut)
        : threadLimit(jobs <= 1 ? 0 : jobs),
          slots(jobs <= 1 ? 1 : jobs + extraPieces),
          doWork(std::move(work)),
          doHandOut(std::move(handOut)) {}

    OrderedWork(const OrderedWork&) = delete;
    OrderedWork& operator=(const OrderedWork&) = delete;

    ~OrderedWork() {
        {
            const std::lock_guard lock(mutex);
            ended = true;
            // Pieces that nobody has begun are dropped: after finish() there are none.
            begun = filled;
        }
        changed.notify_all();
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    // A piece to fill, when one is free.
    Piece& next() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return failure || filled - handedOut < slots.size(); });
        rethrow();
        return slot(filled).piece;
    }

    // The piece that next() gave is filled.
    void submit() {
        if (threadLimit == 0) {
            Piece& piece = slot(filled).piece;
            doWork(piece);
            doHandOut(piece);
            ++filled;
            ++handedOut;
            return;
        }
        {
            const std::lock_guard lock(mutex);
            slot(filled).done = false;
            ++filled;
            if (idle == 0 && threads.size() < threadLimit) {
                add_thread();
            }
        }
        changed.notify_all();
    }

    // Waits until every piece has been handed out.
    void finish() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return failure || handedOut == filled; });
        rethrow();
    }

  private:
    static constexpr std::size_t extraPieces = 2;  // one that is filled, one that waits for its turn

    struct Slot {
        Piece piece;
        bool done = false;
    };

    Slot& slot(std::uint64_t number) { return slots[static_cast<std::size_t>(number % slots.size())]; }

    void rethrow() {
        if (failure) {
            std::rethrow_exception(failure);
        }
    }

    // Goes on with those there are when the system gives no more.
    void add_thread() {
        try {
            threads.emplace_back([this] { work_on(); });
        } catch (const std::system_error&) {
            if (threads.empty()) {
                throw;
            }
        }
    }

    void work_on() {
        std::unique_lock lock(mutex);
        for (;;) {
            ++idle;
            changed.wait(lock, [this] { return ended || begun < filled; });
            --idle;
            if (ended) {
                return;
            }
            Slot& mine = slot(begun++);
            run_unlocked(lock, [&] { doWork(mine.piece); });
            mine.done = true;
            // Whoever finishes the piece that is due hands it out, and those behind it that wait.
            while (!handing && handedOut < filled && slot(handedOut).done && !failure) {
                handing = true;
                Slot& due = slot(handedOut);
                run_unlocked(lock, [&] { doHandOut(due.piece); });
                handing = false;
                due.done = false;
                ++handedOut;
            }
            changed.notify_all();
        }
    }

    template <typename Call>
    void run_unlocked(std::unique_lock<std::mutex>& lock, Call call) {
        std::exception_ptr thrown;
        lock.unlock();
        try {
            call();
        } catch (...) {
            thrown = std::current_exception();
        }
        lock.lock();
        if (thrown && !failure) {
            failure = thrown;
        }
    }

    const std::size_t threadLimit;  // 0: the caller's thread does it all
    std::vector<Slot> slots;
    const Action doWork;
    const Action doHandOut;

    std::mutex mutex;
    std::condition_variable changed;
    std::uint64_t filled = 0;     // pieces that were submitted,
    std::uint64_t begun = 0;      // of these taken by a thread,
    std::uint64_t handedOut = 0;  // and handed out
    std::size_t idle = 0;
    bool handing = false;
    bool ended = false;
    std::exception_ptr failure;
    std::vector<std::thread> threads;
};

}  // namespace cli
