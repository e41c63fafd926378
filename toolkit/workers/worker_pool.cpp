// SPDX-License-Identifier: MIT
#include "toolkit/workers/worker_pool.h"

#include "toolkit/workers/processor_share.h"
#include "toolkit/workers/session_internal.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>
#include <vector>

namespace umbrixlib::toolkit {

namespace {

using Clock = std::chrono::steady_clock;

/// A piece of work at a time, and its worker. It keeps its processors from one worker to the next.
class Slot : public Observer {
public:
    Slot(PoolClient& client, Service service, ProcessorSet const* processors)
        : client_(client), worker_(service, processors)
    {
    }

    bool busy() const { return session_ != nullptr; }
    Session& session() const { return *session_; }

    /// No work is to come.
    void close() const { worker_.let_go(); }

    /// Has a worker start work number @p index, unless there is nothing to do or that fails.
    void start(std::size_t index)
    {
        ending_ = {};
        ending_.index = index;
        start_ = Clock::now();
        guarded([&] {
            task_ = client_.open(index);
            if (task_) {
                begin_session();
            }
        });
        if (ending_.failure) {
            end();
        }
    }

    /// The worker has told all that it had to tell.
    void finish()
    {
        std::optional<Report> report;
        guarded([&] { report = session_->finish(); });
        ending_.peak_kib = session_->peak_kib();
        if (!report && session_->has_used_worker()) {
            begin_anew();
            return;
        }
        if (report) {
            guarded([&] {
                task_->complete(*report);
                ending_.report = report;
            });
        }
        end();
    }

    /// The user wishes to stop.
    void ask_to_stop()
    {
        if (task_->may_end_early()) {
            session_->ask_to_stop();
        }
    }

    /// The user would not wait for it.
    void stop()
    {
        ending_.stopped = true;
        end();
    }

private:
    /// What a worker tells that has done other work before may be forgotten yet.
    void note(std::string const& file, Note const& note) override
    {
        if (session_ && session_->has_used_worker()) {
            notes_.emplace_back(file, note);
        } else {
            client_.note(ending_.index, file, note);
        }
    }

    void printed(std::string const& lines) override { ending_.printed = lines; }

    /// Makes whatever goes wrong the end of this piece of work.
    template <typename Body>
    void guarded(Body&& body)
    {
        try {
            body();
        } catch (Failure const& failure) {
            ending_.failure.emplace(failure);
        } catch (std::exception const& error) {
            std::string const name = task_ ? name_of_input(task_->job()) : std::string("umbrix");
            ending_.failure.emplace(Fault::kUnexpected, name, error.what());
        }
    }

    void begin_session()
    {
        session_ = std::make_unique<Session>(task_->job(), task_->timeout_seconds(), *this, worker_);
    }

    /// Work that came before may have harmed the worker.
    void begin_anew()
    {
        session_.reset();
        notes_.clear();
        ending_.failure.reset();
        ending_.printed.clear();
        guarded([&] {
            task_->start_over();
            begin_session();
        });
        if (ending_.failure) {
            end();
        }
    }

    void end()
    {
        session_.reset(); // the worker first: it may be writing into the task's files
        task_.reset();
        for (auto const& [file, note] : std::exchange(notes_, {})) {
            client_.note(ending_.index, file, note);
        }
        ending_.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
        client_.end(ending_);
    }

    PoolClient& client_;
    WorkerSlot worker_;
    std::unique_ptr<PoolTask> task_;
    std::unique_ptr<Session> session_;
    Clock::time_point start_;
    std::vector<std::pair<std::string, Note>> notes_; ///< And their files.
    PoolEnding ending_;
};

class Pool {
public:
    Pool(std::size_t count, PoolWorkers const& workers, PoolClient& client, Stop const& stop)
        : count_(count), client_(client), stop_(stop), shares_(share_processors(workers.at_a_time))
    {
        for (std::size_t i = 0; i < workers.at_a_time; ++i) {
            slots_.push_back(
                std::make_unique<Slot>(client, workers.service, shares_.empty() ? nullptr : &shares_[i]));
        }
    }

    bool run()
    {
        fill_slots();
        while (running() > 0) {
            listen();
            fill_slots();
        }
        return !stopping_;
    }

private:
    std::size_t running() const
    {
        auto const busy = [](std::unique_ptr<Slot> const& slot) { return slot->busy(); };
        return static_cast<std::size_t>(std::count_if(slots_.begin(), slots_.end(), busy));
    }

    void fill_slots()
    {
        for (auto const& slot : slots_) {
            // Work that is nothing or fails at once leaves its slot free.
            while (!slot->busy() && next_ < count_ && !noticed_wish_to_stop()) {
                slot->start(next_++);
            }
            if (!slot->busy()) {
                slot->close();
            }
        }
    }

    bool noticed_wish_to_stop()
    {
        if (stop_.take()) {
            bool const second = std::exchange(stopping_, true);
            for (auto const& slot : slots_) {
                if (slot->busy()) {
                    second ? slot->stop() : slot->ask_to_stop();
                }
            }
            if (!second) {
                client_.stopping(running());
            }
        }
        return stopping_;
    }

    /// Waits for something to happen and takes it in.
    void listen()
    {
        std::vector<Session*> sessions;
        std::vector<Slot*> busy;
        for (auto const& slot : slots_) {
            if (slot->busy()) {
                busy.push_back(slot.get());
                sessions.push_back(&slot->session());
            }
        }
        for (std::size_t const ended : wait_for(sessions, stop_)) {
            busy[ended]->finish();
        }
        noticed_wish_to_stop();
    }

    std::size_t count_;
    PoolClient& client_;
    Stop const& stop_;
    std::vector<ProcessorSet> shares_;
    std::vector<std::unique_ptr<Slot>> slots_;
    std::size_t next_ = 0;
    bool stopping_ = false;
};

} // namespace

bool run_pool(std::size_t count, PoolWorkers const& workers, PoolClient& client, Stop const& stop)
{
    std::size_t const most = std::max<std::size_t>(count, 1);
    PoolWorkers const needed{std::clamp<std::size_t>(workers.at_a_time, 1, most), workers.service};
    return Pool(count, needed, client, stop).run();
}

} // namespace umbrixlib::toolkit
